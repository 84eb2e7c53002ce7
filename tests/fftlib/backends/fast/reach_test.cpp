// SPDX-License-Identifier: BSD-3-Clause
// What an aperture reaches, against every pixel of it tried by itself.
#include "fftlib/backends/fast/reach.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "fftlib/backends/fast/mask_extent.h"
#include "tests/support/images.h"

namespace {

using lx::BitWord;
using lx_test::Image;

struct Case {
  int width;
  int height;
  int kind;     // of the mask
  double dark;  // share of pixels that are not marked
  bool repeats;
};

// 0 noise   1 sparse   2 a disc   3 one pixel in a corner   4 a row   5 a column at the edge
Image MakeMask(const Case& c, std::mt19937* random) {
  Image mask = lx_test::MakeImage(c.width, c.height, 1, lx::kSampleU8);
  lx_test::Fill<std::uint8_t>(mask, 0);
  auto* bytes = lx_test::Samples<std::uint8_t>(mask);
  const int corner = static_cast<int>((*random)() % 4);
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      const int dx = 2 * x - c.width;
      const int dy = 2 * y - c.height;
      const int radius = std::min(c.width, c.height);
      bool isSet = false;
      switch (c.kind) {
        case 0:
          isSet = (*random)() % 2 == 0;
          break;
        case 1:
          isSet = (*random)() % 50 == 0;
          break;
        case 2:
          isSet = dx * dx + dy * dy <= radius * radius / 4;
          break;
        case 3:
          isSet = x == (corner % 2 == 0 ? 0 : c.width - 1) && y == (corner < 2 ? 0 : c.height - 1);
          break;
        case 4:
          isSet = y == c.height / 2;
          break;
        default:
          isSet = x == (corner % 2 == 0 ? 0 : c.width - 1);
          break;
      }
      bytes[y * c.width + x] = isSet ? 7 : 0;
    }
  }
  bytes[(c.height / 2) * c.width + c.width / 2] |= c.kind < 3 ? 1 : 0;
  return mask;
}

void Check(const Case& c, std::uint32_t seed) {
  std::mt19937 random(seed);
  const Image mask = MakeMask(c, &random);
  const auto* bytes = lx_test::Samples<std::uint8_t>(mask);
  std::vector<double> values;
  for (int i = 0; i < c.width * c.height; ++i) {
    // Below the band, in it, its ends, and above.
    constexpr double kValues[] = {0.25, 0.5, 0.75, 1.0, 2.0};
    values.push_back(random() / 4294967296.0 < c.dark ? 0.0 : kValues[random() % 5]);
  }
  const auto isMarked = [&](int x, int y) {
    if (!c.repeats && (x < 0 || x >= c.width || y < 0 || y >= c.height)) {
      return false;
    }
    const double value = values[static_cast<std::size_t>(std::clamp(y, 0, c.height - 1)) * c.width +
                                std::clamp(x, 0, c.width - 1)];
    return value >= 0.5 && value < 1.0;
  };
  const lx::MaskExtent extent = lx::FindExtent(*mask);
  const std::size_t words = static_cast<std::size_t>(lx::BitWords(c.width));
  std::vector<BitWord> bits(words * c.height, ~BitWord{0});
  lx::MarkMask(*mask, extent, bits.data());
  const lx::Aperture aperture{extent, (c.width + 1) / 2, (c.height + 1) / 2, bits.data()};
  const lx::Reach reach(aperture, c.width, c.height, c.repeats);
  constexpr BitWord kGuard = 0x1234567;
  const auto rowWords = static_cast<std::size_t>(reach.RowWords());
  std::vector<BitWord> marked(rowWords * c.height + 1, kGuard);
  for (int y = 0; y < c.height; ++y) {
    reach.MarkRow(&values[static_cast<std::size_t>(y) * c.width], 0.5, 1.0, &marked[rowWords * y]);
  }
  ASSERT_EQ(kGuard, marked.back());
  std::vector<BitWord> reached(words + 1, kGuard);
  for (int y = 0; y < c.height; ++y) {
    reach.FindRow(marked.data(), y, reached.data());
    ASSERT_EQ(kGuard, reached.back());
    for (int x = 0; x < c.width; ++x) {
      bool expected = false;
      for (int v = 0; v < c.height && !expected; ++v) {
        for (int u = 0; u < c.width && !expected; ++u) {
          expected = bytes[v * c.width + u] != 0 &&
                     isMarked(x - (u - (c.width + 1) / 2), y - (v - (c.height + 1) / 2));
        }
      }
      const bool got = ((reached[static_cast<std::size_t>(x) / 64] >> (x % 64)) & 1U) != 0;
      ASSERT_EQ(expected, got) << c.width << " x " << c.height << ", mask " << c.kind << ", dark "
                               << c.dark << (c.repeats ? ", repeats" : "") << ", seed " << seed
                               << ": " << x << " " << y;
    }
  }
}

TEST(Reach, FindsWhatEveryPixelOfTheApertureReaches) {
  std::uint32_t seed = 1;
  for (const auto& [width, height] : {std::pair{1, 1},
                                      {1, 9},
                                      {9, 1},
                                      {2, 2},
                                      {13, 6},
                                      {31, 17},
                                      {63, 5},
                                      {64, 5},
                                      {65, 5},
                                      {127, 4},
                                      {128, 4},
                                      {129, 4},
                                      {200, 3}}) {
    for (int kind = 0; kind < 6; ++kind) {
      for (const double dark : {0.2, 0.95, 0.998}) {
        for (const bool repeats : {false, true}) {
          ASSERT_NO_FATAL_FAILURE(Check({width, height, kind, dark, repeats}, seed++));
        }
      }
    }
  }
}

}  // namespace
