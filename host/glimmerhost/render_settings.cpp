#include "host/glimmerhost/render_settings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "host/glimmerhost/measures.h"
#include "host/glimmerhost/parameter_file.h"
#include "host/glimmerhost/text.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

using Values = std::map<std::string, Value>;

// The longest side of the effect's padded grid, in pixels.
constexpr double kLargestGrid = 8192.0;

// Puts typed values into the store's. An error calls an option by where it came from and its
// name: "--radius", or "film.toml: radius".
class Setter {
 public:
  Setter(const Page& page, std::string origin, Values* values)
      : page_(page), origin_(std::move(origin)), values_(*values) {}

  void Text(const char* key, const char* option, const std::string& text) {
    if (!text.empty()) {
      values_[key] = page_.Find(key).Parse(origin_ + option, text);
    }
  }

  void Radius(const char* key, const char* option, const std::string& text, int width) {
    if (!text.empty()) {
      const std::string name = origin_ + option;
      values_[key] = page_.Find(key).Check(name, text, ParseRadius(name, text, width));
    }
  }

  void Point(const char* option, const std::string& text, int width, int height) {
    if (!text.empty()) {
      const std::string name = origin_ + option;
      const Fractions point = ParsePoint(name, text, width, height);
      values_["PRM_Center_X"] = page_.Find("PRM_Center_X").Check(name, text, point.x);
      values_["PRM_Center_Y"] = page_.Find("PRM_Center_Y").Check(name, text, point.y);
    }
  }

  void Switch(const char* key, bool on) {
    if (on) {
      values_[key] = true;
    }
  }

  void Assignment(const std::string& text) {
    const std::string name = origin_ + "set ";
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
      throw UsageError(name + text + ": allowed is KEY=VALUE (PRM_Sides=5)");
    }
    try {
      const Parameter& parameter = page_.Find(text.substr(0, equals));
      values_[parameter.key] = parameter.Parse(parameter.key, text.substr(equals + 1));
    } catch (const UsageError& fault) {
      throw UsageError(name + fault.what());
    }
  }

 private:
  const Page& page_;
  std::string origin_;
  Values& values_;
};

void Apply(const TypedValues& typed, int width, int height, Setter set) {
  set.Text("PRM_Shape", "shape", typed.shape);
  set.Switch("PRM_Match", typed.match);
  set.Radius("PRM_RadiusX", "radius", typed.radius, width);
  set.Radius("PRM_RadiusY", "radius", typed.radius, width);
  set.Radius("PRM_RadiusX", "radius-x", typed.radiusX, width);
  set.Radius("PRM_RadiusY", "radius-y", typed.radiusY, width);
  set.Text("PRM_Sides", "sides", typed.sides);
  set.Text("PRM_Rotation", "rotation", typed.rotation);
  set.Text("PRM_Emphasis", "emphasis", typed.emphasis);
  set.Switch("PRM_EmphAlpha", typed.emphAlpha);
  set.Point("center", typed.center, width, height);
  set.Radius("PRM_RadiusPSF1", "radius-psf1", typed.radiusPsf1, width);
  set.Radius("PRM_RadiusPSF2", "radius-psf2", typed.radiusPsf2, width);
  for (const std::string& assignment : typed.set) {
    set.Assignment(assignment);
  }
}

double Number(const Values& values, const char* key) { return std::get<double>(values.at(key)); }

// How far the aperture reaches from its centre, in pixels, as the effect counts it.
double ApertureRadius(const Values& values, int width) {
  constexpr int kCircle = 0;
  constexpr int kPolygon = 2;
  constexpr int kImage = 3;
  const int shape = std::get<int>(values.at("PRM_Shape"));
  const auto pixels = [&](const char* key) { return Number(values, key) * width * 0.5; };
  if (shape == kImage) {
    const double first = pixels("PRM_RadiusPSF1");
    const double second = pixels("PRM_RadiusPSF2");
    // The soft edge is at least a pixel wide.
    return std::max(std::max(first, second), std::min(first, second) + 1.0);
  }
  const bool xOnly =
      shape == kCircle || (shape == kPolygon && std::get<bool>(values.at("PRM_Match")));
  const double x = pixels("PRM_RadiusX");
  return std::max({x, xOnly ? x : pixels("PRM_RadiusY"), 0.5});
}

}  // namespace

Values MakeStoreValues(const Page& page, const TypedValues& typed, int width, int height) {
  Values values = page.Defaults();
  if (!typed.file.empty()) {
    Apply(ReadParameterFile(typed.file), width, height, Setter(page, typed.file + ": ", &values));
  }
  Apply(typed, width, height, Setter(page, "--", &values));
  return values;
}

void CheckGrid(const Values& values, int width, int height) {
  const double radius = ApertureRadius(values, width);
  const double margin = std::ceil(radius) + 1.0;
  if (std::max(width, height) + 2.0 * margin > kLargestGrid) {
    throw Failure("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                  " with a radius of " + Shortest(std::round(radius * 10.0) / 10.0) +
                  " pixels is too large: the longer side and twice the radius, rounded up and "
                  "one more, may come to 8192 pixels at most");
  }
}

}  // namespace glimmerhost
