// SPDX-License-Identifier: BSD-3-Clause
// Pictures of floats through the back-end fast: as they are without emphasis; with it above 1 as a
// straight line, so that nothing is cut and nothing jumps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "fftlib/backends/fast/fast_backend.h"
#include "fftlib/core/rows.h"
#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/fftlib/backends/fast/plain_frame.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx_test::Image;
using lx_test::Samples;

constexpr int kWidth = 40;
constexpr int kHeight = 30;
constexpr float kEmphases[] = {1.5F, 20.0F, 50.0F, 75.0F, 200.0F};

Image Constant(float value) {
  Image image = lx_test::MakeImage(kWidth, kHeight, 4, lx::kSampleFloat);
  lx_test::Fill(image, value);
  return image;
}

// Through a hexagon of 6 pixels.
Image Blur(const Image& source, float emphasis = 0.0F, std::int32_t edge = lx::kEdgeReplicate,
           std::vector<std::uint8_t>* mask = nullptr) {
  const auto engine = lx_test::MakeFastEngine();
  Image dest = lx_test::MakeImage(kWidth, kHeight, source->channels, source->sampleType);
  lx_test::Fill<std::uint8_t>(dest, 0);
  engine->BuildShapePsf(kWidth, kHeight, 2, 6.0F, 6.0F, 10.0F, 6);
  EXPECT_EQ(lx::kStatusOk, engine->GetStatus());
  if (mask != nullptr) {
    *mask = lx_test::MaskOf(*engine);
  }
  engine->SetEmphasis(emphasis);
  engine->SetEmphasisAlpha(true);
  EXPECT_TRUE(engine->SetEdgeMode(edge));
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  EXPECT_TRUE(engine->Convolve(dest.get(), 15));
  return dest;
}

TEST(FastFloat, BlursAsPlainSumsDoBelowZeroAndAboveOneToo) {
  const Image source = lx_test::NoiseImage(kWidth, kHeight, 4, lx::kSampleFloat, 3, -2.0, 7.0);
  for (const std::int32_t edge : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    std::vector<std::uint8_t> mask;
    const Image dest = Blur(source, 0.0F, edge, &mask);

    lx::Look look;
    look.edgeMode = edge;
    const lx_test::PlainFrame plain(source, mask, look);
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const auto expected = plain.At(x, y);
        for (int c = 0; c < 4; ++c) {
          // Two floats' last bits apart at most.
          ASSERT_NEAR(static_cast<double>(expected[c]),
                      Samples<float>(dest)[(y * kWidth + x) * 4 + c], 1e-6)
              << x << " " << y << " " << c;
        }
      }
    }
  }
}

TEST(FastFloat, KeepsTheSumOfALightThatIsThousandTimesWhite) {
  const Image source = Constant(0.0F);
  float* light = Samples<float>(source) + ((kHeight / 2) * kWidth + kWidth / 2) * 4;
  std::fill_n(light, 4, 1000.0F);

  const Image dest = Blur(source);

  for (int c = 0; c < 4; ++c) {
    double sum = 0.0;
    for (int i = 0; i < kWidth * kHeight; ++i) {
      sum += Samples<float>(dest)[4 * i + c];
    }
    // The colour transform there and back errs by a millionth.
    EXPECT_NEAR(1000.0, sum, 2e-3) << c;
  }
}

TEST(FastFloat, TakesWhatIsNoNumberOrNotFiniteForZero) {
  using Limits = std::numeric_limits<float>;
  const Image clean = lx_test::NoiseImage(kWidth, kHeight, 4, lx::kSampleFloat, 4);
  const Image broken = lx_test::NoiseImage(kWidth, kHeight, 4, lx::kSampleFloat, 4);
  int at = 77;
  for (const float value : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
    for (int channel = 0; channel < 4; ++channel, at += 129) {
      Samples<float>(clean)[at] = 0.0F;
      Samples<float>(broken)[at] = value;
    }
  }
  for (const float emphasis : {0.0F, 20.0F, 200.0F}) {
    EXPECT_TRUE(lx_test::SameSamples(Blur(clean, emphasis), Blur(broken, emphasis))) << emphasis;
  }
}

TEST(FastFloat, LeavesAnEvenPictureAsItIsAtAnyEmphasis) {
  for (const float emphasis : kEmphases) {
    for (const float value : {0.0F, 0.5F, 0.999F, 1.0F, 1.001F, 3.0F, 1000.0F, 1e12F, 1e30F}) {
      const Image dest = Blur(Constant(value), emphasis);
      const auto* samples = Samples<float>(dest);
      const auto [least, most] = std::minmax_element(samples, samples + SampleCount(dest));
      EXPECT_NEAR(value, *least, 2e-6 * std::max(value, 1.0F)) << emphasis;
      EXPECT_NEAR(value, *most, 2e-6 * std::max(value, 1.0F)) << emphasis;
    }
  }
}

// The middle of the image of one light in the dark.
float MiddleOfLight(float value, float emphasis) {
  const Image source = Constant(0.1F);
  std::fill_n(Samples<float>(source) + (15 * kWidth + 20) * 4, 4, value);
  return Samples<float>(Blur(source, emphasis))[(15 * kWidth + 20) * 4];
}

TEST(FastFloat, RisesWithALightThatPassesWhite) {
  for (const float emphasis : kEmphases) {
    float last = 0.0F;
    for (const float value : {0.5F, 0.9F, 0.99F, 0.999F, 1.0F, 1.001F, 1.01F, 1.1F, 2.0F, 9.0F}) {
      const float got = MiddleOfLight(value, emphasis);
      EXPECT_LT(last, got) << emphasis << " at " << value;
      last = got;
    }
  }
}

// The line above white has the curve's slope there. With less emphasis a float would not show what
// a step this small makes, with more the curve bends within it.
TEST(FastFloat, RisesAsSteeplyBeforeWhiteAsBehindIt) {
  constexpr float kStep = 0x1p-17F;
  for (const float emphasis : {20.0F, 50.0F}) {
    const float at = MiddleOfLight(1.0F, emphasis);
    const float before = at - MiddleOfLight(1.0F - kStep, emphasis);
    const float behind = MiddleOfLight(1.0F + kStep, emphasis) - at;
    EXPECT_NEAR(1.0, before / behind, 0.03) << emphasis;
  }
}

// Twice as much above white is twice as much of a wide light's middle above white.
TEST(FastFloat, KeepsHowBrightALightIsAboveWhite) {
  for (const float emphasis : kEmphases) {
    const auto middle = [&](float value) {
      const Image source = Constant(0.2F);
      for (int y = 5; y < 25; ++y) {
        for (int x = 10; x < 30; ++x) {
          std::fill_n(Samples<float>(source) + (y * kWidth + x) * 4, 4, value);
        }
      }
      return Samples<float>(Blur(source, emphasis))[(15 * kWidth + 20) * 4];
    };
    EXPECT_NEAR(5.0, middle(5.0F), 1e-4) << emphasis;
    EXPECT_NEAR(9.0, middle(9.0F), 1e-4) << emphasis;
  }
}

TEST(FastFloat, GivesWithinZeroAndOneWhatAPictureOf16BitsGives) {
  const Image narrow = lx_test::NoiseImage(kWidth, kHeight, 4, lx::kSampleU16, 6);
  const Image source = lx_test::MakeImage(kWidth, kHeight, 4, lx::kSampleFloat);
  for (std::size_t i = 0; i < SampleCount(narrow); ++i) {
    Samples<float>(source)[i] = static_cast<float>(Samples<std::uint16_t>(narrow)[i] / 65535.0);
  }
  for (const float emphasis : {0.0F, 1.5F, 20.0F, 50.0F, 75.0F}) {
    const Image expected = Blur(narrow, emphasis);
    const Image dest = Blur(source, emphasis);
    for (std::size_t i = 0; i < SampleCount(dest); ++i) {
      // A float has 24 bits of a sample, of which the curve takes some.
      const double got = std::clamp(Samples<float>(dest)[i], 0.0F, 1.0F) * 65535.0;
      ASSERT_NEAR(Samples<std::uint16_t>(expected)[i], got, 0.6) << emphasis << ", " << i;
    }
  }
}

// The engine's own checks ask for three channels, so it goes past them.
TEST(FastFloat, TakesASingleChannelForTheLumaOfAGreyPicture) {
  for (const float emphasis : {0.0F, 20.0F, 200.0F}) {
    const Image grey = lx_test::NoiseImage(kWidth, kHeight, 1, lx::kSampleFloat, 8, 0.0, 3.0);
    const Image colours = lx_test::MakeImage(kWidth, kHeight, 3, lx::kSampleFloat);
    for (int i = 0; i < kWidth * kHeight; ++i) {
      std::fill_n(Samples<float>(colours) + i * 3, 3, Samples<float>(grey)[i]);
    }
    const Image mask = lx_test::MakeImage(kWidth, kHeight, 1, lx::kSampleU8);
    lx_test::Fill<std::uint8_t>(mask, 0);
    std::fill_n(Samples<std::uint8_t>(mask) + 14 * kWidth + 17, 5, std::uint8_t{255});
    std::fill_n(Samples<std::uint8_t>(mask) + 15 * kWidth + 19, 3, std::uint8_t{90});
    lx::FastBackend backend;
    lx::Rows rows(&rows, [](void* owner, std::int32_t count) {
      static_cast<lx::Rows*>(owner)->RunRange(0, count - 1);
    });
    const lx::GridSides sides = backend.GridOf(*mask, 0);
    const lx::GridPlace place = lx::PlaceFrame(
        {kWidth, kHeight},
        {static_cast<std::int32_t>(sides.width), static_cast<std::int32_t>(sides.height)});
    ASSERT_EQ(lx::kStatusOk, backend.Load(*mask, place, &rows));
    const lx::Look look{emphasis, false, lx::kEdgeZero};
    for (const Image* image : {&grey, &colours}) {
      ASSERT_EQ(lx::kStatusOk,
                backend.Convolve({image->get(), image->get(), place, 7}, look, &rows));
    }
    for (int i = 0; i < kWidth * kHeight; ++i) {
      const float* pixel = Samples<float>(colours) + i * 3;
      const double luma = 0.299 * pixel[0] + 0.587 * pixel[1] + 0.114 * pixel[2];
      ASSERT_NEAR(luma, Samples<float>(grey)[i], 3e-6) << emphasis;
    }
  }
}

TEST(FastFloat, HasNoColourAroundAGreyPicture) {
  const Image dest = Blur(Constant(0.5F), 0.0F, lx::kEdgeZero);
  const float* pixels = Samples<float>(dest);
  EXPECT_LT(pixels[0], 0.3F);  // as black comes in from two sides
  for (int i = 0; i < kWidth * kHeight * 4; i += 4) {
    ASSERT_NEAR(pixels[i], pixels[i + 1], 1e-6);
    ASSERT_NEAR(pixels[i], pixels[i + 2], 1e-6);
  }
}

// What a transform rounds off the light would be some 1e-5 there.
TEST(FastFloat, LeavesDarknessBesideALightOfTheSunAsItIs) {
  const Image source = Constant(0.0F);
  std::fill_n(Samples<float>(source) + (5 * kWidth + 6) * 4, 4, 65504.0F);
  const Image dest = Blur(source, 50.0F);
  const float* pixels = Samples<float>(dest);
  EXPECT_GT(pixels[(5 * kWidth + 6) * 4], 100.0F);
  for (int x = 20; x < kWidth * 4; ++x) {
    ASSERT_LE(std::fabs(pixels[20 * kWidth * 4 + x]), 1e-8F);
  }
}

}  // namespace
