// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/child_process.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

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

std::string KeptLines(ChildProcess* child) {
  std::string text;
  for (std::string line; child->ReadLine(&line);) {
    text += line + "\n";
  }
  return text;
}

// Larger than what a pipe holds: the child goes on while this program reads.
TEST(ChildProcess, HandsOverItsOutputInBytes) {
  ChildProcess child(PROGRAM, {"render", NIGHT, "-o", "-", "--sides", "5"},
                     ChildProcess::Use::kOutput);
  std::string bytes;
  std::vector<char> buffer(100000);
  for (std::size_t got = 0;
       (got = std::fread(buffer.data(), 1, buffer.size(), child.Stream())) > 0;) {
    bytes.append(buffer.data(), got);
  }
  EXPECT_TRUE(child.CloseStream());
  EXPECT_EQ(0, child.Wait().code);

  EXPECT_EQ(0U, bytes.find("P7\nWIDTH "));
  EXPECT_GT(bytes.size(), 1000000U);
  EXPECT_EQ("glimmerhost: --sides has no effect with the shape circle\n", KeptLines(&child));
}

TEST(ChildProcess, TakesItsInputInBytes) {
  const lx_test::ScratchFolder folder;
  const std::string output = (folder / "out.png").string();
  ChildProcess child(PROGRAM, {"render", "-", "-o", output, "--frames", "1", "--sides", "5"},
                     ChildProcess::Use::kInput);
  const std::string picture =
      "P7\nWIDTH 2\nHEIGHT 1\nDEPTH 1\nMAXVAL 255\nTUPLTYPE GRAYSCALE\nENDHDR\n\x01\xff";
  EXPECT_EQ(picture.size(), std::fwrite(picture.data(), 1, picture.size(), child.Stream()));
  EXPECT_TRUE(child.CloseStream());
  EXPECT_EQ(0, child.Wait().code);

  EXPECT_TRUE(std::filesystem::exists(output));
  EXPECT_EQ(0U, KeptLines(&child).find("glimmerhost: --sides has no effect"));
}

TEST(ChildProcess, EndsWithItsObjectThoughItsStreamIsOpen) {
  const ChildProcess reads(PROGRAM, {"render", "-", "-o", "-"}, ChildProcess::Use::kInput);
  const ChildProcess writes(PROGRAM, {"render", NIGHT, "-o", "-"}, ChildProcess::Use::kOutput);
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
