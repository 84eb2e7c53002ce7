// SPDX-License-Identifier: BSD-3-Clause
// Progress where somebody watches: on a terminal of the test's own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "host/support/progress.h"

namespace {

using glimmerhost::Progress;

// What a terminal does for this: back to the first column, and the rest of the line away.
const std::string kClear = "\r\033[K";

// Stands in for stderr from construction until the end.
class Terminal {
 public:
  Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY)), stderr_(dup(STDERR_FILENO)) {
    if (screen_ < 0 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
      return;
    }
    const int line = open(ptsname(screen_), O_RDWR | O_NOCTTY);
    termios mode{};
    // As it is written: else the terminal would make two bytes of a line's end.
    isOpen_ = line >= 0 && tcgetattr(line, &mode) == 0;
    cfmakeraw(&mode);
    isOpen_ = isOpen_ && tcsetattr(line, TCSANOW, &mode) == 0 && dup2(line, STDERR_FILENO) >= 0;
    close(line);
  }
  ~Terminal() {
    dup2(stderr_, STDERR_FILENO);
    close(stderr_);
    close(screen_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  bool IsOpen() const { return isOpen_; }

  // What was written since the last look. The system hands it over when it likes, so the end of it
  // is marked.
  std::string Text() const {
    constexpr char kEnd = '\4';
    std::cerr << kEnd << std::flush;
    std::string text;
    char c = 0;
    while (read(screen_, &c, 1) == 1 && c != kEnd) {
      text += c;
    }
    return text;
  }

 private:
  int screen_;
  int stderr_;
  bool isOpen_ = false;
};

class ProgressOnATerminal : public testing::Test {
 public:
  void SetUp() override { ASSERT_TRUE(terminal.IsOpen()); }

  Terminal terminal;
};

TEST_F(ProgressOnATerminal, ReplacesItsLine) {
  Progress progress(true);
  progress.Show("Reading a.png");
  progress.Show("Rendering");

  EXPECT_EQ(kClear + "Reading a.png ..." + kClear + "Rendering ...", terminal.Text());
}

TEST_F(ProgressOnATerminal, PutsAWarningInThePlaceOfItsLine) {
  Progress progress(true);
  progress.Show("Reading");
  progress.Warn("odd");
  progress.Warn("odder");

  EXPECT_EQ(kClear + "Reading ..." + kClear + "glimmerhost: odd\nglimmerhost: odder\n",
            terminal.Text());
}

TEST_F(ProgressOnATerminal, TakesAnUnfinishedLineAwayOnce) {
  {
    Progress progress(true);
    progress.Show("Reading");
    progress.Clear();
    EXPECT_EQ(kClear + "Reading ..." + kClear, terminal.Text());
  }
  EXPECT_EQ("", terminal.Text());
}

// An error of the program follows at the beginning of the line.
TEST_F(ProgressOnATerminal, LeavesNoUnfinishedLine) {
  {
    Progress progress(true);
    progress.Show("Reading");
    (void)terminal.Text();
  }
  EXPECT_EQ(kClear, terminal.Text());
}

TEST_F(ProgressOnATerminal, EndsWithALineThatStays) {
  {
    Progress progress(true);
    progress.Show("Rendering");
    (void)terminal.Text();
    progress.Finish("a.png");
  }

  const std::string text = terminal.Text();
  EXPECT_EQ(0U, text.find(kClear + "a.png, ")) << text;
  EXPECT_EQ(text.size() - 3, text.find(" s\n")) << text;
}

TEST_F(ProgressOnATerminal, IsQuietIfToldTo) {
  {
    Progress progress(false);
    progress.Show("Rendering");
    progress.Finish("a.png");
  }

  EXPECT_EQ("", terminal.Text());
}

}  // namespace
