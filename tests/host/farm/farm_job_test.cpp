// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/farm_job.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using glimmerhost::FarmJob;
using Frames = std::vector<int>;
using Words = std::vector<std::string>;

FarmJob Job(int first, int last, std::size_t most) {
  FarmJob job;
  job.input = "in.#.png";
  job.manifestBefore = "out/m.";
  job.manifestBehind = ".jsonl";
  for (int frame = first; frame <= last; ++frame) {
    job.frames.push_back(frame);
  }
  job.Cut(most);
  return job;
}

TEST(FarmJob, CutsEvenlyAndNoChunkLongerThanAsked) {
  const FarmJob job = Job(1001, 1010, 4);
  ASSERT_EQ(3U, job.chunks);
  EXPECT_EQ((Frames{1001, 1002, 1003, 1004}), job.Frames(1));
  EXPECT_EQ((Frames{1005, 1006, 1007}), job.Frames(2));
  EXPECT_EQ((Frames{1008, 1009, 1010}), job.Frames(3));
  EXPECT_EQ(1U, Job(1, 20, 20).chunks);
  EXPECT_EQ(2U, Job(1, 21, 20).chunks);
  EXPECT_EQ(3U, Job(1, 3, 1).chunks);
}

TEST(FarmJob, CallsManifestsAfterChunkAndCount) {
  EXPECT_EQ("out/m.0002-of-0003.jsonl", Job(1, 3, 1).Manifest(2).string());
  EXPECT_EQ("out/m.00002-of-12345.jsonl", Job(1, 12345, 1).Manifest(2).string());
}

TEST(FarmJob, PutsWhatAChunkHasOfItsOwnBehindTheCommonOptions) {
  FarmJob job = Job(1, 4, 2);
  job.options = {"--radius=2px"};
  EXPECT_EQ((Words{"render", "--radius=2px", "--chunk=2/2", "--manifest=out/m.0002-of-0002.jsonl",
                   "--", "in.#.png"}),
            job.Arguments(2));
}

TEST(FarmJob, ChecksAllManifestsForAllFrames) {
  EXPECT_EQ((Words{"check", "--frames=-1-2", "--", "out/m.0001-of-0002.jsonl",
                   "out/m.0002-of-0002.jsonl"}),
            Job(-1, 2, 2).CheckArguments());
}

}  // namespace
