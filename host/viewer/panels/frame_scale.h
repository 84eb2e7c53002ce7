// SPDX-License-Identifier: BSD-3-Clause
// FrameScale: where frames lie on a timeline, and which of them its ruler names.
#pragma once

#include <functional>
#include <vector>

namespace glimmerhost {

// The frames that a clip has, in ascending order; there may be gaps. None at first.
class ShotFrames {
 public:
  ShotFrames() = default;
  explicit ShotFrames(std::vector<int> frames);

  bool IsEmpty() const { return frames_.empty(); }
  int First() const { return frames_.empty() ? 1 : frames_.front(); }
  int Last() const { return frames_.empty() ? 1 : frames_.back(); }
  int Count() const { return static_cast<int>(frames_.size()); }

  // The nearest that is there; of two as near the earlier.
  int Nearest(double frame) const;

  // The frame so many places further in the clip, or its end.
  int Beside(int frame, int places) const;

 private:
  std::vector<int> frames_;
};

// A line on which the first frame lies at one end and the last at the other.
class FrameScale {
 public:
  //   left, width  in pixels; a shot of one frame lies in the middle
  FrameScale(int first, int last, double left, double width);

  double XOf(double frame) const;
  double FrameAt(double x) const;

  // The numbers of a ruler in ascending order: multiples of 1, 2 or 5 times a power of ten, so far
  // apart that no two overlap where each stands over the middle of its frame.
  //   widthOf  of a number, with the room that belongs round it
  std::vector<int> Labels(const std::function<double(int)>& widthOf) const;

  // The distance of the ticks between labels: as many as there is room for.
  int TickStep(int labelStep) const;

 private:
  double PerFrame() const;

  int first_;
  int last_;
  double left_;
  double width_;
};

}  // namespace glimmerhost
