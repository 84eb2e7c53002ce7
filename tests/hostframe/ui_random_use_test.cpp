// SPDX-License-Identifier: BSD-3-Clause
// Any use of a page, for as long as it takes: what was handed out comes back.
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <random>
#include <string>

#include "tests/support/page_stage.h"

namespace {

using lx_test::cPtr;

constexpr const char16_t* kKeys[] = {
    u"PRM_Shape",      u"PRM_Match",      u"PRM_RadiusX",        u"PRM_RadiusY",
    u"PRM_Sides",      u"PRM_Rotation",   u"PRM_Emphasis",       u"PRM_EmphAlpha",
    u"PRM_Precision",  u"PRM_Center",     u"PRM_Center_X",       u"PRM_Center_Y",
    u"PRM_RadiusPSF1", u"PRM_RadiusPSF2", u"lxColourButton_PRM", u"PRM_GlimmerFocus_Page",
    u"PRM_Other"};

// A seeded hand on a page.
class RandomUse : public lx_test::PageTest, public testing::WithParamInterface<unsigned> {
 public:
  void Step() {
    switch (Below(16)) {
      case 0:
        ui->setInputs(Below(4) == 0 ? cPtr<lx_test::FakeInputs>() : inputs);
        break;
      case 1:
        ui->setParams(Below(8) == 0 ? cPtr<lx_test::FakeParams>() : params);
        break;
      case 2:
        ui->setResult(Below(8) == 0 ? cPtr<lx_test::FakeResult>() : result);
        break;
      case 3:
      case 4:
      case 5:
        ChangeOne();
        break;
      case 6:
        ui4->colourRequest(0);
        break;
      case 7:
      case 8:
        ui->drawOverlays();
        break;
      case 9:
        result->formatObject->size = {Below(5) == 0 ? 0 : 720, Below(5) == 0 ? 0 : 576};
        result->formatObject->aspect = {Below(3), Below(3)};
        break;
      case 10:
      case 11:
        ui->mouseDown(Point());
        break;
      case 12:
      case 13:
      case 14:
        ui->mouseMove(Point());
        break;
      default:
        ui->mouseUp(Point());
        break;
    }
    Calls();
    MendRadii();
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  // On a handle, near one, or anywhere.
  quantel::cPoint2 Point() {
    auto& effect = adapter->effect;
    const lx::CircleOverlayLX& ring =
        Below(2) == 0 ? effect.innerRingOverlay : effect.outerRingOverlay;
    switch (Below(4)) {
      case 0:
        return {effect.centerOverlay.screenX + 1.0F,
                static_cast<float>(effect.pictureHeight) - effect.centerOverlay.screenY};
      case 1:
        return {ring.handleX[1], static_cast<float>(effect.pictureHeight) - ring.handleY[1]};
      case 2:
        return {static_cast<float>(Below(10)), static_cast<float>(576 - Below(10))};
      default:
        return {static_cast<float>(Below(1000) - 100), static_cast<float>(Below(1000) - 100)};
    }
  }

  // Every drawing of a vast ring takes a hundred thousand lines; once is enough. An infinite
  // one, which a drag over a picture of no size leaves, takes one line.
  void MendRadii() {
    for (const char* key : {"PRM_RadiusPSF1", "PRM_RadiusPSF2"}) {
      double& radius = params->numbers[key];
      radius = std::abs(radius) < 10.0 || !std::isfinite(radius) ? radius : 0.1;
    }
  }

  void ChangeOne() {
    const quantel::wstring key = kKeys[Below(static_cast<int>(std::size(kKeys)))];
    const double values[] = {0.0, 0.3, 1.0, 3.0, 4.0, -7.5, 1e30, 0.02};
    const double value = values[Below(static_cast<int>(std::size(values)))];
    if (key != u"PRM_Shape" || value < 100.0) {
      params->numbers[lx_test::Narrow(key)] = value;
    }
    ui->parameterChanged(key);
  }

  std::mt19937 random_{GetParam()};
};

TEST_P(RandomUse, GivesEveryReferenceBackAfterTenThousandSteps) {
  Open();
  for (int step = 0; step < 10000; ++step) {
    Step();
  }
  Calls();

  Close();

  // The instance held each of them once at most, and lets go of it before it reports its end.
  EXPECT_EQ(lx_test::Log{"instanceDestroyed"}, Calls());
  EXPECT_EQ(1, inputs->Count());
  EXPECT_EQ(1, params->Count());
  EXPECT_EQ(1, result->Count());
}

INSTANTIATE_TEST_SUITE_P(Of, RandomUse, testing::Values(1U, 2U));

}  // namespace
