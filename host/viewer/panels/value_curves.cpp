// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/value_curves.h"

#include <algorithm>
#include <cstddef>
#include <variant>

namespace glimmerhost {
namespace {

double NumberOf(const Value& value) {
  return std::visit([](const auto& held) { return static_cast<double>(held); }, value);
}

QString TextOf(const LookDocument& document, const std::string& key, const Value& value,
               RadiusUnit unit) {
  if (key == kMix) {
    return QString::number(NumberOf(value));
  }
  const Parameter& parameter = document.ThePage().Find(key);
  const bool isNumber = std::holds_alternative<double>(value);
  return QString::fromStdString(
      isNumber ? ShownNumber(parameter, unit, document.Picture().width).Short(NumberOf(value))
               : parameter.Show(value));
}

}  // namespace

ValueCurves CurvesOf(const LookDocument& document, const std::string& name,
                     const ShotFrames& frames, RadiusUnit unit, int most) {
  ValueCurves curves;
  const std::vector<std::string> keys = document.Edited().KeysOf(name);
  if (keys.empty()) {
    return curves;
  }
  curves.lines.resize(keys.size());
  const int apart = std::max(1, frames.Count() / std::max(1, most));
  bool isFirst = true;
  for (int frame = frames.First();; frame = frames.Beside(frame, apart)) {
    const FrameValues values = document.AllAt(frame);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const Value& value = values.at(keys[i]);
      const double number = NumberOf(value);
      curves.areSteps = !std::holds_alternative<double>(value);
      curves.lines[i].push_back({static_cast<double>(frame), number});
      if (isFirst || number < curves.lowest) {
        curves.lowest = number;
        curves.lowestText = TextOf(document, keys[i], value, unit);
      }
      if (isFirst || number > curves.highest) {
        curves.highest = number;
        curves.highestText = TextOf(document, keys[i], value, unit);
      }
      isFirst = false;
    }
    if (frame >= frames.Last()) {
      return curves;
    }
  }
}

}  // namespace glimmerhost
