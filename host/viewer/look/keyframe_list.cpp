// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/keyframe_list.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

namespace glimmerhost {
namespace {

constexpr std::string_view kBlanks = " \t\n";

// The next of the pieces between semicolons, without the blanks round it.
std::string TakePiece(std::string_view* rest) {
  const std::size_t end = std::min(rest->find(';'), rest->size());
  std::string_view piece = rest->substr(0, end);
  rest->remove_prefix(std::min(end + 1, rest->size()));
  piece.remove_prefix(std::min(piece.find_first_not_of(kBlanks), piece.size()));
  return std::string(piece.substr(0, piece.find_last_not_of(kBlanks) + 1));
}

const char* SignOf(Course course) {
  switch (course) {
    case Course::kSmooth:
      return "~=";
    case Course::kHeld:
      return "|=";
    case Course::kLinear:
      break;
  }
  return "=";
}

std::string Written(const KeyframeText& key) {
  return key.time.text + SignOf(key.course) + key.value;
}

// "first", "first+12", "last-3".
std::string FromEnd(const char* end, double frames) {
  const int count = static_cast<int>(frames);
  return count == 0  ? end
         : count > 0 ? end + ("+" + std::to_string(count))
                     : end + std::to_string(count);
}

void MoveBy(int by, PlacedKeyframe* moved) {
  KeyframeTime& time = moved->key.time;
  moved->frame = std::round(moved->frame) + by;
  if (time.from == KeyframeTime::From::kFirst || time.from == KeyframeTime::From::kLast) {
    time.number += by;
    time.text = FromEnd(time.from == KeyframeTime::From::kFirst ? "first" : "last", time.number);
  } else {
    time.from = KeyframeTime::From::kZero;
    time.number = moved->frame;
    time.text = std::to_string(static_cast<int>(moved->frame));
  }
  moved->written = Written(moved->key);
}

bool IsEarlier(const PlacedKeyframe& a, const PlacedKeyframe& b) { return a.frame < b.frame; }

}  // namespace

KeyframeList::KeyframeList(const std::string& name, const std::string& text, const ShotSpan& span) {
  std::string_view rest = text;
  std::vector<KeyframeText> parsed = ParseKeyframes(name, text);
  keys_.reserve(parsed.size());
  for (KeyframeText& key : parsed) {
    const double frame = FrameOf(key.time, span, name, text);
    keys_.push_back({std::move(key), frame, TakePiece(&rest)});
  }
}

std::vector<PlacedKeyframe> KeyframeList::InTime() const {
  std::map<double, PlacedKeyframe> byFrame;
  for (const PlacedKeyframe& key : keys_) {
    byFrame.insert_or_assign(key.frame, key);
  }
  std::vector<PlacedKeyframe> ordered;
  for (auto& [frame, key] : byFrame) {
    ordered.push_back(std::move(key));
  }
  return ordered;
}

const PlacedKeyframe* KeyframeList::At(double frame) const {
  const auto found = std::find_if(keys_.rbegin(), keys_.rend(),
                                  [=](const PlacedKeyframe& key) { return key.frame == frame; });
  return found == keys_.rend() ? nullptr : &*found;
}

void KeyframeList::Set(int frame, const std::string& value) {
  if (const PlacedKeyframe* there = At(frame)) {
    PlacedKeyframe& key = keys_[static_cast<std::size_t>(there - keys_.data())];
    key.key.value = value;
    key.written = Written(key.key);
    return;
  }
  const std::vector<PlacedKeyframe> ordered = InTime();
  PlacedKeyframe added{{}, static_cast<double>(frame), ""};
  const auto after = std::upper_bound(ordered.begin(), ordered.end(), added, IsEarlier);
  added.key.time = {KeyframeTime::From::kZero, added.frame, std::to_string(frame)};
  added.key.course = ordered.empty()            ? Course::kLinear
                     : after == ordered.begin() ? after->key.course
                                                : (after - 1)->key.course;
  added.key.value = value;
  added.written = Written(added.key);
  // Before the first that is later: who wrote in order of time finds it in order.
  keys_.insert(std::find_if(keys_.begin(), keys_.end(),
                            [&](const PlacedKeyframe& key) { return key.frame > added.frame; }),
               added);
}

void KeyframeList::Remove(double frame) {
  std::erase_if(keys_, [=](const PlacedKeyframe& key) { return key.frame == frame; });
}

void KeyframeList::SetCourse(double frame, Course course) {
  for (PlacedKeyframe& key : keys_) {
    if (key.frame == frame && key.key.course != course) {
      key.key.course = course;
      key.written = Written(key.key);
    }
  }
}

void KeyframeList::Move(const std::vector<double>& frames, int by) {
  const auto isOf = [](const std::vector<double>& some, double frame) {
    return std::find(some.begin(), some.end(), frame) != some.end();
  };
  std::vector<PlacedKeyframe> moved;
  std::vector<double> taken;
  for (const PlacedKeyframe& key : InTime()) {
    if (isOf(frames, key.frame)) {
      moved.push_back(key);
      MoveBy(by, &moved.back());
      taken.push_back(moved.back().frame);
    }
  }
  if (moved.empty() || by == 0) {
    return;
  }
  std::erase_if(keys_, [&](const PlacedKeyframe& key) {
    return isOf(frames, key.frame) || isOf(taken, key.frame);
  });
  for (const PlacedKeyframe& key : moved) {
    if (At(key.frame) == nullptr) {
      keys_.push_back(key);
    }
  }
  std::stable_sort(keys_.begin(), keys_.end(), IsEarlier);
}

std::string KeyframeList::Text() const {
  std::string text;
  for (const PlacedKeyframe& key : keys_) {
    text += (text.empty() ? "" : "; ") + key.written;
  }
  return text;
}

}  // namespace glimmerhost
