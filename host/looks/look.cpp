#include "host/looks/look.h"

namespace glimmerhost {

std::span<const LookName> LookNames() {
  static const LookName names[] = {
      {"shape", &TypedValues::shape, {"PRM_Shape"}},
      {"radius", &TypedValues::radius, {"PRM_RadiusX", "PRM_RadiusY"}},
      {"radius-x", &TypedValues::radiusX, {"PRM_RadiusX"}},
      {"radius-y", &TypedValues::radiusY, {"PRM_RadiusY"}},
      {"match", &TypedValues::match, {"PRM_Match"}},
      {"sides", &TypedValues::sides, {"PRM_Sides"}},
      {"rotation", &TypedValues::rotation, {"PRM_Rotation"}},
      {"spread", &Look::spread, {"spread"}},
      {"center", &TypedValues::center, {"PRM_Center_X", "PRM_Center_Y"}},
      {"radius-psf1", &TypedValues::radiusPsf1, {"PRM_RadiusPSF1"}},
      {"radius-psf2", &TypedValues::radiusPsf2, {"PRM_RadiusPSF2"}},
      {"emphasis", &TypedValues::emphasis, {"PRM_Emphasis"}},
      {"emph-alpha", &TypedValues::emphAlpha, {"PRM_EmphAlpha"}},
      {"alpha", &Look::alpha, {"alpha"}},
      {"pixel-aspect", &Look::pixelAspect, {"pixel-aspect"}},
  };
  return names;
}

std::string& TextOf(const LookName& name, Look* look) {
  if (const auto* value = std::get_if<std::string TypedValues::*>(&name.text)) {
    return look->values.**value;
  }
  return look->*std::get<std::string Look::*>(name.text);
}

const std::string& TextOf(const LookName& name, const Look& look) {
  if (const auto* value = std::get_if<std::string TypedValues::*>(&name.text)) {
    return look.values.**value;
  }
  return look.*std::get<std::string Look::*>(name.text);
}

}  // namespace glimmerhost
