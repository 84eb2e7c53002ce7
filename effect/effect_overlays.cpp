// SPDX-License-Identifier: BSD-3-Clause
// What the effect draws on the picture, and what it hears of the mouse.
#include <cstdint>

#include "baselib/utils/convert.h"
#include "effect/glimmer_blur.h"
#include "library/host_message.h"

namespace lx {

void GlimmerBlur::Draw() {
  if (data == nullptr) {
    SendHostMessage("Warning: Overlay data has not been initialised!");
    return;
  }
  if (!data->draw) {
    SendHostMessage("Warning: Overlay::Ptr is not valid!");
    return;
  }
  data->draw->beginDraw(true, 1);
  const quantel::cSize2 size = data->PictureSize();
  pictureWidth = size.first;
  pictureHeight = size.second;
  const std::int32_t visible = shape.value == kImage ? 1 : 0;
  centerOverlay.visible = visible;
  innerRingOverlay.visible = visible;
  outerRingOverlay.visible = visible;
  if (visible != 0) {
    centerOverlay.x = NarrowToFloat(center.x);
    centerOverlay.y = NarrowToFloat(center.y);
    DrawCrosshairControl(&centerOverlay);
    DrawRingOf(radiusPSF1, false, &innerRingOverlay);
    DrawRingOf(radiusPSF2, true, &outerRingOverlay);
  }
  if (data->draw) {
    data->draw->endDraw();
  }
}

void GlimmerBlur::DrawRingOf(const SizeControlLX& radius, bool dashed, CircleOverlayLX* ring) {
  const float aspect = aspectNum / aspectDen;
  ring->x = NarrowToFloat(center.x);
  ring->y = NarrowToFloat(center.y);
  ring->sizeX = NarrowToFloat(radius.value);
  // Both sizes are fractions of the width, so the pixel aspect makes the ring round to the eye.
  ring->sizeY = NarrowToFloat(static_cast<double>(aspect) * radius.value);
  ring->rotation = 0.0F;
  ring->lockAspect = 1;
  ring->dashed = dashed ? 1 : 0;
  DrawRing(ring);
}

// Intended: in every shape, drawn or not. A handle stays where it was last drawn, and at the
// picture's corner before that, and can be taken hold of there.
void GlimmerBlur::HandleEvent(std::int32_t event, float x, float y) {
  centerOverlay.HandleEvent(event, x, y);
  innerRingOverlay.HandleEvent(event, x, y);
  outerRingOverlay.HandleEvent(event, x, y);
}

}  // namespace lx
