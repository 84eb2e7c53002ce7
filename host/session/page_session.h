// SPDX-License-Identifier: BSD-3-Clause
// PageSession: a person at the effect's page and its handles, without a window.
//
// It calls a UI instance in the order in which a host does, and renders by an instance of its
// own from the same store. What the module writes into the store is not told back to it.
#pragma once

#include <map>
#include <string>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/module/overlay_surface.h"
#include "host/module/page_host.h"
#include "host/module/parameter_store.h"
#include "host/pictures/picture.h"
#include "hostframe/interfaces/plugin_ui.h"

namespace glimmerhost {

class PageSession {
 public:
  // Opens the page over a picture: inputs, store and result go to a new instance.
  //   module  must outlive the session, as every trace of it must
  //   spread  the second clip, null for none
  // This and every operation throw Failure for what the module throws.
  PageSession(const EffectModule& module, std::map<std::string, Value> values,
              const Picture& picture, const quantel::cPtr<FrameImage>& spread,
              quantel::cSize2 pixelAspect);

  // Another picture, or another second clip, under the same page.
  void Connect(const Picture& picture, const quantel::cPtr<FrameImage>& spread,
               quantel::cSize2 pixelAspect);

  // A parameter, as the page sets it: into the store, and then the module is told.
  void Set(const std::string& key, const Value& value);

  // Tells the module of a key without a new value: the page itself, or a button on it.
  void Notify(const std::string& key);

  // The mouse, in picture pixels from the top left.
  void Press(quantel::cPoint2 point);
  void Move(quantel::cPoint2 point);
  void Release(quantel::cPoint2 point);

  // Has the module draw its handles anew.
  void Draw();

  void RequestColour();

  // What the effect makes of the picture with the values of the store now. Throws Failure
  // also for a grid that the effect cannot take.
  Picture Render() const;

  // Paints what the module drew last onto a picture.
  void PaintHandles(Picture* picture) const { surface_->PaintOn(picture); }
  bool HasHandles() const { return !surface_->IsEmpty(); }

  const Picture& Source() const { return picture_; }
  const std::map<std::string, Value>& Values() const { return store_->Values(); }
  const Dialog& PageDialog() const { return *dialog_; }

 private:
  template <class Call>
  void OnModule(const Call& call) const;
  void HandOverInputs() const;

  const EffectModule& module_;
  Trace* trace_;
  Picture picture_;
  quantel::cPtr<FrameImage> spread_;
  quantel::cSize2 pixelAspect_;
  quantel::cPtr<ParameterStore> store_;
  quantel::cPtr<OverlaySurface> surface_;
  quantel::cPtr<Dialog> dialog_;
  quantel::cPtr<PageResult> result_;
  quantel::cPtr<qplugin::iQpluginUI> ui_;
};

}  // namespace glimmerhost
