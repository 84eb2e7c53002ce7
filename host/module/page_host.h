// SPDX-License-Identifier: BSD-3-Clause
// The host's side of a page: its widgets, its timeline, and what a module reaches them by.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/module/border_pictures.h"
#include "host/module/overlay_surface.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/ui_result.h"

namespace glimmerhost {

// A widget that a module has added to the page.
struct Widget {
  std::string name;
  std::string key;    // of the parameter that it is for
  std::string label;  // of a button; a colour box has none
  bool visible = true;
};

class Dialog final : public qplugin::iQpluginDialog,
                     public qplugin::iQpluginDialog2,
                     public quantel::cRefCount {
 public:
  void addColourBox(const quantel::wstring& widget, const quantel::wstring& key,
                    quantel::cRect4 cell, const quantel::cColour& startColour) override;
  void setWidgetVisible(const quantel::wstring& widget, bool visible) override;
  bool isWidgetVisible(const quantel::wstring& widget) override;
  void addButton(const quantel::wstring& widget, const quantel::wstring& key, quantel::cRect4 cell,
                 const quantel::wstring& label) override;

  // In the order of their making; a widget that is made again takes its own place.
  const std::vector<Widget>& Widgets() const { return widgets_; }

  // Null if there is none of that name.
  const Widget* Find(const std::string& name) const;

 private:
  void Add(Widget widget);

  std::vector<Widget> widgets_;
};

class Timeline final : public qplugin::iQpluginTimeline, public quantel::cRefCount {
 public:
  explicit Timeline(int frames) : frames_(frames) {}

  int frameCount() override { return frames_; }

 private:
  int frames_;
};

// Hands out the same objects for as long as it lives.
class PageResult final : public qplugin::iQpluginUIResult2, public quantel::cRefCount {
 public:
  PageResult(const quantel::cPtr<qplugin::iQpluginOverlaySurface>& surface,
             const quantel::cPtr<qplugin::iQpluginDialog>& dialog,
             const quantel::cPtr<qplugin::iQpluginTimeline>& timeline)
      : surface_(surface), dialog_(dialog), timeline_(timeline) {}

  // Has somebody told of each update, by which the module says that something must be shown or
  // rendered again; it does not say which. Null, as at first: nobody. A player needs none, since it
  // draws and renders when it is told to.
  //
  // The listener is called once an update, on the thread that called the module and before that
  // call returns. The instance is in the midst of its work then: note that it must be shown, and
  // call the instance when its call has returned. What the listener throws passes through the
  // module to whoever called it. It must not be exchanged while it is called.
  void ListenToUpdates(std::function<void()> listener) { listener_ = std::move(listener); }

  void update() override;
  quantel::cPtr<qplugin::iQpluginOverlaySurface> overlaySurface() override { return surface_; }
  quantel::cPtr<qplugin::iQpluginDialog> dialog() override { return dialog_; }
  quantel::cPtr<qplugin::iQpluginFormat> format() override { return format_; }
  quantel::cPtr<qplugin::iQpluginTimeline> timeline() override { return timeline_; }

  // The format of the picture that is looked at from now on.
  void Show(const quantel::cPtr<qplugin::iQpluginFormat>& newFormat) { format_ = newFormat; }

 private:
  quantel::cPtr<qplugin::iQpluginOverlaySurface> surface_;
  quantel::cPtr<qplugin::iQpluginDialog> dialog_;
  quantel::cPtr<qplugin::iQpluginFormat> format_;
  quantel::cPtr<qplugin::iQpluginTimeline> timeline_;
  std::function<void()> listener_;
};

}  // namespace glimmerhost
