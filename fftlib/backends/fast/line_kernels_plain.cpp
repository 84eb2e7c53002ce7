// One line at a time: what the other forms are measured by.
#include "fftlib/backends/fast/line_kernels.h"
#include "fftlib/backends/fast/line_kernels_of.h"

namespace lx {
namespace {
struct Plain {};
}  // namespace

const LineKernels& PlainLineKernels() {
  static constexpr LineKernels kKernels = LineKernelsOf<Plain, 1>::Table();
  return kKernels;
}

const LineKernels& GetLineKernels() {
  static const LineKernels* const kernels = [] {
    for (const LineKernels* wide : {Avx512LineKernels(), Avx2LineKernels()}) {
      if (wide != nullptr) {
        return wide;
      }
    }
    return &Vector128LineKernels();
  }();
  return *kernels;
}

}  // namespace lx
