// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/fast_grids.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "baselib/platform/platform.h"
#include "baselib/utils/heap.h"
#include "fftkernels/mixed_radix/roots.h"
#include "fftlib/core/status.h"

namespace lx {
namespace {

// From here on blocks get huge pages where the system has them: a frame of 1920 x 1080 takes 0.92
// of the time.
constexpr std::uint64_t kLeastAdvised = std::uint64_t{2} << 20U;

// A status.
template <class T>
std::int32_t Allocate(std::uint64_t bytes, T** block) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (*block != nullptr) {
    return kStatusOk;
  }
  if (bytes <= kMost) {
    *block = static_cast<T*>(lx_aligned_malloc(static_cast<std::uint32_t>(bytes), -1, true));
  }
  if (*block == nullptr) {
    return kStatusNoMemory;
  }
  if (bytes >= kLeastAdvised) {
    GetPlatform().adviseHugePages(*block, bytes);
  }
  return kStatusOk;
}

template <class T>
void Release(T** block) {
  lx_aligned_free(*block, true);
  *block = nullptr;
}

}  // namespace

std::int32_t FastGrids::Prepare(const FastLayout& layout) {
  const bool isSame = layout.frame == layout_.frame && layout.width == layout_.width &&
                      layout.height == layout_.height;
  if (!isSame) {
    Free();
    layout_ = layout;
  }
  const bool hasPlans = tables_ != nullptr;
  const std::array<std::int32_t, 4> made = {
      Allocate(layout.TableBytes(), &tables_), Allocate(layout.SpectrumBytes(), &spectrum_),
      Allocate(layout.ScratchBytes(), &scratch_), Allocate(layout.ReachBytes(), &reach_)};
  if (!hasPlans && tables_ != nullptr) {
    // Also where another one is refused: the next load takes tables that are there for filled ones.
    MakePlans();
  }
  for (const std::int32_t status : made) {
    if (status != kStatusOk) {
      return status;
    }
  }
  slots_.SetBlock(scratch_, layout_.Slot());
  return PreparePlane(0);
}

std::int32_t FastGrids::PreparePlane(std::size_t plane) {
  return Allocate(layout_.PlaneBytes(), &planes_[plane]);
}

void FastGrids::Free() {
  Release(&tables_);
  Release(&spectrum_);
  Release(&scratch_);
  Release(&reach_);
  for (double*& plane : planes_) {
    Release(&plane);
  }
}

// Couples first, and numbers of half their size last, so that all are aligned.
void FastGrids::MakePlans() {
  auto* couples = static_cast<RowPlan::Couple*>(tables_);
  auto* rowTwiddles = reinterpret_cast<double*>(couples + layout_.Couples());
  double* columnTwiddles = rowTwiddles + layout_.RowTwiddles();
  frameSource_ = reinterpret_cast<std::int32_t*>(columnTwiddles + layout_.ColumnTwiddles());
  columns_ = MakeLinePlan(layout_.height, columnTwiddles);
  const std::int32_t half = layout_.width / 2;
  rows_.half = MakeLinePlan(half, rowTwiddles);
  rows_.couples = couples;
  rows_.coupleCount = static_cast<std::int32_t>(layout_.Couples());
  for (std::int32_t k = 1; k <= rows_.coupleCount; ++k) {
    const Root root = RootOfUnity(k, layout_.width);
    couples[k - 1] = {rows_.half.PositionOf(k), rows_.half.PositionOf(half - k), root.cosine,
                      root.sine};
  }
  rows_.middle = half % 2 == 0 ? rows_.half.PositionOf(half / 2) : -1;
}

}  // namespace lx
