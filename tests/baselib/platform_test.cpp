// SPDX-License-Identifier: BSD-3-Clause
// What the system's platform promises to the services above it.
#include "baselib/platform/platform.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/flushing_bits.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system.h"

namespace {

namespace fs = std::filesystem;

const lx::Platform& System() { return lx::SystemPlatform(); }

// A thread of the platform's that runs a function of the test's.
template <class Function>
class Thread {
 public:
  explicit Thread(Function function) : function_(function) {
    handle = System().beginThread(0x100000, Run, this, 0, &id);
  }
  ~Thread() {
    if (handle != nullptr) {
      System().closeThread(handle);
    }
  }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  lx::ThreadHandle handle;
  std::uint32_t id = 0;

 private:
  static std::uint32_t Run(void* self) {
    static_cast<Thread*>(self)->function_();
    System().endThread(0);
    return 0;
  }

  Function function_;
};

class Event {
 public:
  Event() : handle(System().createEvent()) {}
  ~Event() { System().destroyEvent(handle); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  void Set() const { System().setEvent(handle); }
  void Reset() const { System().resetEvent(handle); }
  bool Wait() const { return System().waitForEvents(1, &handle); }

  lx::EventHandle handle;
};

// For what must not happen, and might if it were wrong.
void GiveOthersTime() {
  for (int i = 0; i < 10000; ++i) {
    std::this_thread::yield();
  }
}

TEST(PlatformEvent, StaysSetUntilItIsReset) {
  const Event event;
  event.Set();
  EXPECT_TRUE(event.Wait());
  EXPECT_TRUE(event.Wait());
}

TEST(PlatformEvent, IsMadeUnsetAndHoldsAWaiter) {
  const Event go;
  const Event done;
  std::atomic<int> step{0};
  {
    const Thread waiter([&] {
      go.Wait();
      step = 2;
      done.Set();
    });
    step = 1;
    go.Set();
    done.Wait();
  }
  EXPECT_EQ(2, step);
}

TEST(PlatformEvent, HoldsAWaiterAgainAfterAReset) {
  const Event start;
  const Event done;
  std::atomic<int> rounds{0};
  const Thread worker([&] {
    for (int i = 0; i < 100; ++i) {
      start.Wait();
      start.Reset();
      ++rounds;
      done.Set();
    }
  });
  for (int i = 1; i <= 100; ++i) {
    done.Reset();
    start.Set();
    done.Wait();
    ASSERT_EQ(i, rounds);
  }
}

TEST(PlatformEvent, IsWaitedForWithAllOthers) {
  const Event first;
  const Event second;
  const Event seen;
  std::atomic<bool> both{false};
  const lx::EventHandle events[] = {first.handle, second.handle};
  {
    const Thread waiter([&] {
      System().waitForEvents(2, events);
      both = true;
      seen.Set();
    });
    second.Set();
    GiveOthersTime();
    EXPECT_FALSE(both);
    first.Set();
    seen.Wait();
  }
  EXPECT_TRUE(both);
}

TEST(PlatformThread, LeavesItsEventWhenItIsTerminated) {
  const Event never;
  const Event waiting;
  std::atomic<int> answer{-1};
  const Thread thread([&] {
    waiting.Set();
    answer = never.Wait() ? 1 : 0;
  });
  waiting.Wait();
  EXPECT_TRUE(System().terminateThread(thread.handle, 0));
  // A system that ends threads from outside leaves no answer.
  EXPECT_NE(1, answer);
}

TEST(PlatformThread, FinishesItsWorkBeforeItIsTerminated) {
  const Event never;
  const Event working;
  std::atomic<bool> goOn{false};
  std::atomic<bool> isDone{false};
  const Thread thread([&] {
    working.Set();
    while (!goOn) {
    }
    isDone = true;
    never.Wait();
  });
  working.Wait();
  std::atomic<bool> isAsked{false};
  std::thread terminator([&] {
    isAsked = true;
    EXPECT_TRUE(System().terminateThread(thread.handle, 0));
  });
  while (!isAsked) {
  }
  GiveOthersTime();
  goOn = true;
  terminator.join();
  EXPECT_TRUE(isDone);
}

TEST(PlatformThread, HasAnIdAboveZeroOfItsOwn) {
  const Thread first([] {});
  const Thread second([] {});
  EXPECT_GT(first.id, 0U);
  EXPECT_GT(second.id, 0U);
  EXPECT_NE(first.id, second.id);
}

TEST(PlatformThread, IsRefusedWithAnErrorForAStackThatCannotBe) {
  std::uint32_t id = 0;
  const lx::ThreadHandle thread = System().beginThread(
      1, [](void*) { return std::uint32_t{0}; }, nullptr, 0, &id);
  if (thread != nullptr) {
    System().closeThread(thread);
    GTEST_SKIP() << "every stack can be here";
  }
  EXPECT_NE(0U, System().lastError());
}

TEST(PlatformThread, KeepsThePriorityThatItWasGiven) {
  std::atomic<std::int32_t> inside{0};
  {
    const Thread thread([&] {
      System().setThreadPriority(System().currentThread(), -15);
      inside = System().threadPriority(System().currentThread());
    });
  }
  EXPECT_EQ(-15, inside);
  EXPECT_EQ(0, System().threadPriority(System().currentThread()));
}

TEST(PlatformThreadSlot, HoldsAWordForEachThread) {
  const std::uint32_t slot = System().allocateThreadSlot();
  ASSERT_NE(lx::kNoThreadSlot, slot);
  int own = 0;
  EXPECT_EQ(nullptr, System().threadSlot(slot));
  EXPECT_TRUE(System().setThreadSlot(slot, &own));
  std::atomic<void*> other{&own};
  {
    const Thread thread([&] { other = System().threadSlot(slot); });
  }
  EXPECT_EQ(nullptr, other);
  EXPECT_EQ(&own, System().threadSlot(slot));
  System().releaseThreadSlot(slot);
}

TEST(PlatformMemory, KeepsItsContentsWhereHugePagesAreAdvised) {
  constexpr std::size_t kBytes = std::size_t{8} << 20U;
  std::vector<unsigned char> block(kBytes, 170);

  for (const std::size_t offset : {0, 1, 4095, 4096}) {
    System().adviseHugePages(block.data() + offset, kBytes - offset - 3);
  }

  EXPECT_EQ(std::vector<unsigned char>(kBytes, 170), block);
}

TEST(PlatformLock, IsRecursiveAndKeepsOthersOut) {
  void* lock = System().allocate(System().lockBytes);
  System().initializeLock(lock);
  int counted = 0;  // plain: the lock is what orders it
  const auto count = [&] {
    for (int i = 0; i < 1000; ++i) {
      System().enterLock(lock);
      System().enterLock(lock);
      ++counted;
      System().leaveLock(lock);
      System().leaveLock(lock);
    }
  };
  {
    const Thread thread(count);
    count();
  }
  EXPECT_EQ(2000, counted);
  System().destroyLock(lock);
  System().release(lock);
}

TEST(PlatformFloatControl, IsTheCallingThreadsAlone) {
  if (kFlushingBits == 0) {
    GTEST_SKIP() << "a processor without a word to change";
  }
  const std::uint32_t before = System().floatControl();
  std::atomic<std::uint32_t> inside{0};
  {
    const Thread thread([&] {
      System().setFloatControl(before ^ kFlushingBits);
      inside = System().floatControl();
    });
  }
  EXPECT_NE(before, inside);
  EXPECT_EQ(before, System().floatControl());
}

TEST(PlatformFloatControl, FlushesDenormalsWhereItIsToldTo) {
  if (kFlushingBits == 0) {
    GTEST_SKIP() << "a processor without a word to change";
  }
  const std::uint32_t before = System().floatControl();
  volatile double tiny = 1e-300;
  System().setFloatControl(before | kFlushingBits);
  const double flushed = tiny * 1e-10;
  System().setFloatControl(before);
  const double kept = tiny * 1e-10;
  EXPECT_EQ(0.0, flushed);
  EXPECT_NE(0.0, kept);
}

TEST(PlatformCounter, CountsUpAtItsFrequency) {
  EXPECT_GT(System().counterFrequency(), 0);
  const std::int64_t before = System().counter();
  EXPECT_GE(System().counter(), before);
}

TEST(PlatformTicks, CountMilliseconds) {
  // From one change to another, since some counters step by 16 and are late on a busy machine.
  const std::uint32_t before = System().tickCount();
  std::uint32_t first = before;
  while (first == before) {
    first = System().tickCount();
  }
  const std::int64_t start = System().counter();
  std::uint32_t passed = 0;
  while (passed < 64) {
    passed = System().tickCount() - first;
  }
  const std::int64_t milliseconds =
      (System().counter() - start) * 1000 / System().counterFrequency();

  // What is late is late by less than this; another unit is a thousand times off.
  constexpr std::int64_t kLate = 8;
  EXPECT_LE(milliseconds, passed * kLate);
  EXPECT_LE(passed, milliseconds * kLate);
}

void Write(const fs::path& path, const char* text) {
  std::FILE* file = System().openFile(path.string().c_str(), "w+");
  std::fputs(text, file);
  EXPECT_TRUE(System().closeFile(file));
}

std::string Read(const fs::path& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(PlatformFile, TakesThePlaceOfAnotherWhenItIsMoved) {
  const lx_test::ScratchFolder folder;
  Write(folder / "new", "new");
  Write(folder / "old", "an older one");

  EXPECT_TRUE(
      System().moveFile((folder / "new").string().c_str(), (folder / "old").string().c_str()));

  EXPECT_EQ("new", Read(folder / "old"));
  EXPECT_EQ(1, folder.FileCount());
}

TEST(PlatformFile, StaysWhereItIsWhenItCannotBeMoved) {
  const lx_test::ScratchFolder folder;
  Write(folder / "new", "new");

  EXPECT_FALSE(
      System().moveFile((folder / "new").string().c_str(), (folder / "no/old").string().c_str()));

  EXPECT_EQ("new", Read(folder / "new"));
}

TEST(PlatformFile, IsNotReplacedWhereItIsProtected) {
  const lx_test::ScratchFolder folder;
  Write(folder / "new", "new");
  Write(folder / "old", "an older one");
  ASSERT_TRUE(System().setWritable((folder / "old").string().c_str(), false));

  EXPECT_FALSE(
      System().moveFile((folder / "new").string().c_str(), (folder / "old").string().c_str()));

  EXPECT_EQ("an older one", Read(folder / "old"));
  System().setWritable((folder / "old").string().c_str(), true);
}

TEST(PlatformFile, IsGoneWhenItIsRemoved) {
  const lx_test::ScratchFolder folder;
  Write(folder / "file", "x");

  System().removeFile((folder / "file").string().c_str());

  EXPECT_EQ(0, folder.FileCount());
}

TEST(PlatformFile, IsNullWhereItCannotBeOpened) {
  const lx_test::ScratchFolder folder;

  EXPECT_EQ(nullptr, System().openFile((folder / "none").string().c_str(), "r"));
  EXPECT_EQ(nullptr, System().openFile((folder / "no/file").string().c_str(), "w+"));
}

TEST(PlatformFile, SaysAtTheEndThatSomethingWasNotWritten) {
  const lx_test::ScratchFolder folder;
  Write(folder / "file", "old");
  std::FILE* file = System().openFile((folder / "file").string().c_str(), "r");
  ASSERT_NE(nullptr, file);
  std::fputs("x", file);

  EXPECT_FALSE(System().closeFile(file));
}

TEST(PlatformError, IsTheCallingThreadsLast) {
  lx_test::RaiseError(lx_test::kNoSuchFile);
  EXPECT_EQ(lx_test::kNoSuchFile, System().lastError());
}

TEST(PlatformError, HasTheSystemsTextCutToTheBuffer) {
  const std::string whole = lx_test::SystemText(lx_test::kNoSuchFile);
  char text[256];
  System().errorText(lx_test::kNoSuchFile, text, sizeof text);
  EXPECT_EQ(whole, text);
  char narrow[5];
  System().errorText(lx_test::kNoSuchFile, narrow, sizeof narrow);
  EXPECT_EQ(whole.substr(0, 4), narrow);
}

}  // namespace
