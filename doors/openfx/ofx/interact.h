// SPDX-License-Identifier: BSD-3-Clause
// OpenFX: what an effect draws on the picture, and what it hears of the mouse, which is called a
// pen.
#pragma once

#include "doors/openfx/ofx/core.h"

namespace ofx {

struct Interact;
struct DrawContext;

struct Colour {
  float red, green, blue, alpha;
};

enum DrawPrimitive {
  kDrawLines = 0,     // one for every two points
  kDrawLineLoop = 2,  // from each point to the next, and back to the first one
};

enum LineStipple {
  kStippleSolid = 0,
  kStippleDash = 2,
};

// What the host draws in itself.
enum StandardColour { kColourOverlayBackground = 0 };

extern "C" {

struct InteractSuite {
  Status (*interactSwapBuffers)(Interact*);
  Status (*interactRedraw)(Interact*);
  Status (*interactGetPropertySet)(Interact*, PropertySet** properties);
};

struct DrawSuite {
  Status (*getColour)(DrawContext*, StandardColour name, Colour* colour);
  Status (*setColour)(DrawContext*, const Colour* colour);
  Status (*setLineWidth)(DrawContext*, float width);
  Status (*setLineStipple)(DrawContext*, LineStipple stipple);
  Status (*draw)(DrawContext*, DrawPrimitive primitive, const PointD* points, int count);
  Status (*drawText)(DrawContext*, const char* text, const PointD* place, int alignment);
};

}  // extern "C"

inline constexpr char kInteractSuite[] = "OfxInteractSuite";
inline constexpr char kDrawSuite[] = "OfxDrawSuite";

inline constexpr char kInteractActionDraw[] = "OfxInteractActionDraw";
inline constexpr char kInteractActionPenMotion[] = "OfxInteractActionPenMotion";
inline constexpr char kInteractActionPenDown[] = "OfxInteractActionPenDown";
inline constexpr char kInteractActionPenUp[] = "OfxInteractActionPenUp";
inline constexpr char kInteractActionLoseFocus[] = "OfxInteractActionLoseFocus";

inline constexpr char kInteractPropSlaveToParam[] = "OfxInteractPropSlaveToParam";
inline constexpr char kInteractPropPixelScale[] = "OfxInteractPropPixelScale";
inline constexpr char kInteractPropPenPosition[] = "OfxInteractPropPenPosition";
inline constexpr char kInteractPropDrawContext[] = "OfxInteractPropDrawContext";

}  // namespace ofx
