// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/job_progress.h"

#include <utility>

#include "host/render/frame_line.h"

namespace glimmerhost {

std::optional<double> JobProgress::Rate() const {
  return done == 0 || seconds <= 0.0 ? std::nullopt
                                     : std::optional(static_cast<double>(done) / seconds);
}

std::optional<double> JobProgress::SecondsLeft() const {
  const std::optional<double> rate = Rate();
  return !rate || count < Seen() ? std::nullopt
                                 : std::optional(static_cast<double>(count - Seen()) / *rate);
}

bool JobProgress::Take(const std::string& line, FrameReport* frame) {
  std::optional<FrameLine> told = ParseFrameLine(line);
  if (!told) {
    return false;
  }
  *frame = std::move(told->report);
  seconds = told->elapsed.value_or(seconds);
  count = told->count.value_or(count);
  done += frame->state == FrameState::kDone ? 1 : 0;
  skipped += frame->state == FrameState::kSkipped ? 1 : 0;
  failed += frame->state == FrameState::kFailed || frame->state == FrameState::kMissing ? 1 : 0;
  return true;
}

}  // namespace glimmerhost
