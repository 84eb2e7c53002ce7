// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/job_progress.h"

#include <gtest/gtest.h>

namespace glimmerhost {
namespace {

std::string Line(int frame, const std::string& state, const std::string& elapsed) {
  return "{\"frame\":" + std::to_string(frame) + ",\"state\":\"" + state +
         "\",\"output\":\"a.png\",\"seconds\":0.5,\"index\":1,\"count\":10,\"elapsed\":" + elapsed +
         "}";
}

TEST(JobProgress, FindsRateAndTimeLeftByWhatTheProcessSays) {
  JobProgress progress;
  FrameReport frame;
  EXPECT_TRUE(progress.Take(Line(1, "skipped", "0.5"), &frame));
  EXPECT_FALSE(progress.Rate());
  EXPECT_FALSE(progress.SecondsLeft());
  EXPECT_TRUE(progress.Take(Line(2, "done", "2"), &frame));
  EXPECT_TRUE(progress.Take(Line(3, "done", "4"), &frame));
  EXPECT_TRUE(progress.Take(Line(4, "failed", "5"), &frame));
  EXPECT_EQ(FrameState::kFailed, frame.state);
  // Two frames in five seconds, and six of ten to come.
  EXPECT_DOUBLE_EQ(0.4, *progress.Rate());
  EXPECT_DOUBLE_EQ(15.0, *progress.SecondsLeft());
  EXPECT_EQ(4U, progress.Seen());
  EXPECT_EQ(1U, progress.failed);
}

TEST(JobProgress, LeavesOtherLinesToOthers) {
  JobProgress progress;
  FrameReport frame;
  EXPECT_FALSE(progress.Take("glimmerhost: INPUT has gaps", &frame));
  EXPECT_FALSE(progress.Take("{\"done\":2,\"elapsed\":3}", &frame));
  EXPECT_EQ(0U, progress.Seen());
}

TEST(JobProgress, KnowsNoTimeLeftOfAShotThatNobodyCounted) {
  JobProgress progress;
  FrameReport frame;
  EXPECT_TRUE(
      progress.Take("{\"frame\":1,\"state\":\"done\",\"output\":\"a\",\"seconds\":1,"
                    "\"index\":1,\"count\":null,\"elapsed\":2}",
                    &frame));
  EXPECT_DOUBLE_EQ(0.5, *progress.Rate());
  EXPECT_FALSE(progress.SecondsLeft());
}

}  // namespace
}  // namespace glimmerhost
