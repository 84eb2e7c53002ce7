// SPDX-License-Identifier: BSD-3-Clause
// What a page draws on the picture, as whole logs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "tests/support/played_page.h"

namespace {

using namespace lx_test;

using PageDrawing = PlayedPage;

TEST_F(PageDrawing, DrawsCrosshairAndBothRingsInTheImageShape) {
  Choose(3);
  Connect();

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'D', false), kOverlayDataCalls, kBeginDraw, kOpenCross,
                  SolidRing(kTenPixelRing), kOpenRingHandle, DashedRing(kTenPixelRing),
                  kOpenRingHandle, kEndDraw}),
            Taken());
  EXPECT_EQ(1, page->effect.centerOverlay.visible);
  EXPECT_EQ(1, page->effect.innerRingOverlay.visible);
  EXPECT_EQ(1, page->effect.outerRingOverlay.visible);
}

TEST_F(PageDrawing, DrawsNothingInTheOtherShapes) {
  for (const int entry : {0, 1, 2, 4}) {
    Choose(entry);
    Connect();
    ui->drawOverlays();
    const char letter = static_cast<char>('A' + entry);
    EXPECT_EQ(Join({RefreshCalls(letter, letter, false), kOverlayDataCalls, kEmptyDrawing}),
              Taken())
        << entry;
    EXPECT_EQ(0, page->effect.centerOverlay.visible);
    EXPECT_EQ(0, page->effect.innerRingOverlay.visible);
    EXPECT_EQ(0, page->effect.outerRingOverlay.visible);
  }
}

TEST_F(PageDrawing, TakesTheShapeFromTheStoreFirst) {
  Connect();
  Choose(3);

  ui->drawOverlays();

  const Calls calls = Taken();
  EXPECT_EQ(ShapeCalls('A', 'D'), Calls(calls.begin(), calls.begin() + 3));
  EXPECT_EQ(4U + 12U + 6U, Only(calls, "line(").size());
}

TEST_F(PageDrawing, StretchesTheRingsByThePixelAspect) {
  result->formatObject->aspect = {2, 1};
  Choose(3);
  Connect();

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'D', false), kOverlayDataCalls, kBeginDraw, kOpenCross,
                  SolidRing(kTallRing), kOpenRingHandle, DashedRing(kTallRing), kOpenRingHandle,
                  kEndDraw}),
            Taken());
  EXPECT_EQ(2.0F, page->effect.aspectNum);
  EXPECT_EQ(1.0F, page->effect.aspectDen);
  EXPECT_EQ(1.0F / 64.0F, page->effect.outerRingOverlay.sizeX);
  EXPECT_EQ(1.0F / 32.0F, page->effect.outerRingOverlay.sizeY);
}

TEST_F(PageDrawing, NotesWhereEveryHandleIs) {
  ConnectAndDrawImage();

  const lx::GlimmerBlur& e = page->effect;
  EXPECT_EQ(160.0F, e.centerOverlay.screenX);
  EXPECT_EQ(360.0F, e.centerOverlay.screenY);
  for (const lx::CircleOverlayLX* ring : {&e.innerRingOverlay, &e.outerRingOverlay}) {
    // 5 cos 45 = 3.535534
    EXPECT_NEAR(163.535534, ring->handleX[0], 1e-4);
    EXPECT_NEAR(356.464466, ring->handleY[0], 1e-4);
    EXPECT_NEAR(165.0, ring->handleX[1], 1e-4);
    EXPECT_NEAR(360.0, ring->handleY[1], 1e-4);
    EXPECT_NEAR(160.0, ring->handleX[2], 1e-4);
    EXPECT_NEAR(355.0, ring->handleY[2], 1e-4);
    EXPECT_EQ(1, ring->lockAspect);
  }
  EXPECT_EQ(0, e.innerRingOverlay.dashed);
  EXPECT_EQ(1, e.outerRingOverlay.dashed);
}

TEST_F(PageDrawing, GivesEachRingItsOwnRadius) {
  params->numbers["PRM_RadiusPSF1"] = 0.25;   // 160 pixels across
  params->numbers["PRM_RadiusPSF2"] = 0.125;  // 80, the outer one may be the smaller
  ConnectAndDrawImage();

  EXPECT_NEAR(240.0, page->effect.innerRingOverlay.handleX[1], 1e-4);
  EXPECT_NEAR(200.0, page->effect.outerRingOverlay.handleX[1], 1e-4);
}

TEST_F(PageDrawing, DropsTheOutlineOfATinyRing) {
  params->numbers["PRM_RadiusPSF1"] = 1.0 / 256.0;  // 2.5 pixels across
  params->numbers["PRM_RadiusPSF2"] = 1.0 / 128.0;  // 5 pixels, just enough
  Choose(3);
  Connect();

  ui->drawOverlays();

  const Calls drawing = Without(Taken(), "format.pictureSize");
  // The handles stand 1.25 and 2.5 pixels beside the middle.
  EXPECT_EQ((Calls{"frame(157.5 117.5 5 5, 1 1 1)", "frame(156.5 116.5 7 7, 0 0 0)",
                   "frame(158.75 117.5 5 5, 1 1 0)", "frame(157.75 116.5 7 7, 0 0 0)",
                   "frame(160 117.5 5 5, 1 1 0)", "frame(159 116.5 7 7, 0 0 0)"}),
            Only(drawing, "frame("));
  EXPECT_EQ(4U + 6U, Only(drawing, "line(").size());
}

TEST_F(PageDrawing, DropsTheOutlineOfAFlatRing) {
  result->formatObject->aspect = {1, 4};  // 10 pixels wide, 2.5 high
  Choose(3);
  Connect();

  ui->drawOverlays();

  EXPECT_EQ(
      Join({kBeginDraw, kOpenCross, kOpenRingHandle, kOpenRingHandle, kEndDraw}),
      Without(Without(Without(Without(Taken(), "get"), "set"), "result."), "format.pixelAspect"));
}

TEST_F(PageDrawing, PassesAnEmptyPicture) {
  result->formatObject->size = {0, 0};
  Choose(3);
  Connect();

  ui->drawOverlays();

  const Calls ring = OpenHandle("-2.5 -2.5 5 5", "-3.5 -3.5 7 7", kYellowText);
  EXPECT_EQ(Join({RefreshCalls('D', 'D', false), kOverlayDataCalls, kBeginDraw,
                  Line("10 0 -> 25 0", kWhiteText), Line("-10 0 -> -25 0", kWhiteText),
                  Line("0 -10 -> 0 -25", kWhiteText), Line("0 10 -> 0 25", kWhiteText),
                  OpenHandle("-2.5 -2.5 5 5", "-3.5 -3.5 7 7", kWhiteText), ring, ring, kEndDraw}),
            Taken());
}

TEST_F(PageDrawing, AddsDiagonalsToTheCrosshair) {
  Choose(3);
  Connect();
  page->effect.centerOverlay.diagonals = 1;

  ui->drawOverlays();

  Calls lines = Only(Taken(), "line(");
  ASSERT_LE(8U, lines.size());
  EXPECT_EQ(Only(kCross, "line("), Calls(lines.begin(), lines.begin() + 4));
  Calls diagonals(lines.begin() + 4, lines.begin() + 8);
  std::sort(diagonals.begin(), diagonals.end());
  EXPECT_EQ((Calls{"line(155 115 -> 147.5 107.5, 1 1 1)", "line(155 125 -> 147.5 132.5, 1 1 1)",
                   "line(165 115 -> 172.5 107.5, 1 1 1)", "line(165 125 -> 172.5 132.5, 1 1 1)"}),
            diagonals);
}

TEST_F(PageDrawing, ScalesHandlesAndArmsByTheZoom) {
  Choose(3);
  Connect();
  page->effect.zoom = 2.0F;

  ui->drawOverlays();

  const Calls drawing = Taken();
  const Calls lines = Only(drawing, "line(");
  EXPECT_EQ((Calls{"line(165 120 -> 172.5 120, 1 1 1)", "line(155 120 -> 147.5 120, 1 1 1)",
                   "line(160 115 -> 160 107.5, 1 1 1)", "line(160 125 -> 160 132.5, 1 1 1)"}),
            Calls(lines.begin(), lines.begin() + 4));
  const Calls frames = Only(drawing, "frame(");
  ASSERT_EQ(6U, frames.size());
  EXPECT_EQ("frame(158.75 118.75 2.5 2.5, 1 1 1)", frames[0]);
  EXPECT_EQ("frame(157.75 117.75 4.5 4.5, 0 0 0)", frames[1]);
}

TEST_F(PageDrawing, SaysThatThereIsNoSurface) {
  Choose(3);
  ui->setParams(params);
  Taken();

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'D', false), {"message(Warning: Overlay::Ptr is not valid!)"}}),
            Taken());
}

TEST_F(PageDrawing, SaysThatTheHostGaveNoSurface) {
  Choose(3);
  Connect();
  result->surfaceObject.Reset();
  Taken();

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'D', false),
                  kOverlayDataCalls,
                  {"message(Warning: Overlay::Ptr is not valid!)"}}),
            Taken());
}

TEST_F(PageDrawing, SaysThatThereIsNoData) {
  Choose(3);
  Connect();
  page->effect.data = nullptr;

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'D', false),
                  kOverlayDataCalls,
                  {"message(Warning: Overlay data has not been initialised!)"}}),
            Taken());
}

TEST_F(PageDrawing, SaysThatAHandleHasNoData) {
  page->effect.data = nullptr;
  page->effect.DrawHandle(10, 20, true);
  EXPECT_EQ(Calls{"message(OverlayLX::DrawHandle:No Overlay Data)"}, Taken());
}

TEST_F(PageDrawing, DrawsNeitherLineNorColourWithoutData) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 0, 0, 0);
  page->effect.data = nullptr;

  page->effect.SetColour(0, 65535, 0, 0);
  page->effect.DrawLine(1, 2, 3, 4);

  EXPECT_EQ(Calls{}, Taken());
  EXPECT_EQ("1 0 0", lx_test::ColourText(page->overlayData.colour));
}

TEST_F(PageDrawing, KeepsTheAspectWithoutAFormat) {
  result->formatObject->aspect = {3, 2};
  ConnectAndDrawImage();
  result->formatObject.Reset();
  Choose(0);

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'A', false),
                  {"result.overlaySurface", "result.format", "result.format", "result.format"},
                  {"beginDraw(1,1)", "endDraw"}}),
            Taken());
  EXPECT_FALSE(page->overlayData.view);
  EXPECT_EQ(0, page->effect.pictureWidth);
  EXPECT_EQ(0, page->effect.pictureHeight);
  EXPECT_EQ(3.0F, page->effect.aspectNum);
  EXPECT_EQ(2.0F, page->effect.aspectDen);
}

TEST_F(PageDrawing, IgnoresTheAlphaOfAColour) {
  page->effect.SetColour(13107, 26214, 39321, 0);
  EXPECT_EQ("0.2 0.4 0.6", lx_test::ColourText(page->overlayData.colour));
}

TEST_F(PageDrawing, TakesTheColoursOfEachOverlay) {
  Choose(3);
  Connect();
  page->effect.centerOverlay.red = 13107;  // 0.2
  page->effect.innerRingOverlay.blue = 13107;
  page->effect.outerRingOverlay.green = 13107;

  ui->drawOverlays();

  const Calls frames = Only(Taken(), "frame(");
  ASSERT_EQ(6U, frames.size());
  EXPECT_EQ("frame(157.5 117.5 5 5, 0.2 1 1)", frames[0]);
  EXPECT_EQ("frame(162.5 117.5 5 5, 1 1 0.2)", frames[2]);
  EXPECT_EQ("frame(162.5 117.5 5 5, 1 0.2 0)", frames[4]);
}

TEST_F(PageDrawing, TurnsLinesOverAgainstTheHeightOfTheMoment) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 65535, 0);
  result->formatObject->size = {640, 100};

  page->effect.DrawLine(1, 2, 3, 4);
  EXPECT_EQ(Line("1 98 -> 3 96", kWhiteText), Taken());

  page->overlayData.view.Reset();
  page->effect.DrawLine(1, 2, 3, 4);
  EXPECT_EQ(Calls{"line(1 -2 -> 3 -4, 1 1 1)"}, Taken());
}

TEST_F(PageDrawing, TurnsHandlesOverAgainstTheHeightOfTheMoment) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 65535, 0);
  result->formatObject->size = {640, 100};

  page->effect.DrawHandle(10, 20, true);
  EXPECT_EQ(FilledHandle("7.5 77.5 5 5", "6.5 76.5 7 7", kWhiteText), Taken());

  page->overlayData.view.Reset();
  page->effect.DrawHandle(10, 20, false);
  EXPECT_EQ((Calls{"frame(7.5 -22.5 5 5, 1 1 1)", "frame(6.5 -23.5 7 7, 0 0 0)"}), Taken());
}

TEST_F(PageDrawing, ClosesARingWhoseStepsDoNotMeetItsStart) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 65535, 0);

  // Steps of 8 / 20 = 0.4 radians; the last that fits is the 15th, at 6 radians, with
  // 10 cos 6 = 9.601703 and 10 sin 6 = -2.794155.
  page->effect.DrawEllipse(160, 360, 20, 20, 0, false, 4, 0, 360);

  const Calls lines = Only(Taken(), "line(");
  ASSERT_EQ(17U, lines.size());
  // 10 cos 0.4 = 9.210610, 10 sin 0.4 = 3.894183
  EXPECT_EQ("line(170 120 -> 169.211 116.106, 1 1 1)", lines[1]);
  EXPECT_EQ("line(170 120 -> 169.602 122.794, 1 1 1)", lines[16]);
}

TEST_F(PageDrawing, DashesOddSegmentsOfALongerRing) {
  ConnectAndDrawImage();

  page->effect.DrawEllipse(160, 360, 20, 20, 0, true, 4, 0, 360);

  // Segments 1, 3 to 15, and the closing one.
  EXPECT_EQ(9U, Only(Taken(), "line(").size());
}

TEST_F(PageDrawing, TakesTheStepOfARingFromItsWidth) {
  ConnectAndDrawImage();

  page->effect.DrawEllipse(160, 360, 20, 400, 0, false, 4, 0, 360);
  EXPECT_EQ(17U, Only(Taken(), "line(").size());

  // Steps of half the length: 0.2 radians, 31 of them.
  page->effect.DrawEllipse(160, 360, 20, 20, 0, false, 2, 0, 360);
  EXPECT_EQ(33U, Only(Taken(), "line(").size());
}

TEST_F(PageDrawing, TurnsARingCounterClockwise) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 65535, 0);

  // A quarter turn lays the long half axis of 20 upwards.
  page->effect.DrawEllipse(160, 360, 12, 40, 90, false, 4, 0, 36);

  // Point at 0: (160, 366). At 36 degrees: x = -20 sin 36 = -11.755705, y = 6 cos 36 = 4.854102.
  EXPECT_EQ(Join({Line("160 114 -> 160 114", kWhiteText),
                  Line("160 114 -> 148.244 115.146", kWhiteText)}),
            Taken());
}

TEST_F(PageDrawing, LeavesAnArcOpen) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 0, 0);

  page->effect.DrawEllipse(160, 360, 10, 10, 0, false, 4, 0, 72);

  EXPECT_EQ(Join({Line("165 120 -> 165 120", kYellowText),
                  Line("165 120 -> 164.045 117.061", kYellowText),
                  Line("164.045 117.061 -> 161.545 115.245", kYellowText)}),
            Taken());
}

TEST_F(PageDrawing, DrawsNoArcBackwards) {
  ConnectAndDrawImage();
  page->effect.DrawEllipse(160, 360, 10, 10, 0, false, 4, 90, 0);
  EXPECT_EQ(Calls{}, Taken());
}

TEST_F(PageDrawing, EndsARingOfAnySize) {
  ConnectAndDrawImage();

  page->effect.DrawEllipse(160, 360, 1e9, 10, 0, false, 4, 0, 360);
  EXPECT_EQ(100001U, Only(Taken(), "line(").size());
}

TEST_F(PageDrawing, OnlyClosesARingOfInfiniteWidth) {
  ConnectAndDrawImage();
  page->effect.DrawEllipse(160, 360, std::numeric_limits<double>::infinity(), 10, 0, false, 4, 0,
                           360);
  EXPECT_EQ(1U, Only(Taken(), "line(").size());
}

TEST_F(PageDrawing, OnlyClosesARingWithoutAWidth) {
  ConnectAndDrawImage();
  page->effect.DrawEllipse(160, 360, std::numeric_limits<double>::quiet_NaN(), 10, 0, false, 4, 0,
                           360);
  EXPECT_EQ(1U, Only(Taken(), "line(").size());
}

TEST_F(PageDrawing, DrawsAllHandlesOfARingWithFreeProportions) {
  ConnectAndDrawImage();
  lx::CircleOverlayLX& ring = page->effect.outerRingOverlay;
  ring.lockAspect = 0;
  ring.sizeX = 0.125F;   // half axis 40
  ring.sizeY = 0.0625F;  // half axis 20
  ring.rotation = 90;
  ring.activePart = 3;

  page->effect.DrawRing(&ring);

  // A quarter turn: (-b sin t, a cos t). Handle 2 at (160, 400), handle 3 at (180, 360),
  // handle 1 at (160 + 14.142136, 360 + 28.284271), which is 91.715729 on the surface.
  EXPECT_EQ((Calls{"frame(157.5 77.5 5 5, 1 1 0)", "frame(156.5 76.5 7 7, 0 0 0)",
                   "fill(177.5 117.5 5 5, 1 1 0, 1 1 0)", "frame(176.5 116.5 7 7, 0 0 0)",
                   "frame(171.642 89.2157 5 5, 1 1 0)", "frame(170.642 88.2157 7 7, 0 0 0)"}),
            Outline(Taken()));
  EXPECT_NEAR(174.142136, ring.handleX[0], 1e-3);
  EXPECT_NEAR(388.284271, ring.handleY[0], 1e-3);
  EXPECT_NEAR(160.0, ring.handleX[1], 1e-3);
  EXPECT_NEAR(400.0, ring.handleY[1], 1e-3);
  EXPECT_NEAR(180.0, ring.handleX[2], 1e-3);
  EXPECT_NEAR(360.0, ring.handleY[2], 1e-3);
}

TEST_F(PageDrawing, PutsTheHandlesOfATurnedRingOnItsOutline) {
  ConnectAndDrawImage();
  lx::CircleOverlayLX& ring = page->effect.innerRingOverlay;
  ring.sizeX = 0.125F;
  ring.sizeY = 0.0625F;
  ring.rotation = 30;

  page->effect.DrawRing(&ring);

  // cos 30 = 0.866025, sin 30 = 0.5; cos(-45) x 40 = 28.284271, sin(-45) x 20 = -14.142136.
  EXPECT_NEAR(194.641016, ring.handleX[1], 1e-3);
  EXPECT_NEAR(380.0, ring.handleY[1], 1e-3);
  EXPECT_NEAR(170.0, ring.handleX[2], 1e-3);       // 0.5 x 20
  EXPECT_NEAR(342.679492, ring.handleY[2], 1e-3);  // -0.866025 x 20
  EXPECT_NEAR(191.565966, ring.handleX[0], 1e-3);  // 24.494897 + 7.071068
  EXPECT_NEAR(361.894687, ring.handleY[0], 1e-3);  // 14.142136 - 12.247449
}

TEST_F(PageDrawing, DrawsWhatItHoldsWithoutAStore) {
  ConnectAndDrawImage();
  ui->setParams({});
  Taken();

  ui->drawOverlays();

  EXPECT_EQ(Join({kOverlayDataCalls, kBeginDraw, kOpenCross, SolidRing(kTenPixelRing),
                  kOpenRingHandle, DashedRing(kTenPixelRing), kOpenRingHandle, kEndDraw}),
            Taken());
}

TEST_F(PageDrawing, LocksAndStraightensTheRingsAtEveryDrawing) {
  Choose(3);
  Connect();
  lx::GlimmerBlur& e = page->effect;
  for (lx::CircleOverlayLX* ring : {&e.innerRingOverlay, &e.outerRingOverlay}) {
    ring->rotation = 90;
    ring->lockAspect = 0;
    ring->sizeY = 7;
  }
  e.innerRingOverlay.dashed = 1;
  e.outerRingOverlay.dashed = 0;

  ui->drawOverlays();

  EXPECT_EQ(Join({RefreshCalls('D', 'D', false), kOverlayDataCalls, kBeginDraw, kOpenCross,
                  SolidRing(kTenPixelRing), kOpenRingHandle, DashedRing(kTenPixelRing),
                  kOpenRingHandle, kEndDraw}),
            Taken());
  for (const lx::CircleOverlayLX* ring : {&e.innerRingOverlay, &e.outerRingOverlay}) {
    EXPECT_EQ(0.0F, ring->rotation);
    EXPECT_EQ(1, ring->lockAspect);
    EXPECT_EQ(1.0F / 64.0F, ring->sizeY);
  }
}

TEST_F(PageDrawing, DrawsNothingWithoutASurface) {
  page->effect.DrawLine(1, 2, 3, 4);
  page->effect.DrawHandle(1, 2, true);
  page->effect.DrawHandle(1, 2, false);
  page->effect.DrawCrosshair(1, 2, true);
  page->effect.DrawEllipse(1, 2, 10, 10, 0, false, 4, 0, 360);
  EXPECT_EQ(Calls{}, Taken());
}

TEST_F(PageDrawing, StartsAnArcAtItsAngle) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 0, 0);

  page->effect.DrawEllipse(160, 360, 10, 10, 0, false, 4, 36, 108);

  EXPECT_EQ(Join({Line("164.045 117.061 -> 164.045 117.061", kYellowText),
                  Line("164.045 117.061 -> 161.545 115.245", kYellowText),
                  Line("161.545 115.245 -> 158.455 115.245", kYellowText)}),
            Taken());
}

TEST_F(PageDrawing, ClosesOnlyTheWholeFigure) {
  ConnectAndDrawImage();
  const struct {
    double start;
    double end;
    std::size_t lines;
  } table[] = {{0, 360, 12}, {0, 359, 10}, {1, 360, 10}, {0, 361, 11}, {-36, 360, 12}};

  for (const auto& row : table) {
    page->effect.DrawEllipse(160, 360, 10, 10, 0, false, 4, row.start, row.end);
    EXPECT_EQ(row.lines, Only(Taken(), "line(").size()) << row.start << " " << row.end;
  }
}

TEST_F(PageDrawing, DrawsAPointForAnArcOfNoLength) {
  ConnectAndDrawImage();
  page->effect.SetColour(65535, 65535, 0, 0);
  page->effect.DrawEllipse(160, 360, 10, 10, 0, false, 4, 0, 0);
  EXPECT_EQ(Line("165 120 -> 165 120", kYellowText), Taken());
}

}  // namespace
