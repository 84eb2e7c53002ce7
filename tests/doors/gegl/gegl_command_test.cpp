// SPDX-License-Identifier: BSD-3-Clause
// The operation by GEGL's own command, on files.
#include <gegl.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "tests/doors/gegl/graph.h"
#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace lx_test {
namespace {

constexpr GeglRectangle kBounds = {0, 0, 120, 90};

// Files of floats, as GEGL writes and reads them.
void WriteExr(const Pixels& pixels, const std::string& path) {
  Graph graph;
  gegl_node_process(graph.AddOperation("gegl:exr-save", graph.AddSource(pixels), {{"path", path}}));
}

Pixels ReadExr(const std::string& path) {
  Graph graph;
  return ShowAll(graph.AddOperation("gegl:exr-load", nullptr, {{"path", path}}));
}

Outcome RunGegl(const std::string& input, const std::string& output,
                const std::vector<std::string>& operations) {
  std::vector<std::string> arguments = {input, "-o", output, "--"};
  arguments.insert(arguments.end(), operations.begin(), operations.end());
  return RunChild(GEGL_PROGRAM, arguments,
                  {{"GEGL_PATH", GEGL_FOLDERS}, {"GEGL_USE_OPENCL", "no"}});
}

// Without words that are others each time: the process and the time of day.
std::string WithoutNumbers(const std::string& text) {
  std::istringstream words(text);
  std::string kept;
  for (std::string word; words >> word;) {
    if (word.find(':') == std::string::npos ||
        word.find_first_of("0123456789") == std::string::npos) {
      kept += word + ' ';
    }
  }
  return kept;
}

class GeglCommand : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(GEGL_PROGRAM).empty()) {
      GTEST_SKIP() << "gegl is not installed";
    }
    input_ = (folder_ / "in.exr").string();
    output_ = (folder_ / "out.exr").string();
    WriteExr(MakeNoise(kBounds), input_);
  }

  ScratchFolder folder_;
  std::string input_;
  std::string output_;
};

TEST_F(GeglCommand, WritesTheLibrarysFrame) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = GLIMMERBLUR_POLYGON;
  look.sides = 6;
  look.radius_x = 30;
  look.radius_y = 30;

  const Outcome outcome =
      RunGegl(input_, output_, {"glimmerblur:defocus", "shape=polygon", "sides=6", "radius=30"});

  ASSERT_EQ(outcome.code, 0) << outcome.text;
  const Pixels source = ReadExr(input_);
  ASSERT_EQ(source.bounds.width, kBounds.width);
  // GEGL goes from one format to another by the way that was fastest today, and ways round
  // differently.
  constexpr double kRounding = 1e-6;
  EXPECT_LT(Distance(ReadExr(output_), RenderByLibrary(source, look)), kRounding);
}

TEST_F(GeglCommand, SaysNoMoreThanItDoesOfAnOperationOfItsOwn) {
  // One that needs the whole picture, too.
  const Outcome own = RunGegl(input_, output_, {"gegl:stretch-contrast"});
  const Outcome ours = RunGegl(input_, output_, {"glimmerblur:defocus", "radius=30"});

  EXPECT_EQ(ours.code, own.code);
  EXPECT_EQ(WithoutNumbers(ours.text), WithoutNumbers(own.text));
}

}  // namespace
}  // namespace lx_test
