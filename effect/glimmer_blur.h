// SPDX-License-Identifier: BSD-3-Clause
// GlimmerBlur: the effect object that both adapters are built around.
#pragma once

#include <cstdint>

#include "effect/glimmer_blur_info.h"
#include "effect/psf_key.h"
#include "fftlib/fftlib.h"
#include "library/overlay_lx.h"
#include "library/plugin_lx.h"

namespace lx {

class GlimmerBlur : public PluginLX, public OverlayLX, public GlimmerBlurInfo {
 public:
  // Makes an engine; where there is no memory for one the object is usable without it.
  GlimmerBlur();
  ~GlimmerBlur() override;

  // Carries one frame from sourcePort (and spreadPort) to outputPort, all LXImages of
  // equal size, by the controls' values. A frame that cannot be blurred leaves as a copy
  // of its source; without an engine or without memory the output is left as it is.
  // Nothing is reported: the engine's status says what happened.
  void RenderFrame() override;

  // Sets the disabled flag of each control that shape and match govern. A shape outside 1
  // to 4 changes none.
  void UpdateControlState() override;

  // The same for radiusY alone.
  void UpdateRadiusYState();

  // One drawing of the picture's handles, which only the image shape shows. Without data or
  // without a surface the host gets a message and nothing is drawn.
  void Draw() override;

  // Passes the event to all three overlays, whatever the shape.
  void HandleEvent(std::int32_t event, float x, float y) override;

  PsfKey psfKey;          // of the previous frame
  bool psfValid = false;  // a build has been asked for

  DefocusEngine* engine = nullptr;  // owned

 private:
  PsfKey KeyOfFrame() const;
  ImageRec* BuildPsf(const PsfKey& key);
  ImageRec* BuildPsfFromImage(std::int32_t width, std::int32_t height);
  void DrawRingOf(const SizeControlLX& radius, bool dashed, CircleOverlayLX* ring);
  void RunPassRows(std::int32_t first, std::int32_t last);
  static void ParallelFor(void* context, PassFunction pass, std::int32_t count,
                          DefocusEngine* engine);
};

}  // namespace lx
