// SPDX-License-Identifier: BSD-3-Clause
// What an overlay is drawn on, in canonical coordinates: the host's draw suite, or the OpenGL that
// older hosts have set up for it.
#pragma once

#include <memory>
#include <vector>

#include "doors/openfx/host.h"

namespace lx::openfx {

class Canvas {
 public:
  Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  virtual ~Canvas() = default;

  virtual void SetColour(const ofx::Colour& colour) = 0;
  virtual void SetDashed(bool dashed) = 0;

  // One line for every two points.
  virtual void DrawLines(const std::vector<ofx::PointD>& points) = 0;

  // Lines from each point to the next, and from the last one to the first.
  virtual void DrawLoop(const std::vector<ofx::PointD>& points) = 0;
};

// Null where there is nothing to draw on.
std::unique_ptr<Canvas> MakeDrawSuiteCanvas(const Properties& in);

// Null where the process has no OpenGL. The host's settings come back when the canvas goes.
std::unique_ptr<Canvas> MakeGlCanvas();

}  // namespace lx::openfx
