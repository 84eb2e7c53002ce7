// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframes.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

constexpr const char* kTimes = "a frame (1001), first, last, first+12, last-12 or a part (25%)";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n");
  return first == std::string_view::npos
             ? std::string_view()
             : text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

bool ParseWhole(std::string_view text, double* number) {
  int whole = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), whole);
  *number = whole;
  return error == std::errc() && end == text.data() + text.size();
}

// What stands behind a word: nothing, or a sign and a number of frames.
bool ParseDistance(std::string_view text, double* number) {
  text = Trimmed(text);
  if (text.empty()) {
    *number = 0.0;
    return true;
  }
  const char sign = text.front();
  text = Trimmed(text.substr(1));
  const bool isWhole = (sign == '+' || sign == '-') && !text.empty() && text.front() != '-' &&
                       ParseWhole(text, number);
  *number = sign == '-' ? -*number : *number;
  return isWhole;
}

// The ends are written as such, so that one time has one form.
bool ParsePart(std::string_view text, KeyframeTime* time) {
  if (!ParseNumber(Trimmed(text), &time->number) || time->number < 0.0 || time->number > 100.0) {
    return false;
  }
  time->from = KeyframeTime::From::kPart;
  if (time->number == 0.0 || time->number == 100.0) {
    time->from = time->number == 0.0 ? KeyframeTime::From::kFirst : KeyframeTime::From::kLast;
    time->number = 0.0;
  }
  return true;
}

bool ParseTime(std::string_view text, KeyframeTime* time) {
  constexpr std::string_view kFirstWord = "first";
  constexpr std::string_view kLastWord = "last";
  time->text = text;
  if (text.starts_with(kFirstWord)) {
    time->from = KeyframeTime::From::kFirst;
    return ParseDistance(text.substr(kFirstWord.size()), &time->number);
  }
  if (text.starts_with(kLastWord)) {
    time->from = KeyframeTime::From::kLast;
    return ParseDistance(text.substr(kLastWord.size()), &time->number);
  }
  if (text.ends_with('%')) {
    return ParsePart(text.substr(0, text.size() - 1), time);
  }
  return ParseWhole(text, &time->number);
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
  key->value = Trimmed(text.substr(equals + 1));
  return ParseTime(Trimmed(time), &key->time) && !key->value.empty() &&
         key->value.find('=') == std::string::npos;
}

UsageError TimeError(const std::string& name, const std::string& text, const std::string& what) {
  return UsageError(name + " " + text + ": " + what);
}

void RefuseTwins(const std::string& name, const std::string& text,
                 const std::vector<KeyframeText>& keys) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (keys[i].time.IsAs(keys[j].time)) {
        throw TimeError(name, text, "two keyframes are at the time " + keys[i].time.text);
      }
    }
  }
}

double Slope(const Keyframe& from, const Keyframe& to) {
  return (to.value - from.value) / (to.time - from.time);
}

// The slope at a keyframe with neighbours on both sides: the harmonic mean of those beside it,
// weighted by the distances, and none where the value turns (Fritsch and Butland 1984). A plain
// mean overshoots where distances differ.
double SlopeThrough(const Keyframe& before, const Keyframe& at, const Keyframe& after) {
  const double left = Slope(before, at);
  const double right = Slope(at, after);
  if (!((left > 0.0 && right > 0.0) || (left < 0.0 && right < 0.0))) {
    return 0.0;
  }
  const double toLeft = at.time - before.time;
  const double toRight = after.time - at.time;
  return 3.0 * (toLeft + toRight) /
         ((2.0 * toRight + toLeft) / left + (toRight + 2.0 * toLeft) / right);
}

// The cubic between two keyframes with their slopes; at either end of the list, the segment's own.
// No slope is above three times the segment's, so the cubic only rises or only falls (Fritsch and
// Carlson 1980).
double Smooth(const std::vector<Keyframe>& keys, std::size_t segment, double part) {
  const Keyframe& from = keys[segment];
  const Keyframe& to = keys[segment + 1];
  const double length = to.time - from.time;
  const double own = Slope(from, to);
  const double first = length * (segment > 0 ? SlopeThrough(keys[segment - 1], from, to) : own);
  const double second =
      length * (segment + 2 < keys.size() ? SlopeThrough(from, to, keys[segment + 2]) : own);
  const double square = part * part;
  const double cube = square * part;
  const double value = (2.0 * cube - 3.0 * square + 1.0) * from.value +
                       (cube - 2.0 * square + part) * first +
                       (3.0 * square - 2.0 * cube) * to.value + (cube - square) * second;
  // Rounding may lead out by a trace.
  return std::clamp(value, std::min(from.value, to.value), std::max(from.value, to.value));
}

}  // namespace

bool KeyframeTime::IsAs(const KeyframeTime& other) const {
  return from == other.from && number == other.number;
}

bool HasKeyframes(const std::string& text) { return text.find('=') != std::string::npos; }

std::vector<KeyframeText> ParseKeyframes(const std::string& name, const std::string& text) {
  std::vector<KeyframeText> keys;
  std::string_view rest = text;
  while (!Trimmed(rest).empty()) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    KeyframeText key;
    if (!ParseOne(Trimmed(rest.substr(0, end)), &key)) {
      throw TimeError(name, text,
                      std::string("must be a value, or keyframes TIME=VALUE; TIME~=VALUE; "
                                  "TIME|=VALUE (first=50; 1024~=60; last=220), a time being ") +
                          kTimes);
    }
    keys.push_back(key);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  RefuseTwins(name, text, keys);
  return keys;
}

double FrameOf(const KeyframeTime& time, const ShotSpan& span, const std::string& name,
               const std::string& text) {
  using From = KeyframeTime::From;
  const bool isKnown = time.from == From::kFirst  ? span.first.has_value()
                       : time.from == From::kLast ? span.last.has_value()
                       : time.from == From::kPart ? span.IsKnown()
                                                  : time.number > 0.0 || span.first;
  if (!isKnown) {
    throw TimeError(name, text,
                    "the time " + time.text +
                        " needs --shot FIRST-LAST: neither a pipe nor a still says which frames "
                        "the shot has");
  }
  switch (time.from) {
    case From::kFirst:
      return *span.first + time.number;
    case From::kLast:
      return *span.last + time.number;
    case From::kPart:
      return *span.first + (static_cast<double>(*span.last) - *span.first) * time.number / 100.0;
    case From::kZero:
      break;
  }
  // Intended: such a frame might count as one before the shot, as others do behind it. But who
  // writes 0 or -1 mostly means the first or the last, and would get one value for the whole shot.
  if (time.number <= 0.0 && !span.Holds(static_cast<int>(time.number))) {
    throw TimeError(
        name, text,
        "the time " + time.text + " is not in the shot " +
            (span.last ? ShowSpan(span) : "from " + std::to_string(*span.first) + " on") +
            "; a time is " + kTimes);
  }
  return time.number;
}

double ValueAt(const std::vector<Keyframe>& keys, double time) {
  const auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                      [](double t, const Keyframe& key) { return t < key.time; });
  if (after == keys.begin() || after == keys.end()) {
    return after == keys.begin() ? keys.front().value : keys.back().value;
  }
  const Keyframe& from = *(after - 1);
  const double part = (time - from.time) / (after->time - from.time);
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
