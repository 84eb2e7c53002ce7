// SPDX-License-Identifier: BSD-3-Clause
// The debug console, as a real one.
#define WIN32_LEAN_AND_MEAN
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <string>

#include "baselib/utils/console.h"
#include "baselib/winbits/console_title.h"
#include "tests/support/fresh_services.h"

namespace {

// A process as a host with windows of its own starts it: without a console, and without a
// standard output. Both come back as they were, but for a console of the test's own.
class RealConsole : public testing::Test {
 public:
  RealConsole() {
    FreeConsole();
    SetStdHandle(STD_OUTPUT_HANDLE, nullptr);
  }
  ~RealConsole() override {
    FreeConsole();
    SetStdHandle(STD_INPUT_HANDLE, input_);
    SetStdHandle(STD_OUTPUT_HANDLE, output_);
    SetStdHandle(STD_ERROR_HANDLE, error_);
  }

 private:
  const HANDLE input_ = GetStdHandle(STD_INPUT_HANDLE);
  const HANDLE output_ = GetStdHandle(STD_OUTPUT_HANDLE);
  const HANDLE error_ = GetStdHandle(STD_ERROR_HANDLE);
  lx_test::FreshServices fresh_;
};

// The beginning of a row of what the console shows.
std::string Shown(SHORT row, DWORD length) {
  const HANDLE screen =
      CreateFileA("CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  nullptr, OPEN_EXISTING, 0, nullptr);
  std::string text(length, '?');
  DWORD read = 0;
  ReadConsoleOutputCharacterA(screen, text.data(), length, {0, row}, &read);
  CloseHandle(screen);
  return text.substr(0, read);
}

TEST_F(RealConsole, ComesWithItsTitleAndShowsTheText) {
  ASSERT_FALSE(lx::has_console_title());

  EXPECT_TRUE(lx::console_write("first line\n"));
  lx::console_print("%s %d\n", "line", 2);

  EXPECT_TRUE(lx::has_console_title());
  char title[128] = {};
  GetConsoleTitleA(title, sizeof title);
  EXPECT_STREQ("Vantrell Debug", title);
  EXPECT_EQ("first line ", Shown(0, 11));
  EXPECT_EQ("line 2 ", Shown(1, 7));
}

TEST_F(RealConsole, GoesAboveAllOtherWindowsAsSoonAsItIsThere) {
  while (!lx::console_state().isTopmost) {
    ASSERT_TRUE(lx::console_write("x"));
  }

  const HWND window = FindWindowA(nullptr, "Vantrell Debug");
  ASSERT_NE(nullptr, window);
  EXPECT_NE(0, GetWindowLongA(window, GWL_EXSTYLE) & WS_EX_TOPMOST);
}

// Handlers are asked in the order opposite to that of their coming.
std::atomic<bool> reachedTheOldest;
std::atomic<HANDLE> asked;

BOOL WINAPI Oldest(DWORD /*event*/) {
  reachedTheOldest = true;
  return TRUE;
}

BOOL WINAPI Youngest(DWORD /*event*/) {
  asked = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId());
  return FALSE;
}

TEST_F(RealConsole, KeepsTheProcessRunningWhenItIsInterrupted) {
  reachedTheOldest = false;
  asked = nullptr;
  SetConsoleCtrlHandler(Oldest, TRUE);
  ASSERT_TRUE(lx::console_write("x"));
  SetConsoleCtrlHandler(Youngest, TRUE);

  ASSERT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
  while (asked == nullptr) {
    SwitchToThread();
  }
  WaitForSingleObject(asked, INFINITE);

  EXPECT_FALSE(reachedTheOldest);
  CloseHandle(asked);
  SetConsoleCtrlHandler(Youngest, FALSE);
  SetConsoleCtrlHandler(Oldest, FALSE);
}

}  // namespace
