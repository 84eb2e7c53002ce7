// SPDX-License-Identifier: BSD-3-Clause
// Clean at any emphasis: what is dark stays as exact as what is bright, however far apart they are.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/fftlib/backends/fast/plain_frame.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx_test::Image;
using lx_test::Samples;

// From the top: black, deep shadows, a ramp, and black once more; over all of it points of white
// and dim ones.
Image NightPicture(int width, int height) {
  Image image = lx_test::MakeImage(width, height, 4, lx::kSampleU16);
  std::mt19937 random(17);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint16_t* pixel = Samples<std::uint16_t>(image) + (y * width + x) * 4;
      const std::uint32_t dice = random() % 400;
      for (int c = 0; c < 4; ++c) {
        const int dark = y < height * 3 / 10 || y >= height * 8 / 10 ? 0
                         : y < height / 2 ? static_cast<int>(random() % 40)
                                          : x * 65535 / std::max(width - 1, 1);
        const int light = dice == 0 ? 65535 : dice == 1 ? 1000 + 100 * c : dark;
        pixel[c] = static_cast<std::uint16_t>(light);
      }
    }
  }
  return image;
}

// The picture through the aperture that the engine has, against plain sums.
void ExpectPlainSums(lx::DefocusEngine* engine, const std::vector<std::uint8_t>& mask, int width,
                     int height, const lx::Look& look) {
  const Image source = NightPicture(width, height);
  const Image dest = lx_test::MakeImage(width, height, 4, lx::kSampleU16);
  engine->SetEmphasis(look.emphasis);
  engine->SetEmphasisAlpha(look.emphasisAlpha);
  engine->SetEdgeMode(look.edgeMode);
  ASSERT_TRUE(engine->SetSourceImage(source.get()));

  ASSERT_TRUE(engine->Convolve(dest.get(), 15));

  const lx_test::PlainFrame plain(source, mask, look);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::array<long double, 4> values = plain.At(x, y);
      for (std::size_t c = 0; c < 4; ++c) {
        const auto expected = static_cast<double>(std::clamp(values[c], 0.0L, 1.0L)) * 65535.0;
        const int got = Samples<std::uint16_t>(dest)[(y * width + x) * 4 + static_cast<int>(c)];
        // Half a step is rounding; a step of 15 bits is two.
        ASSERT_NEAR(expected, got, 1.0)
            << "emphasis " << look.emphasis << (look.emphasisAlpha ? " and of alpha" : "")
            << ", edge " << look.edgeMode << ", " << width << " x " << height << ": " << x << " "
            << y << ", channel " << c;
      }
    }
  }
}

void ExpectPlainSumsOfShape(int shape, float radius, const lx::Look& look) {
  constexpr int kWidth = 72;
  constexpr int kHeight = 50;
  const auto engine = lx_test::MakeFastEngine();
  engine->BuildShapePsf(kWidth, kHeight, shape, radius, radius, 15.0F, 5);
  ASSERT_EQ(lx::kStatusOk, engine->GetStatus());
  ExpectPlainSums(engine.get(), lx_test::MaskOf(*engine), kWidth, kHeight, look);
}

std::string NameOf(const testing::TestParamInfo<float>& emphasis) {
  return std::to_string(static_cast<int>(emphasis.param));
}

class FastEmphasis : public testing::TestWithParam<float> {};

TEST_P(FastEmphasis, IsWithinHalfAStepOf15BitsOfPlainSums) {
  constexpr struct {
    int shape;
    float radius;
    std::int32_t edge;
  } kApertures[] = {{1, 6.0F, lx::kEdgeReplicate},
                    {2, 12.0F, lx::kEdgeReplicate},
                    {2, 9.0F, lx::kEdgeZero},
                    {4, 5.0F, lx::kEdgeZero}};
  for (const auto& [shape, radius, edge] : kApertures) {
    ASSERT_NO_FATAL_FAILURE(ExpectPlainSumsOfShape(shape, radius, {GetParam(), false, edge}));
  }
}

TEST_P(FastEmphasis, IsWithinHalfAStepOf15BitsOfPlainSumsForAlphaToo) {
  for (const std::int32_t edge : {lx::kEdgeReplicate, lx::kEdgeZero}) {
    ASSERT_NO_FATAL_FAILURE(ExpectPlainSumsOfShape(2, 6.0F, {GetParam(), true, edge}));
  }
}

// Masks of noise, with holes, and of some pixels on one side of the middle; frames of more than one
// word of bits, and of a row or a column.
TEST_P(FastEmphasis, IsWithinHalfAStepOf15BitsOfPlainSumsForAnyMask) {
  std::mt19937 random(23);
  for (const lx::Size frame : {lx::Size{40, 30}, {150, 6}, {1, 60}, {60, 1}, {129, 5}}) {
    const auto pixels = static_cast<std::size_t>(frame.width) * frame.height;
    for (const bool isNoise : {true, false}) {
      std::vector<std::uint8_t> mask(pixels, 0);
      for (std::uint8_t& each : mask) {
        each = isNoise && random() % 3 == 0 ? static_cast<std::uint8_t>(random()) : 0;
      }
      // In the first tenth.
      for (int i = 0; i < 4; ++i) {
        mask[random() % (1 + pixels / 10)] = static_cast<std::uint8_t>(1 + random() % 255);
      }
      for (const std::int32_t edge : {lx::kEdgeReplicate, lx::kEdgeZero}) {
        const auto engine = lx_test::MakeFastEngine();
        ASSERT_TRUE(lx_test::LoadMask(engine.get(), mask, frame.width, frame.height, 0));
        ASSERT_NO_FATAL_FAILURE(ExpectPlainSums(engine.get(), mask, frame.width, frame.height,
                                                {GetParam(), true, edge}));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Emphases, FastEmphasis,
                         testing::Values(20.0F, 50.0F, 75.0F, 76.0F, 100.0F, 200.0F, 300.0F,
                                         500.0F),
                         NameOf);

}  // namespace
