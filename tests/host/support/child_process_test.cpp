// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/child_process.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/support/failure.h"

namespace {

using glimmerhost::ChildProcess;
using glimmerhost::ProcessEnd;

TEST(ChildProcess, IsReadLineByLineAndEndsWithItsCode) {
  ChildProcess child(PROGRAM, {"presets"});
  std::vector<std::string> lines;
  for (std::string line; child.ReadLine(&line);) {
    lines.push_back(line);
  }
  const ProcessEnd end = child.Wait();

  EXPECT_EQ(0, end.code);
  EXPECT_EQ(0, end.signal);
  ASSERT_EQ(5U, lines.size());
  EXPECT_EQ(0U, lines.front().find("anamorphic-oval ")) << lines.front();
}

// The program says a name that it does not know in its error.
TEST(ChildProcess, GetsItsArgumentsAsTheyAre) {
  for (const std::string name :
       {"a b", "a\"b", "a\\", "a\\\\\"b c\\\\", "\"", "%PATH% $HOME `x` *", "a'b", "caf\xc3\xa9"}) {
    ChildProcess child(PROGRAM, {"psf", "-o", "x.png", "--preset", name});
    std::string line;
    EXPECT_TRUE(child.ReadLine(&line)) << name;
    EXPECT_NE(std::string::npos, line.find("unknown preset \"" + name + "\"")) << line;
    EXPECT_FALSE(child.ReadLine(&line)) << line;
    EXPECT_EQ(2, child.Wait().code) << name;
  }
}

TEST(ChildProcess, IsMissedWhereThereIsNoSuchProgram) {
  try {
    const ChildProcess child("no-such-program", {});
    FAIL();
  } catch (const glimmerhost::MissingInput& fault) {
    EXPECT_STREQ("no-such-program: not found", fault.what());
  }
  EXPECT_THROW(ChildProcess("./no-such-program", {}), glimmerhost::MissingInput);
}

}  // namespace
