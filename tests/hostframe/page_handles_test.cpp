// SPDX-License-Identifier: BSD-3-Clause
// Press, drag and release through a page, as whole logs.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/support/played_page.h"

namespace {

using namespace lx_test;

using PageHandles = PlayedPage;

Calls Handles(const Calls& parts) { return Join({kOverlayDataCalls, parts}); }

// A crosshair and a far outer ring: handle at (160 + 80, 360), on the surface (240, 120).
class PageOuterRing : public PlayedPage {
 protected:
  PageOuterRing() {
    params->numbers["PRM_RadiusPSF1"] = 0.5;   // handle at (320, 360)
    params->numbers["PRM_RadiusPSF2"] = 0.25;  // handle at (240, 360)
    ConnectAndDrawImage();
  }
};

TEST_F(PageHandles, TurnAPointOverAgainstThePicturesHeight) {
  result->formatObject->size = {720, 576};
  Connect();
  page->effect.centerOverlay.screenX = 300;
  page->effect.centerOverlay.screenY = 476;

  ui->mouseDown({300, 100});

  EXPECT_EQ(1, page->effect.centerOverlay.activePart);
}

TEST_F(PageHandles, TurnAPointOverAgainstZeroWithoutAView) {
  page->effect.centerOverlay.screenX = 300;
  page->effect.centerOverlay.screenY = -100;

  ui->mouseDown({300, 100});
  EXPECT_EQ(1, page->effect.centerOverlay.activePart);
  EXPECT_EQ(Calls{"message(Warning: Overlay::Ptr is not valid!)"}, Taken());

  ui->mouseMove({300, 100});
  ui->mouseUp({300, 100});
  EXPECT_EQ(0, page->effect.dragging);
  EXPECT_EQ((Calls{"message(Warning: Overlay::Ptr is not valid!)",
                   "message(Warning: Overlay::Ptr is not valid!)"}),
            Taken());
}

TEST_F(PageOuterRing, HoldsNothingAfterAMissedPress) {
  ui->mouseDown({400, 300});
  EXPECT_EQ(kOverlayDataCalls, Without(Taken(), "format.pictureSize"));
  EXPECT_EQ(0, page->effect.dragging);
  EXPECT_EQ(0, page->effect.centerOverlay.activePart);
  EXPECT_EQ(0, page->effect.innerRingOverlay.activePart);
  EXPECT_EQ(0, page->effect.outerRingOverlay.activePart);
}

TEST_F(PageOuterRing, SendsNoEventForAMoveWithNothingHeld) {
  ui->mouseMove({240, 120});
  EXPECT_EQ(kOverlayDataCalls, Without(Taken(), "format.pictureSize"));
  EXPECT_EQ(0, page->effect.outerRingOverlay.hoverPart);
}

TEST_F(PageOuterRing, DrawsAndUpdatesAtAReleaseOfNothing) {
  ui->mouseUp({240, 120});

  const Calls calls = Outline(Taken());
  EXPECT_EQ(Calls{}, Only(calls, "set"));
  EXPECT_EQ(kOverlayDataCalls, Calls(calls.begin(), calls.begin() + 6));
  EXPECT_EQ("beginDraw(1,1)", calls[6]);
  EXPECT_EQ("endDraw", calls[calls.size() - 2]);
  EXPECT_EQ("update", calls.back());
}

TEST_F(PageOuterRing, FollowsADragOfTheOuterRing) {
  const Calls cross = {"frame(157.5 117.5 5 5, 1 1 1)", "frame(156.5 116.5 7 7, 0 0 0)"};
  const Calls inner = {"frame(317.5 117.5 5 5, 1 1 0)", "frame(316.5 116.5 7 7, 0 0 0)"};

  ui->mouseDown({240, 120});
  EXPECT_EQ(Handles(Join({{"beginDraw(1,1)"},
                          cross,
                          inner,
                          {"fill(237.5 117.5 5 5, 1 1 0, 1 1 0)", "frame(236.5 116.5 7 7, 0 0 0)"},
                          kEndDraw})),
            Outline(Taken()));
  EXPECT_EQ(1, page->effect.dragging);

  // 60 to the right and 80 up: 100 pixels, 200 / 640 = 0.3125.
  ui->mouseMove({220, 40});
  EXPECT_EQ(Handles(Join({{"setFloat(PRM_RadiusPSF2,0.312500)", "beginDraw(1,1)"},
                          cross,
                          inner,
                          {"fill(257.5 117.5 5 5, 1 1 0, 1 1 0)", "frame(256.5 116.5 7 7, 0 0 0)"},
                          kEndDraw,
                          kUpdate})),
            Outline(Taken()));

  // The release writes the size of the last move again, wherever the pointer is, and opens
  // the handle.
  ui->mouseUp({500, 400});
  EXPECT_EQ(Handles(Join({{"setFloat(PRM_RadiusPSF2,0.312500)", "beginDraw(1,1)"},
                          cross,
                          inner,
                          {"frame(257.5 117.5 5 5, 1 1 0)", "frame(256.5 116.5 7 7, 0 0 0)"},
                          kEndDraw,
                          kUpdate})),
            Outline(Taken()));
  EXPECT_EQ(0, page->effect.dragging);
  EXPECT_EQ(0, page->effect.outerRingOverlay.activePart);
  EXPECT_EQ(0.3125, params->numbers["PRM_RadiusPSF2"]);
}

TEST_F(PageOuterRing, FollowsADragOfTheCrosshair) {
  ui->mouseDown({162, 122});
  EXPECT_EQ(1, page->effect.centerOverlay.activePart);
  EXPECT_EQ(0, page->effect.innerRingOverlay.activePart);
  EXPECT_EQ(0, page->effect.outerRingOverlay.activePart);
  Taken();

  // (320, 240 from the bottom): exactly the middle. The rings move along.
  ui->mouseMove({320, 240});
  EXPECT_EQ(Handles({"setFloat(PRM_Center_X,0.500000)", "setFloat(PRM_Center_Y,0.500000)",
                     "beginDraw(1,1)", "fill(317.5 237.5 5 5, 1 1 1, 1 1 1)",
                     "frame(316.5 236.5 7 7, 0 0 0)", "frame(477.5 237.5 5 5, 1 1 0)",
                     "frame(476.5 236.5 7 7, 0 0 0)", "frame(397.5 237.5 5 5, 1 1 0)",
                     "frame(396.5 236.5 7 7, 0 0 0)", "endDraw", "update"}),
            Outline(Taken()));

  // The release commits its own point.
  ui->mouseUp({480, 360});
  EXPECT_EQ(Handles({"setFloat(PRM_Center_X,0.750000)", "setFloat(PRM_Center_Y,0.250000)",
                     "beginDraw(1,1)", "frame(477.5 357.5 5 5, 1 1 1)",
                     "frame(476.5 356.5 7 7, 0 0 0)", "frame(637.5 357.5 5 5, 1 1 0)",
                     "frame(636.5 356.5 7 7, 0 0 0)", "frame(557.5 357.5 5 5, 1 1 0)",
                     "frame(556.5 356.5 7 7, 0 0 0)", "endDraw", "update"}),
            Outline(Taken()));
  EXPECT_EQ(0, page->effect.dragging);
  EXPECT_EQ(0, page->effect.centerOverlay.activePart);
}

TEST_F(PageHandles, AllFollowAPressThatHoldsAll) {
  ConnectAndDrawImage();

  // Between the crosshair at 160 and the ring handles at 165.
  ui->mouseDown({162.5F, 120});
  EXPECT_EQ(Handles({"beginDraw(1,1)", "fill(157.5 117.5 5 5, 1 1 1, 1 1 1)",
                     "frame(156.5 116.5 7 7, 0 0 0)", "fill(162.5 117.5 5 5, 1 1 0, 1 1 0)",
                     "frame(161.5 116.5 7 7, 0 0 0)", "fill(162.5 117.5 5 5, 1 1 0, 1 1 0)",
                     "frame(161.5 116.5 7 7, 0 0 0)", "endDraw"}),
            Outline(Taken()));

  // 40 right and 30 up of the rings' middle, which is still the old one: 50 pixels.
  ui->mouseMove({200, 90});
  const Calls commits = {"setFloat(PRM_Center_X,0.312500)", "setFloat(PRM_Center_Y,0.812500)",
                         "setFloat(PRM_RadiusPSF1,0.156250)", "setFloat(PRM_RadiusPSF2,0.156250)"};
  EXPECT_EQ(commits, Only(Taken(), "set"));

  // The release moves the centre once more, the sizes stay.
  ui->mouseUp({160, 120});
  EXPECT_EQ((Calls{"setFloat(PRM_Center_X,0.250000)", "setFloat(PRM_Center_Y,0.750000)",
                   "setFloat(PRM_RadiusPSF1,0.156250)", "setFloat(PRM_RadiusPSF2,0.156250)"}),
            Only(Taken(), "set"));
  EXPECT_EQ(0, page->effect.centerOverlay.activePart);
  EXPECT_EQ(0, page->effect.innerRingOverlay.activePart);
  EXPECT_EQ(0, page->effect.outerRingOverlay.activePart);
}

TEST_F(PageHandles, LieInThePicturesCornerBeforeTheFirstDrawing) {
  Connect();

  // 2 right and 2 up of the lower left corner, in the circle shape.
  ui->mouseDown({2, 478});
  EXPECT_EQ(Handles({"beginDraw(1,1)", "endDraw"}), Outline(Taken()));
  EXPECT_EQ(1, page->effect.centerOverlay.activePart);
  EXPECT_EQ(2, page->effect.innerRingOverlay.activePart);
  EXPECT_EQ(2, page->effect.outerRingOverlay.activePart);
  EXPECT_EQ(1, page->effect.dragging);

  // (64, 48) from the corner: 80 pixels from a middle at (0, 0), 160 / 640 = 0.25.
  ui->mouseMove({64, 432});
  EXPECT_EQ(Handles({"setFloat(PRM_Center_X,0.100000)", "setFloat(PRM_Center_Y,0.100000)",
                     "setFloat(PRM_RadiusPSF1,0.250000)", "setFloat(PRM_RadiusPSF2,0.250000)",
                     "beginDraw(1,1)", "endDraw", "update"}),
            Outline(Taken()));

  ui->mouseUp({128, 432});
  EXPECT_EQ(Handles({"setFloat(PRM_Center_X,0.200000)", "setFloat(PRM_Center_Y,0.100000)",
                     "setFloat(PRM_RadiusPSF1,0.250000)", "setFloat(PRM_RadiusPSF2,0.250000)",
                     "beginDraw(1,1)", "endDraw", "update"}),
            Outline(Taken()));
}

TEST_F(PageHandles, WriteNumbersWhenClickedInTheCornerBeforeTheFirstDrawing) {
  Connect();

  ui->mouseDown({0, 480});
  ui->mouseUp({0, 480});

  EXPECT_EQ((Calls{"setFloat(PRM_Center_X,0.000000)", "setFloat(PRM_Center_Y,0.000000)",
                   "setFloat(PRM_RadiusPSF1,0.000000)", "setFloat(PRM_RadiusPSF2,0.000000)"}),
            Only(Taken(), "set"));
}

TEST_F(PageOuterRing, StaysLiveWhenTheShapeChanges) {
  Choose(0);
  ui->drawOverlays();
  EXPECT_EQ(Calls{}, Only(Taken(), "frame("));

  ui->mouseDown({240, 120});
  EXPECT_EQ(Handles({"beginDraw(1,1)", "endDraw"}), Outline(Taken()));

  ui->mouseMove({220, 40});
  EXPECT_EQ(Handles({"setFloat(PRM_RadiusPSF2,0.312500)", "beginDraw(1,1)", "endDraw", "update"}),
            Outline(Taken()));

  // The handle has not moved, for nothing was drawn.
  EXPECT_NEAR(240.0, page->effect.outerRingOverlay.handleX[1], 1e-4);
}

TEST_F(PageOuterRing, StaysHeldWhenTheShapeChangesMeanwhile) {
  ui->mouseDown({240, 120});
  Choose(0);
  ui->parameterChanged(u"PRM_Shape");
  Taken();
  EXPECT_EQ(1, page->effect.dragging);

  ui->mouseMove({220, 40});

  EXPECT_EQ(Handles({"setFloat(PRM_RadiusPSF2,0.312500)", "beginDraw(1,1)", "endDraw", "update"}),
            Outline(Taken()));
}

TEST_F(PageHandles, WriteWhatADivisionByAnEmptyPictureYields) {
  result->formatObject->size = {0, 0};
  ConnectAndDrawImage();

  ui->mouseDown({0, 0});
  ASSERT_EQ(1, page->effect.dragging);
  Taken();
  ui->mouseMove({3, -4});

  // Everything is at (0, 0), so the pointer is 5 pixels away from the rings' middle.
  EXPECT_EQ((Calls{"setFloat(PRM_Center_X,inf)", "setFloat(PRM_Center_Y,inf)",
                   "setFloat(PRM_RadiusPSF1,inf)", "setFloat(PRM_RadiusPSF2,inf)"}),
            Only(Taken(), "set"));
}

// Four arms of the crosshair, and the closing line of each ring.
TEST_F(PageHandles, LeaveInfiniteRingsOfOneLineEach) {
  result->formatObject->size = {0, 0};
  ConnectAndDrawImage();
  ui->mouseDown({0, 0});
  ui->mouseMove({3, -4});
  ui->mouseUp({3, -4});
  result->formatObject->size = {720, 576};
  Taken();

  ui->drawOverlays();

  EXPECT_EQ(6U, Only(Taken(), "line(").size());
}

TEST_F(PageHandles, WriteNoNumberForZeroByZero) {
  result->formatObject->size = {0, 0};
  ConnectAndDrawImage();

  ui->mouseDown({0, 0});
  ui->mouseMove({0, 0});

  EXPECT_TRUE(std::isnan(params->numbers["PRM_Center_X"]));
  EXPECT_TRUE(std::isnan(params->numbers["PRM_Center_Y"]));
  EXPECT_TRUE(std::isnan(params->numbers["PRM_RadiusPSF1"]));
}

TEST_F(PageHandles, DrawAndUpdateBeforeTheDragFlagIsCleared) {
  ConnectAndDrawImage();
  page->effect.dragging = 1;

  host.log.throwAt = "update";
  EXPECT_THROW(ui->mouseUp({400, 400}), lx_test::HostFault);
  EXPECT_EQ(1, page->effect.dragging);

  host.log.throwAt.clear();
  ui->mouseUp({400, 400});
  EXPECT_EQ(0, page->effect.dragging);
}

TEST_F(PageHandles, DragWithoutAStoreMovesTheControlsOnly) {
  ConnectAndDrawImage();
  ui->setParams({});

  ui->mouseDown({157, 120});
  ui->mouseMove({320, 240});

  EXPECT_EQ(Calls{}, Only(Taken(), "set"));
  EXPECT_EQ(0.5, page->effect.center.x);
  EXPECT_EQ(0.5, page->effect.center.y);
}

TEST_F(PageHandles, AreHitStrictlyWithinFivePixels) {
  const struct {
    float x;
    float y;
    std::int32_t part;
  } table[] = {
      {164.5F, 360, 1},    {165, 360, 0}, {155, 360, 0}, {155.5F, 360, 1},
      {160, 364.5F, 1},    {160, 365, 0}, {160, 355, 0}, {160, 355.5F, 1},
      {164.5F, 364.5F, 1}, {164, 366, 0}, {160, 360, 1}, {155.5F, 355.5F, 1},
  };
  Connect();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  cross.screenX = 160;
  cross.screenY = 360;

  for (const auto& row : table) {
    cross.HandleEvent(1, row.x, row.y);
    EXPECT_EQ(row.part, cross.activePart) << row.x << " " << row.y;
    EXPECT_EQ(row.part, cross.hoverPart) << row.x << " " << row.y;
  }
}

TEST_F(PageHandles, AreSmallerTargetsAtAZoomOfTwo) {
  page->effect.zoom = 2.0F;
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  lx::CircleOverlayLX& ring = page->effect.outerRingOverlay;

  cross.HandleEvent(1, 2.25F, 0);
  ring.HandleEvent(1, 2.25F, 0);
  EXPECT_EQ(1, cross.activePart);
  EXPECT_EQ(2, ring.activePart);

  cross.HandleEvent(1, 2.5F, 0);
  ring.HandleEvent(1, 2.5F, 0);
  EXPECT_EQ(0, cross.activePart);
  EXPECT_EQ(0, ring.activePart);
}

TEST_F(PageHandles, NoticeAPointerAboveTheCrosshair) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;

  page->effect.HandleEvent(0, 158, 360);
  EXPECT_EQ(1, cross.hoverPart);
  EXPECT_EQ(0, cross.activePart);
  EXPECT_EQ(0, page->effect.dragging);

  page->effect.HandleEvent(4, 400, 100);
  page->effect.HandleEvent(-1, 400, 100);
  EXPECT_EQ(1, cross.hoverPart);

  page->effect.HandleEvent(0, 400, 100);
  EXPECT_EQ(0, cross.hoverPart);
}

TEST_F(PageHandles, KeepAHoldWhileThePointerHoversElsewhere) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  cross.HandleEvent(1, 160, 360);

  cross.HandleEvent(0, 400, 100);

  EXPECT_EQ(0, cross.hoverPart);
  EXPECT_EQ(1, cross.activePart);
}

TEST_F(PageHandles, IgnoreUnknownEvents) {
  ConnectAndDrawImage();
  page->effect.HandleEvent(1, 162.5F, 360);
  Taken();
  for (const std::int32_t event : {4, 5, 100, -1, std::numeric_limits<std::int32_t>::min(),
                                   std::numeric_limits<std::int32_t>::max()}) {
    page->effect.HandleEvent(event, 400, 100);
  }
  EXPECT_EQ(Calls{}, Only(Taken(), "set"));
  EXPECT_EQ(1, page->effect.centerOverlay.activePart);
  EXPECT_EQ(2, page->effect.innerRingOverlay.activePart);
  EXPECT_EQ(2, page->effect.outerRingOverlay.activePart);
}

TEST_F(PageHandles, CommitXBeforeYByTheSizeOfTheMoment) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  cross.HandleEvent(1, 160, 360);
  result->formatObject->size = {320, 240};
  Taken();

  cross.HandleEvent(2, 64, 48);

  // The target by the picture of now, the overlay's own point by the one that was drawn.
  EXPECT_EQ((Calls{"setFloat(PRM_Center_X,0.200000)", "setFloat(PRM_Center_Y,0.200000)"}),
            Only(Taken(), "set"));
  EXPECT_NEAR(0.1, cross.x, 1e-6);
  EXPECT_NEAR(0.1, cross.y, 1e-6);
}

TEST_F(PageHandles, CommitOnceMoreAtTheRelease) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  cross.HandleEvent(1, 160, 360);
  Taken();

  cross.HandleEvent(3, 320, 120);
  EXPECT_EQ((Calls{"setFloat(PRM_Center_X,0.500000)", "setFloat(PRM_Center_Y,0.250000)"}),
            Only(Taken(), "set"));
  // A release does not move the overlay's own point.
  EXPECT_EQ(0.25F, cross.x);
  EXPECT_EQ(0.75F, cross.y);

  cross.HandleEvent(3, 320, 120);
  EXPECT_EQ(Calls{}, Only(Taken(), "set"));
}

TEST_F(PageHandles, CommitNothingAtThePress) {
  ConnectAndDrawImage();
  page->effect.HandleEvent(1, 162.5F, 360);
  EXPECT_EQ(Calls{}, Only(Taken(), "set"));
}

TEST_F(PageHandles, KeepTheDragFlagAtTheCrosshairsRelease) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;

  cross.HandleEvent(1, 160, 360);
  EXPECT_EQ(1, page->effect.dragging);
  cross.HandleEvent(2, 170, 360);
  EXPECT_EQ(1, page->effect.dragging);
  cross.HandleEvent(3, 170, 360);
  EXPECT_EQ(1, page->effect.dragging);
}

TEST_F(PageHandles, ClearTheDragFlagAtARingsRelease) {
  ConnectAndDrawImage();
  lx::CircleOverlayLX& ring = page->effect.innerRingOverlay;

  ring.HandleEvent(1, 165, 360);
  EXPECT_EQ(1, page->effect.dragging);
  ring.HandleEvent(2, 170, 360);
  EXPECT_EQ(1, page->effect.dragging);
  ring.HandleEvent(3, 170, 360);
  EXPECT_EQ(0, page->effect.dragging);
}

TEST_F(PageHandles, LeaveTheDragFlagAtTheReleaseOfARingThatIsNotHeld) {
  ConnectAndDrawImage();
  page->effect.dragging = 1;
  page->effect.innerRingOverlay.HandleEvent(3, 165, 360);
  EXPECT_EQ(1, page->effect.dragging);
}

TEST_F(PageHandles, LeaveTheDragFlagAtAMissedPress) {
  ConnectAndDrawImage();
  page->effect.dragging = 1;
  page->effect.HandleEvent(1, 400, 100);
  EXPECT_EQ(1, page->effect.dragging);
}

TEST_F(PageHandles, LetGoOfARingAtAMissedPress) {
  ConnectAndDrawImage();
  lx::CircleOverlayLX& ring = page->effect.innerRingOverlay;
  ring.HandleEvent(1, 165, 360);
  ASSERT_EQ(2, ring.activePart);

  ring.HandleEvent(1, 400, 100);

  EXPECT_EQ(0, ring.activePart);
  EXPECT_EQ(0, ring.hoverPart);
}

TEST_F(PageHandles, DoNothingToTheHostWithoutData) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  cross.data = nullptr;

  cross.HandleEvent(1, 160, 360);
  EXPECT_EQ(1, cross.activePart);
  EXPECT_EQ(0, page->effect.dragging);
  cross.HandleEvent(2, 64, 48);

  EXPECT_EQ(Calls{}, Only(Taken(), "set"));
  EXPECT_NEAR(0.1, cross.x, 1e-6);
  EXPECT_EQ(0.25, page->effect.center.x);
}

TEST_F(PageOuterRing, DrawsAtAMissedPressWhileSomethingIsHeld) {
  page->effect.dragging = 1;

  ui->mouseDown({400, 300});

  const Calls calls = Outline(Taken());
  EXPECT_EQ("beginDraw(1,1)", calls[6]);
  EXPECT_EQ("endDraw", calls.back());
}

TEST_F(PageHandles, NoticeAPointerAboveARing) {
  ConnectAndDrawImage();
  lx::CircleOverlayLX& ring = page->effect.innerRingOverlay;
  page->effect.HandleEvent(0, 165, 360);
  EXPECT_EQ(2, ring.hoverPart);
  page->effect.HandleEvent(0, 400, 100);
  EXPECT_EQ(0, ring.hoverPart);

  ring.HandleEvent(1, 165, 360);
  EXPECT_EQ(2, ring.hoverPart);
  EXPECT_EQ(2, ring.activePart);

  ring.HandleEvent(0, 400, 100);
  EXPECT_EQ(0, ring.hoverPart);
  EXPECT_EQ(2, ring.activePart);
}

TEST_F(PageHandles, WriteOnlyWhatEachEventAsksFor) {
  ConnectAndDrawImage();
  lx::CrosshairOverlayLX& cross = page->effect.centerOverlay;
  lx::CircleOverlayLX& ring = page->effect.innerRingOverlay;
  cross.activePart = 1;
  ring.activePart = 2;

  // Applied by itself: 0 and 1 write nothing, and only 1 raises the flag.
  cross.ApplyEvent(0, 64, 48);
  ring.ApplyEvent(0, 64, 48);
  EXPECT_EQ(0, page->effect.dragging);
  cross.ApplyEvent(1, 64, 48);
  EXPECT_EQ(1, page->effect.dragging);
  page->effect.dragging = 0;
  ring.ApplyEvent(1, 64, 48);
  EXPECT_EQ(1, page->effect.dragging);
  EXPECT_EQ(Calls{}, Only(Taken(), "set"));

  page->effect.dragging = 0;
  cross.ApplyEvent(2, 64, 48);
  ring.ApplyEvent(2, 64, 48);
  EXPECT_EQ((Calls{"setFloat(PRM_Center_X,0.100000)", "setFloat(PRM_Center_Y,0.100000)",
                   "setFloat(PRM_RadiusPSF1,0.015625)"}),
            Only(Taken(), "set"));
  EXPECT_EQ(0, page->effect.dragging);
}

}  // namespace
