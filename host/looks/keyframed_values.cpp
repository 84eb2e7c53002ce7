// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframed_values.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <utility>

#include "host/looks/keys.h"
#include "host/looks/units.h"
#include "host/support/failure.h"

namespace glimmerhost {

namespace {

std::string NoEndFor(const std::string& name, const std::string& text, int time) {
  return name + " " + text + ": a time from the end (" + std::to_string(time) +
         ") needs --frames, which says how many pictures the pipe holds";
}

}  // namespace

// Puts typed values into tracks. An error calls an option by where it came from and its name:
// "--radius", or "film.toml: radius".
class KeyframedValues::Setter {
 public:
  using Parse = std::function<Value(const std::string& text)>;

  Setter(const Page& page, const ShotSpan& span, std::string origin,
         std::map<std::string, Track>* tracks)
      : page_(page), span_(span), origin_(std::move(origin)), tracks_(*tracks) {}

  // What a look says under the option's name.
  void Option(const PageOption& option, const std::string& text, int width, int height) {
    const std::string name = origin_ + option.name;
    for (const std::string& key : option.keys) {
      const Parameter& parameter = page_.Find(key);
      Put(parameter, name, text,
          [&](const std::string& value) { return ValueOf(parameter, name, value, width, height); });
    }
  }

  void Assignment(const std::string& text) {
    const std::string name = origin_ + "set";
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
      throw MustBe(name, std::string("KEY=VALUE (") + kSidesKey + "=5)", text);
    }
    try {
      const Parameter& parameter = page_.Find(text.substr(0, equals));
      const std::string value = text.substr(equals + 1);
      const Parse parse = [&](const auto& one) { return parameter.Parse(parameter.key, one); };
      // An empty value is an option that was not given, but here it was.
      value.empty() ? (void)parse(value) : Put(parameter, parameter.key, value, parse);
    } catch (const UsageError& fault) {
      throw UsageError(name + ": " + fault.what());
    }
  }

 private:
  static Value ValueOf(const Parameter& parameter, const std::string& name, const std::string& text,
                       int width, int height) {
    switch (parameter.measure) {
      case Measure::kRadius:
        return parameter.ParseRadius(name, text, width);
      case Measure::kX:
        return parameter.Check(name, text, ParsePoint(name, text, width, height).x);
      case Measure::kY:
        return parameter.Check(name, text, ParsePoint(name, text, width, height).y);
      case Measure::kPlain:
        break;
    }
    return parameter.Parse(name, text);
  }

  void Put(const Parameter& parameter, const std::string& name, const std::string& text,
           const Parse& parse) {
    if (text.empty()) {
      return;
    }
    Track track{parameter, {}};
    if (!HasKeyframes(text)) {
      track.values.push_back({0, Course::kHeld, parse(text)});
    } else {
      for (const KeyframeText& key : ParseKeyframes(name, text)) {
        if (key.time < 0 && span_.isOpen) {
          throw UsageError(NoEndFor(name, text, key.time));
        }
        track.values.push_back({FromStart(key.time), key.course, parse(key.value)});
      }
      Order(name, text, &track.values);
    }
    tracks_[parameter.key] = std::move(track);
  }

  int FromStart(int time) const {
    const std::int64_t length = std::int64_t{span_.highest} - span_.lowest + 1;
    return static_cast<int>(time < 0 ? std::max(length + time, -length) : time);
  }

  static void Order(const std::string& name, const std::string& text,
                    std::vector<TimedValue>* values) {
    std::sort(values->begin(), values->end(),
              [](const TimedValue& a, const TimedValue& b) { return a.time < b.time; });
    const auto twin = std::adjacent_find(
        values->begin(), values->end(),
        [](const TimedValue& a, const TimedValue& b) { return a.time == b.time; });
    if (twin != values->end()) {
      throw UsageError(name + " " + text + ": two keyframes are at the time " +
                       std::to_string(twin->time));
    }
  }

  const Page& page_;
  const ShotSpan& span_;
  std::string origin_;
  std::map<std::string, Track>& tracks_;
};

KeyframedValues::KeyframedValues(const Page& page, const std::vector<LookLayer>& layers, int width,
                                 int height, const ShotSpan& span)
    : span_(span) {
  for (const Parameter& parameter : page.Parameters()) {
    tracks_[parameter.key] = {parameter, {{0, Course::kHeld, parameter.initial}}};
  }
  for (const auto& [origin, look] : layers) {
    Setter set(page, span_, origin, &tracks_);
    for (const PageOption& option : page.Options()) {
      set.Option(option, look.At(option.name), width, height);
    }
    for (const std::string& assignment : look.set) {
      set.Assignment(assignment);
    }
  }
}

std::map<std::string, Value> KeyframedValues::At(int frame) const {
  std::map<std::string, Value> values;
  for (const auto& [key, track] : tracks_) {
    values[key] = track.At(frame - span_.lowest);
  }
  return values;
}

bool KeyframedValues::IsAnimated() const {
  return std::any_of(tracks_.begin(), tracks_.end(),
                     [](const auto& track) { return track.second.values.size() > 1; });
}

// Numbers run; entries of a list and switches have nothing between them. A smooth course may
// lead out of what the page allows, and then stays at its end.
Value KeyframedValues::Track::At(int time) const {
  if (!std::holds_alternative<double>(values.front().value)) {
    const auto after =
        std::upper_bound(values.begin(), values.end(), time,
                         [](int t, const TimedValue& value) { return t < value.time; });
    return after == values.begin() ? values.front().value : std::prev(after)->value;
  }
  std::vector<Keyframe> keys;
  for (const TimedValue& value : values) {
    keys.push_back({value.time, value.course, std::get<double>(value.value)});
  }
  const double number =
      std::clamp(ValueAt(keys, time), parameter.typedLowest, parameter.typedHighest);
  return parameter.kind == Kind::kWhole ? std::round(number) : number;
}

}  // namespace glimmerhost
