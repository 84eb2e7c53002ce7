// SPDX-License-Identifier: BSD-3-Clause
// The plug-in glimmerblur: a filter, whose aperture is drawn.
#include <array>
#include <cmath>

#include "doors/frei0r/frei0r_api.h"
#include "doors/frei0r/plugin.h"

namespace glimmerblur_frei0r {
namespace {

// Programs name parameters by these numbers, so new ones come last.
enum Index {
  kRadius,
  kEmphasis,
  kSides,
  kHeight,
  kRotation,
  kPixelAspect,
  kBlurAlpha,
  kEmphasiseAlpha,
  kPremultiplied,
  kBlackAround,
  kCentred
};

constexpr std::array kParameters{
    Parameter{"Radius", false, 0.2,
              "Of the aperture: 1 is a tenth of the frame's width, 0 leaves the frame as it is"},
    Parameter{"Emphasis", false, 0.0,
              "How much bright points outweigh the rest: 0 not at all, 1 is an emphasis of 20"},
    Parameter{"Sides", false, 0.0,
              "Of the aperture, in tenths: 0.3 is a triangle, 0.6 a hexagon, 1 has ten; below 0.25 "
              "it is round"},
    Parameter{"Height", false, 0.5,
              "Of the aperture: 0.5 is as high as wide, 1 twice as high, 0 flat"},
    Parameter{"Rotation", false, 0.0, "Anticlockwise, in turns: 0.25 is a quarter, 1 a whole one"},
    Parameter{"Pixel aspect", false, 0.5,
              "Of the frame: 0.5 is a pixel as wide as high, 1 one twice as wide"},
    Parameter{"Blur alpha", true, 1.0, "Off: alpha stays as it is"},
    Parameter{"Emphasise alpha", true, 0.0, "Whether the emphasis is for alpha, too"},
    Parameter{"Premultiplied", true, 0.0, "Whether the colours are multiplied by alpha"},
    Parameter{"Black around", true, 0.0,
              "What lies around the frame. Off: its edge goes on. On: black, and transparent"},
    Parameter{"Centred", true, 1.0,
              "Off: the aperture sits beside its point, as the GlimmerBlur module has it"}};

// Whole sides from 3 on; fewer are none.
std::int32_t Sides(double value) {
  const auto sides = static_cast<std::int32_t>(std::lround(10.0 * value));
  return sides < 3 ? 0 : sides;
}

glimmerblur_look Look(const Instance& instance) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  const std::int32_t sides = Sides(instance.Get(kSides));
  look.shape = sides == 0 ? GLIMMERBLUR_ELLIPSE : GLIMMERBLUR_POLYGON;
  if (sides != 0) {
    look.sides = sides;
  }
  look.radius_x = kRadiusRange * instance.Get(kRadius) * instance.Width();
  look.radius_y = 2.0 * instance.Get(kHeight) * look.radius_x;
  look.rotation = 360.0 * instance.Get(kRotation);
  look.pixel_aspect = std::fmax(0.01, 2.0 * instance.Get(kPixelAspect));
  look.emphasis = kEmphasisRange * instance.Get(kEmphasis);
  look.blur_alpha = instance.IsOn(kBlurAlpha) ? 1 : 0;
  look.emphasis_alpha = instance.IsOn(kEmphasiseAlpha) ? 1 : 0;
  look.edge = instance.IsOn(kBlackAround) ? GLIMMERBLUR_ZERO : GLIMMERBLUR_REPEAT;
  look.centred = instance.IsOn(kCentred) ? 1 : 0;
  return look;
}

void Update(Instance* instance, const std::uint32_t* in, const std::uint32_t* /*second*/,
            std::uint32_t* out) {
  instance->Render(Look(*instance), instance->IsOn(kPremultiplied), in, out);
}

}  // namespace

const Plugin kPlugin{"GlimmerBlur", F0R_PLUGIN_TYPE_FILTER,
                     "Lens defocus: bright points open into images of the aperture", kParameters,
                     Update};

}  // namespace glimmerblur_frei0r
