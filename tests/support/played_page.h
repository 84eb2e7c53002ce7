// SPDX-License-Identifier: BSD-3-Clause
// A page played as a host plays it, and the calls that the host should see of it, written
// down beforehand. All numbers are worked out by hand.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "hostframe/class_ctor.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/fake_page.h"

namespace lx_test {

using Calls = std::vector<std::string>;

inline const std::string kWhiteText = "1 1 1";
inline const std::string kYellowText = "1 1 0";

inline Calls Join(std::initializer_list<Calls> parts) {
  Calls all;
  for (const Calls& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

inline bool StartsWith(const std::string& text, const std::string& head) {
  return text.compare(0, head.size(), head) == 0;
}

inline Calls Without(const Calls& calls, const std::string& head) {
  Calls kept;
  for (const std::string& call : calls) {
    if (!StartsWith(call, head)) {
      kept.push_back(call);
    }
  }
  return kept;
}

inline Calls Only(const Calls& calls, const std::string& head) {
  Calls kept;
  for (const std::string& call : calls) {
    if (StartsWith(call, head)) {
      kept.push_back(call);
    }
  }
  return kept;
}

// What moves between the host and the page, without the outlines and without how often the
// picture's size was asked for.
inline Calls Outline(const Calls& calls) {
  return Without(Without(calls, "line("), "format.pictureSize");
}

inline constexpr char kButtonHidden[] = "setWidgetVisible(lxColourButtonWidgetC,0)";
inline constexpr char kBoxHidden[] = "setWidgetVisible(lxColourBoxWidgetC,0)";

inline Calls ShapeCalls(char before, char after) {
  return {"getList(PRM_Shape)", std::string("setBool(PRM_Shape_") + before + ",0)",
          std::string("setBool(PRM_Shape_") + after + ",1)"};
}

inline Calls MatchCalls(bool match) {
  return {"getBool(PRM_Match,0)", match ? "setBool(PRM_Match_A,1)" : "setBool(PRM_Match_A,0)",
          match ? "setBool(PRM_Match_B,0)" : "setBool(PRM_Match_B,1)"};
}

inline Calls RefreshCalls(char before, char after, bool match) {
  return Join({ShapeCalls(before, after),
               MatchCalls(match),
               {"getFloat(PRM_RadiusX,0)", "getFloat(PRM_RadiusY,0)", "getFloat(PRM_Sides,0)",
                "getFloat(PRM_Rotation,0)", "getFloat(PRM_Emphasis,0)", "getBool(PRM_EmphAlpha,0)",
                "getBool(PRM_Precision,0)", "getFloat(PRM_Center_X,0)", "getFloat(PRM_Center_Y,0)",
                "getFloat(PRM_RadiusPSF1,0)", "getFloat(PRM_RadiusPSF2,0)"}});
}

inline const Calls kOverlayDataCalls = {"result.overlaySurface", "result.format",
                                        "result.format",         "format.pixelAspect",
                                        "result.format",         "format.pixelAspect"};

inline const Calls kResultCalls = {
    "result.timeline",
    "timeline.frameCount",
    "result.dialog",
    "addButton(lxColourButtonWidgetC,lxColourButton_PRM,30 0 10 1,Close Colour Box)",
    kButtonHidden,
    "addColourBox(lxColourBoxWidgetC,lxColourBox_PRM,30 1 10 5,1 1 1)",
    kBoxHidden};

// A drawing of any shape but the image.
inline const Calls kEmptyDrawing = {"beginDraw(1,1)", "format.pictureSize", "endDraw"};

inline Calls Line(const std::string& points, const std::string& colour) {
  return {"format.pictureSize", "line(" + points + ", " + colour + ")"};
}

inline Calls OpenHandle(const std::string& square, const std::string& rim,
                        const std::string& colour) {
  return {"format.pictureSize", "frame(" + square + ", " + colour + ")",
          "frame(" + rim + ", 0 0 0)"};
}

inline Calls FilledHandle(const std::string& square, const std::string& rim,
                          const std::string& colour) {
  return {"format.pictureSize", "fill(" + square + ", " + colour + ", " + colour + ")",
          "frame(" + rim + ", 0 0 0)"};
}

// The points of a ring 10 pixels across around (160, 120) on the surface, every 36 degrees:
// 5 cos 36 = 4.045085, 5 cos 72 = 1.545085, 5 sin 36 = 2.938926, 5 sin 72 = 4.755283.
inline const Calls kTenPixelRing = {"165 120",         "164.045 117.061", "161.545 115.245",
                                    "158.455 115.245", "155.955 117.061", "155 120",
                                    "155.955 122.939", "158.455 124.755", "161.545 124.755",
                                    "164.045 122.939", "165 120"};

// The same, twice as high: 10 sin 36 = 5.877853, 10 sin 72 = 9.510565.
inline const Calls kTallRing = {"165 120",         "164.045 114.122", "161.545 110.489",
                                "158.455 110.489", "155.955 114.122", "155 120",
                                "155.955 125.878", "158.455 129.511", "161.545 129.511",
                                "164.045 125.878", "165 120"};

inline Calls SolidRing(const Calls& points) {
  Calls calls = Line(points[0] + " -> " + points[0], kYellowText);
  for (std::size_t k = 1; k < points.size(); ++k) {
    calls = Join({calls, Line(points[k - 1] + " -> " + points[k], kYellowText)});
  }
  return Join({calls, Line(points[0] + " -> " + points.back(), kYellowText)});
}

inline Calls DashedRing(const Calls& points) {
  Calls calls;
  for (std::size_t k = 1; k < points.size(); k += 2) {
    calls = Join({calls, Line(points[k - 1] + " -> " + points[k], kYellowText)});
  }
  return Join({calls, Line(points[0] + " -> " + points.back(), kYellowText)});
}

// The crosshair at (160, 120) on the surface.
inline const Calls kCross =
    Join({Line("170 120 -> 185 120", kWhiteText), Line("150 120 -> 135 120", kWhiteText),
          Line("160 110 -> 160 95", kWhiteText), Line("160 130 -> 160 145", kWhiteText)});
inline const Calls kOpenCross =
    Join({kCross, OpenHandle("157.5 117.5 5 5", "156.5 116.5 7 7", "1 1 1")});
inline const Calls kFilledCross =
    Join({kCross, FilledHandle("157.5 117.5 5 5", "156.5 116.5 7 7", "1 1 1")});
// The handle of a ten pixel ring around it.
inline const Calls kOpenRingHandle = OpenHandle("162.5 117.5 5 5", "161.5 116.5 7 7", kYellowText);
inline const Calls kFilledRingHandle =
    FilledHandle("162.5 117.5 5 5", "161.5 116.5 7 7", kYellowText);

inline const Calls kBeginDraw = {"beginDraw(1,1)", "format.pictureSize"};
inline const Calls kEndDraw = {"endDraw"};
inline const Calls kUpdate = {"update"};
inline const Calls kAskDialog = {"result.dialog"};

// A page instance on a picture of 640 x 480 with square pixels. The store holds the crosshair
// at a quarter of the width and three quarters of the height, which is (160, 360) counted
// from the bottom and (160, 120) on the surface, and two rings of ten pixels.
class PlayedPage : public testing::Test {
 protected:
  PlayedPage() : params(new FakeParams(&host.log)), result(new FakeResult(&host.log)) {
    result->formatObject->size = {640, 480};
    params->numbers["PRM_Center_X"] = 0.25;
    params->numbers["PRM_Center_Y"] = 0.75;
    params->numbers["PRM_RadiusPSF1"] = 1.0 / 64.0;
    params->numbers["PRM_RadiusPSF2"] = 1.0 / 64.0;
    allplugins::cClassCtor<allplugins::cGlimmerBlurUI> ctor;
    auto instance = ctor.create();
    ui = instance.Dynamic<qplugin::iQpluginUI>();
    page = dynamic_cast<allplugins::cGlimmerBlurUI*>(ui.operator->());
  }

  // The calls since the last time.
  Calls Taken() {
    Calls calls = Without(host.log.calls, "findService(");
    host.log.calls.clear();
    return calls;
  }

  void Choose(int entry) { params->numbers["PRM_Shape"] = entry; }

  void Connect() {
    ui->setParams(params);
    ui->setResult(result);
    Taken();
  }

  // In the image shape, drawn once.
  void ConnectAndDrawImage() {
    Choose(3);
    Connect();
    ui->drawOverlays();
    Taken();
  }

  void ColourRequest() { ui.Dynamic<qplugin::iQpluginUI4>()->colourRequest(0); }

  lx_test::FakeHost host;
  cPtr<FakeParams> params;
  cPtr<FakeResult> result;
  cPtr<qplugin::iQpluginUI> ui;
  allplugins::cGlimmerBlurUI* page = nullptr;
};

}  // namespace lx_test
