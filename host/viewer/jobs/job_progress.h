// SPDX-License-Identifier: BSD-3-Clause
// How far a render is, by what its process tells of each frame.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "host/render/shot_report.h"

namespace glimmerhost {

struct JobProgress {
  std::size_t count = 0;  // of all frames; 0 if nobody knows
  std::size_t done = 0;
  std::size_t skipped = 0;  // that were up to date
  std::size_t failed = 0;   // or missing
  double seconds = 0.0;     // since the process began, as it says itself: no clock of ours is asked

  std::size_t Seen() const { return done + skipped + failed; }

  // Frames a second; none before the first.
  std::optional<double> Rate() const;

  // None where nobody knows.
  std::optional<double> SecondsLeft() const;

  // Takes a line of the process. False, with nothing changed, for one of no frame. Throws
  // std::bad_alloc, with nothing changed, where there is no memory.
  //   frame  receives what it tells
  bool Take(const std::string& line, FrameReport* frame);
};

}  // namespace glimmerhost
