// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/heap.h"

#include <cstdint>
#include <cstring>
#include <limits>

#include "baselib/platform/platform.h"
#include "baselib/threads/system_info.h"
#include "baselib/utils/heap_state.h"
#include "baselib/utils/heap_tracking.h"
#include "baselib/utils/log.h"

namespace lx {
namespace {

// Two words stand in front of an aligned block: its size, then the distance back to
// the block it was cut from.
constexpr std::uint32_t kHeaderBytes = 8;

// Under which the aligned pair's blocks are entered.
constexpr const char* kOwnFile = "baselib/utils";

// One of the two heaps, with the names that its texts give its functions.
struct Family {
  HeapInfo* info;
  const HeapHooks* hooks;
  const char* mallocName;
  const char* freeName;
  bool tracesLineZero;
};

Family NormalFamily() {
  HeapState& state = heap_state();
  return {&state.normal, &state.normalHooks, "lx_malloc", "lx_free", false};
}

Family ImageFamily() {
  HeapState& state = heap_state();
  return {&state.image, &state.imageHooks, "lx_image_malloc", "lx_image_free", true};
}

bool Debug() { return heap_state().debug != 0; }
bool Trace() { return heap_state().trace != 0; }

double Clock() { return GetPlatform().tickCount() * 0.001; }

class Lock {
 public:
  Lock() { acquire_hm_mutex(); }
  ~Lock() { release_hm_mutex(); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
};

// The time of an operation goes to the normal heap's account, the image heap's too.
class Timer {
 public:
  Timer() {
    HeapInfo& normal = heap_state().normal;
    hm_init_info(&normal);
    normal.timerStart = Clock();
  }
  ~Timer() { Stop(); }
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  void Stop() {
    if (running_) {
      HeapInfo& normal = heap_state().normal;
      normal.timeSpent += Clock() - normal.timerStart;
      running_ = false;
    }
  }

 private:
  bool running_ = true;
};

std::uintptr_t Address(const void* block) { return reinterpret_cast<std::uintptr_t>(block); }

void* AllocateBlock(const Family& family, std::uint32_t size) {
  return family.hooks->present != 0 ? family.hooks->malloc(family.hooks->context, size)
                                    : GetPlatform().allocate(size);
}

void FreeBlock(const Family& family, void* block) {
  if (family.hooks->present != 0) {
    family.hooks->free(family.hooks->context, block);
  } else {
    GetPlatform().release(block);
  }
}

// Size of a text with its end; 0 for one that no block can hold.
std::uint32_t TextBytes(const char* text) {
  const std::size_t length = std::strlen(text);
  return length < std::numeric_limits<std::uint32_t>::max() ? static_cast<std::uint32_t>(length) + 1
                                                            : 0;
}

char* CopyText(const char* text) {
  const std::uint32_t bytes = TextBytes(text);
  auto* copy = bytes == 0 ? nullptr : static_cast<char*>(GetPlatform().allocate(bytes));
  if (copy != nullptr) {
    std::memcpy(copy, text, bytes);
  }
  return copy;
}

char* CopyTextByHook(const char* text) {
  const HeapHooks& hooks = heap_state().normalHooks;
  return hooks.present != 0 ? hooks.strdup(hooks.context, text) : CopyText(text);
}

void* Reallocate(void* block, std::uint32_t size) {
  const HeapHooks& hooks = heap_state().normalHooks;
  return hooks.present != 0 ? hooks.realloc(hooks.context, block, size)
                            : GetPlatform().reallocate(block, size);
}

void* WatchedMalloc(const Family& family, std::uint32_t size, const char* file, std::int32_t line) {
  void* block = nullptr;
  if (Debug()) {
    if (size == 0) {
      log_message(kLogError, "LX-HM-DEBUG: %s( size=0 ) attempted! [%s(%d)]\n", family.mallocName,
                  file, line);
      return nullptr;
    }
    const Lock lock;
    const Timer timer;
    block = AllocateBlock(family, size);
    if (block != nullptr) {
      hm_record(family.info, Address(block), size, file, line);
    }
  } else if (family.hooks->present != 0) {
    const Lock lock;
    block = AllocateBlock(family, size);
  } else {
    block = GetPlatform().allocate(size);
  }
  if (Trace() && (line != 0 || family.tracesLineZero)) {
    log_message(kLogInfo, "LX-HM-TRACE: %s(%d) ret (%p) at [%s(%d)]\n", family.mallocName,
                static_cast<int>(size), block, file, line);
  }
  return block;
}

// A block that the account does not know is left alone.
void FreeTracked(const Family& family, void* block, const char* file, std::int32_t line) {
  if (block == nullptr) {
    log_message(kLogError, "LX-HM-DEBUG: %s( NULL ) attempted! [%s(%d)]\n", family.freeName, file,
                line);
    return;
  }
  const Lock lock;
  Timer timer;
  std::uint32_t size = 0;
  char birthFile[kHeapFileBytes] = {};
  std::int32_t birthLine = 0;
  if (!hm_lookup(family.info, Address(block), &size, birthFile, &birthLine)) {
    log_message(kLogError, "LX-HM-DEBUG: %s(%p) attempted - but %p is not allocated! [%s(%d)]\n",
                family.freeName, block, block, file, line);
    return;
  }
  const std::uintptr_t address = Address(block);
  FreeBlock(family, block);
  hm_unrecord(family.info, address);
  timer.Stop();
  if (Trace()) {
    log_message(kLogInfo, "LX-HM-TRACE: %s(%p) at [%s(%d)].\n", family.freeName, AsPointer(address),
                file, line);
    log_continue("            Alloc at [%s(%d)], size %d\n", birthFile, birthLine,
                 static_cast<int>(size));
  }
}

void WatchedFree(const Family& family, void* block, const char* file, std::int32_t line) {
  if (Debug()) {
    FreeTracked(family, block, file, line);
  } else if (family.hooks->present != 0) {
    const Lock lock;
    const std::uintptr_t address = Address(block);
    FreeBlock(family, block);
    if (Trace()) {
      log_message(kLogInfo, "LX-HM-TRACE: %s(%p) at [%s(%d)]\n", family.freeName,
                  AsPointer(address), file, line);
    }
  } else {
    // Intended: this path has no line of its own.
    GetPlatform().release(block);
  }
}

// False for a block that the account does not know, which is left alone.
bool ReallocateTracked(void* block, std::uint32_t size, const char* file, std::int32_t line,
                       void** result) {
  const Lock lock;
  const Timer timer;
  HeapInfo* info = &heap_state().normal;
  const std::uintptr_t old = Address(block);
  std::uint32_t oldSize = 0;
  if (block != nullptr && !hm_lookup(info, old, &oldSize, nullptr, nullptr)) {
    log_message(kLogError,
                "LX-HM-DEBUG: lx_realloc(%p,%d) attempted - but %p is not allocated!  [%s(%d)]\n",
                block, static_cast<int>(size), block, file, line);
    return false;
  }
  *result = Reallocate(block, size);
  if (*result != nullptr) {
    if (old != 0) {
      hm_unrecord(info, old);
    }
    hm_record(info, Address(*result), size, file, line);
  }
  return true;
}

void* WatchedRealloc(void* block, std::uint32_t size, const char* file, std::int32_t line) {
  const std::uintptr_t old = Address(block);
  void* result = nullptr;
  if (Debug()) {
    if (size == 0) {
      log_message(kLogError, "LX-HM-DEBUG: lx_realloc( size=0 ) attempted! [%s(%d)]\n", file, line);
      return nullptr;
    }
    if (!ReallocateTracked(block, size, file, line, &result)) {
      return nullptr;
    }
  } else if (heap_state().normalHooks.present != 0) {
    const Lock lock;
    result = Reallocate(block, size);
  } else {
    result = GetPlatform().reallocate(block, size);
  }
  if (Trace() && line != 0) {
    log_message(kLogInfo, "LX-HM-TRACE: lx_realloc(%p,%d) ret (%p) at [%s(%d)]\n", AsPointer(old),
                static_cast<int>(size), result, file, line);
  }
  return result;
}

char* WatchedStrdup(const char* text, const char* file, std::int32_t line) {
  char* copy = nullptr;
  if (Debug()) {
    if (text == nullptr) {
      log_message(kLogError, "LX-HM-DEBUG: lx_strdup( NULL ) attempted! [%s(%d)]\n", file, line);
      return nullptr;
    }
    const Lock lock;
    const Timer timer;
    copy = CopyTextByHook(text);
    if (copy != nullptr) {
      hm_record(&heap_state().normal, Address(copy), TextBytes(text), file, line);
    }
  } else if (heap_state().normalHooks.present != 0) {
    const Lock lock;
    copy = CopyTextByHook(text);
  } else {
    copy = text == nullptr ? nullptr : CopyText(text);
  }
  if (Trace()) {
    log_message(kLogInfo, "LX-HM-TRACE: lx_strdup(%p) ret (%p) at [%s(%d)]\n",
                static_cast<const void*>(text), static_cast<void*>(copy), file, line);
  }
  return copy;
}

bool IsOff() { return heap_state().enabled.load(std::memory_order_relaxed) == 0; }

}  // namespace

void* heap_paths::Malloc(std::uint32_t size, const char* file, std::int32_t line) {
  return IsOff() ? GetPlatform().allocate(size) : WatchedMalloc(NormalFamily(), size, file, line);
}

void heap_paths::Free(void* block, const char* file, std::int32_t line) {
  if (IsOff()) {
    GetPlatform().release(block);
  } else {
    WatchedFree(NormalFamily(), block, file, line);
  }
}

void* heap_paths::ImageMalloc(std::uint32_t size, const char* file, std::int32_t line) {
  return IsOff() ? GetPlatform().allocate(size) : WatchedMalloc(ImageFamily(), size, file, line);
}

void heap_paths::ImageFree(void* block, const char* file, std::int32_t line) {
  if (IsOff()) {
    GetPlatform().release(block);
  } else {
    WatchedFree(ImageFamily(), block, file, line);
  }
}

void* lx_realloc(void* block, std::uint32_t size, const char* file, std::int32_t line) {
  return IsOff() ? GetPlatform().reallocate(block, size) : WatchedRealloc(block, size, file, line);
}

char* lx_strdup(const char* text, const char* file, std::int32_t line) {
  if (IsOff()) {
    return text == nullptr ? nullptr : CopyText(text);
  }
  return WatchedStrdup(text, file, line);
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
  void* block =
      image ? lx_image_malloc(bytes, kOwnFile, __LINE__) : lx_malloc(bytes, kOwnFile, __LINE__);
  if (block == nullptr) {
    return nullptr;
  }
  auto* base = static_cast<unsigned char*>(block);
  // From 9 to 8 + step bytes: a block that lies right moves on by a whole step all the same.
  const auto distance =
      static_cast<std::uint32_t>(kHeaderBytes - ((Address(base) + kHeaderBytes) % step) + step);
  unsigned char* result = base + distance;
  std::memcpy(result - 8, &size, sizeof size);
  std::memcpy(result - 4, &distance, sizeof distance);
  return result;
}

void lx_aligned_free(void* block, bool image) {
  if (block == nullptr) {
    return;
  }
  auto* result = static_cast<unsigned char*>(block);
  std::uint32_t distance = 0;
  std::memcpy(&distance, result - 4, sizeof distance);
  void* base = result - distance;
  if (image) {
    lx_image_free(base, kOwnFile, __LINE__);
  } else {
    lx_free(base, kOwnFile, __LINE__);
  }
}

}  // namespace lx
