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

namespace {

using lx_test::FrameCase;
using lx_test::Image;
using lx_test::Samples;

constexpr int kWidth = 72;
constexpr int kHeight = 50;

// From the top: black, deep shadows, a ramp, and black once more; over all of it points of white
// and dim ones.
Image NightPicture() {
  Image image = lx_test::MakeImage(kWidth, kHeight, 4, lx::kSampleU16);
  std::mt19937 random(17);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      std::uint16_t* pixel = Samples<std::uint16_t>(image) + (y * kWidth + x) * 4;
      const std::uint32_t dice = random() % 400;
      for (int c = 0; c < 4; ++c) {
        const int dark = y < 15 || y >= 42 ? 0
                         : y < 28          ? static_cast<int>(random() % 40)
                                           : x * 65535 / (kWidth - 1);
        const int light = dice == 0 ? 65535 : dice == 1 ? 1000 + 100 * c : dark;
        pixel[c] = static_cast<std::uint16_t>(light);
      }
    }
  }
  return image;
}

struct Aperture {
  int shape;
  float radius;
  std::int32_t edge;
};

void ExpectPlainSums(const Aperture& aperture, float emphasis, bool ofAlpha) {
  const auto engine = lx_test::MakeFastEngine();
  const Image source = NightPicture();
  const Image dest = lx_test::MakeImage(kWidth, kHeight, 4, lx::kSampleU16);
  engine->BuildShapePsf(kWidth, kHeight, aperture.shape, aperture.radius, aperture.radius, 15.0F,
                        5);
  ASSERT_EQ(lx::kStatusOk, engine->GetStatus());
  engine->SetEmphasis(emphasis);
  engine->SetEmphasisAlpha(ofAlpha);
  engine->SetEdgeMode(aperture.edge);
  ASSERT_TRUE(engine->SetSourceImage(source.get()));

  ASSERT_TRUE(engine->Convolve(dest.get(), 15));

  const lx_test::PlainFrame plain(source, lx_test::MaskOf(*engine),
                                  {emphasis, ofAlpha, aperture.edge});
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const std::array<long double, 4> values = plain.At(x, y);
      for (int c = 0; c < 4; ++c) {
        const double expected =
            static_cast<double>(std::clamp(values[static_cast<std::size_t>(c)], 0.0L, 1.0L)) *
            65535.0;
        const int got = Samples<std::uint16_t>(dest)[(y * kWidth + x) * 4 + c];
        // Half a step is rounding; a step of 15 bits is two.
        ASSERT_NEAR(expected, got, 1.0)
            << "emphasis " << emphasis << (ofAlpha ? " and of alpha" : "") << ", radius "
            << aperture.radius << ", " << x << " " << y << ", channel " << c;
      }
    }
  }
}

std::string NameOf(const testing::TestParamInfo<float>& emphasis) {
  return std::to_string(static_cast<int>(emphasis.param));
}

class FastEmphasis : public testing::TestWithParam<float> {};

TEST_P(FastEmphasis, IsWithinHalfAStepOf15BitsOfPlainSums) {
  for (const Aperture& aperture : {Aperture{1, 6.0F, lx::kEdgeReplicate},
                                   {2, 12.0F, lx::kEdgeReplicate},
                                   {2, 9.0F, lx::kEdgeZero},
                                   {4, 5.0F, lx::kEdgeZero}}) {
    ASSERT_NO_FATAL_FAILURE(ExpectPlainSums(aperture, GetParam(), false));
  }
}

TEST_P(FastEmphasis, IsWithinHalfAStepOf15BitsOfPlainSumsForAlphaToo) {
  for (const std::int32_t edge : {lx::kEdgeReplicate, lx::kEdgeZero}) {
    ASSERT_NO_FATAL_FAILURE(ExpectPlainSums({2, 6.0F, edge}, GetParam(), true));
  }
}

INSTANTIATE_TEST_SUITE_P(Emphases, FastEmphasis,
                         testing::Values(20.0F, 50.0F, 75.0F, 76.0F, 100.0F, 200.0F, 300.0F,
                                         500.0F),
                         NameOf);

}  // namespace
