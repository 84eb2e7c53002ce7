// Vectors of 128 bits, which every x86-64 and every arm64 processor has.
#include "fftlib/backends/fast/line_kernels.h"
#include "fftlib/backends/fast/line_kernels_of.h"

namespace lx {
namespace {
struct Vector128 {};
}  // namespace

const LineKernels& Vector128LineKernels() {
  static constexpr LineKernels kKernels = LineKernelsOf<Vector128, 2>::Table();
  return kKernels;
}

}  // namespace lx
