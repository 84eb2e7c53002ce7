// SPDX-License-Identifier: BSD-3-Clause
#include "doors/gegl/defocus_properties.h"

namespace glimmerblur_gegl {
namespace {

enum Number : guint {
  kShape = 1,
  kRadius,
  kAspectRatio,
  kSides,
  kRotation,
  kEmphasis,
  kBlurAlpha,
  kEmphasisAlpha,
  kEdge,
  kPixelAspect,
  kCentred
};

// The last word is what a command line, a file and a script have; the one before it is shown.
GType ShapeType() {
  static const GEnumValue values[] = {{GLIMMERBLUR_CIRCLE, "Circle", "circle"},
                                      {GLIMMERBLUR_ELLIPSE, "Ellipse", "ellipse"},
                                      {GLIMMERBLUR_POLYGON, "Polygon", "polygon"},
                                      {GLIMMERBLUR_PICTURE, "Picture", "picture"},
                                      {0, nullptr, nullptr}};
  static const GType type = g_enum_register_static("GlimmerBlurShape", values);
  return type;
}

GType EdgeType() {
  static const GEnumValue values[] = {{GLIMMERBLUR_REPEAT, "Repeat the edge", "repeat"},
                                      {GLIMMERBLUR_ZERO, "Black and transparent", "zero"},
                                      {0, nullptr, nullptr}};
  static const GType type = g_enum_register_static("GlimmerBlurEdge", values);
  return type;
}

constexpr auto kFlags =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_CONSTRUCT | GEGL_PARAM_PAD_INPUT);

// What a slider shows: its ends, its steps, its digits, and how much finer it is at its lower end.
struct Slider {
  double least;
  double most;
  double gamma;
  double step;
  double bigStep;
  int digits;
};

GParamSpec* RealSpec(const char* name, const char* title, const char* tip, double least,
                     double most, double initial, const Slider& slider) {
  GParamSpec* spec = gegl_param_spec_double(name, title, tip, least, most, initial, slider.least,
                                            slider.most, slider.gamma, kFlags);
  gegl_param_spec_double_set_steps(GEGL_PARAM_SPEC_DOUBLE(spec), slider.step, slider.bigStep);
  gegl_param_spec_double_set_digits(GEGL_PARAM_SPEC_DOUBLE(spec), slider.digits);
  return spec;
}

GParamSpec* SwitchSpec(const char* name, const char* title, const char* tip, bool initial) {
  return g_param_spec_boolean(name, title, tip, initial, kFlags);
}

void InstallShape(GObjectClass* objects, const glimmerblur_look& initial) {
  g_object_class_install_property(
      objects, kShape,
      gegl_param_spec_enum("shape", "Shape",
                           "What a point of light becomes. A picture comes in by the aux pad",
                           ShapeType(), initial.shape, kFlags));

  GParamSpec* radius = RealSpec("radius", "Radius",
                                "Radius of the aperture, of an ellipse and a polygon half the "
                                "width",
                                0.0, 8000.0, initial.radius_x, {0.0, 300.0, 2.0, 0.5, 5.0, 2});
  gegl_param_spec_set_property_key(radius, "unit", "pixel-distance");
  gegl_param_spec_set_property_key(radius, "sensitive", "shape {circle, ellipse, polygon}");
  g_object_class_install_property(objects, kRadius, radius);

  GParamSpec* aspectRatio = RealSpec("aspect-ratio", "Aspect ratio",
                                     "Width of the ellipse or the polygon over its height", 0.01,
                                     100.0, 1.0, {0.1, 10.0, 3.0, 0.01, 0.1, 3});
  gegl_param_spec_set_property_key(aspectRatio, "sensitive", "shape {ellipse, polygon}");
  g_object_class_install_property(objects, kAspectRatio, aspectRatio);

  GParamSpec* sides = gegl_param_spec_int("sides", "Sides", "Number of sides of the polygon", 3, 50,
                                          initial.sides, 3, 12, 1.0, kFlags);
  gegl_param_spec_set_property_key(sides, "sensitive", "shape {polygon}");
  g_object_class_install_property(objects, kSides, sides);

  GParamSpec* rotation =
      RealSpec("rotation", "Rotation", "Rotation of the ellipse or the polygon, anticlockwise",
               -1e6, 1e6, initial.rotation, {-180.0, 180.0, 1.0, 1.0, 15.0, 2});
  gegl_param_spec_set_property_key(rotation, "unit", "degree");
  gegl_param_spec_set_property_key(rotation, "direction", "ccw");
  gegl_param_spec_set_property_key(rotation, "sensitive", "shape {ellipse, polygon}");
  g_object_class_install_property(objects, kRotation, rotation);
}

void InstallLight(GObjectClass* objects, const glimmerblur_look& initial) {
  g_object_class_install_property(
      objects, kEmphasis,
      RealSpec("emphasis", "Emphasis",
               "How much more highlights weigh than the rest; up to 1 they weigh the same", 0.0,
               500.0, initial.emphasis, {0.0, 100.0, 2.0, 0.1, 10.0, 2}));
  g_object_class_install_property(
      objects, kBlurAlpha,
      SwitchSpec("blur-alpha", "Blur alpha", "Whether transparency is blurred with the colours",
                 initial.blur_alpha != 0));
  GParamSpec* emphasisAlpha = SwitchSpec("emphasis-alpha", "Emphasis of alpha",
                                         "Whether what covers more weighs more, as highlights do",
                                         initial.emphasis_alpha != 0);
  gegl_param_spec_set_property_key(emphasisAlpha, "sensitive", "blur-alpha");
  g_object_class_install_property(objects, kEmphasisAlpha, emphasisAlpha);
}

void InstallPlace(GObjectClass* objects, const glimmerblur_look& initial) {
  g_object_class_install_property(
      objects, kEdge,
      gegl_param_spec_enum("edge", "Edge", "What lies around the picture", EdgeType(), initial.edge,
                           kFlags));
  g_object_class_install_property(
      objects, kPixelAspect,
      RealSpec("pixel-aspect", "Pixel aspect", "Width of the picture's pixels over their height",
               0.01, 100.0, initial.pixel_aspect, {0.25, 4.0, 2.0, 0.01, 0.1, 4}));
  g_object_class_install_property(
      objects, kCentred,
      SwitchSpec("centred", "Centred",
                 "Whether the aperture stands exactly on its pixel; without, it stands half a "
                 "pixel or a whole one beside it, where the plug-in module has it",
                 initial.centred != 0));
}

}  // namespace

void InstallDefocusProperties(GObjectClass* objects) {
  glimmerblur_look initial;
  glimmerblur_look_init(&initial);
  InstallShape(objects, initial);
  InstallLight(objects, initial);
  InstallPlace(objects, initial);
}

void SetDefocusProperty(DefocusProperties* properties, GObject* object, guint number,
                        const GValue* value, GParamSpec* property) {
  switch (number) {
    case kShape:
      properties->shape = g_value_get_enum(value);
      break;
    case kRadius:
      properties->radius = g_value_get_double(value);
      break;
    case kAspectRatio:
      properties->aspectRatio = g_value_get_double(value);
      break;
    case kSides:
      properties->sides = g_value_get_int(value);
      break;
    case kRotation:
      properties->rotation = g_value_get_double(value);
      break;
    case kEmphasis:
      properties->emphasis = g_value_get_double(value);
      break;
    case kEmphasisAlpha:
      properties->emphasisAlpha = g_value_get_boolean(value) != FALSE;
      break;
    case kBlurAlpha:
      properties->blurAlpha = g_value_get_boolean(value) != FALSE;
      break;
    case kEdge:
      properties->edge = g_value_get_enum(value);
      break;
    case kPixelAspect:
      properties->pixelAspect = g_value_get_double(value);
      break;
    case kCentred:
      properties->centred = g_value_get_boolean(value) != FALSE;
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, number, property);
  }
}

void GetDefocusProperty(const DefocusProperties& properties, GObject* object, guint number,
                        GValue* value, GParamSpec* property) {
  switch (number) {
    case kShape:
      g_value_set_enum(value, properties.shape);
      break;
    case kRadius:
      g_value_set_double(value, properties.radius);
      break;
    case kAspectRatio:
      g_value_set_double(value, properties.aspectRatio);
      break;
    case kSides:
      g_value_set_int(value, properties.sides);
      break;
    case kRotation:
      g_value_set_double(value, properties.rotation);
      break;
    case kEmphasis:
      g_value_set_double(value, properties.emphasis);
      break;
    case kEmphasisAlpha:
      g_value_set_boolean(value, properties.emphasisAlpha);
      break;
    case kBlurAlpha:
      g_value_set_boolean(value, properties.blurAlpha);
      break;
    case kEdge:
      g_value_set_enum(value, properties.edge);
      break;
    case kPixelAspect:
      g_value_set_double(value, properties.pixelAspect);
      break;
    case kCentred:
      g_value_set_boolean(value, properties.centred);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, number, property);
  }
}

glimmerblur_look LookOf(const DefocusProperties& properties, double scale) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = properties.shape;
  look.sides = properties.sides;
  look.radius_x = properties.radius * scale;
  look.radius_y = properties.radius / properties.aspectRatio * scale;
  look.rotation = properties.rotation;
  look.pixel_aspect = properties.pixelAspect;
  look.emphasis = properties.emphasis;
  look.blur_alpha = properties.blurAlpha ? 1 : 0;
  look.emphasis_alpha = properties.emphasisAlpha ? 1 : 0;
  look.edge = properties.edge;
  look.centred = properties.centred ? 1 : 0;
  return look;
}

}  // namespace glimmerblur_gegl
