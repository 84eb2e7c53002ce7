// SPDX-License-Identifier: BSD-3-Clause
// OverlayLX: what an effect draws over the picture, and where mouse events go.
//
// Points count in picture pixels with y upwards from the picture's bottom. The host's
// surface counts y downwards, so every drawing operation turns y over. It asks the view for the
// height each time; without a view the height is 0. One thread, the page's.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/colour.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/ui_result.h"

namespace lx {

class CircleOverlayLX;
class CrosshairOverlayLX;
class OverlayControlLX;

// What an adapter lends its overlays to draw with. Either cPtr may be empty.
struct OverlayData {
  quantel::cPtr<qplugin::iQpluginOverlaySurface> draw;
  quantel::cPtr<qplugin::iQpluginFormat> view;  // gives the picture's size
  quantel::cColour colour;                      // of what is drawn next

  // The picture's size as the view gives it now; 0 x 0 without a view.
  quantel::cSize2 PictureSize() const;
};

class OverlayLX {
 public:
  OverlayLX() = default;
  OverlayLX(const OverlayLX&) = delete;
  OverlayLX& operator=(const OverlayLX&) = delete;
  virtual ~OverlayLX() = default;

  virtual void Draw() {}

  //   event  0 moved, 1 pressed, 2 moved while held, 3 released; others do nothing
  virtual void HandleEvent(std::int32_t /*event*/, float /*x*/, float /*y*/) {}

  // Side of a handle, and how far from its middle a press still finds it.
  double HandleSize() const { return 5.0 / static_cast<double>(zoom); }

  // The colour of what is drawn next. Components from 0 to 65535; alpha is not used.
  void SetColour(std::int32_t red, std::int32_t green, std::int32_t blue, std::int32_t alpha);

  void DrawLine(float x0, float y0, float x1, float y1);

  // A square around a point, filled or open, with a black rim one pixel outside.
  // Without data the host gets a message.
  void DrawHandle(float x, float y, bool filled);

  // Four arms that leave the middle open.
  //   diagonals  four shorter ones between them
  void DrawCrosshair(float x, float y, bool diagonals);

  // An outline of straight segments; nothing if width or height is below 5 pixels.
  //   width, height  diameters
  //   rotation       degrees, counter-clockwise
  //   dashed         every second segment is left out
  //   step           length of a segment in pixels, about
  //   startAngle, endAngle  degrees; 0 and 360 close the figure
  // Only the closing line, if any, where width and step give no number of degrees above 0.
  void DrawEllipse(double x, double y, double width, double height, float rotation, bool dashed,
                   double step, double startAngle, double endAngle);

  // Each draws a control from its members and notes where its handles are.
  void DrawCrosshairControl(CrosshairOverlayLX* control);
  void DrawRing(CircleOverlayLX* control);

  OverlayData* data = nullptr;    // the adapter's; null until it has joined them
  std::int32_t pictureWidth = 0;  // as of the last Draw
  std::int32_t pictureHeight = 0;
  float aspectNum = 1.0F;  // pixel aspect of the host's format, first number
  float aspectDen = 1.0F;  // and second
  float zoom = 0.0F;       // 1 from the adapter on; scales handles and arms

 private:
  void SetColourOf(const OverlayControlLX& control);
};

}  // namespace lx
