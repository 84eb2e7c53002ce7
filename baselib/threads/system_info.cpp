#include "baselib/threads/system_info.h"

#include <algorithm>

#include "baselib/platform/platform.h"

namespace lx {

std::uint32_t get_processor_count() {
  return static_cast<std::uint32_t>(std::max(GetPlatform().processorCount(), 1));
}

std::int32_t get_page_size() { return std::max(GetPlatform().pageSize(), 512); }

}  // namespace lx
