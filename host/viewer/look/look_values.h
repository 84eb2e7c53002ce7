// SPDX-License-Identifier: BSD-3-Clause
// LookValues: what a look comes to for a picture that may not go with all of it.
//
// A look is edited before a picture is opened, and stays when another is: its radius of 900 pixels
// may be too large for the new one, its time "last" may mean nothing. What does not go has its
// default then, and it is told.
#pragma once

#include <memory>
#include <string>

#include "host/looks/keyframed_values.h"
#include "host/viewer/look/edited_look.h"

namespace glimmerhost {

// What percent, pixels and times mean.
struct LookPicture {
  int width = 1920;
  int height = 1080;
  ShotSpan span{1, 1};

  bool operator==(const LookPicture&) const = default;
};

// The shot that the look names, or else the picture's. Throws UsageError for a text that is none.
ShotSpan SpanOf(const Look& look, const ShotSpan& ofPicture);

// Whether all of a look goes with a picture. Throws UsageError, which names the text.
//   origin  what the error begins with
void CheckLook(const Page& page, const Look& look, const LookPicture& picture,
               const std::string& origin = "");

class LookValues {
 public:
  LookValues(const Page& page, const Look& look, const LookPicture& picture);

  // Of the store and the mix.
  FrameValues At(int frame) const;

  double MixAt(int frame) const { return values_->MixAt(frame); }
  bool IsAnimated() const { return values_->IsAnimated(); }

  // The shot that times are counted in.
  const ShotSpan& Span() const { return span_; }

  // Why a part of the look was left out; empty if all of it is there.
  const std::string& Fault() const { return fault_; }

 private:
  std::shared_ptr<const KeyframedValues> values_;
  ShotSpan span_;
  std::string fault_;
};

}  // namespace glimmerhost
