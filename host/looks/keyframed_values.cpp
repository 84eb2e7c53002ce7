#include "host/looks/keyframed_values.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <utility>

#include "host/looks/units.h"
#include "host/support/failure.h"

namespace glimmerhost {

namespace {

std::string NoEndFor(const std::string& name, const std::string& text, int time) {
  return name + " " + text + ": allowed is a time from the end (" + std::to_string(time) +
         ") where --frames says how many pictures the pipe holds";
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

  void Text(const char* key, const char* option, const std::string& text) {
    const Parameter& parameter = page_.Find(key);
    const std::string name = origin_ + option;
    Put(parameter, name, text, [&](const auto& value) { return parameter.Parse(name, value); });
  }

  void Radius(const char* key, const char* option, const std::string& text, int width) {
    const Parameter& parameter = page_.Find(key);
    const std::string name = origin_ + option;
    Put(parameter, name, text, [&](const auto& value) {
      return parameter.Check(name, value, ParseRadius(name, value, width));
    });
  }

  void Point(const char* option, const std::string& text, int width, int height) {
    const std::string name = origin_ + option;
    const auto put = [&](const char* key, double Fractions::*side) {
      const Parameter& parameter = page_.Find(key);
      Put(parameter, name, text, [&](const auto& value) {
        return parameter.Check(name, value, ParsePoint(name, value, width, height).*side);
      });
    };
    put("PRM_Center_X", &Fractions::x);
    put("PRM_Center_Y", &Fractions::y);
  }

  void Assignment(const std::string& text) {
    const std::string name = origin_ + "set ";
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
      throw UsageError(name + text + ": allowed is KEY=VALUE (PRM_Sides=5)");
    }
    try {
      const Parameter& parameter = page_.Find(text.substr(0, equals));
      const std::string value = text.substr(equals + 1);
      const Parse parse = [&](const auto& one) { return parameter.Parse(parameter.key, one); };
      // An empty value is an option that was not given, but here it was.
      value.empty() ? (void)parse(value) : Put(parameter, parameter.key, value, parse);
    } catch (const UsageError& fault) {
      throw UsageError(name + fault.what());
    }
  }

 private:
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
      throw UsageError(name + " " + text + ": allowed is one keyframe a time; two are at " +
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
    const TypedValues& values = look.values;
    Setter set(page, span_, origin, &tracks_);
    set.Text("PRM_Shape", "shape", values.shape);
    set.Text("PRM_Match", "match", values.match);
    set.Radius("PRM_RadiusX", "radius", values.radius, width);
    set.Radius("PRM_RadiusY", "radius", values.radius, width);
    set.Radius("PRM_RadiusX", "radius-x", values.radiusX, width);
    set.Radius("PRM_RadiusY", "radius-y", values.radiusY, width);
    set.Text("PRM_Sides", "sides", values.sides);
    set.Text("PRM_Rotation", "rotation", values.rotation);
    set.Text("PRM_Emphasis", "emphasis", values.emphasis);
    set.Text("PRM_EmphAlpha", "emph-alpha", values.emphAlpha);
    set.Point("center", values.center, width, height);
    set.Radius("PRM_RadiusPSF1", "radius-psf1", values.radiusPsf1, width);
    set.Radius("PRM_RadiusPSF2", "radius-psf2", values.radiusPsf2, width);
    for (const std::string& assignment : values.set) {
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
