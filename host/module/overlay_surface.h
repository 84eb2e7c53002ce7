// SPDX-License-Identifier: BSD-3-Clause
// OverlaySurface: what a module draws over the picture, kept so that it can be painted onto a
// picture, or shown by others, whenever one is looked at.
//
// Coordinates are picture pixels from the top left, y downwards, and count the edges of pixels: the
// middle of the first pixel is (0.5, 0.5).
//
//   (0, 0) +-----------> x   of a picture of 4 x 2, whose bottom right corner is (4, 2)
//          | . . . .
//        y v . . . .
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <variant>
#include <vector>

#include "host/pictures/picture.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/ui_result.h"

namespace glimmerhost {

// Red, green, blue, cut to 0..65535; what is not a number is 0.
using OverlayColour = std::array<std::uint16_t, 3>;

// As the module gave it: it may lie outside the picture, have no length or not be a number.
struct OverlayLine {
  quantel::cPoint2 from;
  quantel::cPoint2 to;
  OverlayColour colour;
};

// Filled, or its outline alone. Nothing is drawn for one without a size.
struct OverlayRectangle {
  quantel::cRect4 rect;  // left, top, width, height
  OverlayColour colour;
  bool filled;
};

using OverlayStroke = std::variant<OverlayLine, OverlayRectangle>;

// Receives a pixel and its colour, and may receive it again: the last colour counts.
using PaintPixel = std::function<void(int x, int y, const OverlayColour& colour)>;

// Paints opaque and without antialiasing: lines one pixel wide, from the pixel that the one end
// lies in to that of the other; a square covers the pixels whose middles lie in it, and its frame
// is the outermost of them. What lies outside of width and height, or is not a number, is left out.
void PaintStrokes(const std::vector<OverlayStroke>& strokes, int width, int height,
                  const PaintPixel& paint);

// A drawing pass replaces the one before. A module draws within the host's calls on it: all
// operations belong on the thread that makes these.
class OverlaySurface final : public qplugin::iQpluginOverlaySurface, public quantel::cRefCount {
 public:
  void beginDraw(bool alwaysTrue, int alwaysOne) override;
  void endDraw() override {}
  void drawLine(quantel::cPoint2 from, quantel::cPoint2 to, quantel::cColour colour) override;
  void fillRect(quantel::cRect4 rect, quantel::cColour colour, quantel::cColour same) override;
  void frameRect(quantel::cRect4 rect, quantel::cColour colour) override;

  // The strokes of the last pass in the order of drawing, where a later one covers those before;
  // of a pass that has not ended, those so far. Good until the module draws again.
  const std::vector<OverlayStroke>& Strokes() const { return strokes_; }

  bool IsEmpty() const { return strokes_.empty(); }

  // Paints the last pass onto a picture of 16 bits, as PaintStrokes does.
  void PaintOn(Picture* picture) const;

 private:
  std::vector<OverlayStroke> strokes_;
};

}  // namespace glimmerhost
