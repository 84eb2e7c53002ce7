// SPDX-License-Identifier: BSD-3-Clause
// What the effect draws on the picture and hears of the mouse.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "effect/glimmer_blur.h"
#include "tests/support/overlay_stage.h"

namespace {

using lx_test::Calls;

// The effect over a picture of 200 x 100, with its overlays joined as an adapter does.
class EffectOverlays : public testing::Test {
 public:
  EffectOverlays() {
    effect.data = &stage.data;
    effect.zoom = 1.0F;
    for (lx::OverlayControlLX* overlay : Overlays()) {
      stage.Join(overlay);
      overlay->owner = &effect;
    }
    effect.centerOverlay.target = &effect.center;
    effect.innerRingOverlay.target = &effect.radiusPSF1;
    effect.outerRingOverlay.target = &effect.radiusPSF2;
    stage.Join(&effect.center, &keyCenter);
    stage.Join(&effect.radiusPSF1, &keyFirst);
    stage.Join(&effect.radiusPSF2, &keySecond);
    effect.shape.value = 4;
    effect.center.x = 0.25;
    effect.center.y = 0.4;
    effect.radiusPSF1.value = 0.2;
    effect.radiusPSF2.value = 0.02;
  }

  std::vector<lx::OverlayControlLX*> Overlays() {
    return {&effect.centerOverlay, &effect.innerRingOverlay, &effect.outerRingOverlay};
  }

  const quantel::wstring keyCenter = u"C";
  const quantel::wstring keyFirst = u"R1";
  const quantel::wstring keySecond = u"R2";
  lx_test::OverlayStage stage{200, 100};
  lx::GlimmerBlur effect;
};

TEST_F(EffectOverlays, DrawCrosshairAndBothRingsInOnePass) {
  // The second ring is 4 pixels across: a handle and no outline.
  effect.Draw();

  const Calls& calls = stage.host.log.calls;
  ASSERT_LT(4U, calls.size());
  EXPECT_EQ((Calls{"beginDraw(1,1)", "format.pictureSize", "format.pictureSize",
                   "line(60 60 -> 75 60, 1 1 1)"}),
            Calls(calls.begin(), calls.begin() + 4));
  const Calls drawn = stage.Calls();
  // Begin, six of the crosshair, 33 of the first outline, two handles of two squares, end.
  ASSERT_EQ(1U + 6U + 33U + 2U + 2U + 1U, drawn.size());
  EXPECT_EQ("frame(47.5 57.5 5 5, 1 1 1)", drawn[5]);
  EXPECT_EQ("line(70 60 -> 70 60, 1 1 1)", drawn[7]);
  EXPECT_EQ("frame(67.5 57.5 5 5, 1 1 1)", drawn[40]);
  EXPECT_EQ("frame(66.5 56.5 7 7, 0 0 0)", drawn[41]);
  EXPECT_EQ("frame(49.5 57.5 5 5, 1 1 1)", drawn[42]);
  EXPECT_EQ("frame(48.5 56.5 7 7, 0 0 0)", drawn[43]);
  EXPECT_EQ("endDraw", drawn[44]);
}

TEST_F(EffectOverlays, DrawTheSecondRingDashed) {
  effect.radiusPSF2.value = 0.2;

  effect.Draw();

  EXPECT_EQ(0, effect.innerRingOverlay.dashed);
  EXPECT_EQ(1, effect.outerRingOverlay.dashed);
  EXPECT_EQ(4U + 33U + 17U, stage.LineCount());
}

TEST_F(EffectOverlays, StretchRingsByThePixelAspect) {
  effect.aspectNum = 16.0F;
  effect.aspectDen = 8.0F;

  effect.Draw();

  EXPECT_FLOAT_EQ(0.2F, effect.innerRingOverlay.sizeX);
  EXPECT_FLOAT_EQ(0.4F, effect.innerRingOverlay.sizeY);
  EXPECT_FLOAT_EQ(0.04F, effect.outerRingOverlay.sizeY);
  // Down by half the height: rows 200 x 0.4 / 2 = 40 below the middle at 40.
  EXPECT_NEAR(0.0, effect.innerRingOverlay.handleY[2], 1e-6);
  EXPECT_FLOAT_EQ(50.0F, effect.innerRingOverlay.handleX[2]);
}

TEST_F(EffectOverlays, LockTheProportionsAndTheRotationOfTheRings) {
  effect.innerRingOverlay.lockAspect = 0;
  effect.innerRingOverlay.rotation = 30.0F;

  effect.Draw();

  EXPECT_EQ(1, effect.innerRingOverlay.lockAspect);
  EXPECT_EQ(0.0F, effect.innerRingOverlay.rotation);
}

TEST_F(EffectOverlays, DrawNothingInOtherShapes) {
  for (const int shape : {1, 2, 3, 5, 0}) {
    effect.shape.value = shape;
    effect.Draw();
    EXPECT_EQ((Calls{"beginDraw(1,1)", "endDraw"}), stage.Calls());
    for (const lx::OverlayControlLX* overlay : Overlays()) {
      EXPECT_EQ(0, overlay->visible);
    }
  }
  effect.shape.value = 4;
  effect.Draw();
  for (const lx::OverlayControlLX* overlay : Overlays()) {
    EXPECT_EQ(1, overlay->visible);
  }
}

TEST_F(EffectOverlays, RefreshThePictureSizeInEveryShape) {
  effect.shape.value = 1;
  effect.Draw();
  EXPECT_EQ(200, effect.pictureWidth);
  EXPECT_EQ(100, effect.pictureHeight);

  stage.data.view.Reset();
  effect.Draw();
  EXPECT_EQ(0, effect.pictureWidth);
  EXPECT_EQ(0, effect.pictureHeight);
}

TEST_F(EffectOverlays, ComplainWithoutDataAndDrawNothing) {
  effect.data = nullptr;

  effect.Draw();

  EXPECT_EQ(u"Warning: Overlay data has not been initialised!", stage.host.factory->sink->last);
  EXPECT_EQ("message(Warning: Overlay data has not been initialised!)",
            stage.host.log.calls.back());
}

TEST_F(EffectOverlays, ComplainWithoutASurfaceAndDrawNothing) {
  stage.data.draw.Reset();

  effect.Draw();

  EXPECT_EQ("message(Warning: Overlay::Ptr is not valid!)", stage.host.log.calls.back());
  EXPECT_EQ(0, effect.pictureWidth);
}

TEST_F(EffectOverlays, DrawWithoutAView) {
  stage.data.view.Reset();

  effect.Draw();

  // Everything about the point (0, 0), and no outlines.
  EXPECT_EQ((Calls{"beginDraw(1,1)", "line(10 0 -> 25 0, 1 1 1)", "line(-10 0 -> -25 0, 1 1 1)",
                   "line(0 -10 -> 0 -25, 1 1 1)", "line(0 10 -> 0 25, 1 1 1)"}),
            Calls(stage.host.log.calls.begin(), stage.host.log.calls.begin() + 5));
  EXPECT_EQ(4U, stage.LineCount());
}

TEST_F(EffectOverlays, AllHearEveryEventInEveryShape) {
  for (const int shape : {1, 2, 3, 4, 9}) {
    effect.shape.value = shape;
    effect.HandleEvent(lx::kEventHover, 1.0F, 2.0F);
    // Before the first drawing all handles lie on the picture's corner.
    for (const lx::OverlayControlLX* overlay : Overlays()) {
      EXPECT_NE(0, overlay->hoverPart);
    }
    effect.HandleEvent(lx::kEventHover, 50.0F, 50.0F);
    for (const lx::OverlayControlLX* overlay : Overlays()) {
      EXPECT_EQ(0, overlay->hoverPart);
    }
  }
}

TEST_F(EffectOverlays, DragWhateverLiesInTheCornerTogether) {
  effect.shape.value = 1;
  effect.Draw();  // for the picture's size alone
  effect.HandleEvent(lx::kEventPress, 1.0F, 1.0F);
  EXPECT_EQ(1, effect.centerOverlay.activePart);
  EXPECT_EQ(2, effect.innerRingOverlay.activePart);
  EXPECT_EQ(2, effect.outerRingOverlay.activePart);
  stage.Calls();

  effect.HandleEvent(lx::kEventDrag, 30.0F, 40.0F);

  // The rings measure from their own middle, which is the corner too: 50 pixels.
  EXPECT_EQ((Calls{"setFloat(C_X,0.150000)", "setFloat(C_Y,0.400000)", "setFloat(R1,0.500000)",
                   "setFloat(R2,0.500000)"}),
            stage.Calls());
}

TEST_F(EffectOverlays, WriteFiniteValuesBeforeTheFirstDrawingOfTheHandles) {
  effect.shape.value = 1;
  effect.Draw();

  effect.HandleEvent(lx::kEventPress, -3.0F, 3.0F);
  effect.HandleEvent(lx::kEventDrag, 12.0F, 5.0F);
  effect.HandleEvent(lx::kEventRelease, 12.0F, 5.0F);

  for (const double value :
       {effect.center.x, effect.center.y, effect.radiusPSF1.value, effect.radiusPSF2.value}) {
    EXPECT_TRUE(std::isfinite(value));
  }
  // 12 across and 5 up: 13 pixels of 200, twice.
  EXPECT_FLOAT_EQ(0.13F, stage.store->lastFloat);
}

TEST_F(EffectOverlays, KeepTheirHandlesAliveAfterAChangeOfShape) {
  effect.Draw();
  effect.shape.value = 2;
  effect.Draw();
  stage.Calls();

  // On the crosshair alone; the handle of the small ring stands at (52, 40).
  effect.HandleEvent(lx::kEventPress, 46.0F, 41.0F);
  effect.HandleEvent(lx::kEventDrag, 100.0F, 50.0F);

  EXPECT_EQ((Calls{"setFloat(C_X,0.500000)", "setFloat(C_Y,0.500000)"}), stage.Calls());
}

TEST_F(EffectOverlays, IgnoreAPressBesideEveryHandle) {
  effect.Draw();
  stage.Calls();

  effect.HandleEvent(lx::kEventPress, 150.0F, 90.0F);
  effect.HandleEvent(lx::kEventDrag, 160.0F, 80.0F);
  effect.HandleEvent(lx::kEventRelease, 160.0F, 80.0F);

  EXPECT_EQ(Calls{}, stage.Calls());
  EXPECT_EQ(0, stage.dragging);
  for (const lx::OverlayControlLX* overlay : Overlays()) {
    EXPECT_EQ(0, overlay->activePart);
  }
}

}  // namespace
