#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"
#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_kernels.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// A piece of a row at a time, so that what the inverse curve makes of it stays at hand.
constexpr std::int32_t kPiece = 256;

void OutputRow(const DefocusEngine& engine, const EmphasisCurve& curve, std::int32_t y) {
  ImageRec* dest = engine.passDest;
  const double side = engine.paddedWidth;
  const double scale = 1.0 / (side * side);
  const bool withAlpha = (engine.passChannelBit & kBitAlpha) != 0;
  double luma[kPiece];
  double alpha[kPiece];
  for (std::int32_t x = 0; x < dest->width; x += kPiece) {
    const std::int32_t width = std::min(kPiece, dest->width - x);
    const std::ptrdiff_t start =
        static_cast<std::ptrdiff_t>(engine.offsetY + y) * engine.paddedWidth + engine.offsetX + x;
    PlaneRow planes{engine.lumaResult + start, engine.crResult + start, engine.cbResult + start,
                    withAlpha ? static_cast<const double*>(engine.passTarget) + start : nullptr};
    PlaneScale by{scale, scale, scale};
    const auto uncurve = [&](const double*& plane, double& planeScale, double* piece) {
      GetRowKernels().undoCurve(curve, plane, planeScale, width, piece);
      plane = piece;
      planeScale = 1.0;
    };
    if (curve.on) {
      uncurve(planes.luma, by.luma, luma);
    }
    if (curve.on && withAlpha && engine.emphasisAlpha) {
      uncurve(planes.alpha, by.alpha, alpha);
    }
    StoreToPicture(planes, by, {x, y, width}, SampleScale<std::uint32_t>::full, dest);
  }
}

}  // namespace

void PictureOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const EmphasisCurve curve = MakeEmphasisCurve(engine->emphasis);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    OutputRow(*engine, curve, y);
  }
}

}  // namespace lx
