// SPDX-License-Identifier: BSD-3-Clause
// The script that renders by GNU parallel, as people have it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/host/glimmerhost/shot_program.h"

namespace {

namespace fs = std::filesystem;
using host_test::Bytes;
using host_test::Outcome;

class ParallelScript : public host_test::ShotProgram {
 public:
  void SetUp() override {
    if (lx_test::RunChild("/bin/sh", {"-c", "command -v parallel"}).code != 0) {
      GTEST_SKIP() << "GNU parallel is not installed";
    }
  }

  Outcome Run(const std::vector<std::string>& arguments) {
    return lx_test::RunChild(PARALLEL_SCRIPT, arguments,
                             {{"GLIMMERHOST", PROGRAM},
                              {"CHUNKS", "3"},
                              {"JOBS", "2"},
                              {"MANIFEST", (folder / "a manifest").string()}});
  }

  std::string In() const { return (folder / "in.@.png").string(); }
};

TEST_F(ParallelScript, GivesTheBytesOfOneRender) {
  WriteShot(1, 5);
  const std::string odd = "o{}u\"t $x;\n{.} 'a'";
  ASSERT_EQ(0, host_test::RunProgram(Shot("whole.@.png", host_test::kAnimated)).code);

  const Outcome outcome =
      Run({In(), "-o", (folder / (odd + ".@.png")).string(), "--frames", "1-5", "--shape",
           "polygon", "--radius", "first=2px; last=12px", "--emphasis",
           "first=1; first+3~=60; last=20", "--rotation", "25%=0; last-1=90"});

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_TRUE(outcome.text.ends_with("5 frames are as they were written\n")) << outcome.text;
  for (int frame = 1; frame <= 5; ++frame) {
    const std::string end = "." + std::to_string(frame) + ".png";
    EXPECT_EQ(Bytes(folder / ("whole" + end)), Bytes(folder / (odd + end))) << frame;
  }
  EXPECT_TRUE(fs::exists(folder / "a manifest.3-of-3.jsonl"));
}

TEST_F(ParallelScript, TakesAnEmptyChunkForDone) {
  WriteShot(1, 2);
  const Outcome outcome =
      Run({In(), "-o", (folder / "out.@.png").string(), "--radius=2px", "--frames=1-2"});
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_TRUE(outcome.text.ends_with("2 frames are as they were written\n")) << outcome.text;
}

TEST_F(ParallelScript, NamesTheFramesThatAreMissingAndGoesOnTheNextTime) {
  WriteShot(1, 6);
  std::ofstream(folder / "in.3.png") << "no picture";
  const std::vector<std::string> arguments = {In(), "-o", (folder / "out.@.png").string(),
                                              "--radius=2px", "--frames=1-6"};
  Outcome outcome = Run(arguments);
  EXPECT_EQ(1, outcome.code);
  EXPECT_TRUE(outcome.text.ends_with("glimmerhost: no line for frames 3-4\n")) << outcome.text;

  WriteShot(3, 3);
  outcome = Run(arguments);
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("6 frames are as they were written\n"));
}

}  // namespace
