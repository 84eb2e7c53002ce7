// SPDX-License-Identifier: BSD-3-Clause
// JobInput: what the window shows, handed to the programs that render it.
#pragma once

#include <string>
#include <vector>

#include "host/looks/look.h"
#include "host/looks/shot_span.h"

namespace glimmerhost {

struct JobInput {
  std::string input;        // a picture, or a sequence, as it was opened
  ShotSpan span;            // the frames that times of keyframes count in
  std::vector<int> frames;  // those that are there
  Look look;
};

}  // namespace glimmerhost
