// OverlayLX: what an effect draws over the picture, and where mouse events go.
#pragma once

#include <cstdint>

namespace lx {

class OverlayLX {
 public:
  OverlayLX() = default;
  OverlayLX(const OverlayLX&) = delete;
  OverlayLX& operator=(const OverlayLX&) = delete;
  virtual ~OverlayLX() = default;

  virtual void Draw() {}

  //   event  0 moved, 1 pressed, 2 moved while held, 3 released
  //   x, y   picture pixels, y counted upwards
  virtual void HandleEvent(std::int32_t /*event*/, float /*x*/, float /*y*/) {}

  float aspectNum = 0.0F;  // pixel aspect of the host's format, first number
  float aspectDen = 0.0F;  // and second
  float zoom = 0.0F;
};

}  // namespace lx
