// SPDX-License-Identifier: BSD-3-Clause
// One set of bits, whatever blurs: every form of the operations, any number of ways, any processor
// and system. What they are stands here, so that machines agree that never meet.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "fftlib/backends/fast/fast_backend.h"
#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/forms.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/fftlib/backends/fast/hash.h"
#include "tests/support/divided_passes.h"
#include "tests/support/images.h"

namespace {

using lx_test::FrameCase;
using lx_test::Image;
using lx_test::LineForm;

struct HashedFrame {
  int width;
  int height;
  int shape;
  float radius;
  float emphasis;
  std::int32_t edge;
  std::uint32_t type;
  std::uint64_t hash;
};

// As it stands in the table below.
std::ostream& operator<<(std::ostream& out, const HashedFrame& f) {
  return out << '{' << f.width << ", " << f.height << ", " << f.shape << ", " << f.radius << ", "
             << f.emphasis << ", " << f.edge << ", " << f.type << ", 0x" << std::hex
             << std::setw(16) << std::setfill('0') << f.hash << std::dec << "},";
}

// What the back-end gave when the table was made. Where a length is taken apart in another way, as
// quick_sizes.h says, sums have another order and bits change, those of floats first: each failure
// prints the line that takes the place of the old one.
//   width, height, shape, radius, emphasis, edge, type, hash
constexpr HashedFrame kFrames[] = {
    {1, 1, 1, 1, 0, 2, 1, 0x5a11173d09eb915f},
    {1, 1, 1, 1, 20, 1, 1, 0x391d98de08a71ad3},
    {2, 3, 1, 1, 20, 2, 3, 0x117589740503a8e9},
    {17, 5, 2, 4, 0, 1, 3, 0x3f33cb400e15cd43},
    {64, 64, 3, 9, 50, 2, 1, 0x65e310fd58c25c39},
    {90, 33, 4, 13, 75, 2, 1, 0xcecaaaef428544bb},
    {90, 33, 0, 12, 20, 1, 3, 0x892cc22028a1329b},
    {33, 90, 1, 5, 0, 2, 0, 0x44427a62be8c49a7},
    {301, 200, 2, 31, 20, 2, 1, 0xb1194de8945c3672},
    {301, 200, 1, 31, 0, 1, 3, 0x42d26f9ace6d5df3},
    {90, 33, 2, 8, 200, 2, 1, 0x95d5094ab8c534bd},
    {301, 200, 1, 12, 500, 1, 1, 0x928007c8c21f95c4},
    {65, 130, 2, 9, 100, 2, 3, 0xa8121c2702d1041a},
    {720, 576, 1, 20, 20, 2, 1, 0x51139f9d64516c70},
    {720, 576, 2, 20, 50, 2, 3, 0xe25c17e4322b2986},
};

// Passes are shuffled out over ways; one way is the engine by itself.
Image Render(const HashedFrame& f, const LineForm& form, int ways, bool onThreads = false) {
  FrameCase c{};
  c.seed = 11;
  c.width = f.width;
  c.height = f.height;
  c.shape = f.shape;
  c.radiusX = c.radiusY = f.radius;
  c.rotation = 20.0F;
  c.sides = 5;
  c.aspectX = c.aspectY = 1.0F;
  c.edgeMode = f.edge;
  c.sampleType = f.type;
  c.channels = 4;
  c.emphasis = f.emphasis;
  c.gamma = c.gain = 1.0F;
  lx::DefocusEngine engine(std::make_unique<lx::FastBackend>(*form.operations));
  lx_test::DividedPasses passes(ways, onThreads);
  if (ways > 1) {
    passes.Attach(&engine);
  }
  return RenderCase(&engine, c);
}

std::uint64_t HashOf(const Image& image) {
  return lx_test::HashOf(image->data, SampleCount(image) * image->elementBytes);
}

std::string NameOf(const testing::TestParamInfo<LineForm>& form) { return form.param.name; }

class FastHashes : public testing::TestWithParam<LineForm> {};

TEST_P(FastHashes, AreThoseThatAreWrittenDown) {
  for (const HashedFrame& expected : kFrames) {
    HashedFrame got = expected;
    got.hash = HashOf(Render(expected, GetParam(), 1));
    EXPECT_EQ(expected.hash, got.hash) << "    " << got;
  }
}

TEST_P(FastHashes, AreTheSameForAnyNumberOfWays) {
  for (const HashedFrame& expected : kFrames) {
    const Image one = Render(expected, GetParam(), 1);
    for (const auto& [ways, onThreads] : {std::pair{2, false}, {7, true}, {33, false}}) {
      EXPECT_EQ(HashOf(one), HashOf(Render(expected, GetParam(), ways, onThreads))) << ways << "\n"
                                                                                    << expected;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, FastHashes, testing::ValuesIn(lx_test::LineForms()), NameOf);

}  // namespace
