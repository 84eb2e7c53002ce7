// SPDX-License-Identifier: BSD-3-Clause
// A picture to draw handles on and to drag them over: surface, view and store, recorded.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "library/controls.h"
#include "library/overlay_controls.h"
#include "library/overlay_lx.h"
#include "tests/support/fake_page.h"

namespace lx_test {

struct OverlayStage {
  OverlayStage(int width, int height)
      : surface(new FakeSurface(&host.log)),
        format(new FakeFormat(&host.log, {1, 1}, {width, height})),
        store(new FakeParams(&host.log)),
        params(store) {
    data.draw = surface;
    data.view = format;
    overlay.data = &data;
    overlay.zoom = 1.0F;
    overlay.pictureWidth = width;
    overlay.pictureHeight = height;
  }

  void Join(lx::OverlayControlLX* control) {
    control->data = &data;
    control->owner = &overlay;
    control->dragFlag = &dragging;
  }

  void Join(lx::ControlLX* control, const wstring* key) const {
    control->key = key;
    control->host = &params;
  }

  // The calls since the last look, without those that ask for the picture's size.
  std::vector<std::string> Calls() {
    std::vector<std::string> calls;
    for (const std::string& call : host.log.calls) {
      if (call != "format.pictureSize") {
        calls.push_back(call);
      }
    }
    host.log.calls.clear();
    return calls;
  }

  std::size_t LineCount() {
    std::size_t lines = 0;
    for (const std::string& call : Calls()) {
      lines += call.rfind("line(", 0) == 0 ? 1U : 0U;
    }
    return lines;
  }

  FakeHost host;
  cPtr<FakeSurface> surface;
  cPtr<FakeFormat> format;
  cPtr<FakeParams> store;
  cPtr<qplugin::iQpluginParams> params;
  lx::OverlayData data;
  lx::OverlayLX overlay;
  std::int32_t dragging = 0;
};

using Calls = std::vector<std::string>;

}  // namespace lx_test
