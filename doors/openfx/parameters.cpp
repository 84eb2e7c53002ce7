// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/parameters.h"

#include <initializer_list>

#include "doors/library/glimmerblur.h"

namespace lx::openfx {
namespace {

constexpr char kShape[] = "shape";
constexpr char kMatch[] = "matchRadii";
constexpr char kSides[] = "sides";
constexpr char kRotation[] = "rotation";
constexpr char kEmphasis[] = "emphasis";
constexpr char kBlurAlpha[] = "blurAlpha";
constexpr char kEmphasisAlpha[] = "emphasisAlpha";
constexpr char kEdge[] = "edge";
constexpr char kCentred[] = "centred";
constexpr char kApertureGroup[] = "aperture";
constexpr char kApertureWhole[] = "apertureWhole";
constexpr char kPage[] = "controls";

constexpr double kMostRadius = 16000.0;
constexpr double kShownRadius = 200.0;

// Defines parameters one after another, and puts them on the page in that order.
class Maker {
 public:
  explicit Maker(ofx::ParameterSet* set) : set_(set), page_(Define(ofx::kParamTypePage, kPage)) {
    page_.Offer(ofx::kPropLabel, "Controls");
  }

  void Choice(const char* name, const char* label, const char* hint,
              std::initializer_list<const char*> options) {
    const Properties made = Add(ofx::kParamTypeChoice, name, label, hint);
    int index = 0;
    for (const char* option : options) {
      made.Set(ofx::kParamPropChoiceOption, option, index++);
    }
    made.Set(ofx::kParamPropDefault, 0);
  }

  void Switch(const char* name, const char* label, const char* hint, bool initial) {
    const Properties made = Add(ofx::kParamTypeBoolean, name, label, hint);
    made.Set(ofx::kParamPropDefault, initial ? 1 : 0);
  }

  void Integer(const char* name, const char* label, const char* hint, int least, int most,
               int shown, int initial) {
    const Properties made = Add(ofx::kParamTypeInteger, name, label, hint);
    made.Set(ofx::kParamPropDefault, initial);
    made.Set(ofx::kParamPropMin, least);
    made.Set(ofx::kParamPropMax, most);
    made.Offer(ofx::kParamPropDisplayMin, least);
    made.Offer(ofx::kParamPropDisplayMax, shown);
  }

  // type  what the number measures, such as a length along X
  struct Range {
    double least, most, shownLeast, shownMost, initial, step;
    int digits;
  };
  void Number(const char* name, const char* label, const char* hint, const char* type,
              const Range& range, int dimensions = 1) {
    const Properties made =
        Add(dimensions == 1 ? ofx::kParamTypeDouble : ofx::kParamTypeDouble2D, name, label, hint);
    made.Offer(ofx::kParamPropDoubleType, type);
    for (int i = 0; i < dimensions; ++i) {
      made.Set(ofx::kParamPropDefault, range.initial, i);
      made.Set(ofx::kParamPropMin, range.least, i);
      made.Set(ofx::kParamPropMax, range.most, i);
      made.Offer(ofx::kParamPropDisplayMin, range.shownLeast, i);
      made.Offer(ofx::kParamPropDisplayMax, range.shownMost, i);
    }
    made.Offer(ofx::kParamPropIncrement, range.step);
    made.Offer(ofx::kParamPropDigits, range.digits);
  }

  // What follows stands in it.
  void Group(const char* name, const char* label, const char* hint) {
    const Properties made = Define(ofx::kParamTypeGroup, name);
    made.Set(ofx::kPropLabel, label);
    made.Offer(ofx::kParamPropHint, hint);
    Show(name);
    group_ = name;
  }

 private:
  Properties Define(const char* type, const char* name) {
    ofx::PropertySet* made = nullptr;
    Check(HostSuites().parameters->paramDefine(set_, type, name, &made));
    return Properties(made);
  }

  Properties Add(const char* type, const char* name, const char* label, const char* hint) {
    const Properties made = Define(type, name);
    made.Set(ofx::kPropLabel, label);
    made.Offer(ofx::kParamPropScriptName, name);
    made.Offer(ofx::kParamPropHint, hint);
    if (group_ != nullptr) {
      made.Offer(ofx::kParamPropParent, group_);
    } else {
      Show(name);
    }
    return made;
  }

  void Show(const char* name) { page_.Offer(ofx::kParamPropPageChild, name, shown_++); }

  ofx::ParameterSet* set_;
  Properties page_;
  const char* group_ = nullptr;
  int shown_ = 0;
};

void DefineAperture(Maker* maker, bool hasAperture) {
  constexpr char kHint[] = "What a point of the picture spreads over.";
  if (hasAperture) {
    maker->Choice(kShape, "Shape", kHint, {"Circle", "Ellipse", "Polygon", "Picture"});
  } else {
    maker->Choice(kShape, "Shape", kHint, {"Circle", "Ellipse", "Polygon"});
  }
  const Maker::Range radius{0.0, kMostRadius, 0.0, kShownRadius, 10.0, 0.1, 2};
  maker->Number(kRadiusX, "Radius X",
                "Half the width of the aperture, in pixels of the picture at full size. Up to half "
                "a pixel leaves a picture as it is.",
                ofx::kParamDoubleTypeX, radius);
  maker->Number(kRadiusY, "Radius Y", "Half the height of an ellipse or a polygon, in pixels.",
                ofx::kParamDoubleTypeY, radius);
  maker->Switch(kMatch, "Match radii", "The Y radius of a polygon follows its X radius.", true);
  maker->Integer(kSides, "Sides", "How many sides a polygon has.", 3, 50, 12, 6);
  maker->Number(kRotation, "Rotation",
                "How far an ellipse or a polygon is turned, in degrees anticlockwise.",
                ofx::kParamDoubleTypeAngle, {-36000.0, 36000.0, -180.0, 180.0, 0.0, 1.0, 1});
}

void DefineLight(Maker* maker) {
  maker->Number(kEmphasis, "Emphasis",
                "Lets highlights outweigh the rest, as they do on film. Up to 1 there is none.",
                ofx::kParamDoubleTypePlain, {0.0, 500.0, 1.0, 50.0, 1.0, 0.5, 1});
  maker->Switch(kBlurAlpha, "Blur alpha", "Off: alpha stays as it is.", true);
  maker->Switch(kEmphasisAlpha, "Emphasise alpha",
                "Treats alpha as the colours are treated, once it is blurred.", false);
  maker->Choice(kEdge, "Edge", "What lies around the picture.",
                {"Repeat the edge", "Black and transparent"});
  maker->Switch(
      kCentred, "Centred",
      "On: the aperture stands exactly on its pixel. Off: it stands where the GlimmerBlur "
      "module has it, half a pixel off.",
      true);
}

void DefineCut(Maker* maker) {
  maker->Group(kApertureGroup, "Aperture picture",
               "Which part of the picture at the input Aperture is the aperture.");
  maker->Switch(kApertureWhole, "Whole picture", "Off: a disc with a soft edge is cut out.", true);
  maker->Number(kApertureCentre, "Centre", "Of the disc, from the middle of the aperture picture.",
                ofx::kParamDoubleTypeXY, {-kMostRadius, kMostRadius, -1000.0, 1000.0, 0.0, 1.0, 1},
                2);
  const Maker::Range radius{0.0, kMostRadius, 0.0, kShownRadius, 0.0, 0.1, 2};
  Maker::Range inner = radius;
  inner.initial = 20.0;
  maker->Number(kApertureInner, "Inner radius", "Up to here the picture counts fully.",
                ofx::kParamDoubleTypeX, inner);
  Maker::Range outer = radius;
  outer.initial = 30.0;
  maker->Number(kApertureOuter, "Outer radius", "From here on the picture does not count.",
                ofx::kParamDoubleTypeX, outer);
}

}  // namespace

void DefineParameters(ofx::ParameterSet* set, bool hasAperture) {
  Maker maker(set);
  DefineAperture(&maker, hasAperture);
  DefineLight(&maker);
  if (hasAperture) {
    DefineCut(&maker);
  }
}

Parameters::Parameters(ofx::ImageEffect* effect, bool hasAperture) : hasAperture_(hasAperture) {
  Check(HostSuites().effects->getParamSet(effect, &set_));
}

ofx::Parameter* Parameters::Handle(const char* name) const {
  ofx::Parameter* parameter = nullptr;
  Check(HostSuites().parameters->paramGetHandle(set_, name, &parameter, nullptr));
  return parameter;
}

double Parameters::Double(const char* name, ofx::Time time) const {
  double value = 0.0;
  Check(HostSuites().parameters->paramGetValueAtTime(Handle(name), time, &value));
  return value;
}

int Parameters::Int(const char* name, ofx::Time time) const {
  int value = 0;
  Check(HostSuites().parameters->paramGetValueAtTime(Handle(name), time, &value));
  return value;
}

Settings Parameters::At(ofx::Time time) const {
  Settings settings;
  settings.shape = Int(kShape, time);
  settings.radiusX = Double(kRadiusX, time);
  settings.radiusY = Double(kRadiusY, time);
  settings.matchRadii = Int(kMatch, time) != 0;
  settings.sides = Int(kSides, time);
  settings.rotation = Double(kRotation, time);
  settings.emphasis = Double(kEmphasis, time);
  settings.blurAlpha = Int(kBlurAlpha, time) != 0;
  settings.emphasisAlpha = Int(kEmphasisAlpha, time) != 0;
  settings.edge = Int(kEdge, time);
  settings.centred = Int(kCentred, time) != 0;
  if (hasAperture_) {
    settings.wholePicture = Int(kApertureWhole, time) != 0;
    Check(HostSuites().parameters->paramGetValueAtTime(Handle(kApertureCentre), time,
                                                       &settings.centre.x, &settings.centre.y));
    settings.innerRadius = Double(kApertureInner, time);
    settings.outerRadius = Double(kApertureOuter, time);
  }
  return settings;
}

void Parameters::Enable(const Settings& settings) const {
  const bool picture = settings.shape == GLIMMERBLUR_PICTURE;
  const bool polygon = settings.shape == GLIMMERBLUR_POLYGON;
  const bool turns = polygon || settings.shape == GLIMMERBLUR_ELLIPSE;
  Enable(kRadiusX, !picture);
  Enable(kRadiusY, turns && !(polygon && settings.matchRadii));
  Enable(kMatch, polygon);
  Enable(kSides, polygon);
  Enable(kRotation, turns);
  Enable(kCentred, !picture);
  Enable(kEmphasisAlpha, settings.blurAlpha);
  if (hasAperture_) {
    Enable(kApertureWhole, picture);
    for (const char* name : {kApertureCentre, kApertureInner, kApertureOuter}) {
      Enable(name, picture && !settings.wholePicture);
    }
  }
}

void Parameters::Enable(const char* name, bool enabled) const {
  ofx::PropertySet* properties = nullptr;
  Check(HostSuites().parameters->paramGetPropertySet(Handle(name), &properties));
  Properties(properties).Offer(ofx::kParamPropEnabled, enabled ? 1 : 0);
}

bool Parameters::DecidesOthers(const std::string& name) {
  return name == kShape || name == kMatch || name == kBlurAlpha || name == kApertureWhole;
}

std::vector<const char*> Parameters::OnTheOverlay(bool hasAperture) {
  std::vector<const char*> names{kShape, kRadiusX, kRadiusY, kMatch, kSides, kRotation};
  if (hasAperture) {
    names.insert(names.end(), {kApertureWhole, kApertureCentre, kApertureInner, kApertureOuter});
  }
  return names;
}

}  // namespace lx::openfx
