// SPDX-License-Identifier: BSD-3-Clause
// FrameRenderer: frames through the effect's border, one after another.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "host/looks/page.h"
#include "host/module/border_pictures.h"
#include "host/module/effect_module.h"
#include "host/pictures/picture.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// What the module is given for one frame.
struct FrameInput {
  int frame = 1;
  std::map<std::string, Value> values;
  quantel::cPtr<FrameImage> source;  // null where the picture is of floats, and no module's
  quantel::cPtr<FrameImage> spread;  // null if there is none
  quantel::cSize2 pixelAspect{1, 1};
};

// The values that an aperture is made from: all but what is done to the highlights.
std::map<std::string, Value> ApertureValues(std::map<std::string, Value> values);

// A render instance remembers the aperture that it built last, and takes it for values that are
// near enough. A frame of this class does not depend on those before it: the instance is a new
// one wherever the aperture may be another.
class FrameRenderer {
 public:
  //   carryPsf  one instance for all frames, with its memory
  FrameRenderer(const EffectModule& module, bool carryPsf) : module_(module), carryPsf_(carryPsf) {}

  // What the effect makes of the frame. Throws Failure.
  quantel::cPtr<FrameImage> Render(const FrameInput& input);

  // What the effect may hold since the last frame, in bytes: it frees it or takes it again.
  std::uint64_t HeldBytes() const;

 private:
  // What the module builds its aperture from.
  struct Aperture {
    std::map<std::string, Value> values;
    quantel::cSize2 size{};
    quantel::cSize2 pixelAspect{};
  };

  static Aperture ApertureOf(const FrameInput& input);
  bool MayKeep(const Aperture& now) const;

  const EffectModule& module_;
  bool carryPsf_;
  quantel::cPtr<qplugin::iQpluginRender> render_;
  Aperture before_;
};

// Replaces the picture by what the effect makes of it, by an instance of its own, so that
// none depends on the one before. Throws Failure, with the picture as it was, also where the effect
// could not work on it.
void RenderPicture(const EffectModule& module, const std::map<std::string, Value>& values,
                   const quantel::cPtr<FrameImage>& spread, quantel::cSize2 pixelAspect,
                   Picture* picture);

}  // namespace glimmerhost
