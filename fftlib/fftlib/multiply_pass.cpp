#include <cstddef>
#include <cstdint>

#include "fftlib/fftlib.h"
#include "fftlib/fftlib/passes.h"

namespace lx {
namespace {

// work = psf * work, as complex numbers.
void MultiplyRow(const DefocusEngine::Complex* psf, DefocusEngine::Complex* work,
                 std::int32_t count) {
  for (std::int32_t k = 0; k < count; ++k) {
    const double real = psf[k][0] * work[k][0] - psf[k][1] * work[k][1];
    const double imaginary = psf[k][0] * work[k][1] + psf[k][1] * work[k][0];
    work[k][0] = real;
    work[k][1] = imaginary;
  }
}

}  // namespace

void MultiplyPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const std::int32_t count = engine->paddedHeight / 2 + 1;
  const DefocusEngine::Complex* psf = engine->psfSpectrum;
  DefocusEngine::Complex* work = engine->workSpectrum;
  for (std::int32_t y = first; y <= last; ++y) {
    const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(y) * count;
    MultiplyRow(psf + start, work + start, count);
  }
}

}  // namespace lx
