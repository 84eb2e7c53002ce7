// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/parameter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/looks/units.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

[[noreturn]] void Refuse(const Parameter& parameter, const std::string& name,
                         const std::string& text) {
  throw MustBe(name, parameter.Allowed(), text);
}

}  // namespace

bool Condition::Holds(const std::map<std::string, Value>& values) const {
  const auto isOn = [&values](const std::string& key) {
    const auto found = values.find(key);
    return found != values.end() && found->second == Value(true);
  };
  return groups.empty() || std::any_of(groups.begin(), groups.end(), [&](const auto& keys) {
           return std::all_of(keys.begin(), keys.end(), isOn);
         });
}

std::string Parameter::Allowed() const {
  switch (kind) {
    case Kind::kList:
      return JoinOr(entries) + " (in the store 0 to " + std::to_string(entries.size() - 1) + ")";
    case Kind::kSwitch:
      return "on or off";
    case Kind::kWhole:
    case Kind::kNumber:
      break;
  }
  const std::string what = kind == Kind::kWhole ? "a whole number" : "a number";
  const bool wider = typedLowest < lowest || typedHighest > highest;
  return what + " from " + Shortest(typedLowest) + " to " + Shortest(typedHighest) +
         (wider ? " (the page offers " + Shortest(lowest) + " to " + Shortest(highest) + ")" : "");
}

std::string Parameter::Offered() const {
  switch (kind) {
    case Kind::kList:
      return JoinOr(entries);
    case Kind::kSwitch:
      return "on or off";
    case Kind::kWhole:
    case Kind::kNumber:
      break;
  }
  return Shortest(lowest) + " to " + Shortest(highest);
}

Value Parameter::Parse(const std::string& name, const std::string& text) const {
  if (kind == Kind::kSwitch) {
    for (const char* on : {"on", "true", "1"}) {
      if (text == on) {
        return true;
      }
    }
    for (const char* off : {"off", "false", "0"}) {
      if (text == off) {
        return false;
      }
    }
    Refuse(*this, name, text);
  }
  if (kind == Kind::kList) {
    const auto entry = std::find(entries.begin(), entries.end(), text);
    if (entry != entries.end()) {
      return Check(name, text, static_cast<double>(entry - entries.begin()));
    }
  }
  double number = 0.0;
  if (!ParseNumber(text, &number)) {
    Refuse(*this, name, text);
  }
  return Check(name, text, number);
}

Value Parameter::ParseRadius(const std::string& name, const std::string& text, int width) const {
  const TypedRadius radius = glimmerhost::ParseRadius(name, text, width);
  if (!Allows(radius.part)) {
    throw MustBe(name,
                 "between " + Shortest(typedLowest) + " and " +
                     ShowRadius({typedHighest, radius.unit}, width),
                 text);
  }
  return radius.part;
}

bool Parameter::Allows(double number) const {
  const bool whole = number == std::floor(number);
  switch (kind) {
    case Kind::kList:
      return whole && number >= 0.0 && number < static_cast<double>(entries.size());
    case Kind::kSwitch:
      return false;
    case Kind::kWhole:
    case Kind::kNumber:
      break;
  }
  return (kind == Kind::kNumber || whole) && number >= typedLowest && number <= typedHighest;
}

Value Parameter::Check(const std::string& name, const std::string& text, double number) const {
  if (!Allows(number)) {
    Refuse(*this, name, text);
  }
  return kind == Kind::kList ? Value(static_cast<int>(number)) : Value(number);
}

std::string Parameter::Show(const Value& value) const {
  if (const int* index = std::get_if<int>(&value)) {
    const auto entry = static_cast<std::size_t>(*index);
    return entry < entries.size() ? entries[entry] : std::to_string(*index);
  }
  if (const bool* on = std::get_if<bool>(&value)) {
    return *on ? "on" : "off";
  }
  return Shortest(std::get<double>(value));
}

}  // namespace glimmerhost
