// SPDX-License-Identifier: BSD-3-Clause
// The platform's promises, held against what the system itself says.
#define WIN32_LEAN_AND_MEAN
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include "baselib/platform/platform.h"
#include "baselib/threads/last_error.h"
#include "baselib/threads/module_state.h"
#include "baselib/threads/pool.h"
#include "tests/support/fresh_services.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system.h"

namespace {

const lx::Platform& System() { return lx::SystemPlatform(); }

TEST(WindowsPriority, IsTheThreadsOwn) {
  std::thread([] {
    for (const int priority : {THREAD_PRIORITY_IDLE, THREAD_PRIORITY_BELOW_NORMAL,
                               THREAD_PRIORITY_HIGHEST, THREAD_PRIORITY_NORMAL}) {
      EXPECT_TRUE(System().setThreadPriority(System().currentThread(), priority));
      EXPECT_EQ(priority, GetThreadPriority(GetCurrentThread()));
      EXPECT_EQ(priority, System().threadPriority(System().currentThread()));
    }
  }).join();
}

TEST(WindowsPriority, IsRefusedWithAnErrorWhereItIsNone) {
  SetLastError(0);
  EXPECT_FALSE(System().setThreadPriority(System().currentThread(), 12345));
  EXPECT_NE(0U, System().lastError());
}

TEST(WindowsPriority, BoostIsSwitchedOffAndOnAgain) {
  std::thread([] {
    BOOL afterOff = FALSE;
    BOOL afterOn = FALSE;
    EXPECT_TRUE(System().setThreadPriorityBoost(System().currentThread(), true));
    GetThreadPriorityBoost(GetCurrentThread(), &afterOff);
    EXPECT_TRUE(System().setThreadPriorityBoost(System().currentThread(), false));
    GetThreadPriorityBoost(GetCurrentThread(), &afterOn);
    if (afterOff == afterOn) {
      GTEST_SKIP() << "no boosting here";
    }
    EXPECT_TRUE(afterOff);
    EXPECT_FALSE(afterOn);
  }).join();
}

TEST(WindowsThreadSlot, IsTheSystems) {
  const std::uint32_t slot = System().allocateThreadSlot();
  int word = 0;
  EXPECT_TRUE(System().setThreadSlot(slot, &word));
  EXPECT_EQ(&word, TlsGetValue(slot));
  System().releaseThreadSlot(slot);
}

TEST(WindowsThreadSlot, IsRefusedWithAnErrorWhereNoneWasGiven) {
  SetLastError(0);
  EXPECT_FALSE(System().setThreadSlot(lx::kNoThreadSlot, nullptr));
  EXPECT_EQ(static_cast<std::uint32_t>(ERROR_INVALID_PARAMETER), System().lastError());
}

TEST(WindowsEvent, IsResetByHandAlone) {
  lx::EventHandle event = System().createEvent();
  EXPECT_EQ(DWORD{WAIT_TIMEOUT}, WaitForSingleObject(event, 0));
  System().setEvent(event);
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
  System().resetEvent(event);
  EXPECT_EQ(DWORD{WAIT_TIMEOUT}, WaitForSingleObject(event, 0));
  System().destroyEvent(event);
}

TEST(WindowsLock, IsACriticalSection) {
  CRITICAL_SECTION section;
  ASSERT_EQ(sizeof section, System().lockBytes);
  System().initializeLock(&section);
  System().enterLock(&section);
  BOOL entered = TRUE;
  std::thread([&] { entered = TryEnterCriticalSection(&section); }).join();
  EXPECT_EQ(FALSE, entered);
  System().leaveLock(&section);
  std::thread([&] {
    entered = TryEnterCriticalSection(&section);
    LeaveCriticalSection(&section);
  }).join();
  EXPECT_EQ(TRUE, entered);
  System().destroyLock(&section);
}

TEST(WindowsThread, HasTheIdThatTheSystemGaveIt) {
  static DWORD inside = 0;
  std::uint32_t id = 0;
  lx::ThreadHandle thread = System().beginThread(
      0x100000,
      [](void*) {
        inside = GetCurrentThreadId();
        System().endThread(0);
        return std::uint32_t{0};
      },
      nullptr, 0, &id);
  ASSERT_NE(nullptr, thread);
  EXPECT_TRUE(System().closeThread(thread));
  EXPECT_EQ(inside, id);
}

// More than a program's threads have by themselves.
TEST(WindowsThread, HasTheStackThatItWasGiven) {
  static std::size_t bytes = 0;
  std::uint32_t id = 0;
  lx::ThreadHandle thread = System().beginThread(
      0x800000,
      [](void*) {
        ULONG_PTR low = 0;
        ULONG_PTR high = 0;
        GetCurrentThreadStackLimits(&low, &high);
        bytes = high - low;
        System().endThread(0);
        return std::uint32_t{0};
      },
      nullptr, 0, &id);
  ASSERT_NE(nullptr, thread);
  System().closeThread(thread);
  EXPECT_LE(std::size_t{0x800000}, bytes);
}

// As all threads but one have been when a process ends and its libraries are told so.
TEST(WindowsThread, CountsAsTerminatedWhereTheSystemHasEndedItAtItsWork) {
  static std::atomic<bool> atWork;
  atWork = false;
  std::uint32_t id = 0;
  lx::ThreadHandle thread = System().beginThread(
      0x100000,
      [](void*) {
        atWork = true;
        while (atWork) {
        }
        return std::uint32_t{0};
      },
      nullptr, 0, &id);
  ASSERT_NE(nullptr, thread);
  while (!atWork) {
  }
  const HANDLE handle = OpenThread(THREAD_TERMINATE | SYNCHRONIZE, FALSE, id);
  TerminateThread(handle, 0);
  WaitForSingleObject(handle, INFINITE);
  CloseHandle(handle);

  EXPECT_TRUE(System().terminateThread(thread, 0));
  EXPECT_TRUE(System().closeThread(thread));
}

// The pool fixes the word on a thread whose x87 precision may differ from a new thread's.
TEST(WindowsPool, RunsItsWorkersAtIdlePriorityWithTheSavedWord) {
  const lx_test::FreshServices fresh;
  lx::Platform two = System();
  two.processorCount = [] { return 2; };
  const lx::ScopedPlatform scope(&two);
  static std::uint32_t words[2];
  static int priorities[2];
  lx::mp_num_ways();

  lx::mp_run(
      [](lx::PoolWord, lx::PoolWord, lx::PoolWord, lx::PoolWord, lx::PoolWord, lx::PoolWord) {
        words[lx::mp_worker_index()] = System().floatControl();
        priorities[lx::mp_worker_index()] = GetThreadPriority(GetCurrentThread());
        return 0;
      },
      0, 0, 0, 0, 0, 0);
  lx_test::ForgetServices();

  EXPECT_EQ(words[0], words[1]);
  EXPECT_EQ(THREAD_PRIORITY_NORMAL, priorities[0]);
  EXPECT_EQ(THREAD_PRIORITY_IDLE, priorities[1]);
}

TEST(WindowsError, TextIsTheSystemsWithItsReturnAndItsPercentSign) {
  char text[256];
  System().errorText(ERROR_BAD_EXE_FORMAT, text, sizeof text);

  EXPECT_EQ(lx_test::SystemText(ERROR_BAD_EXE_FORMAT), text);
  EXPECT_NE(nullptr, std::strstr(text, "%1"));
  EXPECT_STREQ("\r\n", text + std::strlen(text) - 2);
}

TEST(WindowsError, TextWithoutItsLineFeedKeepsItsReturn) {
  SetLastError(ERROR_ACCESS_DENIED);
  const std::string text = lx::last_error_text();

  ASSERT_FALSE(text.empty());
  EXPECT_EQ('\r', text.back());
  EXPECT_EQ(lx_test::SystemText(ERROR_ACCESS_DENIED), text + "\n");
}

TEST(WindowsError, WithoutATextIsEmpty) {
  constexpr std::uint32_t kOfAProgram = 0x2FFFFFFF;
  char text[16] = "before";
  System().errorText(kOfAProgram, text, sizeof text);
  EXPECT_STREQ("", text);
}

TEST(WindowsEnvironment, KnowsEmptyVariables) {
  EXPECT_FALSE(System().hasEnvironmentVariable("LX_A_VARIABLE"));
  lx_test::SetVariable("LX_A_VARIABLE", "");
  EXPECT_TRUE(System().hasEnvironmentVariable("LX_A_VARIABLE"));
  lx_test::SetVariable("LX_A_VARIABLE", "x");
  EXPECT_TRUE(System().hasEnvironmentVariable("LX_A_VARIABLE"));
  lx_test::RemoveVariable("LX_A_VARIABLE");
  EXPECT_FALSE(System().hasEnvironmentVariable("LX_A_VARIABLE"));
}

TEST(WindowsMachine, HasTheProcessorsAndPagesOfTheSystem) {
  EXPECT_EQ(4096, System().pageSize());
  const DWORD active = GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
  if (active == 0) {
    GTEST_SKIP() << "a system that does not count the active ones";
  }
  EXPECT_EQ(static_cast<std::int32_t>(active), System().processorCount());
}

TEST(WindowsFile, MadeReadOnlyHasThatAttribute) {
  const lx_test::ScratchFolder folder;
  const std::string file = (folder / "file").string();
  std::ofstream(file) << "x";

  EXPECT_TRUE(System().setWritable(file.c_str(), false));
  EXPECT_NE(0U, GetFileAttributesA(file.c_str()) & FILE_ATTRIBUTE_READONLY);
  EXPECT_TRUE(System().setWritable(file.c_str(), true));
  EXPECT_EQ(0U, GetFileAttributesA(file.c_str()) & FILE_ATTRIBUTE_READONLY);
}

}  // namespace
