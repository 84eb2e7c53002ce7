// SPDX-License-Identifier: BSD-3-Clause
// Renderer: takes loaded frames through the effect, one after another: pictures of 16 bits through
// the module, those of floats through the library.
#pragma once

#include "host/module/effect_module.h"
#include "host/module/frame_renderer.h"
#include "host/render/float_renderer.h"
#include "host/render/frame_work.h"
#include "host/render/shot_settings.h"

namespace glimmerhost {

// The module's render instance is its own; no other thread calls it.
class Renderer {
 public:
  // All must outlive it.
  Renderer(const EffectModule& module, const ShotSettings& settings);

  // Takes each frame, renders it unless it has failed or is skipped, and puts it on, until one is
  // the last or nobody takes them. Then the one channel is abandoned and the other closed. The loop
  // of a thread, called once. A module may mind which thread that is: let it be the one that has
  // loaded it.
  void Run(FrameChannel* loaded, FrameChannel* rendered);

 private:
  void Render(FrameWork* work);

  const ShotSettings& settings_;
  const lx::Footprint& engine_;
  FrameRenderer renderer_;
  FloatRenderer floatRenderer_;
};

}  // namespace glimmerhost
