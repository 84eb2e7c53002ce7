// SPDX-License-Identifier: BSD-3-Clause
// Tracing of what a page's module calls: store, result, dialog, surface, timeline.
#include "host/module/trace/traced_object.h"

namespace glimmerhost {
namespace {

class TracedParams final : public TracedObject<qplugin::iQpluginParams> {
 public:
  using TracedObject::TracedObject;

  double getFloat(const quantel::wstring& key, int zero) override {
    const double value = Object().getFloat(key, zero);
    Say("store.getFloat(", Quoted(key), ", ", zero, ") = ", value);
    return value;
  }
  void setFloat(const quantel::wstring& key, const float& value) override {
    Say("store.setFloat(", Quoted(key), ", ", value, ")");
    Object().setFloat(key, value);
  }
  bool getBool(const quantel::wstring& key, int zero) override {
    const bool value = Object().getBool(key, zero);
    Say("store.getBool(", Quoted(key), ", ", zero, ") = ", YesOrNo(value));
    return value;
  }
  void setBool(const quantel::wstring& key, bool value) override {
    Say("store.setBool(", Quoted(key), ", ", YesOrNo(value), ")");
    Object().setBool(key, value);
  }
  quantel::cColour getColour(const quantel::wstring& key, quantel::cColour defaultColour) override {
    const quantel::cColour colour = Object().getColour(key, defaultColour);
    Say("store.getColour(", Quoted(key), ", ", ColourText(defaultColour),
        ") = ", ColourText(colour));
    return colour;
  }
  int getList(const quantel::wstring& key) override {
    const int entry = Object().getList(key);
    Say("store.getList(", Quoted(key), ") = ", entry);
    return entry;
  }
  void setList(const quantel::wstring& key, int entry) override {
    Say("store.setList(", Quoted(key), ", ", entry, ")");
    Object().setList(key, entry);
  }
};

class TracedSurface final : public TracedObject<qplugin::iQpluginOverlaySurface> {
 public:
  using TracedObject::TracedObject;

  void beginDraw(bool alwaysTrue, int alwaysOne) override {
    Say("surface.beginDraw(", YesOrNo(alwaysTrue), ", ", alwaysOne, ")");
    Object().beginDraw(alwaysTrue, alwaysOne);
  }
  void endDraw() override {
    Say("surface.endDraw()");
    Object().endDraw();
  }
  void drawLine(quantel::cPoint2 from, quantel::cPoint2 to, quantel::cColour colour) override {
    Say("surface.drawLine(", PointText(from), ", ", PointText(to), ", ", ColourText(colour), ")");
    Object().drawLine(from, to, colour);
  }
  void fillRect(quantel::cRect4 rect, quantel::cColour colour, quantel::cColour same) override {
    Say("surface.fillRect(", RectText(rect), ", ", ColourText(colour), ", ", ColourText(same), ")");
    Object().fillRect(rect, colour, same);
  }
  void frameRect(quantel::cRect4 rect, quantel::cColour colour) override {
    Say("surface.frameRect(", RectText(rect), ", ", ColourText(colour), ")");
    Object().frameRect(rect, colour);
  }
};

class TracedDialog final : public TracedObject<qplugin::iQpluginDialog>,
                           public qplugin::iQpluginDialog2 {
 public:
  using TracedObject::TracedObject;

  void addColourBox(const quantel::wstring& widget, const quantel::wstring& key,
                    quantel::cRect4 cell, const quantel::cColour& startColour) override {
    Say("dialog.addColourBox(", Quoted(widget), ", ", Quoted(key), ", ", RectText(cell), ", ",
        ColourText(startColour), ")");
    Object().addColourBox(widget, key, cell, startColour);
  }
  void setWidgetVisible(const quantel::wstring& widget, bool visible) override {
    Say("dialog.setWidgetVisible(", Quoted(widget), ", ", YesOrNo(visible), ")");
    Object().setWidgetVisible(widget, visible);
  }
  bool isWidgetVisible(const quantel::wstring& widget) override {
    const bool visible = Object().isWidgetVisible(widget);
    Say("dialog.isWidgetVisible(", Quoted(widget), ") = ", YesOrNo(visible));
    return visible;
  }
  void addButton(const quantel::wstring& widget, const quantel::wstring& key, quantel::cRect4 cell,
                 const quantel::wstring& label) override {
    Say("dialog.addButton(", Quoted(widget), ", ", Quoted(key), ", ", RectText(cell), ", ",
        Quoted(label), ")");
    Object().addButton(widget, key, cell, label);
  }
};

class TracedTimeline final : public TracedObject<qplugin::iQpluginTimeline> {
 public:
  using TracedObject::TracedObject;

  int frameCount() override {
    const int frames = Object().frameCount();
    Say("timeline.frameCount() = ", frames);
    return frames;
  }
};

class TracedResult final : public TracedObject<qplugin::iQpluginUIResult2> {
 public:
  using TracedObject::TracedObject;

  void update() override {
    Say("result.update()");
    Object().update();
  }
  quantel::cPtr<qplugin::iQpluginOverlaySurface> overlaySurface() override {
    Say("result.overlaySurface()");
    return PutInFront<TracedSurface>(Object().overlaySurface(), GetTrace());
  }
  quantel::cPtr<qplugin::iQpluginDialog> dialog() override {
    Say("result.dialog()");
    return PutInFront<TracedDialog>(Object().dialog(), GetTrace());
  }
  quantel::cPtr<qplugin::iQpluginFormat> format() override {
    Say("result.format()");
    return Traced(Object().format(), GetTrace());
  }
  quantel::cPtr<qplugin::iQpluginTimeline> timeline() override {
    Say("result.timeline()");
    return PutInFront<TracedTimeline>(Object().timeline(), GetTrace());
  }
};

}  // namespace

quantel::cPtr<qplugin::iQpluginParams> Traced(const quantel::cPtr<qplugin::iQpluginParams>& object,
                                              Trace* trace) {
  return PutInFront<TracedParams>(object, trace);
}

quantel::cPtr<qplugin::iQpluginUIResult2> Traced(
    const quantel::cPtr<qplugin::iQpluginUIResult2>& object, Trace* trace) {
  return PutInFront<TracedResult>(object, trace);
}

}  // namespace glimmerhost
