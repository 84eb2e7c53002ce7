// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframes.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n");
  return first == std::string_view::npos
             ? std::string_view()
             : text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

// TIME=VALUE, TIME~=VALUE or TIME|=VALUE. False for anything else.
bool ParseOne(std::string_view text, KeyframeText* key) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) {
    return false;
  }
  std::string_view time = text.substr(0, equals);
  key->course = time.back() == '~'   ? Course::kSmooth
                : time.back() == '|' ? Course::kHeld
                                     : Course::kLinear;
  if (key->course != Course::kLinear) {
    time.remove_suffix(1);
  }
  time = Trimmed(time);
  const auto [end, error] = std::from_chars(time.data(), time.data() + time.size(), key->time);
  key->value = Trimmed(text.substr(equals + 1));
  return error == std::errc() && end == time.data() + time.size() && !key->value.empty() &&
         key->value.find('=') == std::string::npos;
}

// Not as whole numbers: between the largest and one before the start they have no room.
double Length(int from, int to) { return static_cast<double>(to) - static_cast<double>(from); }

double Slope(const Keyframe& from, const Keyframe& to) {
  return (to.value - from.value) / Length(from.time, to.time);
}

// The cubic between two keyframes whose slope at each is that of the line between its
// neighbours (Catmull and Rom 1974); at either end of the list, the segment's own.
double Smooth(const std::vector<Keyframe>& keys, std::size_t segment, double part) {
  const Keyframe& from = keys[segment];
  const Keyframe& to = keys[segment + 1];
  const double length = Length(from.time, to.time);
  const double first = Slope(segment > 0 ? keys[segment - 1] : from, to) * length;
  const double second = Slope(from, segment + 2 < keys.size() ? keys[segment + 2] : to) * length;
  const double square = part * part;
  const double cube = square * part;
  return (2.0 * cube - 3.0 * square + 1.0) * from.value + (cube - 2.0 * square + part) * first +
         (3.0 * square - 2.0 * cube) * to.value + (cube - square) * second;
}

}  // namespace

bool HasKeyframes(const std::string& text) { return text.find('=') != std::string::npos; }

std::vector<KeyframeText> ParseKeyframes(const std::string& name, const std::string& text) {
  std::vector<KeyframeText> keys;
  std::string_view rest = text;
  while (!Trimmed(rest).empty()) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    KeyframeText key;
    if (!ParseOne(Trimmed(rest.substr(0, end)), &key)) {
      std::string what = name;
      what.append(" ").append(text).append(
          ": must be a value, or keyframes TIME=VALUE; TIME~=VALUE; TIME|=VALUE "
          "(0=50; 24~=60; -1=220)");
      throw UsageError(what);
    }
    keys.push_back(key);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return keys;
}

double ValueAt(const std::vector<Keyframe>& keys, int time) {
  const auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                      [](int t, const Keyframe& key) { return t < key.time; });
  if (after == keys.begin() || after == keys.end()) {
    return after == keys.begin() ? keys.front().value : keys.back().value;
  }
  const Keyframe& from = *(after - 1);
  const double part = Length(from.time, time) / Length(from.time, after->time);
  switch (from.course) {
    case Course::kHeld:
      return from.value;
    case Course::kLinear:
      return from.value + (after->value - from.value) * part;
    case Course::kSmooth:
      break;
  }
  return Smooth(keys, static_cast<std::size_t>(after - 1 - keys.begin()), part);
}

}  // namespace glimmerhost
