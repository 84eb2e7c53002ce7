// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <cstdint>

#include "baselib/platform/memory.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {

// Larger pages are a right of the user's here, and a block must be made of them from the start.
void AdviseHugePages(void* /*block*/, std::size_t /*bytes*/) {}

std::int32_t PageSize() {
  SYSTEM_INFO info;
  ::GetSystemInfo(&info);
  return static_cast<std::int32_t>(info.dwPageSize);
}

}  // namespace lx::native
