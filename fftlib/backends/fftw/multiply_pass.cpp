#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"
#include "fftlib/planes/row_kernels.h"

namespace lx {
void MultiplyPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const std::int32_t count = engine->paddedHeight / 2 + 1;
  const DefocusEngine::Complex* psf = engine->psfSpectrum;
  DefocusEngine::Complex* work = engine->workSpectrum;
  const auto multiply = GetRowKernels().multiply;
  for (std::int32_t y = first; y <= last; ++y) {
    const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(y) * count;
    multiply(psf + start, work + start, count);
  }
}

}  // namespace lx
