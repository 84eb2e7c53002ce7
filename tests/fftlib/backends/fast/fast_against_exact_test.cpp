// SPDX-License-Identifier: BSD-3-Clause
// Frames of the back-end fast against those of exact, of fresh engines each.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/fftlib/backends/fast/plain_frame.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx_test::FrameCase;
using lx_test::Image;
using lx_test::SampleAt;

// Up to where exact is no noise.
constexpr float kEmphases[] = {0.0F, 1.5F, 20.0F, 50.0F, 75.0F};

// How near to a border plain sums must be that the last bits of a double decide, in steps of the
// sample: at exact ties alone they were seen to.
constexpr double kTie = 1e-6;

// Whether the mask reaches beyond what exact has around the frame: it takes what wraps around then.
bool WrapsInExact(const lx::DefocusEngine& engine, const FrameCase& c,
                  const std::vector<std::uint8_t>& mask) {
  const lx_test::Inside inside(engine);
  const int left = inside.offsetX();
  const int top = inside.offsetY();
  const int right = inside.paddedWidth() - left - c.width;
  const int bottom = inside.paddedHeight() - top - c.height;
  const std::vector<lx_test::PlainWeight> weights = lx_test::PlainWeights(mask, c.width, c.height);
  return std::any_of(weights.begin(), weights.end(), [&](const lx_test::PlainWeight& each) {
    return each.across > left || -each.across > right || each.down > top || -each.down > bottom;
  });
}

// How far plain sums are from the value at which a sample becomes the next one.
double DistanceFromBorder(const FrameCase& c, const lx_test::PlainFrame& plain, std::size_t i) {
  const std::size_t pixel = i / c.channels;
  const auto x = static_cast<int>(pixel % c.width);
  const auto y = static_cast<int>(pixel / c.width);
  const long double full = lx_test::LargestSample(c.sampleType);
  if (!c.stored) {
    const long double value = std::clamp(plain.At(x, y)[i % c.channels], 0.0L, 1.0L) * full;
    return static_cast<double>(std::abs(value - std::floor(value) - 0.5L));
  }
  // Cut to a whole number. Black raised to a power has a cliff at 0, below which there is no
  // number.
  const long double linear = plain.StoredAt(x, y, i % c.channels, c.gamma);
  if (!plain.IsRaised(i % c.channels, c.gamma)) {
    return static_cast<double>(std::abs(linear * full - std::round(linear * full)));
  }
  if (linear < 1e-12L) {
    return 0.0;
  }
  const long double shaped =
      std::clamp((std::pow(linear, 1.0L / c.gamma) + c.offset) * c.gain, 0.0L, 1.0L) * full;
  return static_cast<double>(std::abs(shaped - std::round(shaped)));
}

// Alpha of 32-bit pictures has 16 bits of a number.
double Difference(const FrameCase& c, std::size_t i, double a, double b) {
  const double difference = std::abs(a - b);
  const bool isCut = c.sampleType == lx::kSampleU32 && !c.stored && i % c.channels == 3;
  return isCut ? std::min(difference, 65536.0 - difference) : difference;
}

struct Count {
  std::size_t frames = 0;
  std::size_t samples = 0;
  std::size_t different = 0;
  std::size_t wrapped = 0;
};

// A frame of which exact takes what wraps around: some of its pixels against plain sums.
void CompareWithPlainSums(const FrameCase& c, const Image& fast, const lx_test::PlainFrame& plain) {
  constexpr std::size_t kPixels = 300;
  const std::size_t count = static_cast<std::size_t>(c.width) * c.height;
  const double full = lx_test::LargestSample(c.sampleType);
  for (std::size_t pixel = 0; pixel < count; pixel += 1 + count / kPixels) {
    const auto values =
        plain.At(static_cast<int>(pixel % c.width), static_cast<int>(pixel / c.width));
    for (std::size_t channel = 0; channel < std::min<std::size_t>(c.channels, 4); ++channel) {
      const auto expected = static_cast<double>(std::clamp(values[channel], 0.0L, 1.0L)) * full;
      ASSERT_NEAR(expected, SampleAt(fast, pixel * c.channels + channel), 0.5 + kTie)
          << c << ": pixel " << pixel << ", channel " << channel;
    }
  }
}

void Compare(const FrameCase& c, Count* count) {
  lx::DefocusEngine exactEngine;
  LoadAperture(&exactEngine, c);
  ASSERT_EQ(lx::kStatusOk, exactEngine.GetStatus()) << c;
  const std::vector<std::uint8_t> mask = lx_test::MaskOf(exactEngine);
  const Image fast = RenderCase(lx_test::MakeFastEngine().get(), c);
  const Image source = MakeSource(c);
  const lx_test::PlainFrame plain(source, mask, c.Look());
  const bool isWide = c.sampleType == lx::kSampleU32;
  ++count->frames;
  if (WrapsInExact(exactEngine, c, mask)) {
    ++count->wrapped;
    if (!c.stored && !isWide) {
      CompareWithPlainSums(c, fast, plain);
    }
    return;
  }
  const Image exact = RenderLoaded(&exactEngine, c);
  for (std::size_t i = 0; i < SampleCount(exact); ++i) {
    ++count->samples;
    const double got = SampleAt(fast, i);
    const double difference = Difference(c, i, SampleAt(exact, i), got);
    if (difference == 0.0) {
      continue;
    }
    ++count->different;
    const bool isCliff = c.stored && plain.IsRaised(i % c.channels, c.gamma);
    if (isWide && !isCliff) {
      // A step of 32 bits is near the precision that the curve's inverse leaves of a double.
      ASSERT_GE(c.emphasis > 50.0F ? 16.0 : 1.0, difference) << c << ": sample " << i;
      continue;
    }
    if (!isCliff) {
      ASSERT_EQ(1.0, difference) << c << ": sample " << i << " is " << got;
    }
    ASSERT_GE(isWide ? 1e-3 : kTie, DistanceFromBorder(c, plain, i))
        << c << ": sample " << i << " is " << got << ", and " << SampleAt(exact, i) << " by exact";
  }
}

void CompareRandom(std::uint32_t firstSeed, std::uint32_t frames, int largest) {
  Count pictures;
  Count stored;
  for (std::uint32_t seed = firstSeed; seed < firstSeed + frames; ++seed) {
    const FrameCase c = lx_test::RandomCase(seed, largest, kEmphases);
    Compare(c, c.stored ? &stored : &pictures);
    if (testing::Test::HasFatalFailure()) {
      return;
    }
  }
  // A sample in two hundred. Stored channels are cut, so that whatever was flat is a tie.
  EXPECT_LE(200 * pictures.different, pictures.samples);
  EXPECT_LE(20 * stored.different, stored.samples);
  EXPECT_LE(10 * pictures.wrapped, pictures.frames) << "too few are compared with exact";
}

TEST(FastAgainstExact, DiffersFromItAtTiesAloneInSmallFrames) { CompareRandom(1, 500, 60); }

TEST(FastAgainstExact, DiffersFromItAtTiesAloneInLargerFrames) { CompareRandom(5000, 60, 200); }

FrameCase LargeCase(float emphasis) {
  FrameCase c{};
  c.seed = 7;
  c.width = 1920;
  c.height = 1080;
  c.shape = 2;
  c.radiusX = c.radiusY = 20.0F;
  c.rotation = 10.0F;
  c.sides = 7;
  c.aspectX = c.aspectY = 1.0F;
  c.edgeMode = lx::kEdgeReplicate;
  c.sampleType = lx::kSampleU16;
  c.channels = 4;
  c.emphasis = emphasis;
  c.gamma = c.gain = 1.0F;
  return c;
}

TEST(FastAgainstExact, DiffersFromItAtTiesAloneInAFrameOfFullSize) {
  Count count;
  Compare(LargeCase(20.0F), &count);
  EXPECT_LE(200 * count.different, count.samples);
  EXPECT_EQ(0U, count.wrapped);
}

// On pixels twice as wide as high an ellipse of 10 reaches 20 down: beyond the margin of 11, which
// is what exact has around a frame of 42.
TEST(FastAgainstExact, BlursAsPlainSumsDoWhereExactTakesWhatWrapsAround) {
  FrameCase c = LargeCase(0.0F);
  c.width = 42;
  c.height = 42;
  c.shape = 1;
  c.radiusX = c.radiusY = 10.0F;
  c.aspectY = 0.5F;
  for (const std::int32_t edge : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    c.edgeMode = edge;
    Count count;
    Compare(c, &count);
    EXPECT_EQ(1U, count.wrapped);
  }
}

}  // namespace
