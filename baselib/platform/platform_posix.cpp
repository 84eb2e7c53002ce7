#include <dlfcn.h>
#include <sched.h>
#include <unistd.h>

#include <cstdlib>

#include "baselib/platform/platform.h"

namespace lx {
namespace {

// The affinity mask and not the machine: what binds a process to some processors
// (a host, a farm) decides how wide it works.
std::int32_t ProcessorCount() {
  cpu_set_t mask;
  CPU_ZERO(&mask);
  if (sched_getaffinity(0, sizeof mask, &mask) == 0) {
    return CPU_COUNT(&mask);
  }
  // A mask wider than cpu_set_t; the count of what is online is the next best answer.
  return static_cast<std::int32_t>(sysconf(_SC_NPROCESSORS_ONLN));
}

std::int32_t PageSize() { return static_cast<std::int32_t>(sysconf(_SC_PAGESIZE)); }

bool HasEnvironmentVariable(const char* name) { return std::getenv(name) != nullptr; }

void KeepLoaded(void (*function)()) {
  Dl_info info;
  if (dladdr(reinterpret_cast<void*>(function), &info) != 0 && info.dli_fname != nullptr) {
    // The handle is not kept: what matters is that the library is marked.
    (void)dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
  }
}

void* Allocate(std::size_t size) { return std::malloc(size); }

void Release(void* block) { std::free(block); }

}  // namespace

const Platform& SystemPlatform() {
  static constexpr Platform kTable = {
      .allocate = Allocate,
      .release = Release,
      .processorCount = ProcessorCount,
      .pageSize = PageSize,
      .hasEnvironmentVariable = HasEnvironmentVariable,
      .keepLoaded = KeepLoaded,
  };
  return kTable;
}

}  // namespace lx
