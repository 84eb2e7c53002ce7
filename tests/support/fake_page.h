// SPDX-License-Identifier: BSD-3-Clause
// The host's side of a page, recorded: result, dialog, overlay surface, timeline.
#pragma once

#include <map>
#include <sstream>
#include <string>

#include "tests/support/fake_host.h"

namespace lx_test {

// "line(1 2 -> 3 4, 1 1 1)", with coordinates to six digits.
template <class... Parts>
std::string CallText(const Parts&... parts) {
  std::ostringstream out;
  (out << ... << parts);
  return out.str();
}

inline std::string RectText(const quantel::cRect4& r) {
  return CallText(r.first, " ", r.second, " ", r.third, " ", r.fourth);
}

class FakeSurface final : public qplugin::iQpluginOverlaySurface, public quantel::cRefCount {
 public:
  explicit FakeSurface(CallLog* log) : log_(log) {}
  ~FakeSurface() override { log_->Note("~surface"); }

  void beginDraw(bool alwaysTrue, int alwaysOne) override {
    log_->Add(CallText("beginDraw(", alwaysTrue, ",", alwaysOne, ")"));
  }
  void endDraw() override { log_->Add("endDraw"); }
  void reserved1() override { log_->Add("surface.reserved1"); }
  void drawLine(quantel::cPoint2 from, quantel::cPoint2 to, quantel::cColour colour) override {
    log_->Add(CallText("line(", from.x, " ", from.y, " -> ", to.x, " ", to.y, ", ",
                       ColourText(colour), ")"));
  }
  void reserved2() override { log_->Add("surface.reserved2"); }
  void reserved3() override { log_->Add("surface.reserved3"); }
  void fillRect(quantel::cRect4 rect, quantel::cColour colour,
                quantel::cColour sameColour) override {
    log_->Add(CallText("fill(", RectText(rect), ", ", ColourText(colour), ", ",
                       ColourText(sameColour), ")"));
  }
  void frameRect(quantel::cRect4 rect, quantel::cColour colour) override {
    log_->Add(CallText("frame(", RectText(rect), ", ", ColourText(colour), ")"));
  }

 private:
  CallLog* log_;
};

class FakeDialog final : public qplugin::iQpluginDialog, public quantel::cRefCount {
 public:
  explicit FakeDialog(CallLog* log) : log_(log) {}
  ~FakeDialog() override { log_->Note("~dialog"); }

  void reserved1() override { log_->Add("dialog.reserved1"); }
  void reserved2() override { log_->Add("dialog.reserved2"); }
  void reserved3() override { log_->Add("dialog.reserved3"); }
  void reserved4() override { log_->Add("dialog.reserved4"); }
  void reserved5() override { log_->Add("dialog.reserved5"); }
  void addColourBox(const wstring& widget, const wstring& key, quantel::cRect4 cell,
                    const quantel::cColour& startColour) override {
    log_->Add(CallText("addColourBox(", Narrow(widget), ",", Narrow(key), ",", RectText(cell), ",",
                       ColourText(startColour), ")"));
    visible[Narrow(widget)] = true;
  }
  void reserved6() override { log_->Add("dialog.reserved6"); }
  void reserved7() override { log_->Add("dialog.reserved7"); }
  void setWidgetVisible(const wstring& widget, bool show) override {
    log_->Add(CallText("setWidgetVisible(", Narrow(widget), ",", show, ")"));
    visible[Narrow(widget)] = show;
  }
  bool isWidgetVisible(const wstring& widget) override {
    log_->Add("isWidgetVisible(" + Narrow(widget) + ")");
    return visible[Narrow(widget)];
  }
  void reserved8() override { log_->Add("dialog.reserved8"); }
  void addButton(const wstring& widget, const wstring& key, quantel::cRect4 cell,
                 const wstring& label) override {
    log_->Add(CallText("addButton(", Narrow(widget), ",", Narrow(key), ",", RectText(cell), ",",
                       Narrow(label), ")"));
    visible[Narrow(widget)] = true;
  }

  std::map<std::string, bool> visible;  // of the widgets that were added

 private:
  CallLog* log_;
};

class FakeTimeline final : public qplugin::iQpluginTimeline, public quantel::cRefCount {
 public:
  explicit FakeTimeline(CallLog* log) : log_(log) {}
  ~FakeTimeline() override { log_->Note("~timeline"); }

  int frameCount() override {
    log_->Add("timeline.frameCount");
    return frames;
  }

  int frames = 250;

 private:
  CallLog* log_;
};

// Hands out the same four objects again and again; a null one is handed out as null.
class FakeResult final : public qplugin::iQpluginUIResult2, public quantel::cRefCount {
 public:
  explicit FakeResult(CallLog* log)
      : surfaceObject(new FakeSurface(log)),
        dialogObject(new FakeDialog(log)),
        formatObject(new FakeFormat(log, {1, 1}, {720, 576})),
        timelineObject(new FakeTimeline(log)),
        log_(log) {}
  ~FakeResult() override { log_->Note("~result"); }

  void update() override { log_->Add("update"); }
  cPtr<qplugin::iQpluginOverlaySurface> overlaySurface() override {
    log_->Add("result.overlaySurface");
    return surfaceObject;
  }
  cPtr<qplugin::iQpluginDialog> dialog() override {
    log_->Add("result.dialog");
    return dialogObject;
  }
  cPtr<qplugin::iQpluginFormat> format() override {
    log_->Add("result.format");
    return formatObject;
  }
  cPtr<qplugin::iQpluginTimeline> timeline() override {
    log_->Add("result.timeline");
    return timelineObject;
  }

  cPtr<FakeSurface> surfaceObject;
  cPtr<FakeDialog> dialogObject;
  cPtr<FakeFormat> formatObject;
  cPtr<FakeTimeline> timelineObject;

 private:
  CallLog* log_;
};

// A host's side that is not of the second kind.
class FakePlainResult final : public qplugin::iQpluginUIResult, public quantel::cRefCount {
 public:
  explicit FakePlainResult(CallLog* log) : log_(log) {}

  void update() override { log_->Add("update"); }
  cPtr<qplugin::iQpluginOverlaySurface> overlaySurface() override {
    log_->Add("result.overlaySurface");
    return {};
  }
  cPtr<qplugin::iQpluginDialog> dialog() override {
    log_->Add("result.dialog");
    return {};
  }
  cPtr<qplugin::iQpluginFormat> format() override {
    log_->Add("result.format");
    return {};
  }

 private:
  CallLog* log_;
};

}  // namespace lx_test
