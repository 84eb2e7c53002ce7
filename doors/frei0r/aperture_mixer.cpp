// SPDX-License-Identifier: BSD-3-Clause
// The plug-in glimmerblur_aperture: a mixer of two frames. The red of the second one is the
// aperture that the first is blurred with.
#include <array>

#include "doors/frei0r/frei0r_api.h"
#include "doors/frei0r/plugin.h"

namespace glimmerblur_frei0r {
namespace {

// Programs name parameters by these numbers, so new ones come last.
enum Index {
  kRadius,
  kEmphasis,
  kCore,
  kCentreX,
  kCentreY,
  kBlurAlpha,
  kEmphasiseAlpha,
  kPremultiplied,
  kBlackAround
};

constexpr std::array kParameters{
    Parameter{"Radius", false, 0.5,
              "Of the disc that is cut out of the second picture: 1 is a tenth of its width"},
    Parameter{"Emphasis", false, 0.0,
              "How much bright points outweigh the rest: 0 not at all, 1 is an emphasis of 20"},
    Parameter{"Core", false, 0.9,
              "The part of the disc's radius up to which the second picture counts fully; from "
              "there to the edge it fades"},
    Parameter{"Centre X", false, 0.5,
              "Of the disc: 0 is the left edge of the second picture, 1 the right one"},
    Parameter{"Centre Y", false, 0.5,
              "Of the disc: 0 is the upper edge of the second picture, 1 the lower one"},
    Parameter{"Blur alpha", true, 1.0, "Off: alpha stays as it is"},
    Parameter{"Emphasise alpha", true, 0.0, "Whether the emphasis is for alpha, too"},
    Parameter{"Premultiplied", true, 0.0, "Whether the colours are multiplied by alpha"},
    Parameter{"Black around", true, 0.0,
              "What lies around the frame. Off: its edge goes on. On: black, and transparent"}};

glimmerblur_look Look(const Instance& instance) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = GLIMMERBLUR_PICTURE;
  look.emphasis = kEmphasisRange * instance.Get(kEmphasis);
  look.blur_alpha = instance.IsOn(kBlurAlpha) ? 1 : 0;
  look.emphasis_alpha = instance.IsOn(kEmphasiseAlpha) ? 1 : 0;
  look.edge = instance.IsOn(kBlackAround) ? GLIMMERBLUR_ZERO : GLIMMERBLUR_REPEAT;
  return look;
}

void Update(Instance* instance, const std::uint32_t* in, const std::uint32_t* second,
            std::uint32_t* out) {
  const double outer = kRadiusRange * instance->Get(kRadius) * instance->Width();
  const bool hasAperture = instance->SetAperture(
      second, instance->Get(kCentreX) * instance->Width(),
      instance->Get(kCentreY) * instance->Height(), instance->Get(kCore) * outer, outer);
  if (hasAperture) {
    instance->Render(Look(*instance), instance->IsOn(kPremultiplied), in, out);
  } else {
    instance->Leave(in, out);
  }
}

}  // namespace

const Plugin kPlugin{"GlimmerBlur aperture", F0R_PLUGIN_TYPE_MIXER2,
                     "Lens defocus with the second picture as the aperture: its red, on black",
                     kParameters, Update};

}  // namespace glimmerblur_frei0r
