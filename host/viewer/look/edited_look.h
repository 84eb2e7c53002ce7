// SPDX-License-Identifier: BSD-3-Clause
// EditedLook: the look that a person works on, in the texts of look files.
//
// Every key is set once, under its finest name: its own option, or the option that it shares as
// part of a point, or KEY=VALUE. What was never set has no text: files and command lines stay
// short.
//
//   radius = "40px"            becomes  radius-x = "40px", radius-y = "40px"
//   PRM_Sides=5                becomes  sides = "5"
//   center = "50%,20%" and
//   PRM_Center_X=0.25          becomes  center = "0.25,20%"
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/looks/look.h"
#include "host/looks/page.h"
#include "host/looks/shot_span.h"
#include "host/viewer/look/keyframe_list.h"

namespace glimmerhost {

// The values that the store and the mix have at one frame, by their keys; that of the mix is kMix.
using FrameValues = std::map<std::string, Value>;

class EditedLook {
 public:
  //   page  must outlive this
  explicit EditedLook(const Page& page) : page_(&page) {}

  const Look& Texts() const { return look_; }

  // Takes a look over as a whole. Throws UsageError for a name that the page has not.
  void Use(const Look& look);

  // The name that a key has in the texts.
  std::string NameOf(const std::string& key) const;

  // The keys that a name sets, in the order in which its text has their values. Of the mix kMix;
  // none for what is no value.
  std::vector<std::string> KeysOf(const std::string& name) const;

  // Whether a text under that name may be keyframes.
  bool MayHaveKeyframes(const std::string& name) const { return !KeysOf(name).empty(); }

  // Empty if it was never set. Of a name that sets several others their text, if it is one.
  std::string TextOf(const std::string& name) const;
  bool IsKeyframed(const std::string& name) const;

  // The finest names of what has keyframes, in the page's order, and then the mix.
  std::vector<std::string> KeyframedNames() const;

  // What is typed for an option, for what a look has beside them, or for a key. An empty text takes
  // it away. The text is not looked at. Throws UsageError for an unknown name.
  void SetText(const std::string& name, const std::string& text);

  // The same for one frame: if the name has keyframes, the text becomes the value of one there.
  // A text that is keyframes itself takes the place of all of them.
  void SetTextAt(const std::string& name, int frame, const std::string& text, const ShotSpan& span);

  // Values instead of texts, as exact as they are.
  //   now  at that frame: a point has its other half from there
  void SetValues(const FrameValues& byKey, int frame, const FrameValues& now, const ShotSpan& span);

  // The keyframes of a name; none if its text is a value.
  KeyframeList Keyframes(const std::string& name, const ShotSpan& span) const;

  // A keyframe at that frame with the value that it has there anyway, if there is none yet.
  void SetKeyframe(const std::string& name, int frame, const FrameValues& now,
                   const ShotSpan& span);

  // Where it was the last one, its value stays for all frames.
  void RemoveKeyframe(const std::string& name, double frame, const ShotSpan& span);
  void MoveKeyframes(const std::string& name, const std::vector<double>& frames, int by,
                     const ShotSpan& span);
  void SetCourse(const std::string& name, double frame, Course course, const ShotSpan& span);

 private:
  // The X and the Y of one place, and no several radii.
  bool IsPoint(const PageOption& option) const;
  const std::string* Assigned(const std::string& key) const;
  void Unassign(const std::string& key);
  void SetOption(const PageOption& option, const std::string& text);
  void SetKey(const std::string& key, const std::string& text);
  // False where the other half cannot stand beside it.
  bool JoinPoint(const PageOption& point, const std::string& key, const std::string& text);
  // Under a finest name, and nothing else changes.
  void Write(const std::string& name, const std::string& text);

  // Leaves a text without keyframes alone.
  void SetList(const std::string& name, const KeyframeList& list);
  std::string ValueText(const std::string& name, const FrameValues& values) const;
  const PageOption* Option(const std::string& name) const;

  const Page* page_;
  Look look_;
};

}  // namespace glimmerhost
