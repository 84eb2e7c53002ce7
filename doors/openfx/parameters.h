// SPDX-License-Identifier: BSD-3-Clause
// The parameters of the effect: what a host shows of them, and their values at a time.
//
// Their names, and the order of a choice's options, are what projects are saved with: none may
// change.
#pragma once

#include <string>
#include <vector>

#include "doors/openfx/host.h"

namespace lx::openfx {

// Radii are in canonical pixels.
struct Settings {
  int shape = 0;  // glimmerblur_shape
  double radiusX = 0.0;
  double radiusY = 0.0;
  bool matchRadii = false;  // a polygon's Y radius follows X
  int sides = 0;
  double rotation = 0.0;  // degrees
  double emphasis = 0.0;
  bool blurAlpha = false;
  bool emphasisAlpha = false;
  int edge = 0;  // glimmerblur_edge
  bool centred = false;

  // Of an aperture out of a picture.
  bool wholePicture = true;
  ofx::PointD centre = {0.0, 0.0};  // canonical pixels from the picture's middle
  double innerRadius = 0.0;
  double outerRadius = 0.0;
};

// Names of those that a person may drag on the picture.
inline constexpr char kRadiusX[] = "radiusX";
inline constexpr char kRadiusY[] = "radiusY";
inline constexpr char kApertureCentre[] = "apertureCentre";
inline constexpr char kApertureInner[] = "apertureInner";
inline constexpr char kApertureOuter[] = "apertureOuter";

// Defines all of them, or all but those of the aperture out of a picture.
void DefineParameters(ofx::ParameterSet* set, bool hasAperture);

// The parameters of an instance. Any thread may read them.
class Parameters {
 public:
  Parameters(ofx::ImageEffect* effect, bool hasAperture);

  Settings At(ofx::Time time) const;

  // Lets those be changed that do something at these settings, and no others.
  void Enable(const Settings& settings) const;

  // Whether such a change makes others do something, or nothing.
  static bool DecidesOthers(const std::string& name);

  // The names of those that an overlay shows.
  static std::vector<const char*> OnTheOverlay(bool hasAperture);

  ofx::ParameterSet* Set() const { return set_; }
  ofx::Parameter* Handle(const char* name) const;

 private:
  double Double(const char* name, ofx::Time time) const;
  int Int(const char* name, ofx::Time time) const;
  void Enable(const char* name, bool enabled) const;

  ofx::ParameterSet* set_ = nullptr;
  bool hasAperture_;
};

}  // namespace lx::openfx
