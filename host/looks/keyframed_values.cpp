// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframed_values.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

#include "host/looks/keys.h"
#include "host/looks/units.h"
#include "host/support/failure.h"

namespace glimmerhost {

namespace {

// Not one of the page's: the program mixes, and the effect knows nothing of it.
Parameter MixParameter() {
  Parameter mix;
  mix.key = kMix;
  mix.initial = 1.0;
  mix.highest = 1.0;
  mix.typedHighest = 1.0;
  return mix;
}

}  // namespace

// Puts typed values into tracks. An error calls an option by where it came from and its name:
// "--radius", or "film.toml: radius".
class KeyframedValues::Setter {
 public:
  using Parse = std::function<Value(const std::string& text)>;

  Setter(const Page& page, std::string origin, std::map<std::string, Track>* tracks)
      : page_(page), origin_(std::move(origin)), tracks_(*tracks) {}

  // A value that the store does not have.
  void Beside(const std::string& text, Track* track) {
    const Parameter parameter = track->parameter;
    const std::string name = origin_ + parameter.key;
    if (!text.empty()) {
      *track = TrackOf(parameter, name, "", text,
                       [&](const std::string& value) { return parameter.Parse(name, value); });
    }
  }

  // What a look says under the option's name.
  void Option(const PageOption& option, const std::string& text, int width, int height) {
    const std::string name = origin_ + option.name;
    for (const std::string& key : option.keys) {
      const Parameter& parameter = page_.Find(key);
      Put(parameter, name, "", text,
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
      value.empty() ? (void)parse(value) : Put(parameter, parameter.key, name + ": ", value, parse);
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

  //   before  what stands before the name where nobody else puts it there
  void Put(const Parameter& parameter, const std::string& name, const std::string& before,
           const std::string& text, const Parse& parse) {
    if (!text.empty()) {
      tracks_[parameter.key] = TrackOf(parameter, name, before, text, parse);
    }
  }

  static Track TrackOf(const Parameter& parameter, const std::string& name,
                       const std::string& before, const std::string& text, const Parse& parse) {
    Track track{parameter, {}, {}, before + name, text};
    if (!HasKeyframes(text)) {
      track.values.push_back({0.0, Course::kHeld, parse(text)});
    } else {
      for (const KeyframeText& key : ParseKeyframes(name, text)) {
        track.values.push_back({0.0, key.course, parse(key.value)});
        track.written.push_back(key.time);
      }
    }
    return track;
  }

  const Page& page_;
  std::string origin_;
  std::map<std::string, Track>& tracks_;
};

KeyframedValues::KeyframedValues(const Page& page, const std::vector<LookLayer>& layers, int width,
                                 int height, const ShotSpan& span)
    : width_(width), height_(height), mix_{MixParameter(), {{0.0, Course::kHeld, 1.0}}} {
  for (const Parameter& parameter : page.Parameters()) {
    tracks_[parameter.key] = {parameter, {{0.0, Course::kHeld, parameter.initial}}};
  }
  for (const auto& [origin, look] : layers) {
    Setter set(page, origin, &tracks_);
    for (const PageOption& option : page.Options()) {
      set.Option(option, look.At(option.name), width, height);
    }
    for (const std::string& assignment : look.set) {
      set.Assignment(assignment);
    }
    set.Beside(look.At(kMix), &mix_);
  }
  for (auto& [key, track] : tracks_) {
    track.Settle(span);
  }
  mix_.Settle(span);
}

std::map<std::string, Value> KeyframedValues::At(int frame) const {
  std::map<std::string, Value> values;
  for (const auto& [key, track] : tracks_) {
    values[key] = track.At(frame);
  }
  return values;
}

std::map<std::string, Value> KeyframedValues::AtGrown(int frame, int by) const {
  std::map<std::string, Value> values = At(frame);
  if (by == 0) {
    return values;  // not to be rounded on the way there and back
  }
  const double width = width_ + 2.0 * by;
  const double height = height_ + 2.0 * by;
  for (const auto& [key, track] : tracks_) {
    switch (track.parameter.measure) {
      case Measure::kRadius:
        values[key] = std::get<double>(values[key]) * width_ / width;
        break;
      case Measure::kX:
        values[key] = (std::get<double>(values[key]) * width_ + by) / width;
        break;
      case Measure::kY:
        values[key] = (std::get<double>(values[key]) * height_ + by) / height;
        break;
      case Measure::kPlain:
        break;
    }
  }
  return values;
}

double KeyframedValues::MixAt(int frame) const { return std::get<double>(mix_.At(frame)); }

bool KeyframedValues::IsAnimated() const {
  return mix_.values.size() > 1 ||
         std::any_of(tracks_.begin(), tracks_.end(),
                     [](const auto& track) { return track.second.values.size() > 1; });
}

void KeyframedValues::Track::Settle(const ShotSpan& span) {
  if (written.empty()) {
    return;
  }
  std::map<double, TimedValue> byTime;
  for (std::size_t i = 0; i < written.size(); ++i) {
    values[i].time = FrameOf(written[i], span, name, text);
    byTime.insert_or_assign(values[i].time, values[i]);
  }
  values.clear();
  for (const auto& [time, value] : byTime) {
    values.push_back(value);
  }
}

// Numbers run; entries of a list and switches have nothing between them. What is typed may be more
// than the page allows, and then stays at its end.
Value KeyframedValues::Track::At(double time) const {
  if (!std::holds_alternative<double>(values.front().value)) {
    const auto after =
        std::upper_bound(values.begin(), values.end(), time,
                         [](double t, const TimedValue& value) { return t < value.time; });
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

std::map<std::string, Value> StillValues(const Page& page, const std::vector<LookLayer>& layers,
                                         int width, int height) {
  const std::string shot = MergeLayers(page, layers).At(kShot);
  const ShotSpan span = shot.empty() ? ShotSpan{1, 1} : ParseShotSpan(kShot, shot);
  return KeyframedValues(page, layers, width, height, span).At(*span.first);
}

}  // namespace glimmerhost
