#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"
#include "fftlib/planes/edge_rows.h"
#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_kernels.h"

namespace lx {
namespace {

constexpr double kMaskScale = 0.003921568859368563;

// The columns beside the frame. They take the values after the curve.
void PadColumns(const DefocusEngine& engine, double* gridRow, double left, double right) {
  const std::int32_t frameEnd = engine.offsetX + engine.passSource->width;
  std::fill(gridRow, gridRow + engine.offsetX, left);
  std::fill(gridRow + frameEnd, gridRow + engine.paddedWidth, right);
}

double* GridRow(const DefocusEngine& engine, std::int32_t row) {
  return static_cast<double*>(engine.passTarget) +
         static_cast<std::ptrdiff_t>(row) * engine.paddedWidth;
}

void ClearGridRows(const DefocusEngine& engine, std::int32_t first, std::int32_t end) {
  std::fill(GridRow(engine, first), GridRow(engine, end), 0.0);
}

// The curve of the plane in work.
EmphasisCurve PlaneCurve(const DefocusEngine& engine) {
  return HasCurve(engine) ? MakeEmphasisCurve(engine.emphasis) : EmphasisCurve{};
}

// One grid row of a plane.
void InputRow(const DefocusEngine& engine, const EmphasisCurve& curve, std::int32_t y) {
  double* gridRow = GridRow(engine, engine.offsetY + y);
  double* frameRow = gridRow + engine.offsetX;
  const std::int32_t width = engine.passSource->width;
  FillFromPicture(*engine.passSource, engine.passChannelBit, {0, y, width}, frameRow);
  if (curve.on) {
    GetRowKernels().applyCurve(curve, width, frameRow);
  }
  if (engine.passEdgeMode == kEdgeReplicate) {
    PadColumns(engine, gridRow, frameRow[0], frameRow[width - 1]);
  } else {
    PadColumns(engine, gridRow, 0.0, 0.0);
  }
}

}  // namespace

void KeepRows(const DefocusEngine& engine, std::int32_t first, std::int32_t last) {
  if (engine.passKept == nullptr) {
    return;
  }
  for (std::int32_t y = first; y <= last; ++y) {
    const std::ptrdiff_t start =
        static_cast<std::ptrdiff_t>(engine.offsetY + y) * engine.paddedWidth + engine.offsetX;
    std::copy_n(engine.workSpatial + start, engine.frameWidth,
                static_cast<double*>(engine.passKept) + start);
  }
}

void PsfInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const ImageRec& mask = *engine->passSource;
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    const auto* pixels =
        static_cast<const std::uint8_t*>(mask.data) + static_cast<std::ptrdiff_t>(y) * mask.width;
    double* row = GridRow(*engine, engine->offsetY + y) + engine->offsetX;
    for (std::int32_t x = 0; x < mask.width; ++x) {
      row[x] = pixels[x] * kMaskScale;
    }
  }
}

// The grid still holds the plane before. A row that a cancelled pass does not reach, and
// margins of zero, are therefore cleared here, by the range that they belong to.
void PlaneInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  if (first > last) {
    return;
  }
  const EmphasisCurve curve = PlaneCurve(*engine);
  std::int32_t y = first;
  for (; y <= last && !engine->CancelRequested(); ++y) {
    KeepRows(*engine, y, y);
    InputRow(*engine, curve, y);
  }
  KeepRows(*engine, y, last);
  ClearGridRows(*engine, engine->offsetY + y, engine->offsetY + last + 1);
  if (engine->passEdgeMode == kEdgeReplicate) {
    RepeatEdgeRows<double>(engine, first, last);
    return;
  }
  const std::int32_t height = engine->passSource->height;
  if (first == 0) {
    ClearGridRows(*engine, 0, engine->offsetY);
  }
  if (last == height - 1) {
    ClearGridRows(*engine, engine->offsetY + height, engine->paddedHeight);
  }
}

}  // namespace lx
