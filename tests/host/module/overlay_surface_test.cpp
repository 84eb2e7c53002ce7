// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/overlay_surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "hostframe/interfaces/colour.h"

namespace {

using glimmerhost::OverlaySurface;
using glimmerhost::Picture;
using quantel::cColour;

// A black picture of 8 x 6, and what is painted on it: "w" white, "y" yellow, "k" black on
// top, "." untouched.
class OverlayPainting : public testing::Test {
 public:
  OverlayPainting() {
    picture.width = 8;
    picture.height = 6;
    picture.samples.assign(8 * 6 * 4, 1000);
    surface.beginDraw(true, 1);
  }

  std::vector<std::string> Painted() {
    surface.PaintOn(&picture);
    std::vector<std::string> rows;
    for (std::size_t y = 0; y < 6; ++y) {
      std::string row;
      for (std::size_t x = 0; x < 8; ++x) {
        const std::uint16_t* sample = picture.samples.data() + (y * 8 + x) * 4;
        row += sample[0] == 1000                          ? '.'
               : sample[0] == 0 && sample[3] == 65535     ? 'k'
               : sample[2] == 0 && sample[3] == 65535     ? 'y'
               : sample[2] == 65535 && sample[3] == 65535 ? 'w'
                                                          : '?';
      }
      rows.push_back(row);
    }
    return rows;
  }

  Picture picture;
  OverlaySurface surface;
  const cColour white = cColour::kWhite;
  const cColour yellow = cColour::fromRGB(1.0F, 1.0F, 0.0F);
};

using Rows = std::vector<std::string>;

TEST_F(OverlayPainting, CoversThePixelsThatALineRunsThrough) {
  surface.drawLine({1.0F, 1.0F}, {6.9F, 1.9F}, white);
  surface.drawLine({2.5F, 2.5F}, {2.5F, 4.0F}, yellow);

  EXPECT_EQ((Rows{"........", ".wwwwww.", "..y.....", "..y.....", "..y.....", "........"}),
            Painted());
}

TEST_F(OverlayPainting, DrawsSlopesWithoutGaps) {
  surface.drawLine({0.5F, 5.5F}, {5.5F, 0.5F}, white);

  EXPECT_EQ((Rows{".....w..", "....w...", "...w....", "..w.....", ".w......", "w......."}),
            Painted());
}

TEST_F(OverlayPainting, DoesNotJumpAtTheEdgeOfAPixel) {
  surface.drawLine({1.0F, 1.999999F}, {6.0F, 2.000001F}, white);
  surface.fillRect({2.499999F, 3.500001F, 2.0F, 2.0F}, yellow, yellow);

  EXPECT_EQ((Rows{"........", "........", ".wwwwww.", "..yy....", "..yy....", "........"}),
            Painted());
}

TEST_F(OverlayPainting, MakesAPointOfALineOfNoLength) {
  surface.drawLine({3.2F, 2.7F}, {3.2F, 2.7F}, white);

  EXPECT_EQ((Rows{"........", "........", "...w....", "........", "........", "........"}),
            Painted());
}

TEST_F(OverlayPainting, CutsLinesAtTheEdgesAndKeepsTheirSlope) {
  surface.drawLine({-1e9F, -1e9F}, {1e9F, 1e9F}, white);
  surface.drawLine({-5.0F, 3.0F}, {-1.0F, 3.0F}, white);
  surface.drawLine({4.0F, 6.5F}, {5.0F, 20.0F}, white);

  EXPECT_EQ((Rows{"w.......", ".w......", "..w.....", "...w....", "....w...", ".....w.."}),
            Painted());
}

TEST_F(OverlayPainting, LeavesOutWhatIsNotANumber) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinity = std::numeric_limits<float>::infinity();
  surface.drawLine({nan, 1.0F}, {3.0F, 1.0F}, white);
  surface.drawLine({1.0F, 1.0F}, {infinity, 1.0F}, white);
  surface.fillRect({1.0F, 1.0F, nan, 2.0F}, white, white);
  surface.frameRect({-infinity, 1.0F, infinity, 2.0F}, white);

  EXPECT_EQ(Rows(6, "........"), Painted());
}

// The square of a handle about (4, 3), and the black rim one pixel outside of it.
TEST_F(OverlayPainting, PutsTheRimRoundTheHandle) {
  surface.fillRect({2.5F, 1.5F, 3.0F, 3.0F}, white, white);
  surface.frameRect({1.5F, 0.5F, 5.0F, 5.0F}, cColour::kBlack);

  EXPECT_EQ((Rows{".kkkkk..", ".kwwwk..", ".kwwwk..", ".kwwwk..", ".kkkkk..", "........"}),
            Painted());
}

TEST_F(OverlayPainting, LeavesTheInsideOfAFrame) {
  surface.frameRect({2.0F, 1.0F, 4.0F, 3.0F}, yellow);

  EXPECT_EQ((Rows{"........", "..yyyy..", "..y..y..", "..yyyy..", "........", "........"}),
            Painted());
}

TEST_F(OverlayPainting, ShowsNoEdgeWhereAFrameLeavesThePicture) {
  surface.frameRect({-1e9F, 2.0F, 1e9F + 4.0F, 1e9F}, white);

  // The float of 1e9 + 4 is 1e9: the right edge falls on pixel -1.
  EXPECT_EQ(Rows(6, "........"), Painted());
  surface.frameRect({-3.0F, 2.0F, 6.0F, 9.0F}, white);
  EXPECT_EQ((Rows{"........", "........", "www.....", "..w.....", "..w.....", "..w....."}),
            Painted());
}

TEST_F(OverlayPainting, DrawsNothingForASquareOfNoSize) {
  surface.frameRect({2.0F, 2.0F, 0.0F, 3.0F}, white);
  surface.fillRect({2.0F, 2.0F, 3.0F, -1.0F}, white, white);

  EXPECT_EQ(Rows(6, "........"), Painted());
}

TEST_F(OverlayPainting, ForgetsThePassBefore) {
  surface.drawLine({1.0F, 1.0F}, {6.0F, 1.0F}, white);
  EXPECT_FALSE(surface.IsEmpty());

  surface.beginDraw(true, 1);

  EXPECT_TRUE(surface.IsEmpty());
  EXPECT_EQ(Rows(6, "........"), Painted());
}

TEST_F(OverlayPainting, CutsColoursToTheirRange) {
  surface.drawLine({0.0F, 0.0F}, {0.0F, 0.0F},
                   cColour::fromRGB(2.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()));

  surface.PaintOn(&picture);

  EXPECT_EQ(65535, picture.samples[0]);
  EXPECT_EQ(0, picture.samples[1]);
  EXPECT_EQ(0, picture.samples[2]);
}

}  // namespace
