// Compiled for AVX-512 alone, and entered only where the processor has it.
#include "fftlib/backends/fast/line_kernels.h"

#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__)

#include "fftlib/backends/fast/line_kernels_of.h"

namespace lx {
namespace {
struct Avx512 {};
}  // namespace

const LineKernels* Avx512LineKernels() {
  static constexpr LineKernels kKernels = LineKernelsOf<Avx512, 8>::Table();
  const bool has = __builtin_cpu_supports("avx512f") != 0 &&
                   __builtin_cpu_supports("avx512dq") != 0 &&
                   __builtin_cpu_supports("avx512vl") != 0;
  return has ? &kKernels : nullptr;
}

}  // namespace lx

#else

namespace lx {

const LineKernels* Avx512LineKernels() { return nullptr; }

}  // namespace lx

#endif
