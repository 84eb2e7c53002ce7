// SPDX-License-Identifier: BSD-3-Clause
// FrameMaker: one frame at a time through the effect, as a render would write it, but in the alpha
// that the effect works with.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "host/module/effect_module.h"
#include "host/module/frame_renderer.h"
#include "host/render/float_renderer.h"
#include "host/viewer/clip/loaded_frame.h"

namespace glimmerhost {

// Pictures of 16 bits go through the module, and those of floats through the library. The frame
// never depends on those before it. One thread calls it.
class FrameMaker {
 public:
  //   module  must outlive it
  explicit FrameMaker(const EffectModule& module)
      : engine_(module.Engine()), renderer_(module, false), floatRenderer_(false) {}

  // Throws Failure.
  //   values  of the store
  //   mix     how much of the effect is seen
  std::shared_ptr<const Picture> Make(const LoadedFrame& frame,
                                      const std::map<std::string, Value>& values, double mix);

 private:
  const lx::Footprint& engine_;
  FrameRenderer renderer_;
  FloatRenderer floatRenderer_;
};

}  // namespace glimmerhost
