// SPDX-License-Identifier: BSD-3-Clause
// A module's page on the objects of this host, with each call of the module noted in front of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"
#include "host/module/border_pictures.h"
#include "host/module/effect_module.h"
#include "host/module/overlay_surface.h"
#include "host/module/page_host.h"
#include "host/module/parameter_store.h"
#include "host/support/text.h"

namespace host_test {

using Calls = std::vector<std::string>;

// Over a picture of 200 x 100 with square pixels.
class ModulePage : public testing::Test {
 public:
  ModulePage() {
    values["PRM_Shape"] = 3;  // image, which alone has handles
    values["PRM_Center_X"] = 0.25;
    values["PRM_Center_Y"] = 0.4;
    values["PRM_RadiusPSF1"] = 0.05;
    values["PRM_RadiusPSF2"] = 0.05;
  }

  void Open() {
    using glimmerhost::Traced;
    store = quantel::cPtr<glimmerhost::ParameterStore>(new glimmerhost::ParameterStore(values));
    ui = module.MakeUi();
    const quantel::cPtr<glimmerhost::FrameImage> picture(new glimmerhost::FrameImage(200, 100));
    result->Show(
        quantel::cPtr<qplugin::iQpluginFormat>(new glimmerhost::FrameFormat({1, 1}, {200, 100})));
    ui->setInputs(quantel::cPtr<qplugin::iQpluginInputs>(new glimmerhost::Inputs(picture, {})));
    ui->setParams(Traced(quantel::cPtr<qplugin::iQpluginParams>(store), &trace));
    ui->setResult(Traced(quantel::cPtr<qplugin::iQpluginUIResult2>(result), &trace));
  }

  // The calls since the last look whose names begin so, without what they are indented by.
  Calls CallsOf(const std::string& beginning) {
    Calls calls;
    std::istringstream lines(noted.str());
    for (std::string line; std::getline(lines, line);) {
      line.erase(0, line.find_first_not_of(' '));
      if (line.starts_with(beginning)) {
        calls.push_back(line);
      }
    }
    noted.str("");
    return calls;
  }
  Calls AllCalls() { return CallsOf(""); }

  std::map<std::string, glimmerhost::Value> values = glimmerhost::Page::Load(PAGE).Defaults();
  std::ostringstream noted;
  glimmerhost::Trace trace{noted};
  const glimmerhost::EffectModule module{
      {std::filesystem::path(MODULE_FOLDER) / MODULE_NAME, lx::FindFootprint("exact")}, &trace};
  quantel::cPtr<glimmerhost::ParameterStore> store;
  quantel::cPtr<glimmerhost::OverlaySurface> surface{new glimmerhost::OverlaySurface};
  quantel::cPtr<glimmerhost::Dialog> dialog{new glimmerhost::Dialog};
  quantel::cPtr<glimmerhost::PageResult> result{new glimmerhost::PageResult(
      surface, dialog, quantel::cPtr<qplugin::iQpluginTimeline>(new glimmerhost::Timeline(1)))};
  quantel::cPtr<qplugin::iQpluginUI> ui;
};

}  // namespace host_test
