// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/platform/processor.h"

namespace lx::native {

#if defined(__x86_64__)

const char* ProcessorForm() {
  if (__builtin_cpu_supports("avx") == 0) {
    return "x86-64";
  }
  const bool fuses = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
  return fuses ? "x86-64 with AVX and FMA" : "x86-64 with AVX";
}

#elif defined(__aarch64__)

const char* ProcessorForm() { return "arm64"; }

#else

const char* ProcessorForm() { return "unknown processor"; }

#endif

}  // namespace lx::native
