// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/live/proxy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/looks/keys.h"

namespace glimmerhost {
namespace {

// A back-end whose grids are the padded sides, up to the next hundred.
lx::GridSides HundredsFor(std::int32_t width, std::int32_t height, std::int32_t margin) {
  const auto upTo = [margin](std::int32_t side) { return (side + 2 * margin + 99) / 100 * 100; };
  return {upTo(width), upTo(height)};
}

std::uint64_t NoBytes(lx::Size /*frame*/, const lx::GridSides& /*grid*/) { return 0; }

const lx::Footprint kHundreds{"hundreds", "", &HundredsFor, &NoBytes, 1 << 20};

// A circle of a tenth of the width: a radius of 100 pixels in a picture 2000 wide.
std::map<std::string, Value> Tenth() {
  return {{kShapeKey, 0}, {kRadiusXKey, 0.1}, {kRadiusYKey, 0.1}, {kMatchKey, false}};
}

TEST(ProxySize, IsThePicturesOwnForTheWholeOfItsGrid) {
  EXPECT_EQ(FindProxySize(kHundreds, Tenth(), 2000, 1000, 1.0), (ProxySize{2000, 1000}));
}

// The margin of a radius of 100 is 101: the true grid has 2300 x 1300 points, and a quarter of them
// is 747,500.
TEST(ProxySize, FillsTheLargestGridThatThePartAllows) {
  const ProxySize size = FindProxySize(kHundreds, Tenth(), 2000, 1000, 0.25);
  const auto points = [&](int width, int height) {
    const std::int32_t margin = lx::OutlineMargin(0.05 * width);
    const lx::GridSides grid = HundredsFor(width, height, margin);
    return static_cast<double>(grid.width) * grid.height;
  };
  EXPECT_EQ(size.height, (size.width + 1) / 2);
  EXPECT_LE(points(size.width, size.height), 747500.0);
  EXPECT_GT(points(size.width + 2, size.height + 1), 747500.0);
}

std::shared_ptr<Picture> Words(int width, int height, const std::vector<std::uint16_t>& samples) {
  auto picture = std::make_shared<Picture>();
  picture->width = width;
  picture->height = height;
  picture->samples = samples;
  return picture;
}

// Three columns become two: the first covers one and a half, so 2/3 and 1/3 of them.
TEST(MakeProxy, TakesMeansOverWhatAPixelCovers) {
  LoadedFrame frame;
  frame.frame = 7;
  frame.picture = Words(3, 2, {0,   3000, 0, 65535, 600, 0, 0, 65535, 900, 0, 0, 65535,  //
                               300, 3000, 0, 65535, 600, 0, 0, 65535, 900, 0, 0, 65535});
  const auto proxy = MakeProxy(frame, {2, 1});
  EXPECT_EQ(proxy->frame, 7);
  // Red: rows give 150, 600, 900; then (150 * 2 + 600) / 3 = 300 and (600 + 2 * 900) / 3 = 800.
  EXPECT_EQ(proxy->picture->samples,
            (std::vector<std::uint16_t>{300, 2000, 0, 65535, 800, 0, 0, 65535}));
  // The module is given the same, blue first.
  ASSERT_TRUE(proxy->source);
  EXPECT_EQ(proxy->source->buffer()[2], 300);
  EXPECT_EQ(proxy->source->buffer()[1], 2000);
}

TEST(MakeProxy, KeepsFloatsAboveOne) {
  LoadedFrame frame;
  auto picture = std::make_shared<Picture>();
  picture->width = 2;
  picture->height = 1;
  picture->floats = {8.0F, -0.5F, 0.0F, 1.0F, 4.0F, 0.5F, 0.0F, 1.0F};
  frame.picture = picture;
  const auto proxy = MakeProxy(frame, {1, 1});
  EXPECT_EQ(proxy->picture->floats, (std::vector<float>{6.0F, 0.0F, 0.0F, 1.0F}));
  EXPECT_FALSE(proxy->source);
}

TEST(MakeProxy, ShrinksTheSecondClipAlike) {
  LoadedFrame frame;
  frame.picture = Words(2, 1, {0, 0, 0, 0, 0, 0, 0, 0});
  frame.spread = quantel::cPtr<FrameImage>(
      new FrameImage(*Words(2, 1, {1000, 0, 0, 65535, 3000, 0, 0, 65535})));
  const auto proxy = MakeProxy(frame, {1, 1});
  ASSERT_TRUE(proxy->spread);
  EXPECT_EQ(proxy->spread->buffer()[2], 2000);
}

}  // namespace
}  // namespace glimmerhost
