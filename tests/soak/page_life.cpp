// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <sstream>

#include "hostframe/interfaces/plugin_ui.h"
#include "tests/mutations/mutator.h"
#include "tests/soak/hash.h"
#include "tests/soak/life.h"
#include "tests/support/fake_page.h"

namespace soak {
namespace {

using lx_test::FakeInputs;
using lx_test::FakeParams;
using lx_test::FakeResult;
using lx_test::FakeSource;
using mutations::Mutator;
using quantel::cPtr;

constexpr const char16_t* kKeys[] = {
    u"PRM_Shape",      u"PRM_Match",      u"PRM_RadiusX",        u"PRM_RadiusY",
    u"PRM_Sides",      u"PRM_Rotation",   u"PRM_Emphasis",       u"PRM_Center_X",
    u"PRM_Center_Y",   u"PRM_RadiusPSF1", u"PRM_Center",         u"PRM_EmphAlpha",
    u"PRM_RadiusPSF2", u"PRM_Other",      u"lxColourButton_PRM", u"PRM_GlimmerFocus_Page"};

class Hand {
 public:
  Hand(const Modules& modules, const LifeKey& key)
      : dice_(key.seed),
        inputs_(new FakeInputs(&log_)),
        params_(new FakeParams(&log_)),
        result_(new FakeResult(&log_)),
        instance_(modules.MakePage(key.engine)),
        ui_(instance_.Dynamic<qplugin::iQpluginUI>()),
        ui4_(instance_.Dynamic<qplugin::iQpluginUI4>()) {
    inputs_->main = cPtr<FakeSource>(new FakeSource(&log_, "source"));
    inputs_->spread = cPtr<FakeSource>(new FakeSource(&log_, "spread"));
    ui_->setInputs(inputs_);
    ui_->setParams(params_);
    ui_->setResult(result_);
    // The shape whose handles there are.
    params_->numbers = {{"PRM_Shape", 3.0},
                        {"PRM_Center_X", 0.4},
                        {"PRM_Center_Y", 0.6},
                        {"PRM_RadiusPSF1", 0.1},
                        {"PRM_RadiusPSF2", 0.2}};
    ui_->parameterChanged(u"PRM_Shape");
  }

  // What the module called because of it.
  std::uint64_t Step() {
    Act();
    MendRadii();
    std::string calls;
    for (const std::string& call : log_.calls) {
      calls += call + '\n';
      if (call.starts_with("fill(")) {
        handle_ = call;
      }
    }
    log_.calls.clear();
    return HashOf(calls);
  }

 private:
  void Act() {
    switch (dice_.Below(12)) {
      case 0:
        ui_->setInputs(dice_.OneIn(4) ? cPtr<FakeInputs>() : inputs_);
        break;
      case 1:
        ui_->setResult(dice_.OneIn(8) ? cPtr<FakeResult>() : result_);
        break;
      case 2:
      case 3:
        ChangeOne();
        break;
      case 4:
        ui4_->colourRequest(0);
        break;
      case 5:
      case 6:
        ui_->drawOverlays();
        break;
      case 7:
        result_->formatObject->size = {dice_.OneIn(5) ? 0 : 720, dice_.OneIn(5) ? 0 : 576};
        break;
      case 8:
        ui_->mouseDown(Point());
        break;
      case 9:
      case 10:
        ui_->mouseMove(Point());
        break;
      default:
        ui_->mouseUp(Point());
    }
  }

  // On the handle that was drawn last, or anywhere.
  quantel::cPoint2 Point() {
    float x = 0.0F;
    float y = 0.0F;
    std::istringstream corner(handle_.substr(std::min<std::size_t>(5, handle_.size())));
    if (!dice_.OneIn(3) && corner >> x >> y) {
      return {x + 1.0F, y + 1.0F};
    }
    return {static_cast<float>(dice_.Below(1000)) - 100.0F,
            static_cast<float>(dice_.Below(1000)) - 100.0F};
  }

  void ChangeOne() {
    const quantel::wstring key = kKeys[dice_.Below(std::size(kKeys))];
    const double value = dice_.AnyOf<double>({0.0, 0.3, 1.0, 3.0, 3.0, -7.5, 0.02});
    params_->numbers[lx_test::Narrow(key)] = value;
    ui_->parameterChanged(key);
  }

  // A vast ring is drawn in a hundred thousand lines.
  void MendRadii() {
    for (const char* key : {"PRM_RadiusPSF1", "PRM_RadiusPSF2"}) {
      double& radius = params_->numbers[key];
      radius = std::abs(radius) < 2.0 ? radius : 0.1;
    }
  }

  Mutator dice_;
  lx_test::CallLog log_;
  std::string handle_;
  cPtr<FakeInputs> inputs_;
  cPtr<FakeParams> params_;
  cPtr<FakeResult> result_;
  Modules::Instance instance_;
  cPtr<qplugin::iQpluginUI> ui_;
  cPtr<qplugin::iQpluginUI4> ui4_;
};

}  // namespace

Hashes LivePage(const Modules& modules, const LifeKey& key) {
  Hashes hashes;
  Hand hand(modules, key);
  for (std::size_t left = 20 + key.seed % 60; left > 0; --left) {
    hashes.push_back(hand.Step());
  }
  return hashes;
}

}  // namespace soak
