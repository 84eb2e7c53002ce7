// SPDX-License-Identifier: BSD-3-Clause
// Convolves by plain sums: slow, and with nothing of a transform.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "baselib/utils/heap.h"
#include "fftlib/planes/channel_rows.h"
#include "fftlib/planes/edge_rows.h"
#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_operations.h"
#include "fftlib/planes/sample_types.h"
#include "fftlib/psf/normalise.h"
#include "tests/fftlib/backends/dummy/dummy_footprint.h"

namespace lx_test {
namespace {

using lx::GridPlace;
using lx::Rows;

constexpr int kPlanes = 4;

void PadColumns(const GridPlace& place, bool repeats, double* gridRow) {
  const std::int32_t end = place.offsetX + place.frame.width;
  std::fill(gridRow, gridRow + place.offsetX, repeats ? gridRow[place.offsetX] : 0.0);
  std::fill(gridRow + end, gridRow + place.grid.width, repeats ? gridRow[end - 1] : 0.0);
}

// Fills the frame's rows of a grid by fill(y, row), and its margins.
template <class Fill>
struct Input {
  GridPlace place;
  std::int32_t edgeMode;
  double* grid;
  Fill fill;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
    const bool repeats = edgeMode == lx::kEdgeReplicate;
    lx::ForEachRow(rows, first, last, [&](std::int32_t y) {
      fill(y, grid + place.FrameStart(y));
      PadColumns(place, repeats, grid + place.RowStart(place.offsetY + y));
    });
    if (repeats) {
      lx::RepeatEdgeRows(grid, place, first, last);
    }
  }
};
template <class Fill>
Input(GridPlace, std::int32_t, double*, Fill) -> Input<Fill>;

// Calls row(y) on every row.
template <class Row>
struct Each {
  Row row;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
    lx::ForEachRow(rows, first, last, row);
  }
};
template <class Row>
Each(Row) -> Each<Row>;

class DummyBackend final : public lx::Backend {
 public:
  ~DummyBackend() override { DummyBackend::FreeGrids(); }

  std::string_view Name() const override { return DummyFootprint::kName; }
  lx::GridSides GridFor(lx::Size frame, std::int32_t margin) const override {
    return DummyFootprint::GridFor(frame.width, frame.height, margin);
  }
  std::uint64_t BytesAt(lx::Size frame, const lx::GridSides& grid) const override {
    return DummyFootprint::BytesAt(frame, grid);
  }
  bool IsLoaded() const override { return isLoaded_; }
  Rules GetRules() const override {
    return {.keepsMask = false, .takesFloat = false, .largestSide = DummyFootprint::kLargestSide};
  }

  void FreeGrids() override {
    isLoaded_ = false;
    Free(&psf_);
    for (double*& plane : planes_) {
      Free(&plane);
    }
  }

  std::int32_t Load(const lx::ImageRec& mask, const GridPlace& place, Rows* rows) override {
    isLoaded_ = false;
    const std::int32_t made = Prepare(place, &psf_);
    if (made != lx::kStatusOk) {
      return made;
    }
    const auto fill = [&](std::int32_t y, double* row) {
      lx::FillFromChannel(mask, 0, {}, {0, y, mask.width}, row);
    };
    rows->Run(Input{place, lx::kEdgeZero, psf_, fill}, mask.height);
    const std::int32_t shifted =
        lx::NormaliseAndShiftPsf(psf_, place.grid.width, place.grid.height);
    isLoaded_ = shifted == lx::kStatusOk;
    return shifted;
  }

  std::int32_t Convolve(const lx::RunImages& run, const lx::Look& look, Rows* rows) override {
    const bool withAlpha = std::min(run.source->channels, run.dest->channels) >= kPlanes &&
                           (run.channelMask & lx::kBitAlpha) != 0;
    const lx::EmphasisCurve curve = lx::MakeEmphasisCurve(static_cast<double>(look.emphasis));
    for (int c = 0; c < (withAlpha ? 4 : 3); ++c) {
      const std::uint32_t bit = 1U << static_cast<unsigned>(c);
      const auto fill = [&](std::int32_t y, double* row) {
        lx::FillFromPicture(*run.source, bit, {0, y, run.source->width}, row);
        if (curve.on && lx::HasCurve(bit, look)) {
          lx::PlainRowOperations().applyCurve(curve, run.source->width, row);
        }
      };
      const std::int32_t summed = SumPlane(run.place, look, fill, &planes_[c], rows);
      if (summed != lx::kStatusOk) {
        return summed;
      }
    }
    rows->Run(Each{[&](std::int32_t y) {
                const std::ptrdiff_t start = run.place.FrameStart(y);
                for (int c = 0; c < (withAlpha ? 4 : 3); ++c) {
                  if (curve.on && lx::HasCurve(1U << static_cast<unsigned>(c), look)) {
                    lx::PlainRowOperations().undoCurve(curve, planes_[c] + start, 1.0,
                                                       run.dest->width, planes_[c] + start);
                  }
                }
                lx::StoreToPicture({planes_[0] + start, planes_[1] + start, planes_[2] + start,
                                    withAlpha ? planes_[3] + start : nullptr},
                                   {1.0, 1.0, 1.0}, {0, y, run.dest->width},
                                   lx::SampleScale<std::uint32_t>::full, run.dest);
              }},
              run.dest->height);
    return lx::kStatusOk;
  }

  std::int32_t ConvolveChannels(const lx::RunImages& run, const lx::Look& look,
                                const lx::Gamma& gamma, Rows* rows) override {
    for (int c = 0; c < std::min<int>(run.source->channels, run.dest->channels); ++c) {
      if (!lx::HasChannel(run.channelMask, c)) {
        continue;
      }
      const lx::ChannelGamma own = lx::MakeChannelGamma(gamma, look.emphasisAlpha, c);
      const auto fill = [&](std::int32_t y, double* row) {
        lx::FillFromChannel(*run.source, c, own, {0, y, run.source->width}, row);
      };
      const std::int32_t summed = SumPlane(run.place, look, fill, &planes_[0], rows);
      if (summed != lx::kStatusOk) {
        return summed;
      }
      rows->Run(Each{[&](std::int32_t y) {
                  lx::StoreToChannel(planes_[0] + run.place.FrameStart(y), 1.0, c, own,
                                     {0, y, run.dest->width}, run.dest);
                }},
                run.dest->height);
    }
    return lx::kStatusOk;
  }

 private:
  static void Free(double** grid) {
    lx::lx_aligned_free(*grid, true);
    *grid = nullptr;
  }

  static std::int32_t Prepare(const GridPlace& place, double** grid) {
    const auto bytes = static_cast<std::uint32_t>(place.grid.width) *
                       static_cast<std::uint32_t>(place.grid.height) *
                       static_cast<std::uint32_t>(sizeof(double));
    if (*grid == nullptr) {
      *grid = static_cast<double*>(lx::lx_aligned_malloc(bytes, -1, true));
      if (*grid != nullptr) {
        std::fill_n(*grid, bytes / sizeof(double), 0.0);
      }
    }
    return *grid != nullptr ? lx::kStatusOk : lx::kStatusNoMemory;
  }

  // One plane into a grid of its own, and its sums into the frame's rectangle of another.
  template <class Fill>
  std::int32_t SumPlane(const GridPlace& place, const lx::Look& look, Fill fill, double** result,
                        Rows* rows) {
    double* input = nullptr;
    if (Prepare(place, &input) != lx::kStatusOk || Prepare(place, result) != lx::kStatusOk) {
      Free(&input);
      return lx::kStatusNoMemory;
    }
    rows->Run(Input{place, look.edgeMode, input, fill}, place.frame.height);
    rows->Run(Each{[&](std::int32_t y) { SumRow(place, input, y, *result + place.FrameStart(y)); }},
              place.frame.height);
    Free(&input);
    return lx::kStatusOk;
  }

  void SumRow(const GridPlace& place, const double* input, std::int32_t y, double* row) const {
    const auto [width, height] = place.grid;
    for (std::int32_t x = 0; x < place.frame.width; ++x) {
      double sum = 0.0;
      for (std::int32_t v = 0; v < height; ++v) {
        const double* from = input + place.RowStart((place.offsetY + y - v + height) % height);
        for (std::int32_t u = 0; u < width; ++u) {
          sum += psf_[place.RowStart(v) + u] * from[(place.offsetX + x - u + width) % width];
        }
      }
      row[x] = sum;
    }
  }

  double* psf_ = nullptr;
  double* planes_[kPlanes] = {};
  bool isLoaded_ = false;
};

}  // namespace

std::unique_ptr<lx::Backend> DummyFootprint::Make() {
  return std::unique_ptr<lx::Backend>(new (std::nothrow) DummyBackend);
}

}  // namespace lx_test
