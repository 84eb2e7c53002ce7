// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "imagelib/imagelib.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;
using Line = std::vector<double>;

// The definition of the box, without a running sum: the mean over 2 r + 1 samples, indices
// clamped to the line.
Line Box(const Line& line, int r, int times, double limit) {
  const int n = static_cast<int>(line.size());
  r = std::min(r, n / 2);
  Line from = line;
  for (int i = 0; i < times; ++i) {
    Line to(from.size());
    for (int x = 0; x < n; ++x) {
      double sum = 0.0;
      for (int k = -r; k <= r; ++k) {
        sum += from[static_cast<std::size_t>(std::clamp(x + k, 0, n - 1))];
      }
      to[static_cast<std::size_t>(x)] = std::min(sum / (2 * r + 1), limit);
    }
    from = to;
  }
  return from;
}

Line NoiseLine(int n, double highest) {
  std::mt19937 random(11);
  Line line(static_cast<std::size_t>(n));
  for (double& v : line) {
    v = std::floor(random() / 4294967296.0 * (highest + 1.0));
  }
  return line;
}

template <class Sample>
Image ImageOf(const Line& line, std::uint32_t type) {
  Image image = MakeImage(static_cast<std::int32_t>(line.size()), 1, 1, type);
  for (std::size_t i = 0; i < line.size(); ++i) {
    Samples<Sample>(image)[i] = static_cast<Sample>(line[i]);
  }
  return image;
}

TEST(ImageBlur, RefusesNullAndNoSamples) {
  EXPECT_FALSE(lx::ImageBlur(nullptr, 1, 1, -1));
  EXPECT_FALSE(lx::ImageBlur(Image(lx::ImageCreate(4, 4, 1, 0, 0)).get(), 1, 1, -1));
}

TEST(ImageBlur, ChangesNothingWithoutChannelsOrRadii) {
  const Image image = MakeImage(8, 8, 1, 1);
  lx_test::FillNoise(image, 3);
  const Image before(lx::ImageClone(image.get()));
  const double nan = std::numeric_limits<double>::quiet_NaN();

  EXPECT_TRUE(lx::ImageBlur(image.get(), 2, 2, 0));
  EXPECT_TRUE(lx::ImageBlur(image.get(), 0, -1, -1));
  EXPECT_TRUE(lx::ImageBlur(image.get(), nan, nan, -1));

  EXPECT_EQ(0, std::memcmp(image->data, before->data, 128));
}

TEST(ImageBlur, ChangesNothingBelowAHundredthOfAPixel) {
  for (const std::uint32_t type : {0U, 1U, 2U, 3U}) {
    const Image image = MakeImage(8, 8, 1, type);
    std::memset(image->data, 0, 64 * image->elementBytes);
    static_cast<std::uint8_t*>(image->data)[image->elementBytes * 20] = 77;
    const Image before(lx::ImageClone(image.get()));

    EXPECT_TRUE(lx::ImageBlur(image.get(), 0.009, 0.009, -1));

    EXPECT_EQ(0, std::memcmp(image->data, before->data, 64 * image->elementBytes)) << type;
  }
}

TEST(ImageBlur, Blurs8BitLinesThreeTimesWithTheFraction) {
  for (const double radius : {1.0, 2.0, 1.01, 2.25, 3.6, 0.5}) {
    const Line line = NoiseLine(23, 255);
    const Image image = ImageOf<std::uint8_t>(line, 0);

    lx::ImageBlur(image.get(), radius, 0, -1);

    const int whole = static_cast<int>(std::floor(radius));
    const double fraction = radius - whole > 0.01 ? radius - whole : 0.0;
    const Line narrow = Box(line, whole, 3, 255);
    const Line wide = Box(line, whole + 1, 3, 255);
    for (std::size_t i = 0; i < line.size(); ++i) {
      const double expected = fraction * wide[i] + (1 - fraction) * narrow[i];
      // A sum in another order may fall on the other side of a half.
      EXPECT_NEAR(expected, Samples<std::uint8_t>(image)[i], 0.5000001) << radius << " " << i;
    }
  }
}

TEST(ImageBlur, TakesAHundredthAsWholeAndMoreAsFraction) {
  const Line line = NoiseLine(40, 255);
  const Image whole = ImageOf<std::uint8_t>(line, 0);
  const Image hundredth = ImageOf<std::uint8_t>(line, 0);
  const Image more = ImageOf<std::uint8_t>(line, 0);

  lx::ImageBlur(whole.get(), 1.0, 0, -1);
  lx::ImageBlur(hundredth.get(), 1.0078125, 0, -1);
  lx::ImageBlur(more.get(), 1.25, 0, -1);

  EXPECT_EQ(0, std::memcmp(whole->data, hundredth->data, 40));
  EXPECT_NE(0, std::memcmp(whole->data, more->data, 40));
}

TEST(ImageBlur, Blurs16And32BitLinesTwiceWithoutTheFraction) {
  for (const double radius : {1.0, 2.7}) {
    const int whole = static_cast<int>(std::floor(radius));
    const Line line16 = NoiseLine(23, 65535);
    const Image image16 = ImageOf<std::uint16_t>(line16, 1);
    lx::ImageBlur(image16.get(), radius, 0, -1);
    const Line expected16 = Box(line16, whole, 2, 65535);
    const Line line32 = NoiseLine(23, 4294967295.0);
    const Image image32 = ImageOf<std::uint32_t>(line32, 2);
    lx::ImageBlur(image32.get(), radius, 0, -1);
    const Line expected32 = Box(line32, whole, 2, 4294967295.0);

    for (std::size_t i = 0; i < line16.size(); ++i) {
      EXPECT_NEAR(expected16[i], Samples<std::uint16_t>(image16)[i], 0.5000001);
      EXPECT_NEAR(expected32[i], Samples<std::uint32_t>(image32)[i], 0.51);
    }
  }
}

TEST(ImageBlur, SpreadsAnImpulseOverTwoBoxesIn16BitAndThreeIn8Bit) {
  Line impulse(15, 0.0);
  impulse[7] = 255.0;
  const Image bytes = ImageOf<std::uint8_t>(impulse, 0);
  const Image words = ImageOf<std::uint16_t>(impulse, 1);

  lx::ImageBlur(bytes.get(), 1, 0, -1);
  lx::ImageBlur(words.get(), 1, 0, -1);

  // 255 / 27 * (1 3 6 7 6 3 1) and 255 / 9 * (1 2 3 2 1), rounded.
  const int threeFold[] = {0, 9, 28, 57, 66, 57, 28, 9, 0};
  const int twoFold[] = {0, 0, 28, 57, 85, 57, 28, 0, 0};
  for (int k = 0; k < 9; ++k) {
    EXPECT_EQ(threeFold[k], Samples<std::uint8_t>(bytes)[3 + k]) << k;
    EXPECT_EQ(twoFold[k], Samples<std::uint16_t>(words)[3 + k]) << k;
  }
}

TEST(ImageBlur, KeepsFloatLinesUnrounded) {
  const Line line{0.0, -2.0, 1.5, 1e6, 0.25, 3.0, 7.0};
  const Image image = ImageOf<float>(line, 3);

  lx::ImageBlur(image.get(), 1, 0, -1);

  const Line expected = Box(line, 1, 2, std::numeric_limits<float>::max());
  for (std::size_t i = 0; i < line.size(); ++i) {
    EXPECT_NEAR(expected[i], Samples<float>(image)[i], 1e-6 * 1e6);
  }
}

TEST(ImageBlur, LimitsTheRadiusToHalfALine) {
  const Line line = NoiseLine(9, 255);
  const Image half = ImageOf<std::uint8_t>(line, 0);
  const Image huge = ImageOf<std::uint8_t>(line, 0);

  lx::ImageBlur(half.get(), 4, 0, -1);
  lx::ImageBlur(huge.get(), 1e12, 0, -1);

  EXPECT_EQ(0, std::memcmp(half->data, huge->data, 9));
}

TEST(ImageBlur, TouchesOnlyChannelsOfTheMaskModulo32) {
  const Image image = MakeImage(9, 1, 34, 0);
  lx_test::Fill<std::uint8_t>(image, 0);
  for (int c = 0; c < 34; ++c) {
    Samples<std::uint8_t>(image)[4 * 34 + c] = 200;
  }

  lx::ImageBlur(image.get(), 1, 0, 2);  // channels 1 and 33

  for (int c = 0; c < 34; ++c) {
    EXPECT_EQ(c == 1 || c == 33, Samples<std::uint8_t>(image)[4 * 34 + c] != 200) << c;
  }
}

TEST(ImageBlur, GoesAlongRowsBeforeColumns) {
  const Image both = MakeImage(11, 13, 1, 0);
  const Image apart = MakeImage(11, 13, 1, 0);
  std::mt19937 random(5);
  for (int i = 0; i < 11 * 13; ++i) {
    Samples<std::uint8_t>(both)[i] = Samples<std::uint8_t>(apart)[i] =
        static_cast<std::uint8_t>(random());
  }

  lx::ImageBlur(both.get(), 1.3, 2.6, -1);
  lx::ImageBlur(apart.get(), 1.3, 0, -1);
  lx::ImageBlur(apart.get(), 0, 2.6, -1);

  EXPECT_EQ(0, std::memcmp(both->data, apart->data, 11 * 13));
}

TEST(ImageBlur, LeavesTheImageAndSaysTrueWithoutMemory) {
  const Image image = MakeImage(8, 8, 1, 1);
  lx_test::FillNoise(image, 3);
  const Image before(lx::ImageClone(image.get()));
  lx_test::HeapFaults heap;
  heap.RefuseAll();

  EXPECT_TRUE(lx::ImageBlur(image.get(), 2, 2, -1));

  EXPECT_EQ(0, std::memcmp(image->data, before->data, 128));
}

}  // namespace
