// SPDX-License-Identifier: BSD-3-Clause
// The platform's general heap and its memory pages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace lx {

namespace native {

// Tells the system that larger pages than PageSize's pay for a block, because it is gone through
// again and again. Only a hint: contents and the last error stay, and a system without such
// pages does nothing. To be given ahead of the first write, since what has been written is not
// moved at once. Any thread may call.
//   block  from any allocator, of any alignment; its first and last page count only if they are
//          the block's alone. Of some MiB at least: the hint stays with the addresses, and a
//          heap hands those of small blocks out again
void AdviseHugePages(void* block, std::size_t bytes);

// Size of a memory page in bytes. Callers raise what is too small.
std::int32_t PageSize();

}  // namespace native

struct MemoryOperations {
  // As the C runtime gives it; null where memory has run out.
  void* (*allocate)(std::size_t size) = std::malloc;
  void* (*reallocate)(void* block, std::size_t size) = std::realloc;
  void (*release)(void* block) = std::free;
  decltype(native::AdviseHugePages)* adviseHugePages = native::AdviseHugePages;
  decltype(native::PageSize)* pageSize = native::PageSize;
};

}  // namespace lx
