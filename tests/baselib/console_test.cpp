// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/console.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/utils/log.h"
#include "baselib/utils/log_sink.h"
#include "baselib/winbits/console_title.h"
#include "tests/support/fresh_services.h"

namespace {

using Calls = std::vector<std::string>;

// A console of a window system, recorded.
class Console : public testing::Test {
 public:
  Console() : table_(lx::SystemPlatform()), scope_(&table_) {
    calls = {};
    keepsOnBreak = true;
    hasOutput = true;
    windowIsThere = true;
    hasTitle = false;
    table_.consoleHasTitle = [] { return hasTitle; };
    table_.consoleCreate = [] { calls.emplace_back("create"); };
    table_.consoleIgnoreBreak = [] {
      calls.emplace_back("ignore break");
      return keepsOnBreak;
    };
    table_.consoleSetTitle = [](const char* title) {
      calls.push_back(std::string("title ") + title);
    };
    table_.sleep = [](std::uint32_t time) { calls.push_back("sleep " + std::to_string(time)); };
    table_.consoleOutput = []() -> void* {
      calls.emplace_back("output");
      return hasOutput ? &hasOutput : nullptr;
    };
    table_.consoleRaise = [](const char* title) {
      calls.push_back(std::string("raise ") + title);
      return windowIsThere;
    };
    table_.consoleWrite = [](void* output, const char* text) {
      calls.push_back((output == &hasOutput ? "write " : "write elsewhere ") + std::string(text));
    };
  }

  static Calls Taken() { return std::exchange(calls, {}); }

  static inline Calls calls;
  static inline bool keepsOnBreak;
  static inline bool hasOutput;
  static inline bool windowIsThere;
  static inline bool hasTitle;

 private:
  lx_test::FreshServices fresh_;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

const Calls kCreation = {"create", "ignore break", "title Vantrell Debug", "sleep 40", "output"};

Calls operator+(Calls a, const Calls& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST_F(Console, ComesWithItsFirstLine) {
  EXPECT_TRUE(lx::console_write("one"));
  EXPECT_EQ(kCreation + Calls({"raise Vantrell Debug", "write one"}), Taken());

  EXPECT_TRUE(lx::console_write("two"));
  EXPECT_EQ(Calls{"write two"}, Taken());
}

TEST_F(Console, LooksForItsWindowUntilItIsThere) {
  windowIsThere = false;
  lx::console_write("one");
  Taken();

  lx::console_write("two");
  EXPECT_EQ((Calls{"raise Vantrell Debug", "write two"}), Taken());
  windowIsThere = true;
  lx::console_write("three");
  Taken();
  lx::console_write("four");
  EXPECT_EQ(Calls{"write four"}, Taken());
}

TEST_F(Console, LosesWhatItHasToSayOfItsOwnMaking) {
  keepsOnBreak = false;

  EXPECT_TRUE(lx::console_write("one"));

  EXPECT_EQ(kCreation + Calls({"raise Vantrell Debug", "write one"}), Taken());
}

TEST_F(Console, IsMadeAgainWhereThereWasNothingToWriteTo) {
  hasOutput = false;
  EXPECT_FALSE(lx::console_write("one"));
  EXPECT_EQ(kCreation, Taken());

  hasOutput = true;
  EXPECT_TRUE(lx::console_write("two"));
  EXPECT_EQ(kCreation + Calls({"raise Vantrell Debug", "write two"}), Taken());
}

TEST_F(Console, PrintsAtMost1023Characters) {
  lx::console_write("first");
  Taken();

  lx::console_print("%d%s", 5, std::string(5000, 'a').c_str());

  EXPECT_EQ(Calls{"write 5" + std::string(1022, 'a')}, Taken());
}

TEST_F(Console, LogsIntoTheLogsFileFirst) {
  std::FILE* file = std::tmpfile();
  lx::log_sink().stream = file;
  lx::console_log("into the console alone");
  EXPECT_EQ(0, std::ftell(file));
  lx::log_sink().isFile = true;
  Taken();

  lx::console_log("number %d", 7);

  EXPECT_EQ(Calls{"write number 7"}, Taken());
  std::rewind(file);
  char line[64] = {};
  EXPECT_NE(nullptr, std::fgets(line, sizeof line, file));
  EXPECT_STREQ("CONSOLE LOG:number 7", line);
  std::fclose(file);
  lx::log_sink().stream = nullptr;
}

TEST_F(Console, MirrorsTheLogByItsSwitches) {
  struct Case {
    bool mirror;
    bool hasConsole;
    bool always;
    bool shows;
  };
  for (const Case& c : {Case{false, false, false, false}, Case{false, false, true, false},
                        Case{false, true, true, false}, Case{true, false, false, true},
                        Case{true, false, true, true}, Case{true, true, false, false},
                        Case{true, true, true, true}}) {
    lx_test::ForgetServices();
    lx::LogSink& log = lx::log_sink();
    log.mirror = c.mirror;
    log.hasConsole = c.hasConsole;
    log.mirrorAlways = c.always;
    Taken();
    testing::internal::CaptureStderr();

    lx::log_message(lx::kLogInfo, "text");
    lx::log_continue("more");

    const std::string written = testing::internal::GetCapturedStderr();
    Calls shown;
    for (const std::string& call : Taken()) {
      if (call.rfind("write ", 0) == 0) {
        shown.push_back(call.substr(6));
      }
    }
    const std::size_t end = written.find('\n') + 1;
    EXPECT_EQ(c.shows ? Calls({written.substr(0, end), written.substr(end)}) : Calls{}, shown);
  }
}

TEST_F(Console, IsKnownByItsTitle) {
  EXPECT_FALSE(lx::has_console_title());
  hasTitle = true;
  EXPECT_TRUE(lx::has_console_title());
  EXPECT_TRUE(lx::LogSink().hasConsole);
}

}  // namespace
