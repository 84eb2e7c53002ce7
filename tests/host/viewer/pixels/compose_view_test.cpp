// SPDX-License-Identifier: BSD-3-Clause
// Pixels of the screen against numbers worked out by hand.
#include "host/viewer/pixels/compose_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace glimmerhost {
namespace {

using Pixels = std::vector<std::uint32_t>;
using Greys = std::vector<int>;

Picture Of(int width, int height, std::vector<std::uint16_t> samples) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.samples = std::move(samples);
  return picture;
}

Picture OfFloats(int width, int height, std::vector<float> floats) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.floats = std::move(floats);
  return picture;
}

// Each grey, opaque.
Picture Grey(int width, int height, const std::vector<int>& greys) {
  Picture picture = Of(width, height, {});
  for (const int grey : greys) {
    const auto sample = static_cast<std::uint16_t>(grey);
    picture.samples.insert(picture.samples.end(), {sample, sample, sample, 65535});
  }
  return picture;
}

ViewPlace At(double zoom, double left, double top, int width, int height) {
  return {zoom, left, top, width, height};
}

// The blue of each pixel, and -1 outside the picture.
Greys GreysOf(const ViewPixels& view) {
  Greys greys;
  for (const std::uint32_t pixel : view.pixels) {
    greys.push_back(pixel == 0 ? -1 : static_cast<int>(pixel & 0xffU));
  }
  return greys;
}

Greys Shown(const Picture& picture, const ViewSettings& settings, const ViewPlace& place) {
  return GreysOf(ComposeView(picture, nullptr, settings, place));
}

TEST(ComposeView, ShowsPixelsOneToOneAndNothingAroundThem) {
  const Picture picture = Of(2, 1, {65535, 0, 257, 65535, 0, 32768, 128, 0});

  const ViewPixels view = ComposeView(picture, nullptr, {}, At(1.0, 1.0, 1.0, 4, 3));

  EXPECT_EQ(4, view.width);
  EXPECT_EQ(3, view.height);
  EXPECT_EQ((Pixels{0, 0, 0, 0, 0, 0xffff0001, 0xff008000, 0, 0, 0, 0, 0}), view.pixels);
}

// Each of the 65,536, to the nearest of 256.
TEST(ComposeView, ShowsEachValueAsTheNearestOfTheScreens) {
  Greys expected;
  std::vector<int> values;
  for (int value = 0; value < 65536; ++value) {
    values.push_back(value);
    expected.push_back((value + 128) / 257);
  }

  EXPECT_EQ(expected, Shown(Grey(256, 256, values), {}, At(1.0, 0.0, 0.0, 256, 256)));
}

TEST(ComposeView, MakesSquaresOfPixelsAboveOneToOne) {
  const Picture picture = Grey(2, 2, {257, 514, 771, 1028});

  EXPECT_EQ((Greys{1, 1, 1, 2, 2, 2,  //
                   1, 1, 1, 2, 2, 2,  //
                   1, 1, 1, 2, 2, 2,  //
                   3, 3, 3, 4, 4, 4}),
            Shown(picture, {}, At(3.0, 0.0, 0.0, 6, 4)));
  // Middles at 0.33, 1.0 and 1.67 of the picture.
  EXPECT_EQ((Greys{1, 2, 2}), Shown(picture, {}, At(1.5, 0.0, 0.0, 3, 1)));
  // The corner is beyond the viewport's, and the middles of its pixels decide.
  EXPECT_EQ((Greys{1, 2, -1, -1}), Shown(picture, {}, At(1.5, -0.9, -0.4, 4, 1)));
}

TEST(ComposeView, ShowsTheMeanOfWhatAPixelCovers) {
  const Picture picture = Grey(4, 2, {0, 2570, 257, 257, 5140, 7710, 257, 257});
  EXPECT_EQ((Greys{15, 1}), Shown(picture, {}, At(0.5, 0.0, 0.0, 2, 1)));

  // One and a half pixels for each of the screen: (2 * 3 + 1 * 9) / 3 and (1 * 9 + 2 * 30) / 3.
  EXPECT_EQ((Greys{5, 23}), Shown(Grey(3, 3,
                                       {3 * 257, 9 * 257, 30 * 257,  //
                                        3 * 257, 9 * 257, 30 * 257,  //
                                        3 * 257, 9 * 257, 30 * 257}),
                                  {}, At(2.0 / 3.0, 0.0, 0.0, 2, 1)));

  // Of a pixel that is half outside, the inner half counts.
  EXPECT_EQ((Greys{-1, 10, 3}),
            Shown(Grey(3, 2, {10 * 257, 2 * 257, 4 * 257, 10 * 257, 2 * 257, 4 * 257}), {},
                  At(0.5, 1.5, 0.0, 3, 1)));
}

// The definition, pixel by pixel in double.
double MeanOf(const Picture& picture, double left, double top, double size, int channel) {
  double sum = 0.0;
  double area = 0.0;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const double across = std::min(left + size, x + 1.0) - std::max(left, double(x));
      const double down = std::min(top + size, y + 1.0) - std::max(top, double(y));
      if (across > 0.0 && down > 0.0) {
        const std::size_t at = static_cast<std::size_t>(y * picture.width + x) * 4;
        sum += across * down *
               (picture.IsFloat() ? picture.floats[at + static_cast<std::size_t>(channel)] * 65535.0
                                  : picture.samples[at + static_cast<std::size_t>(channel)]);
        area += across * down;
      }
    }
  }
  return sum / area;
}

TEST(ComposeView, TakesMeansAsTheirDefinitionDoes) {
  std::mt19937 random(7);
  Picture words = Of(37, 23, {});
  Picture floats = OfFloats(37, 23, {});
  for (int i = 0; i < 37 * 23 * 4; ++i) {
    words.samples.push_back(static_cast<std::uint16_t>(random()));
    floats.floats.push_back(static_cast<float>(words.samples.back()) / 65535.0F);
  }
  for (const double zoom : {0.07, 0.2, 0.25, 1.0 / 3.0, 0.47, 0.5, 0.73, 0.99}) {
    for (const Picture& picture : {words, floats}) {
      const ViewPixels view = ComposeView(picture, nullptr, {}, At(zoom, -1.0, 2.0, 40, 30));
      for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
          const double left = (x + 1.0) / zoom;
          const double top = (y - 2.0) / zoom;
          const bool isInside = left + 0.5 / zoom >= 0.0 && left + 0.5 / zoom < 37.0 &&
                                top + 0.5 / zoom >= 0.0 && top + 0.5 / zoom < 23.0;
          const std::uint32_t pixel = view.pixels[static_cast<std::size_t>(y * 40 + x)];
          ASSERT_EQ(isInside, pixel != 0) << zoom << ": " << x << ", " << y;
          for (int c = 0; isInside && c < 3; ++c) {
            const double mean = MeanOf(picture, left, top, 1.0 / zoom, c) / 257.0;
            // A step of the screen, for means that lie halfway.
            ASSERT_NEAR(mean, pixel >> (16 - 8 * c) & 0xffU, 0.51)
                << zoom << ": " << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST(ComposeView, KeepsAnEvenPictureEvenAtEveryZoom) {
  const Picture picture = Grey(50, 30, std::vector<int>(1500, 200 * 257));
  for (double zoom = 1.0 / 16.0; zoom <= 64.0; zoom *= 1.13) {
    const ViewPixels view = ComposeView(picture, nullptr, {}, At(zoom, -3.3, -5.7, 64, 64));
    EXPECT_TRUE(std::all_of(view.pixels.begin(), view.pixels.end(), [](std::uint32_t pixel) {
      return pixel == 0 || pixel == 0xffc8c8c8;
    })) << zoom;
  }
}

TEST(ComposeView, ShowsNothingOfAPictureThatIsElsewhere) {
  const Picture picture = Grey(4, 4, std::vector<int>(16, 65535));
  for (const double zoom : {0.25, 1.0, 8.0}) {
    for (const double left : {-100.0, 100.0}) {
      EXPECT_EQ(Greys(9, -1), Shown(picture, {}, At(zoom, left, 0.0, 3, 3))) << zoom;
      EXPECT_EQ(Greys(9, -1), Shown(picture, {}, At(zoom, 0.0, left, 3, 3))) << zoom;
    }
  }
  EXPECT_TRUE(ComposeView(picture, nullptr, {}, At(1.0, 0.0, 0.0, 0, 0)).pixels.empty());
}

TEST(ComposeView, AppliesExposureThenCutsThenGamma) {
  const Picture picture = Grey(4, 1, {0, 4 * 257, 128 * 257, 200 * 257});
  const ViewPlace place = At(1.0, 0.0, 0.0, 4, 1);
  ViewSettings settings;

  settings.exposure = 1.0;
  EXPECT_EQ((Greys{0, 8, 255, 255}), Shown(picture, settings, place));
  settings.exposure = -2.0;
  EXPECT_EQ((Greys{0, 1, 32, 50}), Shown(picture, settings, place));
  settings.exposure = 0.0;
  settings.gamma = 2.0;
  // The roots of 4, 128 and 200 of 255, times 255: 31.9, 180.7, 225.8.
  EXPECT_EQ((Greys{0, 32, 181, 226}), Shown(picture, settings, place));
  settings.exposure = 1.0;
  EXPECT_EQ((Greys{0, 45, 255, 255}), Shown(picture, settings, place));
}

TEST(ComposeView, ShowsWhatFloatsHoldAboveWhite) {
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  const float none = std::numeric_limits<float>::quiet_NaN();
  Picture picture = OfFloats(6, 1, {});
  for (const float value : {4.0F, 2.0F, 0.5F, -1.0F, kInfinite, none}) {
    picture.floats.insert(picture.floats.end(), {value, value, value, 1.0F});
  }
  ViewSettings settings;
  const ViewPlace place = At(1.0, 0.0, 0.0, 6, 1);

  EXPECT_EQ((Greys{255, 255, 128, 0, 255, 0}), Shown(picture, settings, place));
  settings.exposure = -2.0;
  EXPECT_EQ((Greys{255, 128, 32, 0, 255, 0}), Shown(picture, settings, place));
  settings.gamma = 2.0;
  // The roots of 1, 0.5 and 0.125.
  EXPECT_EQ((Greys{255, 180, 90, 0, 255, 0}), Shown(picture, settings, place));
}

TEST(ComposeView, ShowsOneChannelInGrey) {
  const Picture picture = Of(2, 1, {10 * 257, 20 * 257, 30 * 257, 40 * 257, 0, 65535, 0, 0});
  const auto shown = [&](ViewChannel channel) {
    ViewSettings settings;
    settings.channel = channel;
    return ComposeView(picture, nullptr, settings, At(1.0, 0.0, 0.0, 2, 1)).pixels;
  };

  EXPECT_EQ((Pixels{0xff0a141e, 0xff00ff00}), shown(ViewChannel::kColour));
  EXPECT_EQ((Pixels{0xff0a0a0a, 0xff000000}), shown(ViewChannel::kRed));
  EXPECT_EQ((Pixels{0xff141414, 0xffffffff}), shown(ViewChannel::kGreen));
  EXPECT_EQ((Pixels{0xff1e1e1e, 0xff000000}), shown(ViewChannel::kBlue));
  EXPECT_EQ((Pixels{0xff282828, 0xff000000}), shown(ViewChannel::kOpacity));
  // 0.299 * 10 + 0.587 * 20 + 0.114 * 30 is 18.15, and 0.587 * 255 is 149.7.
  EXPECT_EQ((Pixels{0xff121212, 0xff969696}), shown(ViewChannel::kLuma));
}

class Wipes : public testing::Test {
 public:
  Greys At4(double zoom = 1.0) const {
    const ViewPixels view =
        ComposeView(before, &after, settings,
                    At(zoom, 1.0, 0.0, static_cast<int>(std::lround(4 * zoom)) + 2, 1));
    return GreysOf(view);
  }

  const Picture before = Grey(4, 1, {257, 514, 771, 1028});
  const Picture after = Grey(4, 1, {2570, 5140, 7710, 10280});
  ViewSettings settings;
};

TEST_F(Wipes, ShowAfterAloneUnlessTheyAreOn) { EXPECT_EQ((Greys{-1, 10, 20, 30, 40, -1}), At4()); }

TEST_F(Wipes, ShowBeforeOnTheLeftAndAfterOnTheRight) {
  settings.wipes = true;
  settings.wipe = 0.5;
  EXPECT_EQ((Greys{-1, 1, 2, 30, 40, -1}), At4());
  settings.wipe = 0.0;
  EXPECT_EQ((Greys{-1, 10, 20, 30, 40, -1}), At4());
  settings.wipe = 1.0;
  EXPECT_EQ((Greys{-1, 1, 2, 3, 4, -1}), At4());
  // Within a pixel: the screen's, not the picture's, is cut.
  settings.wipe = 0.375;
  EXPECT_EQ((Greys{-1, 1, 1, 2, 20, 30, 30, 40, 40, -1}), At4(2.0));
}

TEST_F(Wipes, ShowBeforeAloneWhereThatIsAskedFor) {
  settings.wipes = true;
  settings.showsBefore = true;
  EXPECT_EQ((Greys{-1, 1, 2, 3, 4, -1}), At4());
}

TEST(Proxies, AreBroughtToThePlaceOfTheWhole) {
  const Picture before = Grey(4, 2, std::vector<int>(8, 0));
  const Picture proxy = Grey(2, 1, {0, 65535});

  // Between the two middles it goes up evenly.
  EXPECT_EQ((Greys{-1, 0, 64, 191, 255, -1, -1, 0, 64, 191, 255, -1}),
            GreysOf(ComposeView(before, &proxy, {}, At(1.0, 1.0, 0.0, 6, 2))));
  // Where the proxy itself is more than the screen has, its mean.
  const Picture square = Grey(4, 4, std::vector<int>(16, 0));
  const Picture smaller = Grey(2, 2, {0, 65535, 0, 65535});
  EXPECT_EQ(Greys{128}, GreysOf(ComposeView(square, &smaller, {}, At(0.25, 0.0, 0.0, 1, 1))));
}

TEST(Proxies, OfAnEvenPictureAreEven) {
  const Picture before = Grey(9, 7, std::vector<int>(63, 0));
  const Picture proxy = Of(5, 4, [] {
    std::vector<std::uint16_t> samples;
    for (int i = 0; i < 20; ++i) {
      samples.insert(samples.end(), {2570, 51400, 65535, 65535});
    }
    return samples;
  }());
  for (const double zoom : {0.3, 1.0, 1.7, 5.0}) {
    const ViewPixels view = ComposeView(before, &proxy, {}, At(zoom, 0.0, 0.0, 9, 7));
    EXPECT_TRUE(std::all_of(view.pixels.begin(), view.pixels.end(), [](std::uint32_t pixel) {
      return pixel == 0 || pixel == 0xff0ac8ff;
    })) << zoom;
  }
}

// Squares, and notes how many pixels it got.
class Display final : public ColourTransform {
 public:
  void Apply(std::vector<float>* colours) const override {
    pixels += colours->size() / 3;
    for (float& value : *colours) {
      value *= value;
    }
  }

  mutable std::size_t pixels = 0;
};

class Displays : public testing::Test {
 public:
  Displays() { settings.display = display; }

  std::shared_ptr<const Display> display = std::make_shared<const Display>();
  ViewSettings settings;
};

TEST_F(Displays, GetColoursAfterTheExposureAndBeforeTheGamma) {
  const Picture words = Grey(1, 1, {102 * 257});
  const Picture floats = OfFloats(1, 1, {0.4F, 0.4F, 0.4F, 1.0F});
  const ViewPlace place = At(1.0, 0.0, 0.0, 1, 1);

  // 0.4 * 0.4 of 255 is 40.8.
  EXPECT_EQ(Greys{41}, Shown(words, settings, place));
  EXPECT_EQ(Greys{41}, Shown(floats, settings, place));
  // 0.8 * 0.8 is 163.2, and not 2 * 40.8.
  settings.exposure = 1.0;
  EXPECT_EQ(Greys{163}, Shown(words, settings, place));
  EXPECT_EQ(Greys{163}, Shown(floats, settings, place));
  // The root takes the square away.
  settings.gamma = 2.0;
  EXPECT_EQ(Greys{204}, Shown(words, settings, place));
  EXPECT_EQ(Greys{204}, Shown(floats, settings, place));
}

TEST_F(Displays, GetAChannelAloneAsAGreyPictureAndNoAlpha) {
  const Picture picture = Of(1, 1, {102 * 257, 0, 0, 102 * 257});
  const auto shown = [&](ViewChannel channel) {
    settings.channel = channel;
    return ComposeView(picture, nullptr, settings, At(1.0, 0.0, 0.0, 1, 1)).pixels;
  };

  EXPECT_EQ(Pixels{0xff290000}, shown(ViewChannel::kColour));
  EXPECT_EQ(Pixels{0xff292929}, shown(ViewChannel::kRed));
  EXPECT_EQ(Pixels{0xff666666}, shown(ViewChannel::kOpacity));
}

TEST_F(Displays, GetNoMoreThanIsSeen) {
  const Picture picture = Grey(100, 100, std::vector<int>(10000, 257));

  Shown(picture, settings, At(1.0, -50.0, -50.0, 8, 4));
  EXPECT_EQ(32U, display->pixels);
  // A few of the picture's pixels fill the viewport.
  Shown(picture, settings, At(4.0, 0.0, 0.0, 8, 4));
  EXPECT_EQ(32U + 2U, display->pixels);
  Shown(picture, settings, At(0.5, 0.0, 0.0, 8, 4));
  EXPECT_EQ(32U + 2U + 32U, display->pixels);
}

}  // namespace
}  // namespace glimmerhost
