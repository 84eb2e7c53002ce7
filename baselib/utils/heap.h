// SPDX-License-Identifier: BSD-3-Clause
// The allocator of the whole system: ordinary blocks, image-sized blocks, and an
// aligned pair on top of both.
//
// Sizes are 32-bit unsigned; every allocation gives null where memory has run out. A
// block goes back to the family that gave it. Each call carries its file and line, which
// the compiler fills in. Any thread may call.
//
// As delivered these are the runtime's own functions, for a size of 0 too. heap_tracking.h has the
// switches that make them keep account of every block; then a size of 0, a null text and a null
// block to be freed are reported, and nothing else comes of them.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "baselib/platform/platform.h"

namespace lx {

void* lx_malloc(std::uint32_t size, const char* file = __builtin_FILE(),
                std::int32_t line = __builtin_LINE());

//   block  null gives a new one
// Null for a size above 0 leaves the block as it is.
void* lx_realloc(void* block, std::uint32_t size, const char* file = __builtin_FILE(),
                 std::int32_t line = __builtin_LINE());

// A copy of a text, in a block of its own.
char* lx_strdup(const char* text, const char* file = __builtin_FILE(),
                std::int32_t line = __builtin_LINE());

//   block  null does nothing
void lx_free(void* block, const char* file = __builtin_FILE(),
             std::int32_t line = __builtin_LINE());

// The same for image-sized blocks.
void* lx_image_malloc(std::uint32_t size, const char* file = __builtin_FILE(),
                      std::int32_t line = __builtin_LINE());
void lx_image_free(void* block, const char* file = __builtin_FILE(),
                   std::int32_t line = __builtin_LINE());

// A block that starts at a multiple of the alignment.
//   size       bytes; above 0x7fffffff gives null
//   alignment  bytes, any number; below 4 (callers give -1) means the page size
//   image      whether the block comes from the image-sized family
void* lx_aligned_malloc(std::uint32_t size, std::int32_t alignment, bool image);

//   block  from lx_aligned_malloc with the same flag; null does nothing
void lx_aligned_free(void* block, bool image);

// The way with an account or through a table of the platform's.
namespace heap_paths {
[[gnu::cold]] void* Malloc(std::uint32_t size, const char* file, std::int32_t line);
[[gnu::cold]] void Free(void* block, const char* file, std::int32_t line);
[[gnu::cold]] void* ImageMalloc(std::uint32_t size, const char* file, std::int32_t line);
[[gnu::cold]] void ImageFree(void* block, const char* file, std::int32_t line);
}  // namespace heap_paths

// Nobody looks on in a delivered build, where a call costs one load and a branch more than the
// runtime's own. That is why these are here and not behind another call.
inline bool IsHeapWatched() { return heapWatchers.load(std::memory_order_relaxed) != 0; }

inline void* lx_malloc(std::uint32_t size, const char* file, std::int32_t line) {
  if (IsHeapWatched()) [[unlikely]] {
    return heap_paths::Malloc(size, file, line);
  }
  return std::malloc(size);
}

inline void lx_free(void* block, const char* file, std::int32_t line) {
  if (IsHeapWatched()) [[unlikely]] {
    return heap_paths::Free(block, file, line);
  }
  std::free(block);
}

inline void* lx_image_malloc(std::uint32_t size, const char* file, std::int32_t line) {
  if (IsHeapWatched()) [[unlikely]] {
    return heap_paths::ImageMalloc(size, file, line);
  }
  return std::malloc(size);
}

inline void lx_image_free(void* block, const char* file, std::int32_t line) {
  if (IsHeapWatched()) [[unlikely]] {
    return heap_paths::ImageFree(block, file, line);
  }
  std::free(block);
}

}  // namespace lx
