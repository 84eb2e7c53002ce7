// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/shell_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using glimmerhost::ShellLine;
using glimmerhost::ShellWord;

TEST(ShellText, LeavesPlainWordsAsTheyAre) {
  EXPECT_EQ("--frames=1-10,20", ShellWord("--frames=1-10,20"));
  EXPECT_EQ("/shots/a_b.%04d.exr", ShellWord("/shots/a_b.%04d.exr"));
}

TEST(ShellText, QuotesWhatTheShellWouldTakeApart) {
  struct {
    const char* text;
    const char* word;
  } const cases[] = {
      {"", "''"},
      {"a b", "'a b'"},
      {"it's", "'it'\\''s'"},
      {"$x `y` \"z\" \\", "'$x `y` \"z\" \\'"},
      {"in.####.exr", "'in.####.exr'"},
      {"~", "'~'"},
      {"1=2px; last=12px", "'1=2px; last=12px'"},
      {"caf\xc3\xa9", "'caf\xc3\xa9'"},
  };
  for (const auto& [text, word] : cases) {
    EXPECT_EQ(word, ShellWord(text));
  }
}

// So that nothing becomes a line of a script, or what its reader takes for one.
TEST(ShellText, NamesControlCharacters) {
  EXPECT_EQ("$'a\\012#SBATCH --x'", ShellWord("a\n#SBATCH --x"));
  EXPECT_EQ("$'it\\'s\\015\\012\\\\\\011\\0337'", ShellWord("it's\r\n\\\t\0337"));
}

// Whether a char has a sign is the processor's choice.
TEST(ShellText, LeavesBytesAboveAsciiAsTheyAreBesideControlCharacters) {
  EXPECT_EQ("$'caf\xc3\xa9\\011\x80\xff\\177'", ShellWord("caf\xc3\xa9\t\x80\xff\x7f"));
}

TEST(ShellText, PutsABlankBetweenWords) { EXPECT_EQ("a 'b c' d", ShellLine({"a", "b c", "d"})); }

}  // namespace
