// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/job_progress.h"

#include <nlohmann/json.hpp>

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
  if (!ReadFrameLine(line, frame)) {
    return false;
  }
  const auto json = nlohmann::json::parse(line);
  seconds = json.value("elapsed", seconds);
  if (const auto all = json.find("count"); all != json.end() && all->is_number()) {
    count = *all;
  }
  done += frame->state == FrameState::kDone ? 1 : 0;
  skipped += frame->state == FrameState::kSkipped ? 1 : 0;
  failed += frame->state == FrameState::kFailed || frame->state == FrameState::kMissing ? 1 : 0;
  return true;
}

}  // namespace glimmerhost
