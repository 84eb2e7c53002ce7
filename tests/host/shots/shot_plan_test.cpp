// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/shot_plan.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::ParseChunk;
using glimmerhost::PlanShot;
using glimmerhost::ShotPlan;

TEST(ShotPlan, NamesTheFilesOfEachFrame) {
  const ShotPlan plan = PlanShot({"in.####.exr", "out.@.png", "lens.##.tif", "3,1-2", ""});
  ASSERT_EQ(3U, plan.files.size());
  EXPECT_EQ(3, plan.files[0].frame);
  EXPECT_EQ("in.0003.exr", plan.files[0].input);
  EXPECT_EQ("out.3.png", plan.files[0].output);
  EXPECT_EQ("lens.03.tif", plan.files[0].spread);
  EXPECT_EQ(2, plan.files[2].frame);
  EXPECT_EQ(1, plan.lowest);
  EXPECT_EQ(3, plan.highest);
  EXPECT_TRUE(plan.isShot);
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
  EXPECT_EQ(9, plan.highest);
}

TEST(ShotPlan, TakesTheListOfTheName) {
  EXPECT_EQ(5U, PlanShot({"a.1-5#.png", "out.#.png", "", "", ""}).files.size());
  EXPECT_EQ(2U, PlanShot({"a.1-5#.png", "out.#.png", "", "2-3", ""}).files.size());
}

TEST(ShotPlan, KeepsTheSpanOfTheWholeShotInAChunk) {
  const ShotPlan plan = PlanShot({"a.#.png", "out.#.png", "", "1001-1010", "2/3"});
  ASSERT_EQ(3U, plan.files.size());
  EXPECT_EQ(1005, plan.files[0].frame);
  EXPECT_EQ(1001, plan.lowest);
  EXPECT_EQ(1010, plan.highest);
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
