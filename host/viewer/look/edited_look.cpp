// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/edited_look.h"

#include <algorithm>
#include <cstddef>

#include "host/support/failure.h"
#include "host/support/nearest.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

std::string KeyOf(const std::string& assignment) {
  return assignment.substr(0, assignment.find('='));
}

// A point's text with another half in place of one. Empty where the halves do not go together:
// both are in pixels, or neither is.
std::string WithHalf(const std::string& point, bool isFirst, const std::string& half) {
  const std::size_t comma = point.find(',');
  if (comma == std::string::npos || point.find("px") != std::string::npos) {
    return "";
  }
  return isFirst ? half + point.substr(comma) : point.substr(0, comma + 1) + half;
}

}  // namespace

const PageOption* EditedLook::Option(const std::string& name) const {
  const auto& options = page_->Options();
  const auto found = std::find_if(options.begin(), options.end(),
                                  [&](const PageOption& one) { return one.name == name; });
  return found == options.end() ? nullptr : &*found;
}

bool EditedLook::IsPoint(const PageOption& option) const {
  return option.keys.size() == 2 && page_->Find(option.keys[0]).measure == Measure::kX;
}

const std::string* EditedLook::Assigned(const std::string& key) const {
  const auto found = std::find_if(look_.set.begin(), look_.set.end(),
                                  [&](const std::string& one) { return KeyOf(one) == key; });
  return found == look_.set.end() ? nullptr : &*found;
}

void EditedLook::Unassign(const std::string& key) {
  std::erase_if(look_.set, [&](const std::string& one) { return KeyOf(one) == key; });
}

// Each coarse name comes before the finer ones, which go over it.
void EditedLook::Use(const Look& look) {
  EditedLook used(*page_);
  for (const LookName& name : LookNames(*page_)) {
    if (const std::string& text = look.At(name.name); !text.empty()) {
      used.SetText(name.name, text);
    }
  }
  for (const std::string& assignment : look.set) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
      throw MustBe("set", "KEY=VALUE", assignment);
    }
    used.SetText(KeyOf(assignment), assignment.substr(equals + 1));
  }
  *this = used;
}

std::string EditedLook::NameOf(const std::string& key) const {
  if (Assigned(key) != nullptr) {
    return key;
  }
  if (const PageOption* own = page_->OptionOf(key)) {
    return own->name;
  }
  const PageOption* shared = page_->SharedOptionOf(key);
  return shared != nullptr && IsPoint(*shared) ? shared->name : key;
}

std::vector<std::string> EditedLook::KeysOf(const std::string& name) const {
  if (const PageOption* option = Option(name)) {
    return option->keys;
  }
  const bool isKey =
      name == kMix || std::any_of(page_->Parameters().begin(), page_->Parameters().end(),
                                  [&](const Parameter& p) { return p.key == name; });
  return isKey ? std::vector{name} : std::vector<std::string>{};
}

std::string EditedLook::TextOf(const std::string& name) const {
  if (const std::string& text = look_.At(name); !text.empty()) {
    return text;
  }
  const std::vector<std::string> keys = KeysOf(name);
  if (keys == std::vector{name} && name != kMix) {
    const std::string* assigned = Assigned(name);
    return assigned != nullptr    ? assigned->substr(name.size() + 1)
           : NameOf(name) != name ? TextOf(NameOf(name))
                                  : "";
  }
  std::string all;
  for (const std::string& key : keys) {
    const std::string finest = NameOf(key);
    const std::string text = finest == name ? "" : TextOf(finest);
    if (text.empty() || (!all.empty() && text != all)) {
      return "";
    }
    all = text;
  }
  return all;
}

bool EditedLook::IsKeyframed(const std::string& name) const {
  return MayHaveKeyframes(name) && HasKeyframes(TextOf(name));
}

std::vector<std::string> EditedLook::KeyframedNames() const {
  std::vector<std::string> names;
  const auto take = [&](const std::string& name) {
    if (IsKeyframed(name) && std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
  };
  for (const Parameter& parameter : page_->Parameters()) {
    take(NameOf(parameter.key));
  }
  take(kMix);
  return names;
}

void EditedLook::SetOption(const PageOption& option, const std::string& text) {
  bool allOwn = !option.keys.empty();
  for (const std::string& key : option.keys) {
    allOwn = allOwn && page_->OptionOf(key) != nullptr;
    Unassign(key);
  }
  for (const std::string& key : option.keys) {
    if (const PageOption* own = page_->OptionOf(key)) {
      look_[own->name] = allOwn ? text : "";
    }
  }
  if (!allOwn) {
    look_[option.name] = text;
  }
}

bool EditedLook::JoinPoint(const PageOption& point, const std::string& key,
                           const std::string& text) {
  const bool isFirst = key == point.keys[0];
  const std::string& before = look_.At(point.name);
  if (HasKeyframes(text) || HasKeyframes(before)) {
    return false;
  }
  const std::string whole = before.empty() ? ValueText(point.name, page_->Defaults()) : before;
  const std::string joined = WithHalf(whole, isFirst, text);
  if (!joined.empty()) {
    look_[point.name] = joined;
  }
  return !joined.empty();
}

void EditedLook::SetKey(const std::string& key, const std::string& text) {
  const bool wasAssigned = Assigned(key) != nullptr;
  Unassign(key);
  const std::string name = NameOf(key);
  if (text.empty() ? name != key && !wasAssigned : page_->OptionOf(key) != nullptr) {
    look_[name] = text;
  } else if (!text.empty() && (name == key || !JoinPoint(*Option(name), key, text))) {
    look_.set.push_back(key + "=" + text);
  }
}

void EditedLook::SetText(const std::string& name, const std::string& text) {
  std::vector<std::string> names;
  for (const LookName& known : LookNames(*page_)) {
    names.push_back(known.name);
  }
  if (const PageOption* option = Option(name)) {
    SetOption(*option, text);
  } else if (std::find(names.begin(), names.end(), name) != names.end()) {
    look_[name] = text;
  } else if (!KeysOf(name).empty()) {
    SetKey(name, text);
  } else {
    throw UnknownName("parameter", name, names);
  }
  std::erase_if(look_.texts, [](const auto& one) { return one.second.empty(); });
}

void EditedLook::SetTextAt(const std::string& name, int frame, const std::string& text,
                           const ShotSpan& span) {
  if (text.empty() || HasKeyframes(text) || !IsKeyframed(name)) {
    SetText(name, text);
    return;
  }
  KeyframeList list = Keyframes(name, span);
  list.Set(frame, text);
  SetList(name, list);
}

// A half of a point that has its own text keeps it.
void EditedLook::Write(const std::string& name, const std::string& text) {
  if (Option(name) != nullptr || name == kMix) {
    look_[name] = text;
  } else if (const std::string* assigned = Assigned(name)) {
    look_.set[static_cast<std::size_t>(assigned - look_.set.data())] = name + "=" + text;
  } else {
    look_.set.push_back(name + "=" + text);
  }
}

std::string EditedLook::ValueText(const std::string& name, const FrameValues& values) const {
  std::string text;
  for (const std::string& key : KeysOf(name)) {
    const Value& value = values.at(key);
    const std::string one =
        key == kMix ? Shortest(std::get<double>(value)) : page_->Find(key).Show(value);
    text += (text.empty() ? "" : ",") + one;
  }
  return text;
}

void EditedLook::SetValues(const FrameValues& byKey, int frame, const FrameValues& now,
                           const ShotSpan& span) {
  FrameValues all = now;
  std::vector<std::string> names;
  for (const auto& [key, value] : byKey) {
    const auto current = all.find(key);
    // A value that is there already keeps the text that a person wrote for it.
    if (current == all.end() || current->second != value) {
      all[key] = value;
      names.push_back(key == kMix ? key : NameOf(key));
    }
  }
  for (const std::string& name : names) {
    const std::string text = ValueText(name, all);
    IsKeyframed(name) ? SetTextAt(name, frame, text, span) : Write(name, text);
  }
}

KeyframeList EditedLook::Keyframes(const std::string& name, const ShotSpan& span) const {
  return {name, IsKeyframed(name) ? TextOf(name) : "", span};
}

void EditedLook::SetList(const std::string& name, const KeyframeList& list) {
  if (!list.All().empty()) {
    Write(name, list.Text());
  }
}

void EditedLook::SetKeyframe(const std::string& name, int frame, const FrameValues& now,
                             const ShotSpan& span) {
  const std::string text = TextOf(name);
  KeyframeList list = Keyframes(name, span);
  if (!MayHaveKeyframes(name) || list.At(frame) != nullptr) {
    return;
  }
  list.Set(frame, text.empty() || HasKeyframes(text) ? ValueText(name, now) : text);
  SetList(name, list);
}

void EditedLook::RemoveKeyframe(const std::string& name, double frame, const ShotSpan& span) {
  KeyframeList list = Keyframes(name, span);
  const PlacedKeyframe* there = list.At(frame);
  if (there == nullptr) {
    return;
  }
  const std::string value = there->key.value;
  list.Remove(frame);
  Write(name, list.All().empty() ? value : list.Text());
}

void EditedLook::MoveKeyframes(const std::string& name, const std::vector<double>& frames, int by,
                               const ShotSpan& span) {
  KeyframeList list = Keyframes(name, span);
  list.Move(frames, by);
  SetList(name, list);
}

void EditedLook::SetCourse(const std::string& name, double frame, Course course,
                           const ShotSpan& span) {
  KeyframeList list = Keyframes(name, span);
  list.SetCourse(frame, course);
  SetList(name, list);
}

}  // namespace glimmerhost
