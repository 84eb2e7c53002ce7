// SPDX-License-Identifier: BSD-3-Clause
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sched.h>
#include <signal.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

// Whether nothing of it is left but the number, which stays until somebody has asked how it ended:
// the first process of a container may never do. False where the kernel does not say.
bool HasEnded(std::uint32_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  // The name before it may have brackets of its own.
  const std::size_t name = text.rfind(") ");
  return name != std::string::npos && (text[name + 2] == 'Z' || text[name + 2] == 'X');
}

}  // namespace

const char kShellQuote = '\'';

const char* const kHomeAdvice =
    "a line LX_HOME_DIR=FOLDER in /etc/environment names another home directory";

std::vector<std::string> Arguments(int argc, const char* const* argv) {
  return {argv, argv + argc};
}

// Where /proc is not mounted the kernel still tells the name that it started, which may be a
// relative one.
std::filesystem::path ProgramFile(const std::filesystem::path& link) {
  std::error_code error;
  std::filesystem::path file = std::filesystem::read_symlink(link, error);
  if (!error) {
    return file;
  }
  // The system hands the address of the name out as a number.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  const auto* const started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  return started == nullptr ? std::filesystem::path() : std::filesystem::canonical(started, error);
}

std::uint32_t ProcessId() { return static_cast<std::uint32_t>(getpid()); }

// What the kernel says can be had without swapping, and what is left to swap to.
std::uint64_t AvailableMemory() {
  std::ifstream file("/proc/meminfo");
  std::uint64_t kibibytes = 0;
  std::string name;
  std::uint64_t value = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    if (words >> name >> value && (name == "MemAvailable:" || name == "SwapFree:")) {
      kibibytes += value;
    }
  }
  return kibibytes * 1024;
}

// Zero and what would be negative ask for groups of processes.
bool ProcessExists(std::uint32_t process) {
  return process > 0 && process <= std::numeric_limits<pid_t>::max() &&
         (kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM) && !HasEnded(process);
}

std::string HostName() {
  std::array<char, 256> name{};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool IsWritable(const std::filesystem::path& folder) { return access(folder.c_str(), W_OK) == 0; }

void SetVariable(const char* name, const char* value) { setenv(name, value, 1); }

void UseBinaryStreams() {}

// The limit would rise to 32 MiB by itself, the size of a frame; a limit that is set stays. Smaller
// ones would cost a call of the system for each row buffer.
void GiveLargeBlocksBack() {
  constexpr int kBytes = 4 * 1024 * 1024;
  mallopt(M_MMAP_THRESHOLD, kBytes);
}

// Open the wrong way round.
void HoldStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1) {
      // The lowest number that is free, which is this one.
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

bool IsTerminal() { return isatty(STDERR_FILENO) != 0; }

int AllowedProcessors() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  return sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : 0;
}

bool KeepProcessors(int count) {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
    return false;
  }
  cpu_set_t kept;
  CPU_ZERO(&kept);
  for (int processor = 0; processor < CPU_SETSIZE && CPU_COUNT(&kept) < count; ++processor) {
    if (CPU_ISSET(processor, &allowed)) {
      CPU_SET(processor, &kept);
    }
  }
  return sched_setaffinity(0, sizeof kept, &kept) == 0;
}

SharedLibrary::SharedLibrary(const std::filesystem::path& file)
    : library_(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) {
    throw Failure(file.string() + ": not a module that can be loaded: " + dlerror());
  }
}

SharedLibrary::~SharedLibrary() { dlclose(library_); }

SharedLibrary::AnyFunction* SharedLibrary::Address(const char* name) const {
  return reinterpret_cast<AnyFunction*>(dlsym(library_, name));
}

}  // namespace glimmerhost
