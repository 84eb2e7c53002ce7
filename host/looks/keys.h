// SPDX-License-Identifier: BSD-3-Clause
// The keys of the module's store that this host knows by name. All others are the page's alone.
#pragma once

#include <map>
#include <string>

#include "host/looks/parameter.h"

namespace glimmerhost {

// How every key of the store begins.
inline constexpr const char* kKeyBeginning = "PRM_";

inline constexpr const char* kShapeKey = "PRM_Shape";
inline constexpr const char* kMatchKey = "PRM_Match";
inline constexpr const char* kRadiusXKey = "PRM_RadiusX";
inline constexpr const char* kRadiusYKey = "PRM_RadiusY";
inline constexpr const char* kSidesKey = "PRM_Sides";
inline constexpr const char* kRotationKey = "PRM_Rotation";
inline constexpr const char* kEmphasisKey = "PRM_Emphasis";
inline constexpr const char* kEmphAlphaKey = "PRM_EmphAlpha";
inline constexpr const char* kCenterXKey = "PRM_Center_X";
inline constexpr const char* kCenterYKey = "PRM_Center_Y";
inline constexpr const char* kRadiusPsf1Key = "PRM_RadiusPSF1";
inline constexpr const char* kRadiusPsf2Key = "PRM_RadiusPSF2";

// Under this name the module asks for the second clip.
inline constexpr const char16_t* kSpreadInput = u"PRM_Spread";

// What the store holds under kShapeKey.
enum class Shape { kCircle, kEllipse, kPolygon, kImage };

//   values  with a value under kShapeKey
inline Shape ShapeOf(const std::map<std::string, Value>& values) {
  return static_cast<Shape>(std::get<int>(values.at(kShapeKey)));
}

// The switch that the module keeps in the store for a shape: on while it is in force.
inline std::string ShapeSwitch(Shape shape) {
  return std::string(kShapeKey) + "_" + static_cast<char>('A' + static_cast<int>(shape));
}

// Whether the aperture depends on a parameter: on all but what is done to the highlights.
inline bool ShapesAperture(const std::string& key) {
  return key != kEmphasisKey && key != kEmphAlphaKey;
}

}  // namespace glimmerhost
