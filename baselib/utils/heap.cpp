#include "baselib/utils/heap.h"

#include <cstring>

#include "baselib/platform/platform.h"
#include "baselib/threads/system_info.h"

namespace lx {
namespace {

// Two words stand in front of an aligned block: its size, then the distance back to
// the block it was cut from.
constexpr std::uint32_t kHeaderBytes = 8;

}  // namespace

void* lx_malloc(std::uint32_t size, const char* /*file*/, std::int32_t /*line*/) {
  return GetPlatform().allocate(size);
}

void lx_free(void* block, const char* /*file*/, std::int32_t /*line*/) {
  GetPlatform().release(block);
}

void* lx_image_malloc(std::uint32_t size, const char* /*file*/, std::int32_t /*line*/) {
  return GetPlatform().allocate(size);
}

void lx_image_free(void* block, const char* /*file*/, std::int32_t /*line*/) {
  GetPlatform().release(block);
}

void* lx_aligned_malloc(std::uint32_t size, std::int32_t alignment, bool image) {
  if (size > 0x7fffffffU) {
    return nullptr;
  }
  const std::uint32_t step =
      static_cast<std::uint32_t>(alignment < 4 ? get_page_size() : alignment);
  const std::uint64_t total = std::uint64_t{size} + step + kHeaderBytes;
  if (total > 0xffffffffU) {
    return nullptr;
  }
  const auto bytes = static_cast<std::uint32_t>(total);
  void* block = image ? lx_image_malloc(bytes) : lx_malloc(bytes);
  if (block == nullptr) {
    return nullptr;
  }
  auto* base = static_cast<unsigned char*>(block);
  const auto address = reinterpret_cast<std::uintptr_t>(base);
  const auto distance =
      static_cast<std::uint32_t>(kHeaderBytes - ((address + kHeaderBytes) % step) + step);
  unsigned char* result = base + distance;
  std::memcpy(result - 8, &size, sizeof size);
  std::memcpy(result - 4, &distance, sizeof distance);
  return result;
}

void lx_aligned_free(void* block, bool image) {
  auto* result = static_cast<unsigned char*>(block);
  std::uint32_t distance = 0;
  std::memcpy(&distance, result - 4, sizeof distance);
  void* base = result - distance;
  if (image) {
    lx_image_free(base);
  } else {
    lx_free(base);
  }
}

}  // namespace lx
