// The allocator of the whole system: ordinary blocks, image-sized blocks, and an
// aligned pair on top of both.
//
// Sizes are 32-bit unsigned; every allocation gives null where memory has run out. A
// block goes back to the family that gave it. Each call carries its place in the
// source, which the compiler fills in. Any thread may call.
#pragma once

#include <cstdint>
#include <source_location>

namespace lx {

using SourcePlace = std::source_location;

void* lx_malloc(std::uint32_t size, const SourcePlace& place = SourcePlace::current());

//   block  null is legal and does nothing
void lx_free(void* block, const SourcePlace& place = SourcePlace::current());

// The same for image-sized blocks.
void* lx_image_malloc(std::uint32_t size, const SourcePlace& place = SourcePlace::current());
void lx_image_free(void* block, const SourcePlace& place = SourcePlace::current());

// A block that starts at a multiple of the alignment.
//   size       bytes; above 0x7fffffff gives null
//   alignment  bytes, any number; below 4 (callers give -1) means the page size
//   image      whether the block comes from the image-sized family
void* lx_aligned_malloc(std::uint32_t size, std::int32_t alignment, bool image);

//   block  from lx_aligned_malloc with the same flag; must not be null
void lx_aligned_free(void* block, bool image);

}  // namespace lx
