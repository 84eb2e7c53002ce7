// SPDX-License-Identifier: BSD-3-Clause
// What a person sets on the operation, by GEGL's names, and what the library is told of it.
#pragma once

#include <gegl-plugin.h>

#include "doors/library/glimmerblur.h"

namespace glimmerblur_gegl {

struct DefocusProperties {
  int shape;  // glimmerblur_shape
  double radius;
  double aspectRatio;  // of an ellipse and a polygon: width over height
  double rotation;
  int sides;
  double pixelAspect;
  double emphasis;
  bool blurAlpha;
  bool emphasisAlpha;
  int edge;  // glimmerblur_edge
  bool centred;
};

// Gives a class its properties. Every new object is set to their defaults.
void InstallDefocusProperties(GObjectClass* objects);

// By the number that a class knows a property by. The object is for what GObject says of others.
void SetDefocusProperty(DefocusProperties* properties, GObject* object, guint number,
                        const GValue* value, GParamSpec* property);
void GetDefocusProperty(const DefocusProperties& properties, GObject* object, guint number,
                        GValue* value, GParamSpec* property);

//   scale  of the frame's pixels to the picture's: radii are multiplied by it
glimmerblur_look LookOf(const DefocusProperties& properties, double scale);

}  // namespace glimmerblur_gegl
