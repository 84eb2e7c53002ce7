// SPDX-License-Identifier: BSD-3-Clause
// What the allocator can do beside allocating: keep account of every block, report misuse
// instead of carrying it out, write a line for each operation, and hand the work to somebody
// else's allocator. Everything is off until a debugging build or a test turns it on.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

// An allocator to be used in the runtime's place. Each hook gets the context first.
struct HeapHooks {
  std::int32_t present = 0;
  void* context = nullptr;
  void* (*malloc)(void* context, std::uint32_t size) = nullptr;
  void* (*realloc)(void* context, void* block, std::uint32_t size) = nullptr;
  char* (*strdup)(void* context, const char* text) = nullptr;
  void (*free)(void* context, void* block) = nullptr;
};

inline constexpr std::size_t kHeapFileBytes = 48;

// One block. The first of a bucket lies in the table, the older ones behind it.
struct HeapInfoNode {
  std::uintptr_t ptr;         // 0 in a free bucket
  std::uint32_t size;         // as it was asked for
  std::int32_t line;          // of the caller
  char file[kHeapFileBytes];  // the end of its name, which tells more than the beginning
  HeapInfoNode* next;         // from the runtime's malloc
};

inline constexpr std::uint32_t kHeapBuckets = 16384;

// The account of one heap.
struct HeapInfo {
  char name[20];  // "NORMAL" or "IMAGE"
  HeapInfoNode nodes[kHeapBuckets];
  std::uint32_t collisions;    // blocks that came to an occupied bucket
  std::uint32_t allocations;   // blocks entered
  std::uint32_t frees;         // blocks taken out
  std::uint32_t currentBytes;  // of the blocks that are in
  std::uint32_t peakBytes;
  std::int32_t outOfNodes;  // 1 once a block could not be entered
  double timeSpent;         // seconds in operations of either heap; NORMAL has them all
  double timerStart;
};

enum class Heap { kNormal, kImage };

// Turns tracking on and off. Blocks that were made before are not known to the account, so
// this belongs at the start of a process.
//   enabled  0: the runtime alone, whatever the others say
//   debug    account, reports of misuse and timing
//   trace    a line for each operation
void hm_set_switches(std::int32_t enabled, std::int32_t debug, std::int32_t trace);

// A table that is present has all its hooks; the image heap has no use for realloc and strdup.
void hm_set_hooks(const HeapHooks& normal, const HeapHooks& image);

// The account of a heap, for looking at only. Nobody may allocate meanwhile.
const HeapInfo& hm_info(Heap heap);

// Forgets all blocks and counts, as a process that has just begun. The blocks themselves
// stay where they are.
void hm_forget();

// Bob Jenkins's one-at-a-time hash (Dr. Dobb's, September 1997), over bytes in their order.
std::uint32_t hm_hash(const unsigned char* bytes, std::size_t count);

// Over the bytes of a pointer, the least significant first; and the bucket that it gives.
std::uint32_t hm_hash(const void* block);
std::uint32_t hm_bucket(const void* block);

// The lock of accounts and hooks. A thread may take it again.
void acquire_hm_mutex();
void release_hm_mutex();

// The account's own operations, under that lock. The allocator calls them.
void hm_init_info(HeapInfo* table);
void hm_record(HeapInfo* table, std::uintptr_t block, std::uint32_t size, const char* file,
               std::int32_t line);
void hm_unrecord(HeapInfo* table, std::uintptr_t block);

// Where a block was born. False, with a size of 0, for one that is not in.
//   file  null, or kHeapFileBytes
//   line  may be null
bool hm_lookup(HeapInfo* table, std::uintptr_t block, std::uint32_t* size, char* file,
               std::int32_t* line);

}  // namespace lx
