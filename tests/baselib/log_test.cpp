// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/log.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/utils/log_sink.h"
#include "tests/support/fresh_services.h"
#include "tests/support/logged_lines.h"

namespace {

using lx_test::LoggedLines;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

// A platform whose clocks a test sets, with a fresh log on both sides.
class Log : public testing::Test {
 public:
  Log() : table_(lx::SystemPlatform()), scope_(&table_) {
    counter = 1000 * kHundredths;
    daySeconds = 0.0;
    wallClockReadings = 0;
    table_.counter = [] { return counter; };
    table_.counterFrequency = [] { return kHundredths; };
    table_.localDaySeconds = [] {
      ++wallClockReadings;
      return daySeconds;
    };
    CaptureStderr();
  }
  ~Log() override { (void)GetCapturedStderr(); }

  // What was written since the last look.
  static std::string Written() {
    std::string text = GetCapturedStderr();
    CaptureStderr();
    return text;
  }

  static std::string WrittenAt(double seconds) {
    lx_test::ForgetServices();
    daySeconds = seconds;
    lx::log_message(lx::kLogInfo, "x");
    return Written();
  }

  static constexpr std::int64_t kHundredths = 100;  // the counter's, in a second
  static inline std::int64_t counter;
  static inline double daySeconds;
  static inline int wallClockReadings;

 private:
  lx_test::FreshServices fresh_;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

TEST_F(Log, WritesPrefixTimeLevelAndText) {
  daySeconds = (14 * 60 + 3) * 60 + 7;
  lx::log_message(lx::kLogInfo, "first");
  counter += 25;

  lx::log_message(lx::kLogWarn, "MP: Can't set idle priority: %s", "access denied");

  EXPECT_EQ(
      "(LX LIB) 14:03:07.00 INFO : first\n"
      "(LX LIB) 14:03:07.25 WARN : MP: Can't set idle priority: access denied\n",
      Written());
}

TEST_F(Log, LinesAContinuationUpUnderTheText) {
  lx::log_message(lx::kLogError, "above");
  Written();

  lx::log_continue("            Alloc at [%s(%d)], size %d", "utils", 412, 16);

  EXPECT_EQ("(LX LIB)                  :             Alloc at [utils(412)], size 16\n", Written());
}

TEST_F(Log, NamesEachLevelInFiveLetters) {
  lx::log_sink().threshold = 5;

  for (int level = 1; level <= 5; ++level) {
    lx::log_message(level, "x");
  }

  EXPECT_EQ(
      "(LX LIB) 00:00:00.00 ERROR: x\n"
      "(LX LIB) 00:00:00.00 WARN : x\n"
      "(LX LIB) 00:00:00.00 INFO : x\n"
      "(LX LIB) 00:00:00.00 DEBUG: x\n"
      "(LX LIB) 00:00:00.00 TRACE: x\n",
      Written());
}

TEST_F(Log, EndsEveryLineOnce) {
  lx::log_message(lx::kLogWarn, "abc");
  const std::string without = Written();
  lx::log_message(lx::kLogWarn, "abc\n");

  EXPECT_EQ(without, Written());
  EXPECT_EQ("(LX LIB) 00:00:00.00 WARN : abc\n", without);
}

TEST_F(Log, WritesAnEmptyTextAsALine) {
  lx::log_message(lx::kLogInfo, "%s", "");

  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : \n", Written());
}

TEST_F(Log, DropsWhatIsBelowErrorAndAboveInfo) {
  EXPECT_EQ(1, lx::log_message(lx::kLogError, "x"));
  Written();
  for (const int level : {0, -1, 4, 5, 6, 9, 1 << 30}) {
    EXPECT_EQ(0, lx::log_message(level, "x")) << level;
  }

  EXPECT_EQ("", Written());
  EXPECT_EQ(1, lx::log_sink().lastLevel);
}

TEST_F(Log, TakesLevelsBeyondTraceForTrace) {
  lx::log_sink().threshold = 5;

  lx::log_message(9, "x");

  EXPECT_EQ("(LX LIB) 00:00:00.00 TRACE: x\n", Written());
  EXPECT_EQ(5, lx::log_sink().lastLevel);
}

TEST_F(Log, WritesUpToItsThreshold) {
  for (int threshold = 0; threshold <= 5; ++threshold) {
    lx::log_sink().threshold = threshold;
    for (int level = 1; level <= 5; ++level) {
      EXPECT_EQ(level <= threshold ? 1 : 0, lx::log_message(level, "x"));
    }
    Written();
  }
}

TEST_F(Log, IsSilentBelowAThresholdOfNought) {
  lx::log_message(lx::kLogError, "x");
  Written();
  lx::log_sink().threshold = -1;

  EXPECT_EQ(-1, lx::log_message(lx::kLogError, "x"));
  lx::log_continue("x");

  EXPECT_EQ("", Written());
}

TEST_F(Log, ContinuesNothingBeforeAMessageWasWritten) {
  lx::log_message(lx::kLogDebug, "dropped");
  lx::log_continue("and more");

  EXPECT_EQ("", Written());
}

TEST_F(Log, ContinuesBehindADroppedMessageToo) {
  lx::log_message(lx::kLogError, "first");
  lx::log_message(lx::kLogTrace, "dropped");
  Written();

  lx::log_continue("and %s", "more");
  lx::log_continue("and more");

  EXPECT_EQ("(LX LIB)                  : and more\n(LX LIB)                  : and more\n",
            Written());
  EXPECT_EQ(1, lx::log_sink().lastLevel);
}

TEST_F(Log, ContinuesNothingAboveItsThreshold) {
  lx::log_message(lx::kLogInfo, "x");
  Written();
  lx::log_sink().threshold = 2;

  lx::log_continue("x");

  EXPECT_EQ("", Written());
}

TEST_F(Log, FormatsTheTextASecondTime) {
  lx::log_message(lx::kLogInfo, "%s", "50%%");
  lx::log_message(lx::kLogInfo, "%%%%");
  lx::log_message(lx::kLogInfo, "%s %s %s", "%1", "%s", "100%");
  lx::log_continue("%s", "%%d%%");

  EXPECT_EQ(
      "(LX LIB) 00:00:00.00 INFO : 50%\n"
      "(LX LIB) 00:00:00.00 INFO : %\n"
      "(LX LIB) 00:00:00.00 INFO : %1 %s 100%\n"
      "(LX LIB)                  : %d%\n",
      Written());
}

TEST_F(Log, CutsAnOverlongTextAndStillEndsItsLine) {
  lx::log_message(lx::kLogInfo, "%s", std::string(10000, 'a').c_str());
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : " + std::string(4094, 'a') + "\n", Written());

  lx::log_message(lx::kLogInfo, "%s", std::string(4095, 'b').c_str());
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : " + std::string(4094, 'b') + "\n", Written());

  lx::log_message(lx::kLogInfo, "%s", std::string(4094, 'c').c_str());
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : " + std::string(4094, 'c') + "\n", Written());

  lx::log_message(lx::kLogInfo, "%s", std::string(10000, '%').c_str());
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : " + std::string(2048, '%') + "\n", Written());
}

TEST_F(Log, ReadsTheWallClockOnce) {
  lx::log_message(lx::kLogInfo, "x");
  daySeconds = 50000.0;
  counter += 6150;
  lx::log_message(lx::kLogInfo, "x");
  lx::log_message(lx::kLogDebug, "dropped");

  EXPECT_EQ(1, wallClockReadings);
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : x\n(LX LIB) 00:01:01.50 INFO : x\n", Written());
}

TEST_F(Log, ReadsTheWallClockAgainWhereTheCounterGoesBack) {
  lx::log_message(lx::kLogInfo, "x");
  daySeconds = 3600.0;
  counter -= 1;

  lx::log_message(lx::kLogInfo, "x");

  EXPECT_EQ(2, wallClockReadings);
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : x\n(LX LIB) 01:00:00.00 INFO : x\n", Written());
}

TEST_F(Log, BeginsANewDayAtMidnight) {
  EXPECT_EQ("(LX LIB) 23:59:59.50 INFO : x\n", WrittenAt(86399.5));
  EXPECT_EQ("(LX LIB) 00:00:00.00 INFO : x\n", WrittenAt(86400.0));
  EXPECT_EQ("(LX LIB) 00:00:00.50 INFO : x\n", WrittenAt(86400.5));
  EXPECT_EQ("(LX LIB) 00:00:01.00 INFO : x\n", WrittenAt(10.0 * 86400.0 + 1.0));
}

TEST_F(Log, RoundsSecondsUpToSixty) {
  EXPECT_EQ("(LX LIB) 00:00:60.00 INFO : x\n", WrittenAt(59.996));
}

TEST_F(Log, WritesNothingToTheStandardOutput) {
  CaptureStdout();

  lx::log_message(lx::kLogError, "x");

  EXPECT_EQ("", GetCapturedStdout());
}

TEST_F(Log, TakesTheStandardErrorStreamAtItsFirstMessage) {
  EXPECT_EQ(nullptr, lx::log_sink().stream);
  lx::log_message(lx::kLogTrace, "dropped");

  EXPECT_EQ(stderr, lx::log_sink().stream);
}

TEST_F(Log, KeepsTheStreamThatItWasGiven) {
  std::FILE* file = std::tmpfile();
  lx::log_sink().stream = file;

  lx::log_message(lx::kLogInfo, "x");

  EXPECT_EQ("", Written());
  EXPECT_LT(0, std::ftell(file));
  std::fclose(file);
  lx::log_sink().stream = nullptr;
}

TEST_F(Log, KeepsLinesWholeOnManyThreads) {
  constexpr int kThreads = 8;
  constexpr int kLines = 200;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < kLines; ++i) {
        lx::log_message(lx::kLogInfo, "thread %d", t);
        lx::log_continue("continues");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  std::istringstream in(LoggedLines());
  CaptureStderr();
  std::map<std::string, int> counts;
  for (std::string text; std::getline(in, text);) {
    ++counts[text];
  }
  std::map<std::string, int> expected;
  for (int t = 0; t < kThreads; ++t) {
    expected["(LX LIB) INFO : thread " + std::to_string(t)] = kLines;
  }
  expected["(LX LIB)                  : continues"] = kThreads * kLines;
  EXPECT_EQ(expected, counts);
}

TEST(LogTime, IsTheLocalTimeOfTheDay) {
  const lx_test::FreshServices fresh;
  const double seconds = lx::SystemPlatform().localDaySeconds();

  EXPECT_LE(0.0, seconds);
  EXPECT_GT(86401.0, seconds);
  CaptureStderr();
  lx::log_message(lx::kLogError, "x");
  EXPECT_EQ("(LX LIB) ERROR: x\n", LoggedLines());
}

}  // namespace
