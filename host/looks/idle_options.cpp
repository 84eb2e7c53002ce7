// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/idle_options.h"

#include <algorithm>
#include <variant>

#include "host/looks/keyframes.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// What the layers say of the shape; empty for the default.
std::string ShapeText(const Page& page, const std::vector<LookLayer>& layers) {
  const Look look = MergeLayers(page, layers);
  const std::string before = std::string(kShapeKey) + "=";
  for (const std::string& assignment : look.set) {
    if (assignment.starts_with(before)) {
      return assignment.substr(before.size());
    }
  }
  const PageOption* const option = page.OptionOf(kShapeKey);
  return option == nullptr ? "" : look.At(option->name);
}

Shape ParseShape(const Parameter& parameter, const std::string& text) {
  return static_cast<Shape>(std::get<int>(parameter.Parse(parameter.key, text)));
}

std::vector<Shape> ParseShapes(const Parameter& parameter, const std::string& text) {
  if (text.empty()) {
    return {static_cast<Shape>(std::get<int>(parameter.initial))};
  }
  if (!HasKeyframes(text)) {
    return {ParseShape(parameter, text)};
  }
  std::vector<Shape> shapes;
  for (const KeyframeText& key : ParseKeyframes(parameter.key, text)) {
    shapes.push_back(ParseShape(parameter, key.value));
  }
  std::sort(shapes.begin(), shapes.end());
  shapes.erase(std::unique(shapes.begin(), shapes.end()), shapes.end());
  return shapes;
}

bool IsIdle(const Condition& shown, const std::vector<Shape>& shapes) {
  return std::none_of(shapes.begin(), shapes.end(), [&](Shape shape) {
    return shown.Holds({{ShapeSwitch(shape), true}});
  });
}

}  // namespace

std::vector<Shape> ShapesOf(const Page& page, const std::vector<LookLayer>& layers) {
  try {
    return ParseShapes(page.Find(kShapeKey), ShapeText(page, layers));
  } catch (const UsageError&) {
    return {Shape::kCircle, Shape::kEllipse, Shape::kPolygon, Shape::kImage};
  }
}

std::vector<std::string> IdleOptions(const Page& page, const std::vector<LookLayer>& layers) {
  const std::vector<Shape> shapes = ShapesOf(page, layers);
  const Parameter& shape = page.Find(kShapeKey);
  std::vector<std::string> names;
  names.reserve(shapes.size());
  for (const Shape one : shapes) {
    names.push_back(shape.Show(static_cast<int>(one)));
  }
  const std::string ending = " has no effect with the shape " + JoinOr(names);
  const auto& [origin, typed] = layers.back();
  std::vector<std::string> lines;
  for (const PageOption& option : page.Options()) {
    if (!typed.At(option.name).empty() && IsIdle(option.shown, shapes)) {
      lines.push_back(std::string(origin).append(option.name).append(ending));
    }
  }
  for (const Parameter& parameter : page.Parameters()) {
    const std::string before = std::string(parameter.key).append("=");
    const auto sets = [&](const std::string& text) { return text.starts_with(before); };
    if (std::any_of(typed.set.begin(), typed.set.end(), sets) && IsIdle(parameter.shown, shapes)) {
      lines.push_back(std::string(origin).append("set ").append(parameter.key).append(ending));
    }
  }
  return lines;
}

}  // namespace glimmerhost
