// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/temporary_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/files.h"
#include "host/support/system.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::TemporaryFile;
using lx_test::ScratchFolder;

// More than a system gives to its processes.
constexpr const char* kNobody = "2147483000";

void Put(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::string Text(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A temporary name of that output with another machine or process in it.
fs::path NameOf(const fs::path& output, const std::string& host, const std::string& process,
                const std::string& random = "0123456789abcdef") {
  return output.parent_path() / ("." + output.stem().string() + "." + host + "-" + process + "-" +
                                 random + ".part" + output.extension().string());
}

// This machine's part of such names.
std::string OwnHost(const fs::path& output) {
  const TemporaryFile file(output);
  const std::string name = file.Path().filename().string();
  const std::string before = "." + output.stem().string() + ".";
  const std::string behind = ".part" + output.extension().string();
  const std::size_t process = name.rfind("-" + std::to_string(glimmerhost::ProcessId()) + "-");
  EXPECT_TRUE(name.starts_with(before)) << name;
  EXPECT_TRUE(name.ends_with(behind)) << name;
  EXPECT_NE(std::string::npos, process) << name;
  return name.substr(before.size(), process - before.size());
}

TEST(TemporaryFile, ComesToItsPlaceWhenItIsMovedIn) {
  const ScratchFolder folder;
  TemporaryFile file(folder / "a.0001.exr");
  EXPECT_EQ(folder.Path(), file.Path().parent_path());
  Put(file.Path(), "whole");

  file.MoveIn(false);

  EXPECT_EQ("whole", Text(folder / "a.0001.exr"));
  EXPECT_EQ(1, folder.FileCount());
}

TEST(TemporaryFile, IsGoneWithItsObjectUnlessItWasMovedIn) {
  const ScratchFolder folder;
  {
    const TemporaryFile file(folder / "a.png");
    Put(file.Path(), "half");
    EXPECT_EQ(1, folder.FileCount());
  }
  EXPECT_EQ(0, folder.FileCount());
}

TEST(TemporaryFile, LeavesAFileThatTookItsPlaceMeanwhile) {
  const ScratchFolder folder;
  {
    TemporaryFile file(folder / "a.png");
    Put(file.Path(), "mine");
    Put(folder / "a.png", "theirs");
    EXPECT_THROW(file.MoveIn(false), glimmerhost::Failure);
  }
  EXPECT_EQ("theirs", Text(folder / "a.png"));
  EXPECT_EQ(1, folder.FileCount());
}

TEST(TemporaryFile, ReplacesAFileIfTold) {
  const ScratchFolder folder;
  Put(folder / "a.png", "theirs");
  TemporaryFile file(folder / "a.png");
  Put(file.Path(), "mine");

  file.MoveIn(true);

  EXPECT_EQ("mine", Text(folder / "a.png"));
  EXPECT_EQ(1, folder.FileCount());
}

TEST(TemporaryFile, FailsWhereNothingWasWritten) {
  const ScratchFolder folder;
  TemporaryFile file(folder / "a.png");
  EXPECT_THROW(file.MoveIn(true), glimmerhost::Failure);
}

TEST(TemporaryFile, ClearsWhatAnEndedProcessLeftOfTheSameOutput) {
  const ScratchFolder folder;
  const fs::path output = folder / "a.0001.exr";
  const std::string host = OwnHost(folder / "sub" / "any.exr");
  Put(NameOf(output, host, kNobody), "half");

  const TemporaryFile file(output);

  EXPECT_EQ(0, folder.FileCount());
}

TEST(TemporaryFile, KeepsWhatIsNotALeftoverOfItsOutput) {
  const ScratchFolder folder;
  const fs::path output = folder / "a.0001.exr";
  const std::string host = OwnHost(folder / "sub" / "any.exr");
  const fs::path kept[] = {
      NameOf(output, "elsewhere", kNobody),  // of another machine
      NameOf(output, "x" + host, kNobody),
      NameOf(folder / "a.0002.exr", host, kNobody),  // of other outputs
      NameOf(folder / "a.0001.png", host, kNobody),
      NameOf(folder / "a.exr", host, kNobody),
      NameOf(output, host, "12x"),  // of nobody
      NameOf(output, host, ""),
      NameOf(output, host, kNobody, "0123456789abcde"),
      NameOf(output, host, kNobody, "0123456789abcdeg"),
      NameOf(output, host, "99999999999999999999"),
      folder / "a.0001.part.exr",
      folder / ".part.exr",
  };
  for (const fs::path& name : kept) {
    Put(name, "x");
  }

  { const TemporaryFile file(output); }

  for (const fs::path& name : kept) {
    EXPECT_TRUE(fs::exists(name)) << name;
  }
}

TEST(TemporaryFile, HasANameThatNobodyCanForesee) {
  const ScratchFolder folder;
  std::set<fs::path> names;
  for (int i = 0; i < 100; ++i) {
    names.insert(TemporaryFile(folder / "a.png").Path());
  }
  EXPECT_EQ(100U, names.size());
}

// Somebody who did foresee the name would have the file of his choice written over.
TEST(TemporaryFile, IsNotWrittenThroughWhatStandsThere) {
  const ScratchFolder folder;
  Put(folder / "theirs", "untouched");
  const TemporaryFile file(folder / "a.png");
  Put(file.Path(), "before");
  EXPECT_THROW(file.Write("mine"), glimmerhost::Failure);
  EXPECT_EQ(nullptr, glimmerhost::OpenFile(file.Path(), glimmerhost::FileUse::kMake));
  EXPECT_EQ("before", Text(file.Path()));
  fs::remove(file.Path());

  std::error_code error;
  fs::create_symlink(folder / "theirs", file.Path(), error);
  if (!error) {
    EXPECT_THROW(file.Write("mine"), glimmerhost::Failure);
    EXPECT_EQ(nullptr, glimmerhost::OpenFile(file.Path(), glimmerhost::FileUse::kMake));
    EXPECT_EQ("untouched", Text(folder / "theirs"));
    fs::remove(file.Path());
    fs::create_symlink(folder / "nowhere", file.Path());
    EXPECT_THROW(file.Write("mine"), glimmerhost::Failure);
    EXPECT_FALSE(fs::exists(folder / "nowhere"));
    fs::remove(file.Path());
  }

  file.Write("mine");

  EXPECT_EQ("mine", Text(file.Path()));
}

TEST(TemporaryFile, HasNamesThatSystemsTakeForOutputsOfLongNames) {
  const ScratchFolder folder;
  const std::string stem(240, 'a');
  TemporaryFile first(folder / (stem + "1.exr"));
  TemporaryFile second(folder / (stem + "2.exr"));
  EXPECT_NE(first.Path(), second.Path());
  EXPECT_GT(200U, first.Path().filename().string().size());
  Put(first.Path(), "x");

  first.MoveIn(false);

  EXPECT_EQ("x", Text(folder / (stem + "1.exr")));
}

}  // namespace
