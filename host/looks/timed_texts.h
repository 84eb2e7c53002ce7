// SPDX-License-Identifier: BSD-3-Clause
// The keyframes of a look, before it is known how large pictures are: whether times matter at all,
// and whether they go with the shot.
#pragma once

#include <string>
#include <vector>

#include "host/looks/look_layers.h"
#include "host/looks/page.h"
#include "host/looks/shot_span.h"

namespace glimmerhost {

struct TimedText {
  std::string name;  // as an error calls it: "--radius", or "film.toml: radius"
  std::string text;
};

// All that is keyframes, and that no layer goes over.
std::vector<TimedText> TimedTexts(const Page& page, const std::vector<LookLayer>& layers);

// The frames that the texts name and the shot has not, in ascending order, each once. That is
// allowed, so that times stay right while a shot grows.
// Throws UsageError for times that do not go with the span.
std::vector<int> FramesOutside(const std::vector<TimedText>& timed, const ShotSpan& span);

}  // namespace glimmerhost
