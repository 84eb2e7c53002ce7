// SPDX-License-Identifier: BSD-3-Clause
// EffectPage: the effect's page and its handles, over one UI instance.
//
// It calls the instance in the order in which a host does. What the module writes into the store is
// not told back to it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/looks/page.h"
#include "host/module/border_pictures.h"
#include "host/module/effect_module.h"
#include "host/module/overlay_surface.h"
#include "host/module/page_host.h"
#include "host/module/parameter_store.h"
#include "host/pictures/picture.h"
#include "hostframe/interfaces/plugin_ui.h"

namespace glimmerhost {

// What lies under the page.
struct PageClips {
  quantel::cPtr<FrameImage> main;
  quantel::cPtr<FrameImage> spread;  // the second clip; null for none
  quantel::cSize2 pixelAspect{1, 1};
  quantel::cSize2 size{};  // of the picture as the mouse and the handles count it
};

// One thread calls it and its instance. This and every operation throw Failure for what the module
// throws.
class EffectPage {
 public:
  // Opens the page: clips, store and result go to a new instance.
  //   module  must outlive the page, as every trace of it must
  //   frames  of the shot
  EffectPage(const EffectModule& module, std::map<std::string, Value> values,
             const PageClips& clips, int frames);

  // Other clips under the same page.
  void Connect(const PageClips& clips);

  // The same clips in another size, as on a screen. The module asks for it when it next needs it.
  void ShowIn(quantel::cSize2 size);

  // A parameter, as the page sets it: into the store, and then the module is told.
  void Set(const std::string& key, const Value& value);

  // Tells the module of a key without a new value: the page itself, or a button on it.
  void Notify(const std::string& key);

  // The mouse, in pixels of the size shown, from the top left.
  void Press(quantel::cPoint2 point);
  void Move(quantel::cPoint2 point);
  void Release(quantel::cPoint2 point);

  // Has the module draw its handles anew.
  void Draw();

  void RequestColour();

  // Has somebody told of the module's updates, as PageResult says.
  void ListenToUpdates(std::function<void()> listener) {
    result_->ListenToUpdates(std::move(listener));
  }

  // Paints what the module drew last onto a picture.
  void PaintHandles(Picture* picture) const { surface_->PaintOn(picture); }
  bool HasHandles() const { return !surface_->IsEmpty(); }

  // What the module drew last; good until it draws again.
  const std::vector<OverlayStroke>& Strokes() const { return surface_->Strokes(); }

  const std::map<std::string, Value>& Values() const { return store_->Values(); }
  const Dialog& PageDialog() const { return *dialog_; }

 private:
  template <class Call>
  void OnModule(const Call& call) const;
  void HandOver(const PageClips& clips);

  Trace* trace_;
  quantel::cSize2 pixelAspect_{1, 1};
  quantel::cPtr<ParameterStore> store_;
  quantel::cPtr<OverlaySurface> surface_;
  quantel::cPtr<Dialog> dialog_;
  quantel::cPtr<PageResult> result_;
  quantel::cPtr<qplugin::iQpluginUI> ui_;
};

}  // namespace glimmerhost
