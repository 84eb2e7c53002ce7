// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/platform/float_control.h"

#include <cstdint>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace lx::native {

#if defined(__x86_64__)

namespace {

// The low six bits of MXCSR are flags that any inexact operation raises. They say nothing
// of how a thread computes, and stay as they are.
constexpr std::uint32_t kMxcsrControl = 0xFFC0;

constexpr std::uint16_t kX87Precision = 0x0300;  // 64-bit mantissa when all bits are set

std::uint16_t X87Control() {
  std::uint16_t word;
  __asm__ volatile("fnstcw %0" : "=m"(word));
  return word;
}

void SetX87Control(std::uint16_t word) { __asm__ volatile("fldcw %0" : : "m"(word)); }

}  // namespace

std::uint32_t FloatControl() {
  return (_mm_getcsr() & kMxcsrControl) | (std::uint32_t{X87Control()} << 16U);
}

void SetFloatControl(std::uint32_t word) {
  _mm_setcsr((_mm_getcsr() & ~kMxcsrControl) | (word & kMxcsrControl));
  SetX87Control(static_cast<std::uint16_t>(word >> 16U));
}

void ExtendFloatPrecision() {
  SetX87Control(static_cast<std::uint16_t>(X87Control() | kX87Precision));
}

#elif defined(__aarch64__)

std::uint32_t FloatControl() {
  std::uint64_t word;
  __asm__ volatile("mrs %0, fpcr" : "=r"(word));
  return static_cast<std::uint32_t>(word);
}

void SetFloatControl(std::uint32_t word) {
  __asm__ volatile("msr fpcr, %0" : : "r"(std::uint64_t{word}));
}

void ExtendFloatPrecision() {}

#else

std::uint32_t FloatControl() { return 0; }
void SetFloatControl(std::uint32_t /*word*/) {}
void ExtendFloatPrecision() {}

#endif

}  // namespace lx::native
