// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/frame_scale.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace glimmerhost {
namespace {

// The first multiple of a step that is not before a frame.
int FirstOf(int step, int frame) {
  const int rest = ((frame % step) + step) % step;
  return rest == 0 ? frame : frame + step - rest;
}

constexpr int kLargestStep = 50000000;

// 1, 2, 5, 10, 20, ...
int NextStep(int step) {
  int power = 1;
  while (power * 10 <= step) {
    power *= 10;
  }
  return step / power == 1 ? power * 2 : step / power == 2 ? power * 5 : power * 10;
}

}  // namespace

ShotFrames::ShotFrames(std::vector<int> frames) : frames_(std::move(frames)) {
  std::sort(frames_.begin(), frames_.end());
  frames_.erase(std::unique(frames_.begin(), frames_.end()), frames_.end());
}

int ShotFrames::Nearest(double frame) const {
  if (frames_.empty()) {
    return 1;
  }
  const auto after = std::lower_bound(frames_.begin(), frames_.end(), frame);
  if (after == frames_.begin() || after == frames_.end()) {
    return after == frames_.begin() ? frames_.front() : frames_.back();
  }
  return frame - *(after - 1) <= *after - frame ? *(after - 1) : *after;
}

int ShotFrames::Beside(int frame, int places) const {
  if (frames_.empty()) {
    return 1;
  }
  const auto at = std::lower_bound(frames_.begin(), frames_.end(), Nearest(frame));
  const std::ptrdiff_t place = at - frames_.begin() + places;
  return frames_[static_cast<std::size_t>(
      std::clamp<std::ptrdiff_t>(place, 0, static_cast<std::ptrdiff_t>(frames_.size()) - 1))];
}

FrameScale::FrameScale(int first, int last, double left, double width)
    : first_(first), last_(last), left_(left), width_(std::max(1.0, width)) {}

double FrameScale::PerFrame() const {
  return width_ / std::max(1.0, static_cast<double>(last_) - first_);
}

double FrameScale::XOf(double frame) const {
  return first_ == last_ ? left_ + width_ / 2.0 + (frame - first_) * width_
                         : left_ + (frame - first_) * PerFrame();
}

double FrameScale::FrameAt(double x) const {
  return first_ == last_ ? first_ : first_ + (x - left_) / PerFrame();
}

std::vector<int> FrameScale::Labels(const std::function<double(int)>& widthOf) const {
  const double widest = std::max(widthOf(first_), widthOf(last_));
  int step = 1;
  while (step * PerFrame() < widest && step < kLargestStep) {
    step = NextStep(step);
  }
  std::vector<int> labels;
  for (int frame = FirstOf(step, first_); frame <= last_; frame += step) {
    labels.push_back(frame);
  }
  return labels;
}

int FrameScale::TickStep(int labelStep) const {
  constexpr double kNarrowest = 4.0;
  int step = 1;
  while (step < labelStep && (step * PerFrame() < kNarrowest || labelStep % step != 0)) {
    step = NextStep(step);
  }
  return std::min(step, labelStep);
}

}  // namespace glimmerhost
