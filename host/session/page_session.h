// SPDX-License-Identifier: BSD-3-Clause
// PageSession: a person at the effect's page over a picture, without a window. It renders by an
// instance of its own from the same store.
#pragma once

#include <map>
#include <string>

#include "host/module/effect_module.h"
#include "host/pictures/picture.h"
#include "host/session/effect_page.h"

namespace glimmerhost {

class PageSession : public EffectPage {
 public:
  // Opens the page over a picture.
  //   module  must outlive the session, as every trace of it must
  //   spread  the second clip, null for none
  // Throws Failure as every operation does.
  PageSession(const EffectModule& module, std::map<std::string, Value> values,
              const Picture& picture, const quantel::cPtr<FrameImage>& spread,
              quantel::cSize2 pixelAspect);

  // Another picture, or another second clip, under the same page.
  void Connect(const Picture& picture, const quantel::cPtr<FrameImage>& spread,
               quantel::cSize2 pixelAspect);

  // What the effect makes of the picture with the values of the store now. Throws Failure
  // also for a grid that the effect cannot take.
  Picture Render() const;

  const Picture& Source() const { return picture_; }

 private:
  const EffectModule& module_;
  Picture picture_;
  quantel::cPtr<FrameImage> spread_;
  quantel::cSize2 pixelAspect_;
};

}  // namespace glimmerhost
