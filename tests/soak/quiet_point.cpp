// SPDX-License-Identifier: BSD-3-Clause
#include "tests/soak/quiet_point.h"

#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "tests/support/process_threads.h"

namespace soak {
namespace {

namespace fs = std::filesystem;

std::uint64_t Resident() {
  std::ifstream pages("/proc/self/statm");
  std::uint64_t all = 0;
  std::uint64_t resident = 0;
  pages >> all >> resident;
  return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

// A sanitizer has a heap of its own, and says what is in use by a function of its runtime.
std::uint64_t Heap() {
  using Ask = std::size_t();
  static auto* const ask =
      reinterpret_cast<Ask*>(dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes"));
  if (ask != nullptr) {
    return ask();
  }
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

int Entries(const fs::path& folder) {
  const fs::directory_iterator entries(folder);
  return static_cast<int>(std::distance(begin(entries), end(entries)));
}

}  // namespace

int QuietThreads() {
  std::thread([] {}).join();
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  return lx_test::ThreadCount();
}

Held LookAtProcess(int threads) {
  for (int i = 0; i < 2000 && lx_test::ThreadCount() > threads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  // The folder's own descriptor is one of those that are listed.
  return {Resident(), Heap(), Entries("/proc/self/fd") - 1, lx_test::ThreadCount(),
          static_cast<std::size_t>(Entries(fs::temp_directory_path()))};
}

}  // namespace soak
