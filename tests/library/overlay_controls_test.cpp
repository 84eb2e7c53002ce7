// SPDX-License-Identifier: BSD-3-Clause
// Press, drag and release on the handles. A picture of 200 x 100, events with y upwards.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/support/overlay_stage.h"

namespace {

using lx::kEventDrag;
using lx::kEventHover;
using lx::kEventPress;
using lx::kEventRelease;
using lx_test::Calls;

const quantel::wstring kCenter = u"C";
const quantel::wstring kRadius = u"R";
const quantel::wstring kRadius2 = u"S";

class Crosshair : public testing::Test {
 public:
  Crosshair() {
    stage.Join(&crosshair);
    stage.Join(&center, &kCenter);
    crosshair.target = &center;
    crosshair.screenX = 50.0F;
    crosshair.screenY = 40.0F;
  }

  lx_test::OverlayStage stage{200, 100};
  lx::CrosshairOverlayLX crosshair;
  lx::PositionControlLX center;
};

TEST_F(Crosshair, IsHitStrictlyWithinAHandlesSize) {
  struct Case {
    float x;
    float y;
    int hit;
  };
  for (const Case& c :
       {Case{50, 40, 1}, Case{54.9F, 44.9F, 1}, Case{45.1F, 35.1F, 1}, Case{55, 40, 0},
        Case{45, 40, 0}, Case{50, 45, 0}, Case{50, 35, 0}, Case{54, 46, 0}, Case{0, 0, 0}}) {
    crosshair.HandleEvent(kEventHover, c.x, c.y);
    EXPECT_EQ(c.hit, crosshair.hoverPart) << c.x << ' ' << c.y;
    EXPECT_EQ(0, crosshair.activePart);
  }
}

TEST_F(Crosshair, IsHitInHalfTheSizeAtTwiceTheZoom) {
  stage.overlay.zoom = 2.0F;

  crosshair.HandleEvent(kEventHover, 52.4F, 40);
  EXPECT_EQ(1, crosshair.hoverPart);
  crosshair.HandleEvent(kEventHover, 52.5F, 40);
  EXPECT_EQ(0, crosshair.hoverPart);
}

TEST_F(Crosshair, HoversWithoutADrag) {
  crosshair.HandleEvent(kEventHover, 50, 40);

  EXPECT_EQ(0, stage.dragging);
  EXPECT_EQ(Calls{}, stage.Calls());
}

TEST_F(Crosshair, IsHeldFromAPressOnIt) {
  crosshair.HandleEvent(kEventPress, 51, 41);

  EXPECT_EQ(1, crosshair.activePart);
  EXPECT_EQ(1, crosshair.hoverPart);
  EXPECT_EQ(1, stage.dragging);
  EXPECT_EQ(Calls{}, stage.Calls());
}

TEST_F(Crosshair, IsLetGoByAPressBesideIt) {
  crosshair.activePart = 1;
  crosshair.hoverPart = 1;

  crosshair.HandleEvent(kEventPress, 80, 80);

  EXPECT_EQ(0, crosshair.activePart);
  EXPECT_EQ(0, crosshair.hoverPart);
  EXPECT_EQ(0, stage.dragging);
}

TEST_F(Crosshair, FollowsADragAndWritesXThenY) {
  crosshair.HandleEvent(kEventPress, 50, 40);
  crosshair.HandleEvent(kEventDrag, 60, 30);

  EXPECT_FLOAT_EQ(0.3F, crosshair.x);
  EXPECT_FLOAT_EQ(0.3F, crosshair.y);
  EXPECT_EQ(0.3, center.x);
  EXPECT_EQ(0.3, center.y);
  EXPECT_EQ((Calls{"setFloat(C_X,0.300000)", "setFloat(C_Y,0.300000)"}), stage.Calls());
}

// The control's own place follows the size of the last drawing, the value the size of now.
TEST_F(Crosshair, WritesFractionsOfThePictureAsItIsNow) {
  crosshair.activePart = 1;
  stage.format->size = {400, 50};

  crosshair.HandleEvent(kEventDrag, 100, 25);

  EXPECT_EQ(0.5F, crosshair.x);
  EXPECT_EQ(0.25F, crosshair.y);
  EXPECT_EQ((Calls{"format.pictureSize", "setFloat(C_X,0.250000)", "setFloat(C_Y,0.500000)"}),
            stage.host.log.calls);
}

TEST_F(Crosshair, WritesOnceMoreAtTheReleaseAndThenLetsGo) {
  crosshair.HandleEvent(kEventPress, 50, 40);
  crosshair.HandleEvent(kEventRelease, 20, 50);

  EXPECT_EQ((Calls{"setFloat(C_X,0.100000)", "setFloat(C_Y,0.500000)"}), stage.Calls());
  EXPECT_EQ(0, crosshair.activePart);
  EXPECT_EQ(0.0F, crosshair.x);
}

TEST_F(Crosshair, LeavesTheDragFlagToItsAdapter) {
  crosshair.HandleEvent(kEventPress, 50, 40);
  crosshair.HandleEvent(kEventRelease, 50, 40);

  EXPECT_EQ(1, stage.dragging);
}

TEST_F(Crosshair, StaysWhereItIsIfItIsNotHeld) {
  crosshair.HandleEvent(kEventDrag, 60, 30);
  crosshair.HandleEvent(kEventRelease, 60, 30);

  EXPECT_EQ(0.0F, crosshair.x);
  EXPECT_EQ(0.0, center.x);
  EXPECT_EQ(Calls{}, stage.Calls());
}

TEST_F(Crosshair, HearsNoOtherEvents) {
  for (const int event : {-1, 4, 5, 1 << 30}) {
    crosshair.HandleEvent(event, 50, 40);
  }

  EXPECT_EQ(Calls{}, stage.host.log.calls);
  EXPECT_EQ(0, crosshair.hoverPart);
  EXPECT_EQ(0, crosshair.activePart);
}

TEST_F(Crosshair, WritesWhatDivisionByNothingGives) {
  crosshair.HandleEvent(kEventPress, 50, 40);
  stage.format->size = {0, 0};

  crosshair.HandleEvent(kEventDrag, 60, 0);
  crosshair.HandleEvent(kEventDrag, -1, 1);
  stage.data.view.Reset();
  crosshair.HandleEvent(kEventRelease, 60, -30);

  const Calls calls = stage.Calls();
  ASSERT_EQ(6U, calls.size());
  EXPECT_EQ("setFloat(C_X,inf)", calls[0]);
  EXPECT_NE(std::string::npos, calls[1].find("nan"));
  EXPECT_EQ("setFloat(C_X,-inf)", calls[2]);
  EXPECT_EQ("setFloat(C_Y,inf)", calls[3]);
  EXPECT_EQ("setFloat(C_X,inf)", calls[4]);
  EXPECT_EQ("setFloat(C_Y,-inf)", calls[5]);
}

TEST_F(Crosshair, WritesNothingWithoutDataOrTarget) {
  crosshair.activePart = 1;
  crosshair.target = nullptr;
  crosshair.HandleEvent(kEventDrag, 60, 30);
  EXPECT_EQ(Calls{}, stage.Calls());

  crosshair.target = &center;
  crosshair.data = nullptr;
  crosshair.HandleEvent(kEventDrag, 60, 30);
  crosshair.HandleEvent(kEventPress, 50, 40);

  EXPECT_EQ(Calls{}, stage.host.log.calls);
  EXPECT_EQ(0, stage.dragging);
  EXPECT_EQ(1, crosshair.activePart);
}

TEST(LooseOverlayControls, DoNothing) {
  lx::CrosshairOverlayLX crosshair;
  lx::CircleOverlayLX ring;
  for (const int event : {0, 1, 2, 3}) {
    crosshair.HandleEvent(event, 0, 0);
    ring.HandleEvent(event, 0, 0);
  }

  EXPECT_EQ(0, crosshair.activePart);
  EXPECT_EQ(0, ring.activePart);
}

TEST(LooseOverlayControls, StartWithWhiteAndVisible) {
  const lx::CircleOverlayLX ring;

  for (const int component : {ring.red, ring.green, ring.blue, ring.alpha}) {
    EXPECT_EQ(65535, component);
  }
  EXPECT_EQ(1, ring.visible);
  EXPECT_EQ(1, ring.lockAspect);
  EXPECT_EQ(0, ring.dashed);
  EXPECT_EQ(0.0F, ring.sizeX);
}

// The handles stand at (114, 33), (120, 40) and (100, 30), about (100, 40).
class Ring : public testing::Test {
 public:
  Ring() {
    stage.Join(&ring);
    stage.Join(&radius, &kRadius);
    stage.Join(&radius2, &kRadius2);
    ring.target = &radius;
    ring.target2 = &radius2;
    ring.x = 0.5F;
    ring.y = 0.4F;
    ring.sizeX = 0.2F;
    ring.sizeY = 0.1F;
    ring.handleX[0] = 114.0F;
    ring.handleY[0] = 33.0F;
    ring.handleX[1] = 120.0F;
    ring.handleY[1] = 40.0F;
    ring.handleX[2] = 100.0F;
    ring.handleY[2] = 30.0F;
  }

  int PartAt(float x, float y) {
    ring.HandleEvent(kEventHover, x, y);
    return ring.hoverPart;
  }

  lx_test::OverlayStage stage{200, 100};
  lx::CircleOverlayLX ring;
  lx::SizeControlLX radius;
  lx::SizeControlLX radius2;
};

TEST_F(Ring, OffersItsXHandleAloneWhileProportionsAreLocked) {
  EXPECT_EQ(2, PartAt(120, 40));
  EXPECT_EQ(2, PartAt(124.9F, 44.9F));
  EXPECT_EQ(0, PartAt(125, 40));
  EXPECT_EQ(0, PartAt(120, 35));
  EXPECT_EQ(0, PartAt(114, 33));
  EXPECT_EQ(0, PartAt(100, 30));
}

TEST_F(Ring, OffersAllHandlesUnlocked) {
  ring.lockAspect = 0;

  EXPECT_EQ(1, PartAt(114, 33));
  EXPECT_EQ(2, PartAt(120, 40));
  EXPECT_EQ(3, PartAt(100, 30));
}

TEST_F(Ring, TakesTheFirstOfHandlesThatLieTogether) {
  ring.lockAspect = 0;
  ring.handleX[0] = 118.0F;
  ring.handleY[0] = 39.0F;
  ring.handleX[2] = 122.0F;
  ring.handleY[2] = 41.0F;

  EXPECT_EQ(1, PartAt(120, 40));
  EXPECT_EQ(2, PartAt(123.5F, 40));
  EXPECT_EQ(3, PartAt(125.5F, 43));
}

TEST_F(Ring, IsHeldFromAPressOnAHandle) {
  ring.HandleEvent(kEventPress, 119, 41);

  EXPECT_EQ(2, ring.activePart);
  EXPECT_EQ(2, ring.hoverPart);
  EXPECT_EQ(1, stage.dragging);
  EXPECT_EQ(Calls{}, stage.host.log.calls);
}

TEST_F(Ring, IsLetGoByAPressBesideIt) {
  ring.activePart = 2;
  ring.hoverPart = 2;

  ring.HandleEvent(kEventPress, 10, 10);

  EXPECT_EQ(0, ring.activePart);
  EXPECT_EQ(0, ring.hoverPart);
  EXPECT_EQ(0, stage.dragging);
}

// 30 across and 40 up from the middle are 50 pixels: a diameter of 100 of 200.
TEST_F(Ring, GrowsToThePointersDistanceByItsXHandle) {
  ring.HandleEvent(kEventPress, 120, 40);
  ring.HandleEvent(kEventDrag, 130, 80);

  EXPECT_EQ(0.5F, ring.sizeX);
  EXPECT_EQ(0.1F, ring.sizeY);
  EXPECT_EQ(0.5, radius.value);
  EXPECT_EQ(Calls{"setFloat(R,0.500000)"}, stage.Calls());
}

TEST_F(Ring, GrowsToThePointersDistanceByItsYHandle) {
  ring.lockAspect = 0;
  ring.HandleEvent(kEventPress, 100, 30);
  ring.HandleEvent(kEventDrag, 130, 80);

  EXPECT_EQ(0.2F, ring.sizeX);
  EXPECT_EQ(0.5F, ring.sizeY);
  EXPECT_EQ(Calls{"setFloat(S,0.500000)"}, stage.Calls());
}

// ratio 0.5, dx 30, q = 30 / cos 45 = 42.4264: sizes 0.424264 and 0.212132.
TEST_F(Ring, KeepsItsProportionsByItsCorner) {
  ring.lockAspect = 0;
  ring.HandleEvent(kEventPress, 114, 33);
  ring.HandleEvent(kEventDrag, 130, 1000);

  EXPECT_NEAR(0.424264, ring.sizeX, 1e-6);
  EXPECT_NEAR(0.212132, ring.sizeY, 1e-6);
  EXPECT_EQ((Calls{"setFloat(R,0.424264)", "setFloat(S,0.212132)"}), stage.Calls());
}

// Turned by 30 degrees: cos 0.866025, sin 0.5; q = 30 / (0.866025 x 0.707107 + 0.5 x 0.5 x
// 0.707107) = 30 / 0.789149 = 38.0157.
TEST_F(Ring, KeepsItsProportionsByItsCornerWhenTurned) {
  ring.lockAspect = 0;
  ring.rotation = 30.0F;
  ring.activePart = 1;

  ring.HandleEvent(kEventDrag, 130, 0);

  EXPECT_NEAR(0.380157, ring.sizeX, 1e-6);
  EXPECT_NEAR(0.190078, ring.sizeY, 1e-6);
}

TEST_F(Ring, LeavesTheSecondSizeInATargetThatIsBoth) {
  ring.lockAspect = 0;
  ring.target2 = &radius;
  ring.activePart = 1;

  ring.HandleEvent(kEventDrag, 130, 0);

  EXPECT_NEAR(0.212132, radius.value, 1e-6);
  EXPECT_EQ((Calls{"setFloat(R,0.424264)", "setFloat(R,0.212132)"}), stage.Calls());
}

TEST_F(Ring, WritesOnceMoreAtTheReleaseAndEndsTheDrag) {
  ring.HandleEvent(kEventPress, 120, 40);
  ring.HandleEvent(kEventDrag, 130, 80);
  stage.Calls();

  ring.HandleEvent(kEventRelease, 10, 10);

  EXPECT_EQ(Calls{"setFloat(R,0.500000)"}, stage.Calls());  // as the last drag left it
  EXPECT_EQ(0, ring.activePart);
  EXPECT_EQ(0, stage.dragging);
}

TEST_F(Ring, LeavesTheDragOfOthersAloneIfItIsNotHeld) {
  stage.dragging = 1;

  ring.HandleEvent(kEventDrag, 130, 80);
  ring.HandleEvent(kEventRelease, 130, 80);

  EXPECT_EQ(1, stage.dragging);
  EXPECT_EQ(0.2F, ring.sizeX);
  EXPECT_EQ(Calls{}, stage.Calls());
}

TEST_F(Ring, HearsNoOtherEvents) {
  for (const int event : {-1, 4, 1 << 30}) {
    ring.HandleEvent(event, 120, 40);
  }

  EXPECT_EQ(0, ring.hoverPart);
  EXPECT_EQ(0, ring.activePart);
}

TEST_F(Ring, WritesWhatDivisionByNothingGives) {
  stage.overlay.pictureWidth = 0;
  stage.overlay.pictureHeight = 0;
  ring.activePart = 2;

  ring.HandleEvent(kEventDrag, 3, 4);
  EXPECT_EQ(Calls{"setFloat(R,inf)"}, stage.Calls());
  ring.HandleEvent(kEventDrag, 0, 0);

  EXPECT_TRUE(std::isnan(radius.value));
}

TEST_F(Ring, WritesNothingWithoutDataOrTarget) {
  ring.activePart = 2;
  ring.target = nullptr;
  ring.HandleEvent(kEventDrag, 130, 80);
  ring.target = &radius;
  ring.data = nullptr;
  ring.HandleEvent(kEventDrag, 130, 80);

  EXPECT_EQ(Calls{}, stage.Calls());
  EXPECT_EQ(0.0, radius.value);
}

}  // namespace
