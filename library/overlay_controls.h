// SPDX-License-Identifier: BSD-3-Clause
// Overlay controls: what a person drags on the picture to set a parameter.
//
// A control is joined by its adapter, drawn by an OverlayLX, and told of the mouse. It
// finds its handles where the last drawing put them. A drag writes the value into its
// target and hands it to the host at every move and at the release.
#pragma once

#include <cstdint>

#include "library/controls.h"
#include "library/overlay_lx.h"

namespace lx {

enum OverlayEvent : std::int32_t {
  kEventHover = 0,  // moved, nothing held
  kEventPress = 1,
  kEventDrag = 2,  // moved while held
  kEventRelease = 3,
};

// Before it gets an event a control must be joined: data, dragFlag and owner. One that is not
// joined does nothing; a null target is not written.
class OverlayControlLX {
 public:
  OverlayControlLX() = default;
  OverlayControlLX(const OverlayControlLX&) = delete;
  OverlayControlLX& operator=(const OverlayControlLX&) = delete;
  virtual ~OverlayControlLX() = default;

  // Finds out what the event is about, moves the control and applies the event.
  //   x, y  picture pixels, y upwards
  virtual void HandleEvent(std::int32_t /*event*/, float /*x*/, float /*y*/) {}

  // Sets or clears the drag flag and writes the targets.
  virtual void ApplyEvent(std::int32_t /*event*/, float /*x*/, float /*y*/) {}

  OverlayData* data = nullptr;       // borrowed, like all below
  ControlLX* target = nullptr;       // of the kind that the derived class says
  ControlLX* target2 = nullptr;      // a ring's second one
  std::int32_t* dragFlag = nullptr;  // set while something is held
  std::int32_t red = 65535;          // the colour to draw in
  std::int32_t green = 65535;
  std::int32_t blue = 65535;
  std::int32_t alpha = 65535;
  std::int32_t visible = 1;     // as of the last Draw; events come all the same
  std::int32_t activePart = 0;  // the part that is held, 0 none
  std::int32_t hoverPart = 0;   // the part under the pointer, 0 none
  OverlayLX* owner = nullptr;

 protected:
  // Whether the pointer is on a handle there.
  bool Hits(float handleX, float handleY, float x, float y) const;

  template <class FindPart, class Drag>
  void Follow(std::int32_t event, float x, float y, const FindPart& findPart, const Drag& drag);
};

// A point. Its target is a PositionControlLX.
class CrosshairOverlayLX final : public OverlayControlLX {
 public:
  void HandleEvent(std::int32_t event, float x, float y) override;
  void ApplyEvent(std::int32_t event, float x, float y) override;

  float x = 0.0F;  // fractions of the picture's width and height
  float y = 0.0F;
  float screenX = 0.0F;  // where it was drawn, in picture pixels
  float screenY = 0.0F;
  std::int32_t diagonals = 0;
};

// An ellipse with three handles: 1 the corner, 2 on its x axis, 3 on its y axis. Its targets
// are SizeControlLX. Drawing locks the proportions, which leaves handle 2 alone.
class CircleOverlayLX final : public OverlayControlLX {
 public:
  void HandleEvent(std::int32_t event, float x, float y) override;
  void ApplyEvent(std::int32_t event, float x, float y) override;

  float x = 0.0F;  // the middle, fractions of the picture's width and height
  float y = 0.0F;
  float sizeX = 0.0F;  // diameters as fractions of the picture's width, both of them
  float sizeY = 0.0F;
  float rotation = 0.0F;  // degrees
  // Locked from the start: before the first drawing all handles lie on the corner of the
  // picture, and the corner handle would turn sizes of 0 into not-a-number.
  std::int32_t lockAspect = 1;
  std::int32_t dashed = 0;
  float handleX[3] = {};  // where the handles are, in picture pixels: handle 1 first
  float handleY[3] = {};

 private:
  std::int32_t HandleUnder(float pointerX, float pointerY) const;
  void Resize(float pointerX, float pointerY);
  void ResizeFromCorner(double pointerX, double width);
  void WriteTargets();
};

}  // namespace lx
