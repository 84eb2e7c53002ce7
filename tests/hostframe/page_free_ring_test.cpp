// SPDX-License-Identifier: BSD-3-Clause
// A ring with all its handles, which no page shows.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/played_page.h"

namespace {

using namespace lx_test;

// A ring with its middle at (160, 360), free proportions, its three handles out of the way of
// each other, and targets that can be told apart.
class PageFreeRing : public PlayedPage {
 protected:
  PageFreeRing() : ring(page->effect.outerRingOverlay) {
    ConnectAndDrawImage();
    ring.target2 = &page->effect.radiusPSF1;
    ring.lockAspect = 0;
    for (int i = 0; i < 3; ++i) {
      ring.handleX[i] = static_cast<float>(100 * (i + 1));
      ring.handleY[i] = 50;
    }
    ring.sizeX = 0.5F;
    ring.sizeY = 0.25F;
  }

  lx::CircleOverlayLX& ring;
};

TEST_F(PageFreeRing, FindsEachHandle) {
  for (std::int32_t part = 1; part <= 3; ++part) {
    ring.HandleEvent(0, static_cast<float>(100 * part), 50);
    EXPECT_EQ(part, ring.hoverPart);
    EXPECT_EQ(0, ring.activePart);
  }
  ring.HandleEvent(0, 150, 50);
  EXPECT_EQ(0, ring.hoverPart);
}

TEST_F(PageFreeRing, PrefersTheLowerOfTwoHandles) {
  ring.handleX[2] = 203;
  ring.HandleEvent(1, 202, 50);
  EXPECT_EQ(2, ring.activePart);

  ring.handleX[0] = 204;
  ring.HandleEvent(1, 202, 50);
  EXPECT_EQ(1, ring.activePart);
}

TEST_F(PageFreeRing, HidesTwoHandlesWhenItsProportionsAreLocked) {
  ring.lockAspect = 1;
  for (std::int32_t part = 1; part <= 3; ++part) {
    ring.HandleEvent(1, static_cast<float>(100 * part), 50);
    EXPECT_EQ(part == 2 ? 2 : 0, ring.activePart);
  }
}

TEST_F(PageFreeRing, GetsItsWidthFromTheSecondHandle) {
  ring.HandleEvent(1, 200, 50);
  ring.HandleEvent(2, 190, 400);  // 30 and 40 away: 50 pixels

  EXPECT_EQ(Calls{"setFloat(PRM_RadiusPSF2,0.156250)"}, Only(Taken(), "set"));
  EXPECT_EQ(0.15625F, ring.sizeX);
  EXPECT_EQ(0.25F, ring.sizeY);
  EXPECT_EQ(0.15625, page->effect.radiusPSF2.value);
}

TEST_F(PageFreeRing, GetsItsHeightFromTheThirdHandle) {
  ring.HandleEvent(1, 300, 50);
  ring.HandleEvent(2, 190, 400);

  EXPECT_EQ(Calls{"setFloat(PRM_RadiusPSF1,0.156250)"}, Only(Taken(), "set"));
  EXPECT_EQ(0.5F, ring.sizeX);
  EXPECT_EQ(0.15625F, ring.sizeY);
}

TEST_F(PageFreeRing, KeepsItsProportionsAtTheCorner) {
  ring.HandleEvent(1, 100, 50);
  ring.HandleEvent(2, 224, 7);  // 64 to the right: 64 x 1.414214 = 90.509668, x 2 / 640

  EXPECT_EQ((Calls{"setFloat(PRM_RadiusPSF2,0.282843)", "setFloat(PRM_RadiusPSF1,0.141421)"}),
            Only(Taken(), "set"));

  ring.HandleEvent(3, 500, 400);
  EXPECT_EQ((Calls{"setFloat(PRM_RadiusPSF2,0.282843)", "setFloat(PRM_RadiusPSF1,0.141421)"}),
            Only(Taken(), "set"));
  EXPECT_EQ(0, ring.activePart);
  EXPECT_EQ(0, page->effect.dragging);
}

TEST_F(PageFreeRing, TurnsTheCornerWithItself) {
  ring.rotation = 90;
  ring.HandleEvent(1, 100, 50);
  ring.HandleEvent(2, 224, 7);  // 64 / (0.5 x 0.707107) = 181.019336, x 2 / 640

  EXPECT_EQ((Calls{"setFloat(PRM_RadiusPSF2,0.565685)", "setFloat(PRM_RadiusPSF1,0.282843)"}),
            Only(Taken(), "set"));
}

TEST_F(PageFreeRing, TurnsTheCornerByAnyAngle) {
  ring.rotation = 30;
  ring.HandleEvent(1, 100, 50);
  // 0.866025 x 0.707107 + 0.5 x 0.5 x 0.707107 = 0.789149; 64 / 0.789149 = 81.100022
  ring.HandleEvent(2, 224, 7);

  EXPECT_NEAR(0.253438, ring.sizeX, 2e-6);
  EXPECT_NEAR(0.126719, ring.sizeY, 2e-6);
}

TEST_F(PageFreeRing, ChangesNothingWhileNothingIsHeld) {
  ring.HandleEvent(1, 150, 50);
  ring.HandleEvent(2, 190, 400);
  ring.HandleEvent(3, 190, 400);

  EXPECT_EQ(Calls{}, Only(Taken(), "set"));
  EXPECT_EQ(0.5F, ring.sizeX);
  EXPECT_EQ(0.25F, ring.sizeY);
}

}  // namespace
