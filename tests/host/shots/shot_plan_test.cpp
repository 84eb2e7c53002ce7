// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/shot_plan.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::GivenSpan;
using glimmerhost::kPipe;
using glimmerhost::ParseChunk;
using glimmerhost::PlanShot;
using glimmerhost::ShotNames;
using glimmerhost::ShotPlan;
using glimmerhost::ShotSpan;

TEST(ShotPlan, NamesTheFilesOfEachFrame) {
  const ShotPlan plan = PlanShot({"in.####.exr", "out.@.png", "lens.##.tif", "3,1-2", ""});
  ASSERT_EQ(3U, plan.files.size());
  EXPECT_EQ(3, plan.files[0].frame);
  EXPECT_EQ("in.0003.exr", plan.files[0].input);
  EXPECT_EQ("out.3.png", plan.files[0].output);
  EXPECT_EQ("lens.03.tif", plan.files[0].spread);
  EXPECT_EQ(2, plan.files[2].frame);
  EXPECT_TRUE(plan.isShot);
}

// A frame that is missing would otherwise be found when the film is cut.
TEST(ShotPlan, NamesTheFramesThatTheFolderLacks) {
  const lx_test::ScratchFolder folder;
  for (const int frame : {3, 4, 7, 9}) {
    std::ofstream(folder / ("a." + std::to_string(frame) + ".png")) << "x";
  }
  glimmerhost::ShotNames names{(folder / "a.@.png").string(), (folder / "b.@.png").string(), "", "",
                               ""};
  EXPECT_EQ((std::vector<int>{5, 6, 8}), PlanShot(names).gaps);
  names.frames = "3-4,9";
  EXPECT_EQ(std::vector<int>(), PlanShot(names).gaps);
}

TEST(ShotPlan, IsOneFrameForOnePicture) {
  const ShotPlan plan = PlanShot({"in.png", "out.png", "", "", ""});
  ASSERT_EQ(1U, plan.files.size());
  EXPECT_EQ(1, plan.files[0].frame);
  EXPECT_EQ("in.png", plan.files[0].input);
  EXPECT_TRUE(plan.files[0].spread.empty());
  EXPECT_FALSE(plan.isShot);
}

TEST(ShotPlan, TakesOneStillForManyFrames) {
  const ShotPlan plan = PlanShot({"still.png", "out.#.png", "lens.png", "1-3", ""});
  ASSERT_EQ(3U, plan.files.size());
  EXPECT_EQ("still.png", plan.files[2].input);
  EXPECT_EQ("lens.png", plan.files[2].spread);
}

TEST(ShotPlan, LooksIntoTheFolderWithoutAList) {
  const lx_test::ScratchFolder folder;
  for (const char* name : {"a.0009.png", "a.0004.png"}) {
    std::ofstream(folder / name) << "x";
  }
  const ShotPlan plan = PlanShot({(folder / "a.#.png").string(), "out.#.png", "", "", ""});
  ASSERT_EQ(2U, plan.files.size());
  EXPECT_EQ(4, plan.files[0].frame);
  EXPECT_EQ(9, plan.files[1].frame);
}

TEST(ShotPlan, TakesTheListOfTheName) {
  EXPECT_EQ(5U, PlanShot({"a.1-5#.png", "out.#.png", "", "", ""}).files.size());
  EXPECT_EQ(2U, PlanShot({"a.1-5#.png", "out.#.png", "", "2-3", ""}).files.size());
}

// Whatever the list and the chunk take of it.
TEST(ShotPlan, HasTheShotsSpanFromWhatWasGivenOrTheNameOrTheFolder) {
  const lx_test::ScratchFolder folder;
  for (const char* name : {"a.0009.png", "a.0004.png", "a.0006.png"}) {
    std::ofstream(folder / name) << "x";
  }
  const std::string found = (folder / "a.#.png").string();
  const std::string listed = (folder / "a.2-10#.png").string();
  const GivenSpan given{"--shot", {1, 20}};
  const struct {
    ShotNames names;
    ShotSpan span;
  } cases[] = {
      {{found, "o.#.png", "", "", "", {}, {}, true}, {4, 9}},
      {{found, "o.#.png", "", "6", "", {}, {}, true}, {4, 9}},
      {{found, "o.#.png", "", "", "2/3", {}, {}, true}, {4, 9}},
      {{found, "o.#.png", "", "12", "", {}, {}, true}, {4, 9}},
      {{found, "o.#.png", "", "", "", {}, {}, false}, {}},
      {{found, "o.#.png", "", "6", "", {}, given, false}, {1, 20}},
      {{found, "o.#.png", "", "6", "", {}, given, true}, {1, 20}},
      {{listed, "o.#.png", "", "6", "", {}, {}, true}, {2, 10}},
      {{"still.png", "o.png", "", "", "", {}, {}, true}, {1, 1}},
      {{"still.png", "o.#.png", "", "5-6", "", {}, {}, true}, {}},
      {{kPipe, "o.#.png", "", "", "", {}, {}, true}, {1, {}}},
      {{kPipe, "o.#.png", "", "5-6", "", {}, {}, true}, {}},
      {{kPipe, "o.png", "", "", "", {}, {}, true}, {1, 1}},
  };
  for (const auto& [names, span] : cases) {
    EXPECT_EQ(span, PlanShot(names).span)
        << names.input << " " << names.frames << " " << names.chunk << " " << names.hasTimes;
  }
}

TEST(ShotPlan, RefusesAFrameOutsideOfTheShot) {
  const GivenSpan given{"--shot", {1, 20}};
  const auto plan = [&](const std::string& frames) {
    return PlanShot({"a.#.png", "o.#.png", "", frames, "", {}, given, false});
  };
  EXPECT_NO_THROW(plan("1-20"));
  try {
    plan("3,21");
    FAIL();
  } catch (const glimmerhost::UsageError& fault) {
    EXPECT_EQ(0U, std::string(fault.what()).find("frame 21 is not in the shot 1-20 (--shot); "));
  }
  // What the folder has not is missing, and may come.
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "a.0004.png") << "x";
  const ShotPlan found =
      PlanShot({(folder / "a.#.png").string(), "o.#.png", "", "4-5", "", {}, {}, true});
  EXPECT_NO_THROW(CheckInShot(found, 4));
  EXPECT_THROW(CheckInShot(found, 5), glimmerhost::MissingInput);
}

TEST(ShotPlan, RefusesOneOutputForManyFrames) {
  EXPECT_THROW(PlanShot({"a.#.png", "out.png", "", "1-2", ""}), glimmerhost::UsageError);
  EXPECT_NO_THROW(PlanShot({"a.#.png", "out.png", "", "2", ""}));
}

TEST(Chunk, PartsAListEvenlyAndWhole) {
  for (const std::size_t count : {1U, 7U, 100U}) {
    for (std::size_t parts = 1; parts <= count; ++parts) {
      std::size_t end = 0;
      for (std::size_t k = 1; k <= parts; ++k) {
        const auto places = ParseChunk(std::to_string(k) + "/" + std::to_string(parts), count);
        EXPECT_EQ(end, places.begin);
        EXPECT_GE(places.end - places.begin, count / parts);
        EXPECT_LE(places.end - places.begin, count / parts + 1);
        end = places.end;
      }
      EXPECT_EQ(count, end);
    }
  }
}

// A script that cuts every shot into as many parts cannot know how many frames each has.
TEST(Chunk, IsEmptyBehindTheLastFrame) {
  for (int k = 1; k <= 5; ++k) {
    const auto places = ParseChunk(std::to_string(k) + "/5", 3);
    EXPECT_EQ(k <= 3 ? 1U : 0U, places.end - places.begin) << k;
  }
}

TEST(Chunk, RefusesWhatIsNone) {
  for (const char* text : {"0/3", "4/3", "1", "1/", "/2", "a/b", "1/2/3", "-1/2", "1/0"}) {
    EXPECT_THROW(ParseChunk(text, 10), glimmerhost::UsageError) << text;
  }
}

}  // namespace
