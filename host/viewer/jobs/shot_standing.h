// SPDX-License-Identifier: BSD-3-Clause
// How the outputs of a shot stand: which frames are there, and whether they still count.
#pragma once

#include <map>

#include "host/looks/page.h"
#include "host/viewer/jobs/job_input.h"
#include "host/viewer/jobs/render_words.h"

namespace glimmerhost {

enum class FrameStanding {
  kToDo,     // no output
  kCurrent,  // as it would be rendered now
  kStale,    // rendered earlier, and would come out otherwise now
  kUnknown,  // an output that no manifest tells of
};

// Of the target's frames, by the target's manifest and those of the chunks of a farm that lie
// beside it. Outputs are not read, and neither are inputs whose size and time are as they were:
// someone who changes an output by hand is found out by the program alone. A frame that cannot be
// told of, since its input is gone or the look is not one, is to be done. Takes a while for a long
// shot, and reads files: not on a thread that must not wait. Never throws.
std::map<int, FrameStanding> StandingOf(const Page& page, const JobInput& input,
                                        const RenderTarget& target);

}  // namespace glimmerhost
