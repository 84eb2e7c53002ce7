// OverlaySurface: what a module draws over the picture, kept so that it can be painted onto a
// picture whenever one is looked at.
#pragma once

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

#include "host/pictures/picture.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/ui_result.h"

namespace glimmerhost {

// A drawing pass replaces the one before.
class OverlaySurface final : public qplugin::iQpluginOverlaySurface, public quantel::cRefCount {
 public:
  void beginDraw(bool alwaysTrue, int alwaysOne) override;
  void endDraw() override {}
  void drawLine(quantel::cPoint2 from, quantel::cPoint2 to, quantel::cColour colour) override;
  void fillRect(quantel::cRect4 rect, quantel::cColour colour, quantel::cColour same) override;
  void frameRect(quantel::cRect4 rect, quantel::cColour colour) override;

  bool IsEmpty() const { return strokes_.empty(); }

  // Paints the last pass onto a picture, opaque and without antialiasing: lines one pixel
  // wide, from the pixel that the one end lies in to that of the other; a square covers the
  // pixels whose middles lie in it, and its frame is the outermost of them. What lies outside
  // the picture, or is not a number, is left out.
  void PaintOn(Picture* picture) const;

 private:
  using Colour = std::array<std::uint16_t, 3>;  // red, green, blue

  struct Line {
    quantel::cPoint2 from;
    quantel::cPoint2 to;
    Colour colour;
  };
  struct Rectangle {
    quantel::cRect4 rect;
    Colour colour;
    bool filled;
  };

  static Colour ColourOf(const quantel::cColour& colour);
  static void Paint(const Line& line, Picture* picture);
  static void Paint(const Rectangle& rectangle, Picture* picture);

  std::vector<std::variant<Line, Rectangle>> strokes_;  // in the order of drawing
};

}  // namespace glimmerhost
