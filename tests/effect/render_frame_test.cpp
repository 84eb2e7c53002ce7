// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "effect/glimmer_blur.h"
#include "tests/support/convolution_model.h"
#include "tests/support/engine_inside.h"
#include "tests/support/fft_recorder.h"

namespace {

using lx::GlimmerBlur;
using lx::LXImage;
using lx_test::Inside;

constexpr int kWidth = 30;
constexpr int kHeight = 22;

class RenderFrame : public testing::Test {
 public:
  RenderFrame()
      : source(kWidth, kHeight, 0, nullptr, 0),
        spread(kWidth, kHeight, 0, nullptr, 0),
        output(kWidth, kHeight, 0, nullptr, 0) {
    std::mt19937 random(12);
    for (int i = 0; i < kWidth * kHeight * 4; ++i) {
      source.data[i] = static_cast<std::uint16_t>(random() % 32768);
      spread.data[i] = static_cast<std::uint16_t>(random() % 32768);
      output.data[i] = 0;
    }
  }

  void Render(GlimmerBlur* effect) {
    effect->sourcePort.image = &source;
    effect->spreadPort.image = &spread;
    effect->outputPort.image = &output;
    effect->RenderFrame();
  }

  std::vector<std::uint16_t> Output() const {
    return {output.data, output.data + kWidth * kHeight * 4};
  }

  LXImage source;
  LXImage spread;
  LXImage output;
};

TEST_F(RenderFrame, MatchesADirectSumOverTheDisc) {
  GlimmerBlur effect;
  effect.radiusX.value = 0.2;  // 3 pixels

  Render(&effect);

  // The disc's mask by sampling each pixel 64 x 64 times, which is good to 1 / 255 here.
  std::vector<std::uint8_t> mask(kWidth * kHeight, 0);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      int inside = 0;
      for (int k = 0; k < 4096; ++k) {
        const double px = x + (k % 64 + 0.5) / 64 - kWidth / 2.0;
        const double py = y + (k / 64 + 0.5) / 64 - kHeight / 2.0;
        inside += px * px + py * py <= 9 ? 1 : 0;
      }
      mask[y * kWidth + x] = static_cast<std::uint8_t>(255.0 * inside / 4096 + 0.5);
    }
  }
  lx_test::PsfModel psf(64, kWidth, kHeight);
  psf.Load(mask);
  const lx_test::Image doubled = lx_test::MakeImage(kWidth, kHeight, 4, 1);
  for (int i = 0; i < kWidth * kHeight * 4; ++i) {
    lx_test::Samples<std::uint16_t>(doubled)[i] = static_cast<std::uint16_t>(source.data[i] * 2);
  }
  for (int c = 0; c < 4; ++c) {
    const auto expected = lx_test::ConvolveChannel(doubled, c, psf.Shifted());
    for (int i = 0; i < kWidth * kHeight; ++i) {
      // A 50-gon is not quite a disc: up to 0.8 % of a radius, so 3 % of a border pixel.
      ASSERT_NEAR(expected[i] / 2, output.data[i * 4 + c], 60) << i << " " << c;
    }
  }
}

TEST_F(RenderFrame, BuildsOncePerSequenceOfEqualParameters) {
  lx_test::FftRecorder fft;
  {
    GlimmerBlur effect;
    effect.radiusX.value = 0.2;
    Render(&effect);
    // A build would clear the mask.
    auto* mask = static_cast<std::uint8_t*>(Inside(*effect.engine).psfMask()->data);
    mask[0] = 1;
    for (int frame = 1; frame < 10; ++frame) {
      Render(&effect);
    }
    EXPECT_EQ(1, mask[0]);
    const bool usesFftw = Inside(*effect.engine).engineMode() == lx::kModeFftw;
    EXPECT_EQ(usesFftw ? 3 : 0, fft.Count("forward") + fft.Count("inverse"));
    EXPECT_EQ(usesFftw ? 1 + 10 * 8 : 0, fft.Count("execute"));
  }
}

TEST_F(RenderFrame, IsTheSameWithAndWithoutPrecision) {
  GlimmerBlur plain;
  GlimmerBlur precise;
  precise.precision.value = true;
  plain.radiusX.value = precise.radiusX.value = 0.2;

  Render(&plain);
  const auto expected = Output();
  Render(&precise);

  EXPECT_EQ(expected, Output());
}

TEST_F(RenderFrame, TakesTheTwoRadiiOfTheImageShapeInEitherOrder) {
  std::vector<std::vector<std::uint16_t>> results;
  for (const bool exchanged : {false, true}) {
    GlimmerBlur effect;
    effect.shape.value = 4;
    effect.center.x = effect.center.y = 0.5;
    effect.radiusPSF1.value = exchanged ? 0.3 : 0.1;
    effect.radiusPSF2.value = exchanged ? 0.1 : 0.3;
    Render(&effect);
    results.push_back(Output());
  }

  EXPECT_EQ(results[0], results[1]);
}

TEST_F(RenderFrame, LeavesACopyOfTheSourceWithoutAPsf) {
  GlimmerBlur effect;
  effect.shape.value = 7;

  Render(&effect);

  EXPECT_EQ(std::vector<std::uint16_t>(source.data, source.data + kWidth * kHeight * 4), Output());
}

TEST_F(RenderFrame, DrawsTheSameMaskForOtherSidesOfACircle) {
  GlimmerBlur effect;
  effect.radiusX.value = 0.2;
  Render(&effect);
  const auto* pixels = static_cast<const std::uint8_t*>(Inside(*effect.engine).psfMask()->data);
  const std::vector<std::uint8_t> before(pixels, pixels + kWidth * kHeight);
  effect.sides.value = 9;

  Render(&effect);

  EXPECT_EQ(before, std::vector<std::uint8_t>(pixels, pixels + kWidth * kHeight));
}

// No sample stays what it was, and none leaves the 15 bits.
TEST_F(RenderFrame, WritesAWholeFrameForNumbersThatMakeNoSense) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double bad : {nan, -1.0, 1e30, -1e30, std::numeric_limits<double>::infinity()}) {
    for (const int shape : {1, 2, 3, 4}) {
      GlimmerBlur effect;
      effect.shape.value = shape;
      effect.radiusX.value = bad;
      effect.radiusY.value = -bad;
      effect.rotation.value = bad;
      effect.emphasis.value = bad;
      effect.center.x = bad;
      effect.center.y = -bad;
      effect.radiusPSF1.value = bad;
      effect.radiusPSF2.value = bad;
      effect.sides.value = INT32_MIN;
      output.aspectX = bad;
      std::fill_n(output.data, kWidth * kHeight * 4, std::uint16_t{65535});
      Render(&effect);
      output.aspectX = 1.0;
      EXPECT_GE(32767, *std::max_element(output.data, output.data + kWidth * kHeight * 4))
          << "shape " << shape << ", " << bad;
    }
  }
}

TEST_F(RenderFrame, IsTheSameToOneStepInEveryModeOfTheEngine) {
  for (const int shape : {1, 2, 3, 4}) {
    for (const double emphasis : {1.0, 10.0}) {
      std::vector<std::vector<std::uint16_t>> outputs;
      for (const int mode : {lx::kModeFftw, lx::kModeKernelF32, lx::kModeKernelF64}) {
        GlimmerBlur effect;
        delete effect.engine;
        effect.engine = new lx::DefocusEngine(mode);
        effect.shape.value = shape;
        effect.radiusX.value = effect.radiusY.value = 0.3;
        effect.radiusPSF1.value = 0.1;
        effect.radiusPSF2.value = 0.3;
        effect.center.x = effect.center.y = 0.5;
        effect.emphasis.value = emphasis;
        effect.emphAlpha.value = true;
        Render(&effect);
        outputs.push_back(Output());
      }
      for (std::size_t i = 0; i < outputs[0].size(); ++i) {
        ASSERT_NEAR(outputs[0][i], outputs[1][i], 1) << shape << " " << emphasis << " at " << i;
        ASSERT_NEAR(outputs[0][i], outputs[2][i], 1) << shape << " " << emphasis << " at " << i;
      }
      EXPECT_NE(std::vector<std::uint16_t>(source.data, source.data + kWidth * kHeight * 4),
                outputs[1]);
    }
  }
}

TEST_F(RenderFrame, RendersAnotherSizeThroughTheSameInstance) {
  GlimmerBlur used;
  GlimmerBlur fresh;
  used.radiusX.value = fresh.radiusX.value = 0.2;
  LXImage small(20, 12, 0, nullptr, 0);
  LXImage smallOut(20, 12, 0, nullptr, 0);
  std::fill_n(small.data, 20 * 12 * 4, std::uint16_t{9000});
  used.sourcePort.image = &small;
  used.outputPort.image = &smallOut;
  used.RenderFrame();  // a grid of 32, the larger one needs 64
  Render(&used);
  const auto afterAnother = Output();

  Render(&fresh);

  EXPECT_EQ(Output(), afterAnother);
  EXPECT_NEAR(9000, smallOut.data[50], 1);
}

}  // namespace
