// SPDX-License-Identifier: BSD-3-Clause
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "baselib/platform/memory.h"

namespace lx::native {

std::int32_t PageSize() { return static_cast<std::int32_t>(sysconf(_SC_PAGESIZE)); }

void AdviseHugePages(void* block, std::size_t bytes) {
  const auto page = static_cast<std::uintptr_t>(PageSize());
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t before = (page - address % page) % page;
  if (bytes < before + page) {
    return;
  }
  const int error = errno;
  (void)madvise(static_cast<char*>(block) + before, (bytes - before) / page * page, MADV_HUGEPAGE);
  errno = error;
}

}  // namespace lx::native
