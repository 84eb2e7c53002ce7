// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/system_info.h"

#include <algorithm>

#include "baselib/platform/platform.h"
#include "baselib/threads/module_state.h"

namespace lx {

std::uint32_t get_processor_count() {
  return static_cast<std::uint32_t>(std::max(GetPlatform().processorCount(), 1));
}

std::int32_t get_page_size() {
  std::atomic<std::int32_t>& size = system_state().pageSize;
  if (size < 0) {
    // Blocks are aligned to it, which a size of 0 would not survive.
    size = std::max(GetPlatform().pageSize(), 512);
  }
  return size;
}

}  // namespace lx
