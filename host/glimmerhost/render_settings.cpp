#include "host/glimmerhost/render_settings.h"

#include <algorithm>
#include <cmath>

#include "host/glimmerhost/text.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

using Values = std::map<std::string, Value>;

// The longest side of the effect's padded grid, in pixels.
constexpr double kLargestGrid = 8192.0;

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
