// SPDX-License-Identifier: BSD-3-Clause
// Alpha that is one value all over goes through fast as it is, and any other alpha does not.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/fftlib/backends/fast/plain_frame.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx_test::Image;
using lx_test::SampleAt;

constexpr int kWidth = 30;
constexpr int kHeight = 21;

// Noise, but alpha everywhere the same.
Image MakePicture(std::uint32_t type, std::uint32_t channels, double alpha) {
  Image image = lx_test::NoiseImage(kWidth, kHeight, channels, type, 13);
  for (std::size_t i = 3; i < SampleCount(image); i += channels) {
    lx_test::SetSample(image, i, alpha);
  }
  return image;
}

Image Blur(const Image& source, const lx::Look& look, std::vector<std::uint8_t>* mask = nullptr) {
  const auto engine = lx_test::MakeFastEngine();
  engine->BuildShapePsf(kWidth, kHeight, 1, 5.0F, 5.0F, 0.0F, 3);
  if (mask != nullptr) {
    *mask = lx_test::MaskOf(*engine);
  }
  Image dest = lx_test::MakeImage(kWidth, kHeight, source->channels, source->sampleType);
  lx_test::Fill<std::uint8_t>(dest, 0);
  engine->SetEmphasis(look.emphasis);
  engine->SetEmphasisAlpha(look.emphasisAlpha);
  engine->SetEdgeMode(look.edgeMode);
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  EXPECT_TRUE(engine->Convolve(dest.get(), 15));
  return dest;
}

TEST(EvenAlpha, StaysWhatItIsInEveryKindOfPicture) {
  struct {
    std::uint32_t type;
    std::vector<double> alphas;
  } const kinds[] = {
      {lx::kSampleU8, {0, 1, 127, 255}},
      {lx::kSampleU16, {0, 1, 32767, 65534, 65535}},
      // Of 32 bits alpha keeps the low half.
      {lx::kSampleU32, {0, 1, 40000}},
      {lx::kSampleFloat, {0, 0.25, 1}},
  };
  for (const auto& [type, alphas] : kinds) {
    for (const std::uint32_t channels : {4U, 5U}) {
      for (const double alpha : alphas) {
        for (const bool ofAlpha : {false, true}) {
          for (const float emphasis : {0.0F, 20.0F, 200.0F}) {
            const Image source = MakePicture(type, channels, alpha);
            const Image dest = Blur(source, {emphasis, ofAlpha, lx::kEdgeReplicate});
            for (std::size_t i = 3; i < SampleCount(dest); i += channels) {
              ASSERT_NEAR(alpha, SampleAt(dest, i), type == lx::kSampleFloat ? 1e-6 : 0.0)
                  << "type " << type << ", emphasis " << emphasis << ", sample " << i;
            }
          }
        }
      }
    }
  }
}

void ExpectPlainAlpha(const Image& source, const lx::Look& look) {
  std::vector<std::uint8_t> mask;
  const Image dest = Blur(source, look, &mask);
  const lx_test::PlainFrame plain(source, mask, look);
  const double full = lx_test::LargestSample(source->sampleType);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const auto expected = static_cast<double>(plain.At(x, y)[3]) * full;
      const std::size_t at = static_cast<std::size_t>(y * kWidth + x) * source->channels + 3;
      ASSERT_NEAR(expected, SampleAt(dest, at), 0.5 + 1e-6) << x << " " << y;
    }
  }
}

// In the first pixel, the last one, and one between: by more than a step of its blur.
TEST(EvenAlpha, IsBlurredAsSoonAsOnePixelDiffers) {
  for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16}) {
    const double full = lx_test::LargestSample(type);
    for (const std::uint32_t channels : {4U, 5U}) {
      for (const int pixel : {0, 1, 8 * kWidth - 1, 8 * kWidth, kWidth * kHeight - 1}) {
        const Image source = MakePicture(type, channels, full);
        lx_test::SetSample(source, static_cast<std::size_t>(pixel) * channels + 3, 0.0);
        ASSERT_NO_FATAL_FAILURE(ExpectPlainAlpha(source, {20.0F, false, lx::kEdgeReplicate}))
            << "type " << type << ", pixel " << pixel;
      }
    }
  }
}

TEST(EvenAlpha, FallsOffTowardsAnEdgeOfZeros) {
  const Image source = MakePicture(lx::kSampleU16, 4, 65535.0);
  ASSERT_NO_FATAL_FAILURE(ExpectPlainAlpha(source, {20.0F, false, lx::kEdgeZero}));
  ASSERT_NO_FATAL_FAILURE(ExpectPlainAlpha(source, {20.0F, true, lx::kEdgeZero}));
}

}  // namespace
