// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/heap_tracking.h"

#include <cstring>
#include <mutex>

#include "baselib/platform/platform.h"
#include "baselib/utils/heap_state.h"
#include "baselib/utils/log.h"

namespace lx {
namespace {

constexpr std::size_t kLongestFile = kHeapFileBytes - 1;

// Over 47 characters the end is kept.
void StoreFile(char* to, const char* file) {
  const std::size_t length = std::strlen(file);
  std::strncpy(to, length > kLongestFile ? file + length - kLongestFile : file, kLongestFile);
  to[kLongestFile] = '\0';
}

HeapInfoNode* Bucket(HeapInfo* table, std::uintptr_t block) {
  return &table->nodes[hm_bucket(AsPointer(block))];
}

// The entry of a block, or null. previous receives the one before it in its chain, or null.
HeapInfoNode* FindNode(HeapInfo* table, std::uintptr_t block, HeapInfoNode** previous) {
  *previous = nullptr;
  HeapInfoNode* node = Bucket(table, block);
  // A free bucket has no chain.
  while (node != nullptr && node->ptr != 0) {
    if (node->ptr == block) {
      return node;
    }
    *previous = node;
    node = node->next;
  }
  return nullptr;
}

// Takes an entry out of its chain. The first of a bucket has its place in the table, so the
// next one moves up.
void RemoveNode(HeapInfoNode* node, HeapInfoNode* previous) {
  HeapInfoNode* spare = node;
  if (previous != nullptr) {
    previous->next = node->next;
  } else if (node->next != nullptr) {
    spare = node->next;
    *node = *spare;
  } else {
    *node = {};
    return;
  }
  GetPlatform().release(spare);
}

void ClearTable(HeapInfo* table, const char* name) {
  std::memset(static_cast<void*>(table), 0, sizeof *table);
  std::strncpy(table->name, name, sizeof table->name - 1);
}

}  // namespace

constinit HeapState heapState(LX_TRACK_HEAP);

void hm_set_switches(std::int32_t enabled, std::int32_t debug, std::int32_t trace) {
  HeapState& state = heap_state();
  state.debug = debug;
  state.trace = trace;
  const bool was = state.enabled.exchange(enabled) != 0;
  if (enabled != 0 && !was) {
    AddHeapWatcher();
  } else if (enabled == 0 && was) {
    RemoveHeapWatcher();
  }
}

void hm_set_hooks(const HeapHooks& normal, const HeapHooks& image) {
  acquire_hm_mutex();
  heap_state().normalHooks = normal;
  heap_state().imageHooks = image;
  release_hm_mutex();
}

const HeapInfo& hm_info(Heap heap) {
  return heap == Heap::kNormal ? heap_state().normal : heap_state().image;
}

void hm_forget() {
  HeapState& state = heap_state();
  for (HeapInfo* table : {&state.normal, &state.image}) {
    for (HeapInfoNode& first : table->nodes) {
      while (first.next != nullptr) {
        HeapInfoNode* node = first.next;
        first.next = node->next;
        GetPlatform().release(node);
      }
    }
    ClearTable(table, "");
  }
  state.normalReady = false;
  state.imageReady = false;
}

// "One at a time" of R. J. Jenkins, "Hash functions", Dr. Dobb's Journal, September 1997; each
// shift and sum is written as one product.
std::uint32_t hm_hash(const unsigned char* bytes, std::size_t count) {
  std::uint32_t h = 0;
  for (std::size_t i = 0; i < count; ++i) {
    h = (h + bytes[i]) * 1025U;
    h ^= h >> 6;
  }
  h *= 9U;
  h ^= h >> 11;
  return h * 32769U;
}

std::uint32_t hm_hash(const void* block) {
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  unsigned char bytes[sizeof address];
  for (std::size_t i = 0; i < sizeof address; ++i) {
    bytes[i] = static_cast<unsigned char>(address >> (8 * i));
  }
  return hm_hash(bytes, sizeof bytes);
}

std::uint32_t hm_bucket(const void* block) { return hm_hash(block) & (kHeapBuckets - 1); }

void acquire_hm_mutex() {
  HeapState& state = heap_state();
  state.mutexReady = true;
  state.Mutex().lock();
}

void release_hm_mutex() {
  HeapState& state = heap_state();
  if (!state.mutexReady) {
    log_message(kLogError,
                "LX-HM-DEBUG: INTERNAL ERROR: release_hm_mutex() found hm_mutex_init=0!\n");
    return;
  }
  state.Mutex().unlock();
}

void hm_init_info(HeapInfo* table) {
  HeapState& state = heap_state();
  if (table == &state.normal) {
    if (!state.normalReady) {
      ClearTable(table, "NORMAL");
      state.normalReady = true;
    }
  } else if (table == &state.image) {
    if (!state.imageReady) {
      ClearTable(table, "IMAGE");
      state.imageReady = true;
    }
  } else {
    log_message(kLogError,
                "LX-HM-DEBUG: INTERNAL ERROR: Asked to initialize unknown info at: %p.\n",
                static_cast<void*>(table));
  }
}

void hm_record(HeapInfo* table, std::uintptr_t block, std::uint32_t size, const char* file,
               std::int32_t line) {
  hm_init_info(table);
  HeapInfoNode* first = Bucket(table, block);
  HeapInfoNode* older = nullptr;
  if (first->ptr != 0) {
    ++table->collisions;
    older = static_cast<HeapInfoNode*>(GetPlatform().allocate(sizeof(HeapInfoNode)));
    if (older == nullptr) {
      log_message(kLogError, "LX-HM-DEBUG: INTERNAL ERROR: Cannot allocate space for info node.\n");
      table->outOfNodes = 1;
      return;
    }
    *older = *first;
  }
  first->ptr = block;
  first->size = size;
  first->line = line;
  StoreFile(first->file, file);
  first->next = older;
  ++table->allocations;
  table->currentBytes += size;
  if (table->currentBytes > table->peakBytes) {
    table->peakBytes = table->currentBytes;
  }
}

void hm_unrecord(HeapInfo* table, std::uintptr_t block) {
  hm_init_info(table);
  HeapInfoNode* previous = nullptr;
  HeapInfoNode* node = FindNode(table, block, &previous);
  if (node == nullptr) {
    log_message(kLogError, "LX-HM-DEBUG: Attempt to free %p - Not allocated in %s!\n",
                AsPointer(block), table->name);
    return;
  }
  ++table->frees;
  table->currentBytes -= node->size;
  RemoveNode(node, previous);
}

bool hm_lookup(HeapInfo* table, std::uintptr_t block, std::uint32_t* size, char* file,
               std::int32_t* line) {
  hm_init_info(table);
  HeapInfoNode* previous = nullptr;
  const HeapInfoNode* node = FindNode(table, block, &previous);
  *size = node != nullptr ? node->size : 0;
  if (node == nullptr) {
    return false;
  }
  if (file != nullptr) {
    std::memcpy(file, node->file, kHeapFileBytes);
  }
  if (line != nullptr) {
    *line = node->line;
  }
  return true;
}

}  // namespace lx
