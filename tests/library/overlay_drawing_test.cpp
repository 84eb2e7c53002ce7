// SPDX-License-Identifier: BSD-3-Clause
// What overlays draw, call by call. A picture of 200 x 100; y of the effect counts upwards,
// y of the surface downwards.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "tests/support/overlay_stage.h"

namespace {

using lx_test::Calls;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

class OverlayDrawing : public testing::Test {
 public:
  OverlayDrawing() { overlay.SetColour(65535, 0, 0, 65535); }

  // A circle about (50, 40) in steps of 4 pixels, all the way round.
  void DrawCircle(double diameter, bool dashed) {
    overlay.DrawEllipse(50, 40, diameter, diameter, 0.0F, dashed, 4, 0, 360);
  }

  lx_test::OverlayStage stage{200, 100};
  lx::OverlayLX& overlay = stage.overlay;
};

TEST_F(OverlayDrawing, ScalesColoursFromSixteenBitsAndDropsAlpha) {
  overlay.SetColour(65535, 0, 32768, 77);

  EXPECT_EQ("1 0 0.500008", lx_test::ColourText(stage.data.colour));
}

TEST_F(OverlayDrawing, TurnsLinesOverAgainstTheHeightOfTheMoment) {
  overlay.DrawLine(1, 2, 3, 4);
  stage.format->size.second = 10;
  overlay.DrawLine(1, 2, 3, 4);
  stage.data.view.Reset();
  overlay.DrawLine(1, 2, 3, 4);

  EXPECT_EQ((Calls{"format.pictureSize", "line(1 98 -> 3 96, 1 0 0)", "format.pictureSize",
                   "line(1 8 -> 3 6, 1 0 0)", "line(1 -2 -> 3 -4, 1 0 0)"}),
            stage.host.log.calls);
}

TEST_F(OverlayDrawing, DrawsAFilledHandleInsideABlackRim) {
  overlay.DrawHandle(50, 40, true);

  EXPECT_EQ((Calls{"format.pictureSize", "fill(47.5 57.5 5 5, 1 0 0, 1 0 0)",
                   "frame(46.5 56.5 7 7, 0 0 0)"}),
            stage.host.log.calls);
}

TEST_F(OverlayDrawing, DrawsAnOpenHandleInsideABlackRim) {
  overlay.DrawHandle(50, 40, false);

  EXPECT_EQ(
      (Calls{"format.pictureSize", "frame(47.5 57.5 5 5, 1 0 0)", "frame(46.5 56.5 7 7, 0 0 0)"}),
      stage.host.log.calls);
}

TEST_F(OverlayDrawing, DrawsHandlesHalfAsLargeAtTwiceTheZoom) {
  overlay.zoom = 2.0F;

  overlay.DrawHandle(50, 40, true);

  EXPECT_EQ(2.5, overlay.HandleSize());
  EXPECT_EQ((Calls{"fill(48.75 58.75 2.5 2.5, 1 0 0, 1 0 0)", "frame(47.75 57.75 4.5 4.5, 0 0 0)"}),
            stage.Calls());
}

TEST_F(OverlayDrawing, LeavesTheCrosshairsMiddleOpen) {
  overlay.DrawCrosshair(50, 40, false);

  EXPECT_EQ((Calls{"line(60 60 -> 75 60, 1 0 0)", "line(40 60 -> 25 60, 1 0 0)",
                   "line(50 50 -> 50 35, 1 0 0)", "line(50 70 -> 50 85, 1 0 0)"}),
            stage.Calls());
}

TEST_F(OverlayDrawing, AddsADiagonalToEachCorner) {
  overlay.DrawCrosshair(50, 40, false);
  const std::size_t straight = stage.Calls().size();
  overlay.DrawCrosshair(50, 40, true);

  Calls calls = stage.Calls();
  calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(straight));
  EXPECT_EQ((Calls{"line(55 55 -> 62.5 47.5, 1 0 0)", "line(45 55 -> 37.5 47.5, 1 0 0)",
                   "line(55 65 -> 62.5 72.5, 1 0 0)", "line(45 65 -> 37.5 72.5, 1 0 0)"}),
            calls);
}

TEST_F(OverlayDrawing, ShortensTheArmsAtTwiceTheZoom) {
  overlay.zoom = 2.0F;

  overlay.DrawCrosshair(50, 40, false);

  EXPECT_EQ((Calls{"line(55 60 -> 62.5 60, 1 0 0)", "line(45 60 -> 37.5 60, 1 0 0)",
                   "line(50 55 -> 50 47.5, 1 0 0)", "line(50 65 -> 50 72.5, 1 0 0)"}),
            stage.Calls());
}

// A small circle has ten segments of 36 degrees: cos 36 = 0.809017, sin 36 = 0.587785,
// cos 72 = 0.309017, sin 72 = 0.951057. Segment 0 has no length, and the last angle is 360,
// so that the closing line has none either.
TEST_F(OverlayDrawing, DrawsASmallCircleInTenths) {
  DrawCircle(10, false);

  EXPECT_EQ((Calls{"line(55 60 -> 55 60, 1 0 0)", "line(55 60 -> 54.0451 57.0611, 1 0 0)",
                   "line(54.0451 57.0611 -> 51.5451 55.2447, 1 0 0)",
                   "line(51.5451 55.2447 -> 48.4549 55.2447, 1 0 0)",
                   "line(48.4549 55.2447 -> 45.9549 57.0611, 1 0 0)",
                   "line(45.9549 57.0611 -> 45 60, 1 0 0)", "line(45 60 -> 45.9549 62.9389, 1 0 0)",
                   "line(45.9549 62.9389 -> 48.4549 64.7553, 1 0 0)",
                   "line(48.4549 64.7553 -> 51.5451 64.7553, 1 0 0)",
                   "line(51.5451 64.7553 -> 54.0451 62.9389, 1 0 0)",
                   "line(54.0451 62.9389 -> 55 60, 1 0 0)", "line(55 60 -> 55 60, 1 0 0)"}),
            stage.Calls());
}

TEST_F(OverlayDrawing, LeavesOutEverySecondSegmentOfADashedCircle) {
  DrawCircle(10, true);

  EXPECT_EQ(
      (Calls{"line(55 60 -> 54.0451 57.0611, 1 0 0)",
             "line(51.5451 55.2447 -> 48.4549 55.2447, 1 0 0)",
             "line(45.9549 57.0611 -> 45 60, 1 0 0)",
             "line(45.9549 62.9389 -> 48.4549 64.7553, 1 0 0)",
             "line(51.5451 64.7553 -> 54.0451 62.9389, 1 0 0)", "line(55 60 -> 55 60, 1 0 0)"}),
      stage.Calls());
}

// 16 pixels across: segments of 360 / (16 pi / 4) = 28.6479 degrees, so angles 0 to 12 x
// 28.6479 = 343.775, and a closing line over the 16.225 degrees that are left. The last
// point: 50 + 8 cos 343.775 = 57.6813, 40 + 8 sin 343.775 = 37.7646.
TEST_F(OverlayDrawing, ClosesTheFigureFromItsFirstPointToItsLast) {
  DrawCircle(16, false);
  Calls all = stage.Calls();
  DrawCircle(16, true);
  Calls dashed = stage.Calls();

  EXPECT_EQ(14U, all.size());
  EXPECT_EQ("line(58 60 -> 57.6814 62.2353, 1 0 0)", all.back());
  EXPECT_EQ(7U, dashed.size());
  EXPECT_EQ(all.back(), dashed.back());
}

// The same length of segment counts along the width alone: a width of 10 has tenths at any
// height. b = 10: 40 + 5.87785 = 45.8779.
TEST_F(OverlayDrawing, StretchesTheCircleToAnEllipse) {
  overlay.DrawEllipse(50, 40, 10, 20, 0.0F, false, 4, 0, 360);

  EXPECT_EQ("line(55 60 -> 54.0451 54.1221, 1 0 0)", stage.Calls()[1]);
}

// Turned by 90 degrees, the x axis points up: angle 0 is (50, 45), angle 36 is
// (50 - 10 x 0.587785, 40 + 5 x 0.809017) = (44.1221, 44.0451).
TEST_F(OverlayDrawing, TurnsTheEllipseCounterClockwise) {
  overlay.DrawEllipse(50, 40, 10, 20, 90.0F, false, 4, 0, 360);

  EXPECT_EQ("line(50 55 -> 44.1221 55.9549, 1 0 0)", stage.Calls()[1]);
}

TEST_F(OverlayDrawing, DrawsAnArcWithoutClosingIt) {
  overlay.DrawEllipse(50, 40, 10, 10, 0.0F, false, 4, 90, 162);

  EXPECT_EQ((Calls{"line(50 55 -> 50 55, 1 0 0)", "line(50 55 -> 47.0611 55.9549, 1 0 0)",
                   "line(47.0611 55.9549 -> 45.2447 58.4549, 1 0 0)"}),
            stage.Calls());
}

TEST_F(OverlayDrawing, DrawsNoArcThatEndsBeforeItStarts) {
  overlay.DrawEllipse(50, 40, 10, 10, 0.0F, false, 4, 10, 9);

  EXPECT_EQ(Calls{}, stage.Calls());
}

TEST_F(OverlayDrawing, DrawsNoOutlineBelowFivePixels) {
  overlay.DrawEllipse(50, 40, 4.999, 100, 0.0F, false, 4, 0, 360);
  overlay.DrawEllipse(50, 40, 100, 4.999, 0.0F, false, 4, 0, 360);
  overlay.DrawEllipse(50, 40, -100, -100, 0.0F, false, 4, 0, 360);
  EXPECT_EQ(Calls{}, stage.Calls());

  overlay.DrawEllipse(50, 40, 5, 5, 0.0F, false, 4, 0, 360);
  EXPECT_EQ(12U, stage.Calls().size());
}

TEST_F(OverlayDrawing, EndsForAnyWidth) {
  DrawCircle(1e9, false);

  EXPECT_EQ(100001U, stage.LineCount());
}

// Increments of 0, of no number, and below 0.
TEST_F(OverlayDrawing, DrawsTheClosingLineAloneWhereNoStepLeadsAround) {
  struct Case {
    double width;
    double step;
  };
  for (const Case& c : {Case{static_cast<double>(kInfinity), 4}, Case{static_cast<double>(kNan), 4},
                        Case{100, 0}, Case{100, -4}, Case{100, static_cast<double>(kNan)}}) {
    for (const bool dashed : {false, true}) {
      overlay.DrawEllipse(50, 40, c.width, 100, 0.0F, dashed, c.step, 0, 360);
      EXPECT_EQ(1U, stage.LineCount()) << c.width << ' ' << c.step;
      overlay.DrawEllipse(50, 40, c.width, 100, 0.0F, dashed, c.step, 0, 90);
      EXPECT_EQ(0U, stage.LineCount()) << c.width << ' ' << c.step;
    }
  }
}

// The point at angle 0 is where the line begins and ends.
TEST_F(OverlayDrawing, ClosesAnOutlineWithoutStepsInOnePoint) {
  overlay.DrawEllipse(50, 40, 100, 100, 0.0F, false, 0, 0, 360);

  EXPECT_EQ(Calls{"line(100 60 -> 100 60, 1 0 0)"}, stage.Calls());
}

TEST_F(OverlayDrawing, StopsSilentlyWithoutASurface) {
  stage.data.draw.Reset();
  stage.Calls();

  overlay.DrawLine(1, 2, 3, 4);
  EXPECT_EQ(Calls{}, stage.host.log.calls);
  overlay.DrawHandle(1, 2, true);

  EXPECT_EQ(Calls{"format.pictureSize"}, stage.host.log.calls);
}

TEST(OverlayWithoutData, ComplainsOfAHandleAlone) {
  lx_test::FakeHost host;
  lx::OverlayLX overlay;
  overlay.zoom = 1.0F;

  overlay.SetColour(1, 2, 3, 4);
  overlay.DrawLine(1, 2, 3, 4);
  EXPECT_EQ(Calls{}, host.log.calls);
  overlay.DrawHandle(1, 2, true);

  EXPECT_EQ(u"OverlayLX::DrawHandle:No Overlay Data", host.factory->sink->last);
}

class CrosshairDrawing : public OverlayDrawing {
 public:
  CrosshairDrawing() {
    stage.Join(&crosshair);
    crosshair.x = 0.25F;
    crosshair.y = 0.4F;
  }

  lx::CrosshairOverlayLX crosshair;
};

TEST_F(CrosshairDrawing, IsWhiteWithAnOpenHandleThatCanBeFoundAgain) {
  overlay.DrawCrosshairControl(&crosshair);

  EXPECT_EQ((Calls{"line(60 60 -> 75 60, 1 1 1)", "line(40 60 -> 25 60, 1 1 1)",
                   "line(50 50 -> 50 35, 1 1 1)", "line(50 70 -> 50 85, 1 1 1)",
                   "frame(47.5 57.5 5 5, 1 1 1)", "frame(46.5 56.5 7 7, 0 0 0)"}),
            stage.Calls());
  EXPECT_EQ(50.0F, crosshair.screenX);
  EXPECT_EQ(40.0F, crosshair.screenY);
}

TEST_F(CrosshairDrawing, FillsItsHandleWhileItIsHeld) {
  crosshair.activePart = 1;
  crosshair.diagonals = 1;

  overlay.DrawCrosshairControl(&crosshair);

  const Calls calls = stage.Calls();
  ASSERT_EQ(10U, calls.size());
  EXPECT_EQ("fill(47.5 57.5 5 5, 1 1 1, 1 1 1)", calls[8]);
}

// 0.2 x 0.1 of a width of 200: radii 20 and 10 about (100, 40).
class RingDrawing : public OverlayDrawing {
 public:
  RingDrawing() {
    stage.Join(&ring);
    ring.blue = 0;
    ring.x = 0.5F;
    ring.y = 0.4F;
    ring.sizeX = 0.2F;
    ring.sizeY = 0.1F;
  }

  // The calls behind the outline.
  Calls HandleCalls() {
    overlay.DrawRing(&ring);
    Calls handles;
    for (const std::string& call : stage.Calls()) {
      if (call.rfind("line", 0) != 0) {
        handles.push_back(call);
      }
    }
    return handles;
  }

  lx::CircleOverlayLX ring;
};

// Segments of 360 / (40 pi / 4) = 11.459 degrees: 32 angles and the closing line.
TEST_F(RingDrawing, OutlinesBothRadiiByTheWidth) {
  overlay.DrawRing(&ring);

  const Calls calls = stage.Calls();
  ASSERT_EQ(35U, calls.size());
  EXPECT_EQ("line(120 60 -> 120 60, 1 1 0)", calls[0]);
  // cos 11.459 = 0.980067, sin 11.459 = 0.198669.
  EXPECT_EQ("line(120 60 -> 119.601 58.0133, 1 1 0)", calls[1]);
  EXPECT_EQ("frame(117.5 57.5 5 5, 1 1 0)", calls[33]);
  EXPECT_EQ("frame(116.5 56.5 7 7, 0 0 0)", calls[34]);
}

TEST_F(RingDrawing, LeavesOutSegmentsIfItIsDashed) {
  ring.dashed = 1;

  overlay.DrawRing(&ring);

  EXPECT_EQ(17U, stage.LineCount());  // 1, 3, ... 31, and the closing one
}

TEST_F(RingDrawing, ShowsOneHandleWithItsProportionsLocked) {
  EXPECT_EQ((Calls{"frame(117.5 57.5 5 5, 1 1 0)", "frame(116.5 56.5 7 7, 0 0 0)"}), HandleCalls());
}

// cos 45 = 0.707107: the corner stands at (100 + 14.1421, 40 - 7.07107).
TEST_F(RingDrawing, ShowsThreeHandlesInTheirOrderUnlocked) {
  ring.lockAspect = 0;

  EXPECT_EQ((Calls{"frame(117.5 57.5 5 5, 1 1 0)", "frame(116.5 56.5 7 7, 0 0 0)",
                   "frame(97.5 67.5 5 5, 1 1 0)", "frame(96.5 66.5 7 7, 0 0 0)",
                   "frame(111.642 64.5711 5 5, 1 1 0)", "frame(110.642 63.5711 7 7, 0 0 0)"}),
            HandleCalls());
}

TEST_F(RingDrawing, FillsTheHandleThatIsHeld) {
  ring.lockAspect = 0;
  const std::string axisX = "117.5 57.5 5 5";
  const std::string axisY = "97.5 67.5 5 5";
  const std::string corner = "111.642 64.5711 5 5";

  ring.activePart = 1;
  EXPECT_EQ("fill(" + corner + ", 1 1 0, 1 1 0)", HandleCalls()[4]);
  ring.activePart = 2;
  EXPECT_EQ("fill(" + axisX + ", 1 1 0, 1 1 0)", HandleCalls()[0]);
  ring.activePart = 3;
  EXPECT_EQ("fill(" + axisY + ", 1 1 0, 1 1 0)", HandleCalls()[2]);
}

TEST_F(RingDrawing, NotesAllHandlesEvenThoseItDoesNotShow) {
  overlay.DrawRing(&ring);

  EXPECT_NEAR(114.1421, ring.handleX[0], 1e-4);
  EXPECT_NEAR(32.92893, ring.handleY[0], 1e-4);
  EXPECT_FLOAT_EQ(120.0F, ring.handleX[1]);
  EXPECT_FLOAT_EQ(40.0F, ring.handleY[1]);
  EXPECT_FLOAT_EQ(100.0F, ring.handleX[2]);
  EXPECT_FLOAT_EQ(30.0F, ring.handleY[2]);
}

// 30 degrees: cos 0.866025, sin 0.5. On the x axis (100 + 20 x 0.866025, 40 + 20 x 0.5); on
// the y axis, at -90 degrees, (100 + 10 x 0.5, 40 - 10 x 0.866025); at the corner
// (100 + 0.866025 x 14.1421 + 0.5 x 7.07107, 40 + 0.5 x 14.1421 - 0.866025 x 7.07107).
TEST_F(RingDrawing, TurnsItsHandlesWithItsAxes) {
  ring.rotation = 30.0F;

  overlay.DrawRing(&ring);

  EXPECT_NEAR(117.3205, ring.handleX[1], 1e-4);
  EXPECT_NEAR(50.0, ring.handleY[1], 1e-4);
  EXPECT_NEAR(105.0, ring.handleX[2], 1e-4);
  EXPECT_NEAR(31.33975, ring.handleY[2], 1e-4);
  EXPECT_NEAR(115.7830, ring.handleX[0], 1e-4);
  EXPECT_NEAR(40.94734, ring.handleY[0], 1e-4);
}

TEST_F(RingDrawing, ShowsItsHandleEvenWithoutAnOutline) {
  ring.sizeX = 0.02F;
  ring.sizeY = 0.02F;

  overlay.DrawRing(&ring);

  EXPECT_EQ((Calls{"frame(99.5 57.5 5 5, 1 1 0)", "frame(98.5 56.5 7 7, 0 0 0)"}), stage.Calls());
}

TEST_F(RingDrawing, DrawsAHandleInTheCornerOfAPictureOfNoSize) {
  overlay.pictureWidth = 0;
  overlay.pictureHeight = 0;
  stage.format->size = {0, 0};

  overlay.DrawRing(&ring);

  EXPECT_EQ((Calls{"frame(-2.5 -2.5 5 5, 1 1 0)", "frame(-3.5 -3.5 7 7, 0 0 0)"}), stage.Calls());
}

}  // namespace
