// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/file_conflicts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/shots/shot_plan.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::NamedFile;
using glimmerhost::PlanShot;
using glimmerhost::ShotNames;

// What is said of names that do not go together; empty if nothing is.
std::string Refusal(const ShotNames& names) {
  try {
    PlanShot(names);
    return "";
  } catch (const glimmerhost::UsageError& fault) {
    return fault.what();
  }
}

TEST(FileConflicts, AreRefusedBetweenAStillAndAnotherFramesOutput) {
  EXPECT_EQ(
      "-o out.0003.png: no frame may write what another reads; this one is of frame 3, and "
      "frame 1 reads it",
      Refusal({"out.0003.png", "out.#.png", "", "1-5", ""}));
  EXPECT_NE("", Refusal({"in.#.png", "out.#.png", "out.0002.png", "1-5", ""}));
  EXPECT_EQ("", Refusal({"out.0006.png", "out.#.png", "", "1-5", ""}));
  EXPECT_EQ("", Refusal({"out.0001.png", "out.#.png", "", "1", ""}));
}

// Otherwise a part would read what the whole has written by then.
TEST(FileConflicts, CountForAllFramesWhateverThePart) {
  EXPECT_NE("", Refusal({"out.0003.png", "out.#.png", "", "1-5", "1/5"}));
}

TEST(FileConflicts, AreFoundBetweenNamesOfSequences) {
  // Frame 1 reads a11.png.
  EXPECT_NE("", Refusal({"a1@.png", "a@.png", "", "1-11", ""}));
  EXPECT_EQ("", Refusal({"a1@.png", "a@.png", "", "1-9", ""}));
}

TEST(FileConflicts, AreFoundThroughWhateverNamesAFileHas) {
  EXPECT_NE("", Refusal({"./x/../out.0003.png", "out.#.png", "", "1-5", ""}));
}

#ifndef _WIN32
TEST(FileConflicts, AreFoundThroughLinks) {
  const lx_test::ScratchFolder folder;
  fs::create_directory(folder / "real");
  fs::create_directory_symlink(folder / "real", folder / "linked");
  std::ofstream(folder / "real/out.0002.png") << "x";
  fs::create_symlink(folder / "real/out.0002.png", folder / "still.png");
  const std::string output = (folder / "linked/out.#.png").string();
  EXPECT_NE("", Refusal({(folder / "real/out.0002.png").string(), output, "", "1-3", ""}));
  EXPECT_NE("", Refusal({(folder / "still.png").string(), output, "", "1-3", ""}));
}
#endif

TEST(FileConflicts, LeaveAFrameThatReplacesItsOwnInput) {
  EXPECT_TRUE(PlanShot({"in.#.png", "in.#.png", "", "1-5", ""}).isInPlace);
  EXPECT_TRUE(PlanShot({"in.png", "./in.png", "", "", ""}).isInPlace);
  EXPECT_FALSE(PlanShot({"in.png", "out.png", "", "", ""}).isInPlace);
}

TEST(FileConflicts, AreRefusedBetweenAFileBesideAndAFrames) {
  const auto refusal = [](const std::string& manifest) {
    return Refusal(
        {"in.#.png", "out.#.png", "lens.png", "1-3", "", {{"--manifest", manifest, true}}});
  };
  EXPECT_EQ(
      "--manifest in.0002.png must be a file of its own; this one is a picture that frame 2 "
      "reads",
      refusal("in.0002.png"));
  EXPECT_NE(std::string::npos, refusal("./lens.png").find("frame 1 reads"));
  EXPECT_NE(std::string::npos, refusal("out.0003.png").find("the output of frame 3"));
  EXPECT_EQ("", refusal("out.0004.png"));
  EXPECT_EQ("", refusal(""));
}

TEST(FileConflicts, AreRefusedBetweenFilesBeside) {
  const auto refusal = [](const std::string& save, const std::string& manifest) {
    return Refusal({"in.png",
                    "out.png",
                    "",
                    "",
                    "",
                    {{"--manifest", manifest, true},
                     {"--save-params", save, true},
                     {"--params", "look.toml", false}}});
  };
  EXPECT_EQ("--manifest a.toml must be a file of its own; this one is --save-params's",
            refusal("a.toml", "a.toml"));
  EXPECT_NE("", refusal("", "look.toml"));
  EXPECT_EQ("", refusal("look.toml", "shot.jsonl"));
}

}  // namespace
