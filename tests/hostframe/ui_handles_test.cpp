// SPDX-License-Identifier: BSD-3-Clause
// The mouse on the picture, through a UI instance. A picture of 720 x 576, in which the
// host's points count y downwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/fft_recorder.h"
#include "tests/support/page_stage.h"

namespace {

using lx_test::Log;
using lx_test::PageStage;
using lx_test::operator+;

const Log kOverlayData = {"result.overlaySurface", "result.format", "result.format",
                          "format.pixelAspect",    "result.format", "format.pixelAspect"};
const Log kPictureSize = {"format.pictureSize"};

testing::AssertionResult StartsWith(const Log& calls, const Log& first) {
  for (std::size_t i = 0; i < first.size(); ++i) {
    if (i >= calls.size() || calls[i] != first[i]) {
      return testing::AssertionFailure() << "call " << i << " is not " << first[i];
    }
  }
  return testing::AssertionSuccess();
}

// An opened page in the image shape, drawn once: the crosshair at (360, 288), the first
// ring's handle at 360 + 72 = 432, the second one's at 360 + 144 = 504.
class UiHandles : public lx_test::PageTest {
 public:
  UiHandles() {
    params->numbers["PRM_Shape"] = 3;
    params->numbers["PRM_Center_X"] = 0.5;
    params->numbers["PRM_Center_Y"] = 0.5;
    params->numbers["PRM_RadiusPSF1"] = 0.2;
    params->numbers["PRM_RadiusPSF2"] = 0.4;
    Open();
    ui->drawOverlays();
    Calls();
  }
};

TEST_F(UiHandles, AreDrawnFromAFreshLookAtTheStore) {
  params->numbers["PRM_Shape"] = 0;

  ui->drawOverlays();

  const Log reads = {
      "getFloat(PRM_RadiusX,0)",    "getFloat(PRM_RadiusY,0)",   "getFloat(PRM_Sides,0)",
      "getFloat(PRM_Rotation,0)",   "getFloat(PRM_Emphasis,0)",  "getBool(PRM_EmphAlpha,0)",
      "getBool(PRM_Precision,0)",   "getFloat(PRM_Center_X,0)",  "getFloat(PRM_Center_Y,0)",
      "getFloat(PRM_RadiusPSF1,0)", "getFloat(PRM_RadiusPSF2,0)"};
  EXPECT_EQ((Log{"getList(PRM_Shape)", "setBool(PRM_Shape_D,0)", "setBool(PRM_Shape_A,1)",
                 "getBool(PRM_Match,0)", "setBool(PRM_Match_A,0)", "setBool(PRM_Match_B,1)"} +
             reads + kOverlayData + Log{"beginDraw(1,1)"} + kPictureSize + Log{"endDraw"}),
            Calls());
}

TEST_F(UiHandles, AreNotDrawnAfterAPressBesideThem) {
  ui->mouseDown({10, 10});

  // Once to turn y over, once for the crosshair.
  EXPECT_EQ(kOverlayData + kPictureSize + kPictureSize, Calls());
  EXPECT_EQ(0, adapter->effect.dragging);
}

TEST_F(UiHandles, AreDrawnAfterAPressOnThem) {
  ui->mouseDown({361, 287});

  const Log calls = Calls();
  const Log first = kOverlayData + kPictureSize + kPictureSize + Log{"beginDraw(1,1)"};
  EXPECT_TRUE(StartsWith(calls, first));
  EXPECT_EQ(1, std::count(calls.begin(), calls.end(), "fill(357.5 285.5 5 5, 1 1 1, 1 1 1)"));
  EXPECT_EQ("endDraw", calls.back());
  EXPECT_EQ(1, adapter->effect.dragging);
}

// Height 576: y 100 from the top is 476 from the bottom.
TEST_F(UiHandles, CountYFromTheBottom) {
  ui->mouseDown({360, 288});
  ui->mouseMove({180, 100});

  EXPECT_EQ(0.25, adapter->effect.center.x);
  EXPECT_EQ(476.0 / 576.0, adapter->effect.center.y);
}

TEST_F(UiHandles, HearNoMoveWhileNothingIsHeld) {
  ui->mouseMove({360, 288});

  EXPECT_EQ(kOverlayData, Calls());
  EXPECT_EQ(0, adapter->effect.centerOverlay.hoverPart);
}

TEST_F(UiHandles, AreWrittenThenDrawnThenShownWithEveryMove) {
  ui->mouseDown({360, 288});
  Calls();

  ui->mouseMove({180, 144});

  const Log calls = Calls();
  const Log first =
      kOverlayData + kPictureSize + kPictureSize +
      Log{"setFloat(PRM_Center_X,0.250000)", "setFloat(PRM_Center_Y,0.750000)", "beginDraw(1,1)"};
  EXPECT_TRUE(StartsWith(calls, first));
  EXPECT_EQ("endDraw", calls[calls.size() - 2]);
  EXPECT_EQ("update", calls.back());
}

TEST_F(UiHandles, AreWrittenOnceMoreWithTheRelease) {
  ui->mouseDown({360, 288});
  ui->mouseMove({180, 144});
  Calls();

  ui->mouseUp({90, 144});

  const Log calls = Calls();
  const Log first =
      kOverlayData + kPictureSize + kPictureSize +
      Log{"setFloat(PRM_Center_X,0.125000)", "setFloat(PRM_Center_Y,0.750000)", "beginDraw(1,1)"};
  EXPECT_TRUE(StartsWith(calls, first));
  EXPECT_EQ("endDraw", calls[calls.size() - 2]);
  EXPECT_EQ("update", calls.back());
  EXPECT_EQ(0, adapter->effect.dragging);
  EXPECT_EQ(0, adapter->effect.centerOverlay.activePart);
}

TEST_F(UiHandles, AreDrawnAndShownAtAReleaseOfNothing) {
  ui->mouseUp({10, 10});

  const Log calls = Calls();
  const Log first = kOverlayData + kPictureSize + kPictureSize + Log{"beginDraw(1,1)"};
  EXPECT_TRUE(StartsWith(calls, first));
  EXPECT_EQ("update", calls.back());
}

TEST_F(UiHandles, PullTheInnerRingBeyondTheOuter) {
  ui->mouseDown({432, 288});
  ui->mouseMove({360, 0});

  // 288 pixels up: a diameter of 576 of 720.
  EXPECT_FLOAT_EQ(0.8F, params->lastFloat);
  EXPECT_FLOAT_EQ(0.8F, static_cast<float>(params->numbers["PRM_RadiusPSF1"]));
  EXPECT_EQ(0.4, params->numbers["PRM_RadiusPSF2"]);
}

using UiHandlesAtOnce = lx_test::PageTest;

TEST_F(UiHandlesAtOnce, SurviveTheMouseBeforeThereIsAResult) {
  for (const auto& point : {quantel::cPoint2{0, 0}, quantel::cPoint2{3, -3}}) {
    ui->mouseDown(point);
    ui->mouseMove(point);
    ui->mouseUp(point);
  }
  ui->setParams(params);
  Calls();

  ui->drawOverlays();

  EXPECT_EQ("message(Warning: Overlay::Ptr is not valid!)", Calls().back());
}

TEST(UiInstance, PlansNoTransform) {
  lx_test::FftRecorder fft;
  {
    PageStage stage;
    stage.params->numbers["PRM_Shape"] = 3;
    stage.Open();
    stage.ui->drawOverlays();
    stage.ui->mouseDown({0, 576});
    stage.ui->mouseMove({50, 50});
    stage.ui->mouseUp({50, 50});
    stage.ui->parameterChanged(u"PRM_Shape");
    stage.Close();
  }

  EXPECT_EQ(0, fft.Count("forward"));
  EXPECT_EQ(0, fft.Count("inverse"));
  EXPECT_EQ(0, fft.Count("execute"));
}

}  // namespace
