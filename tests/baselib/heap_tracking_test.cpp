// SPDX-License-Identifier: BSD-3-Clause
// The allocator under its switches: what it does, what it enters, what it says.
#include "baselib/utils/heap_tracking.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/utils/heap.h"
#include "baselib/utils/heap_state.h"
#include "baselib/utils/log_sink.h"
#include "tests/support/heap_faults.h"
#include "tests/support/tracked_heap.h"

namespace {

using lx_test::LinesWithoutPointers;
using lx_test::TrackedHeap;
using testing::internal::CaptureStderr;
using Calls = std::vector<std::string>;

constexpr const char* kDebug = "(LX LIB) ERROR: LX-HM-DEBUG: ";
constexpr const char* kTrace = "(LX LIB) INFO : LX-HM-TRACE: ";

// What an operation says.
template <class Operation>
std::string Said(const Operation& operation) {
  CaptureStderr();
  operation();
  return LinesWithoutPointers();
}

TEST(HeapOff, IsTheRuntimesOwn) {
  const TrackedHeap heap(0, 1, 1);
  const std::string said = Said([] {
    std::free(lx::lx_malloc(0, "f", 1));
    lx::lx_free(nullptr, "f", 1);
    void* block = lx::lx_realloc(nullptr, 10, "f", 1);
    block = lx::lx_realloc(block, 20, "f", 1);
    lx::lx_free(block, "f", 1);
    char* copy = lx::lx_strdup("abc", "f", 1);
    EXPECT_STREQ("abc", copy);
    lx::lx_free(copy, "f", 1);
    lx::lx_image_free(lx::lx_image_malloc(5, "f", 1), "f", 1);
    EXPECT_EQ(nullptr, lx::lx_strdup(nullptr, "f", 1));
  });

  EXPECT_EQ("", said);
  EXPECT_EQ(0U, TrackedHeap::Normal().allocations);
}

class HeapDebug : public testing::Test {
 public:
  TrackedHeap heap{1, 1, 0};
  const lx::HeapInfo& normal = TrackedHeap::Normal();
  const lx::HeapInfo& image = TrackedHeap::Image();
};

TEST_F(HeapDebug, RefusesASizeOfNought) {
  EXPECT_EQ(std::string(kDebug) + "lx_malloc( size=0 ) attempted! [f.cpp(7)]\n" + kDebug +
                "lx_image_malloc( size=0 ) attempted! [f.cpp(8)]\n" + kDebug +
                "lx_realloc( size=0 ) attempted! [f.cpp(9)]\n",
            Said([] {
              EXPECT_EQ(nullptr, lx::lx_malloc(0, "f.cpp", 7));
              EXPECT_EQ(nullptr, lx::lx_image_malloc(0, "f.cpp", 8));
              EXPECT_EQ(nullptr, lx::lx_realloc(nullptr, 0, "f.cpp", 9));
            }));
  EXPECT_EQ(0U, normal.allocations);
}

TEST_F(HeapDebug, RefusesNull) {
  EXPECT_EQ(std::string(kDebug) + "lx_free( NULL ) attempted! [f.cpp(1)]\n" + kDebug +
                "lx_image_free( NULL ) attempted! [f.cpp(2)]\n" + kDebug +
                "lx_strdup( NULL ) attempted! [f.cpp(3)]\n",
            Said([] {
              lx::lx_free(nullptr, "f.cpp", 1);
              lx::lx_image_free(nullptr, "f.cpp", 2);
              EXPECT_EQ(nullptr, lx::lx_strdup(nullptr, "f.cpp", 3));
            }));
}

TEST_F(HeapDebug, EntersAndTakesOut) {
  EXPECT_EQ("", Said([this] {
              void* block = lx::lx_malloc(100, "f", 1);
              void* picture = lx::lx_image_malloc(1000, "f", 2);
              EXPECT_EQ(100U, normal.currentBytes);
              EXPECT_EQ(1000U, image.currentBytes);
              lx::lx_free(block, "f", 3);
              lx::lx_image_free(picture, "f", 4);
            }));
  EXPECT_EQ(1U, normal.frees);
  EXPECT_EQ(1U, image.frees);
  EXPECT_EQ(0U, normal.currentBytes);
  EXPECT_EQ(1000U, image.peakBytes);
}

TEST_F(HeapDebug, KeepsABlockThatIsGivenToTheWrongFamily) {
  void* block = lx::lx_malloc(100, "f", 1);

  EXPECT_EQ(std::string(kDebug) + "lx_image_free(P) attempted - but P is not allocated! [g(2)]\n",
            Said([&] { lx::lx_image_free(block, "g", 2); }));

  EXPECT_EQ(100U, normal.currentBytes);
  EXPECT_EQ(0U, image.frees);
  lx::lx_free(block, "f", 3);
  EXPECT_EQ(1U, normal.frees);
}

TEST_F(HeapDebug, ReportsASecondFreeAndCountsOne) {
  void* block = lx::lx_malloc(100, "f", 1);
  lx::lx_free(block, "f", 2);

  EXPECT_EQ(std::string(kDebug) + "lx_free(P) attempted - but P is not allocated! [g(3)]\n",
            Said([&] { lx::lx_free(block, "g", 3); }));

  EXPECT_EQ(1U, normal.frees);
}

TEST_F(HeapDebug, ReportsAStrayPointer) {
  int local = 0;
  // Past the compiler, which would say the same.
  int* volatile stray = &local;

  EXPECT_EQ(std::string(kDebug) + "lx_free(P) attempted - but P is not allocated! [g(3)]\n" +
                kDebug + "lx_realloc(P,8) attempted - but P is not allocated!  [g(4)]\n",
            Said([&] {
              lx::lx_free(stray, "g", 3);
              EXPECT_EQ(nullptr, lx::lx_realloc(stray, 8, "g", 4));
            }));
}

TEST_F(HeapDebug, EntersANewBlockForAReallocOfNull) {
  EXPECT_EQ("", Said([this] {
              void* block = lx::lx_realloc(nullptr, 30, "f", 1);
              EXPECT_EQ(30U, normal.currentBytes);
              EXPECT_EQ(0U, normal.frees);
              lx::lx_free(block, "f", 2);
            }));
}

TEST_F(HeapDebug, EntersAReallocAnew) {
  void* block = lx::lx_malloc(30, "f", 1);
  block = lx::lx_realloc(block, 5000, "g", 2);

  EXPECT_EQ(2U, normal.allocations);
  EXPECT_EQ(1U, normal.frees);
  EXPECT_EQ(5000U, normal.currentBytes);
  lx::lx_free(block, "f", 3);
}

TEST_F(HeapDebug, KeepsTheOldBlockOfAReallocThatFails) {
  void* block = lx::lx_malloc(30, "f", 1);
  lx::Platform table = lx::SystemPlatform();
  table.reallocate = [](void*, std::size_t) -> void* { return nullptr; };
  {
    const lx::ScopedPlatform scope(&table);
    EXPECT_EQ(nullptr, lx::lx_realloc(block, 60, "g", 2));
  }

  EXPECT_EQ(30U, normal.currentBytes);
  EXPECT_EQ(0U, normal.frees);
  lx::lx_free(block, "f", 3);
}

TEST_F(HeapDebug, EntersACopyOfATextWithItsEnd) {
  char* copy = lx::lx_strdup("four", "f", 1);

  EXPECT_STREQ("four", copy);
  EXPECT_EQ(5U, normal.currentBytes);
  lx::lx_free(copy, "f", 2);
}

TEST_F(HeapDebug, EntersNothingWithoutMemory) {
  {
    lx_test::HeapFaults runtime;
    runtime.RefuseAll();
    EXPECT_EQ(nullptr, lx::lx_malloc(10, "f", 1));
    EXPECT_EQ(nullptr, lx::lx_image_malloc(10, "f", 1));
    EXPECT_EQ(nullptr, lx::lx_strdup("abc", "f", 1));
  }
  EXPECT_EQ(0U, normal.allocations);
  EXPECT_EQ(0U, image.allocations);
}

TEST_F(HeapDebug, TimesBothHeapsOnTheNormalAccount) {
  static std::uint32_t ticks;
  ticks = 1000;
  lx::Platform table = lx::SystemPlatform();
  table.tickCount = [] { return ticks += 250; };
  {
    const lx::ScopedPlatform scope(&table);
    lx::lx_image_free(lx::lx_image_malloc(10, "f", 1), "f", 2);
    EXPECT_NEAR(0.5, normal.timeSpent, 1e-9);
    lx::lx_free(lx::lx_malloc(10, "f", 1), "f", 2);
  }

  EXPECT_NEAR(1.0, normal.timeSpent, 1e-9);
  EXPECT_EQ(0.0, image.timeSpent);
}

// Every line of the log looks at the counter, which stands for ten seconds of writing here.
TEST_F(HeapDebug, DoesNotTimeTheWritingOfATrace) {
  static std::uint32_t ticks;
  ticks = 1000;
  lx::Platform table = lx::SystemPlatform();
  table.tickCount = [] { return ticks += 250; };
  table.counter = [] {
    ticks += 10000;
    return lx::SystemPlatform().counter();
  };
  lx::hm_set_switches(1, 1, 1);

  Said([&] {
    const lx::ScopedPlatform scope(&table);
    lx::lx_free(lx::lx_realloc(lx::lx_malloc(10, "f", 1), 20, "f", 2), "f", 3);
    lx::lx_free(lx::lx_strdup("x", "f", 4), "f", 5);
    lx::lx_image_free(lx::lx_image_malloc(10, "f", 6), "f", 7);
  });

  EXPECT_NEAR(7 * 0.25, normal.timeSpent, 1e-9);
}

TEST_F(HeapDebug, EntersAlignedBlocksUnderItsOwnName) {
  void* block = lx::lx_aligned_malloc(100, 64, false);
  void* picture = lx::lx_aligned_malloc(200, -1, true);

  EXPECT_EQ(172U, normal.currentBytes);
  std::uint32_t distance = 0;
  std::memcpy(&distance, static_cast<char*>(block) - 4, sizeof distance);
  const void* base = static_cast<char*>(block) - distance;
  EXPECT_STREQ("baselib/utils", normal.nodes[lx::hm_bucket(base)].file);
  lx::lx_aligned_free(block, false);
  lx::lx_aligned_free(picture, true);
  EXPECT_EQ(0U, normal.currentBytes);
  EXPECT_EQ(0U, image.currentBytes);
}

TEST_F(HeapDebug, KeepsAccountOnManyThreads) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([] {
      for (std::uint32_t i = 1; i < 300; ++i) {
        void* block = lx::lx_malloc(i, "f", 1);
        void* picture = lx::lx_image_malloc(i, "f", 2);
        block = lx::lx_realloc(block, 2 * i, "f", 3);
        lx::lx_image_free(picture, "f", 4);
        lx::lx_free(block, "f", 5);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(8U * 299U * 2U, normal.allocations);
  EXPECT_EQ(normal.allocations, normal.frees);
  EXPECT_EQ(8U * 299U, image.frees);
  EXPECT_EQ(0U, normal.currentBytes);
}

TEST(HeapTrace, SaysEachOperationWithoutDebug) {
  const TrackedHeap heap(1, 0, 1);

  // Freeing has no line of its own here.
  EXPECT_EQ(std::string(kTrace) + "lx_malloc(10) ret (P) at [f(1)]\n" + kTrace +
                "lx_realloc(P,20) ret (P) at [f(2)]\n" + kTrace +
                "lx_strdup(P) ret (P) at [f(4)]\n" + kTrace +
                "lx_image_malloc(30) ret (P) at [f(6)]\n",
            Said([] {
              void* block = lx::lx_malloc(10, "f", 1);
              block = lx::lx_realloc(block, 20, "f", 2);
              lx::lx_free(block, "f", 3);
              lx::lx_free(lx::lx_strdup("x", "f", 4), "f", 5);
              lx::lx_image_free(lx::lx_image_malloc(30, "f", 6), "f", 7);
            }));
  EXPECT_EQ(0U, TrackedHeap::Normal().allocations);
}

TEST(HeapTrace, TellsABlocksBirthWhenItIsFreedUnderDebug) {
  const TrackedHeap heap(1, 1, 1);

  EXPECT_EQ(std::string(kTrace) + "lx_malloc(10) ret (P) at [born(1)]\n" + kTrace +
                "lx_free(P) at [f(2)].\n" +
                "(LX LIB)                  :             Alloc at [born(1)], size 10\n" + kTrace +
                "lx_image_malloc(20) ret (P) at [born(3)]\n" + kTrace +
                "lx_image_free(P) at [f(4)].\n" +
                "(LX LIB)                  :             Alloc at [born(3)], size 20\n",
            Said([] {
              lx::lx_free(lx::lx_malloc(10, "born", 1), "f", 2);
              lx::lx_image_free(lx::lx_image_malloc(20, "born", 3), "f", 4);
            }));
}

TEST(HeapTrace, IsSilentForLineNoughtOfMallocAndReallocAlone) {
  const TrackedHeap heap(1, 1, 1);

  EXPECT_EQ(std::string(kTrace) + "lx_free(P) at [f(0)].\n" +
                "(LX LIB)                  :             Alloc at [f(0)], size 20\n" + kTrace +
                "lx_strdup(P) ret (P) at [f(0)]\n" + kTrace + "lx_free(P) at [f(0)].\n" +
                "(LX LIB)                  :             Alloc at [f(0)], size 2\n" + kTrace +
                "lx_image_malloc(30) ret (P) at [f(0)]\n" + kTrace +
                "lx_image_free(P) at [f(0)].\n" +
                "(LX LIB)                  :             Alloc at [f(0)], size 30\n",
            Said([] {
              lx::lx_free(lx::lx_realloc(lx::lx_malloc(10, "f", 0), 20, "f", 0), "f", 0);
              lx::lx_free(lx::lx_strdup("x", "f", 0), "f", 0);
              lx::lx_image_free(lx::lx_image_malloc(30, "f", 0), "f", 0);
            }));
}

// Whether the heap's lock was held at each line that an operation wrote: every line looks at
// the counter, and another thread then tries the lock.
std::vector<bool> HeldAtEachLine(void (*operation)()) {
  static std::vector<bool> held;
  held.clear();
  lx::Platform table = lx::SystemPlatform();
  table.counter = [] {
    std::thread([] {
      std::recursive_mutex& mutex = lx::HeapState::Mutex();
      const bool free = mutex.try_lock();
      if (free) {
        mutex.unlock();
      }
      held.push_back(!free);
    }).join();
    return lx::SystemPlatform().counter();
  };
  Said([&] {
    const lx::ScopedPlatform scope(&table);
    operation();
  });
  return held;
}

void TraceEach() {
  lx::lx_free(lx::lx_realloc(lx::lx_malloc(10, "f", 1), 20, "f", 2), "f", 3);
  lx::lx_free(lx::lx_strdup("x", "f", 4), "f", 5);
  lx::lx_image_free(lx::lx_image_malloc(30, "f", 6), "f", 7);
}

// malloc, realloc, free, strdup, free, image malloc, image free.
const std::vector<bool> kHeldToFree = {false, false, true, false, true, false, true};

TEST(HeapTrace, IsWrittenOutsideTheLockExceptWhereABlockIsFreed) {
  const TrackedHeap heap(1, 1, 1);

  EXPECT_EQ(kHeldToFree, HeldAtEachLine(TraceEach));
}

// An allocator that notes what it is asked for.
class HeapHooked : public testing::Test {
 public:
  HeapHooked() {
    lx::HeapHooks hooks;
    hooks.present = 1;
    hooks.context = &calls;
    hooks.malloc = [](void* context, std::uint32_t size) {
      Note(context, "malloc " + std::to_string(size));
      return std::malloc(size);
    };
    hooks.realloc = [](void* context, void* block, std::uint32_t size) {
      Note(context, "realloc " + std::to_string(size));
      return std::realloc(block, size);
    };
    hooks.strdup = [](void* context, const char* text) {
      Note(context, std::string("strdup ") + text);
      return strdup(text);
    };
    hooks.free = [](void* context, void* block) {
      Note(context, "free");
      std::free(block);
    };
    lx::HeapHooks image = hooks;
    image.context = &imageCalls;
    lx::hm_set_hooks(hooks, image);
  }

  static void Note(void* context, const std::string& call) {
    static_cast<Calls*>(context)->push_back(call);
  }

  static void UseAll() {
    void* block = lx::lx_malloc(10, "f", 1);
    block = lx::lx_realloc(block, 20, "f", 2);
    lx::lx_free(block, "f", 3);
    lx::lx_free(lx::lx_strdup("x", "f", 4), "f", 5);
    lx::lx_image_free(lx::lx_image_malloc(30, "f", 6), "f", 7);
  }

  TrackedHeap heap{1, 0, 0};
  Calls calls;
  Calls imageCalls;
};

const Calls kHookCalls = {"malloc 10", "realloc 20", "free", "strdup x", "free"};

TEST_F(HeapHooked, GoesToTheHooksOfEachHeap) {
  EXPECT_EQ("", Said(UseAll));

  EXPECT_EQ(kHookCalls, calls);
  EXPECT_EQ((Calls{"malloc 30", "free"}), imageCalls);
  EXPECT_EQ(0U, TrackedHeap::Normal().allocations);
}

TEST_F(HeapHooked, IsTracedInLinesWithoutAFullStop) {
  lx::hm_set_switches(1, 0, 1);

  EXPECT_EQ(std::string(kTrace) + "lx_malloc(10) ret (P) at [f(1)]\n" + kTrace +
                "lx_realloc(P,20) ret (P) at [f(2)]\n" + kTrace + "lx_free(P) at [f(3)]\n" +
                kTrace + "lx_strdup(P) ret (P) at [f(4)]\n" + kTrace + "lx_free(P) at [f(5)]\n" +
                kTrace + "lx_image_malloc(30) ret (P) at [f(6)]\n" + kTrace +
                "lx_image_free(P) at [f(7)]\n",
            Said(UseAll));
}

TEST_F(HeapHooked, IsTracedOutsideTheLockExceptWhereABlockIsFreed) {
  lx::hm_set_switches(1, 0, 1);

  EXPECT_EQ(kHeldToFree, HeldAtEachLine(TraceEach));
}

TEST_F(HeapHooked, IsEnteredUnderDebug) {
  lx::hm_set_switches(1, 1, 0);

  EXPECT_EQ("", Said(UseAll));

  EXPECT_EQ(kHookCalls, calls);
  EXPECT_EQ(3U, TrackedHeap::Normal().allocations);
  EXPECT_EQ(3U, TrackedHeap::Normal().frees);
  EXPECT_EQ(1U, TrackedHeap::Image().frees);
}

TEST_F(HeapHooked, IsLeftAloneWhileTheSwitchIsOff) {
  lx::hm_set_switches(0, 1, 1);

  EXPECT_EQ("", Said(UseAll));

  EXPECT_EQ(Calls{}, calls);
  EXPECT_EQ(Calls{}, imageCalls);
}

// A hook may come back to the allocator on its own thread.
TEST_F(HeapHooked, MayUseTheAllocatorItself) {
  lx::HeapHooks hooks;
  hooks.present = 1;
  hooks.malloc = [](void*, std::uint32_t size) {
    lx::lx_image_free(lx::lx_image_malloc(1, "g", 1), "g", 2);
    return std::malloc(size);
  };
  hooks.free = [](void*, void* block) { std::free(block); };
  lx::hm_set_hooks(hooks, {});
  lx::hm_set_switches(1, 1, 0);

  lx::lx_free(lx::lx_malloc(10, "f", 1), "f", 2);

  EXPECT_EQ(1U, TrackedHeap::Image().frees);
  EXPECT_EQ(1U, TrackedHeap::Normal().frees);
}

}  // namespace
