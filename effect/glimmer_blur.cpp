// SPDX-License-Identifier: BSD-3-Clause
#include "effect/glimmer_blur.h"

#include <cstdint>

#include "effect/module_engine.h"

namespace lx {
namespace {

// Which controls a shape leaves unused.
struct ShapeRule {
  bool sides;
  bool rotation;
  bool radiusX;
  bool radiusY;
  bool match;
  bool center;
  bool radiusPSF1;
  bool radiusPSF2;
};

// From shape 1 on. radiusY of the polygon is settled by match.
constexpr ShapeRule kShapeRules[] = {
    {true, true, false, true, true, true, true, true},
    {true, false, false, false, true, true, true, true},
    {false, false, false, false, false, true, true, true},
    {true, true, true, true, true, false, false, false},
};

bool IsShape(std::int32_t value) { return value >= kCircle && value <= kImage; }

}  // namespace

GlimmerBlur::GlimmerBlur() : engine(MakeModuleEngine()) {}

GlimmerBlur::~GlimmerBlur() { delete engine; }

void GlimmerBlur::UpdateControlState() {
  if (!IsShape(shape.value)) {
    return;
  }
  const ShapeRule& rule = kShapeRules[shape.value - 1];
  sides.SetDisabled(rule.sides);
  rotation.SetDisabled(rule.rotation);
  radiusX.SetDisabled(rule.radiusX);
  UpdateRadiusYState();
  match.SetDisabled(rule.match);
  center.SetDisabled(rule.center);
  radiusPSF1.SetDisabled(rule.radiusPSF1);
  radiusPSF2.SetDisabled(rule.radiusPSF2);
  // Intended: once more, as the rule of match alone would set it.
  UpdateRadiusYState();
}

void GlimmerBlur::UpdateRadiusYState() {
  if (IsShape(shape.value)) {
    radiusY.SetDisabled(shape.value == kPolygon ? match.value
                                                : kShapeRules[shape.value - 1].radiusY);
  }
}

}  // namespace lx
