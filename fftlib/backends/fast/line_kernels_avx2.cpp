// Compiled for AVX2 alone, and entered only where the processor has it.
#include "fftlib/backends/fast/line_kernels.h"

#if defined(__AVX2__)

#include "fftlib/backends/fast/line_kernels_of.h"

namespace lx {
namespace {
struct Avx2 {};
}  // namespace

const LineKernels* Avx2LineKernels() {
  static constexpr LineKernels kKernels = LineKernelsOf<Avx2, 4>::Table();
  return __builtin_cpu_supports("avx2") != 0 ? &kKernels : nullptr;
}

}  // namespace lx

#else

namespace lx {

const LineKernels* Avx2LineKernels() { return nullptr; }

}  // namespace lx

#endif
