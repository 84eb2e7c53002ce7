// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/look_values.h"

#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

std::shared_ptr<const KeyframedValues> ValuesOf(const Page& page, const Look& look,
                                                const LookPicture& picture, const ShotSpan& span,
                                                const std::string& origin) {
  return std::make_shared<const KeyframedValues>(page, std::vector<LookLayer>{{origin, look}},
                                                 picture.width, picture.height, span);
}

// What goes with the picture, text by text; the first that does not is told of.
Look Fitting(const Page& page, const Look& look, const LookPicture& picture, const ShotSpan& span,
             std::string* fault) {
  Look fitting;
  const auto take = [&](const Look& with) {
    try {
      ValuesOf(page, with, picture, span, "");
      fitting = with;
    } catch (const UsageError& error) {
      *fault = fault->empty() ? error.what() : *fault;
    }
  };
  for (const auto& [name, text] : look.texts) {
    Look with = fitting;
    with[name] = text;
    take(with);
  }
  for (const std::string& assignment : look.set) {
    Look with = fitting;
    with.set.push_back(assignment);
    take(with);
  }
  return fitting;
}

}  // namespace

ShotSpan SpanOf(const Look& look, const ShotSpan& ofPicture) {
  const std::string& shot = look.At(kShot);
  return shot.empty() ? ofPicture : ParseShotSpan(kShot, shot);
}

void CheckLook(const Page& page, const Look& look, const LookPicture& picture,
               const std::string& origin) {
  for (const auto& [name, text] : look.texts) {
    // A look file has one line for each.
    if (AsLine(text) != text) {
      throw UsageError(origin + name + " must be a text of one line");
    }
  }
  if (const std::string& alpha = look.At(kAlpha); !alpha.empty()) {
    ParsePremultiplied(origin + kAlpha, alpha);
  }
  if (const std::string& aspect = look.At(kPixelAspect); !aspect.empty()) {
    ParseRatio(origin + kPixelAspect, aspect);
  }
  ValuesOf(page, look, picture, SpanOf(look, picture.span), origin);
}

LookValues::LookValues(const Page& page, const Look& look, const LookPicture& picture)
    : span_(picture.span) {
  try {
    span_ = SpanOf(look, picture.span);
    values_ = ValuesOf(page, look, picture, span_, "");
  } catch (const UsageError&) {
    values_ = ValuesOf(page, Fitting(page, look, picture, span_, &fault_), picture, span_, "");
  }
}

FrameValues LookValues::At(int frame) const {
  FrameValues values = values_->At(frame);
  values[kMix] = values_->MixAt(frame);
  return values;
}

}  // namespace glimmerhost
