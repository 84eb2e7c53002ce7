// SPDX-License-Identifier: BSD-3-Clause
// The buffers of one grid, and the plans that go with them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fast/fast_layout.h"
#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/backends/fast/scratch_slots.h"

namespace lx {

// Blocks are of the tracked heap, made where they are missing, and hold whatever memory held.
class FastGrids {
 public:
  FastGrids() = default;
  ~FastGrids() { Free(); }
  FastGrids(const FastGrids&) = delete;
  FastGrids& operator=(const FastGrids&) = delete;

  // All that a load needs, the first plane among it. A status. Another layout than before frees
  // what was there.
  std::int32_t Prepare(const FastLayout& layout);
  std::int32_t PreparePlane(std::size_t plane);
  void Free();

  const FastLayout& Layout() const { return layout_; }
  const RowPlan& Rows() const { return rows_; }
  const LinePlan& Columns() const { return columns_; }

  double* Plane(std::size_t plane) const { return planes_[plane]; }
  double* Spectrum() const { return spectrum_; }
  std::int32_t* FrameSource() const { return frameSource_; }  // ColumnRows::source of frames
  std::int32_t* MaskSource() const { return frameSource_ + layout_.height; }  // and of a mask
  ScratchSlots& Slots() { return slots_; }

  // Of a bit a pixel, rows of Layout().ReachWords(): the mask's, and what it reaches.
  BitWord* MaskBits() const { return reach_; }
  BitWord* ReachedBits() const { return reach_ + layout_.ReachWords() * layout_.frame.height; }

 private:
  void MakePlans();

  FastLayout layout_{{}, {}};
  RowPlan rows_;
  LinePlan columns_;
  std::int32_t* frameSource_ = nullptr;

  void* tables_ = nullptr;
  double* spectrum_ = nullptr;
  double* scratch_ = nullptr;
  BitWord* reach_ = nullptr;
  std::array<double*, FastLayout::kPlanes> planes_{};
  ScratchSlots slots_;
};

}  // namespace lx
