// SPDX-License-Identifier: BSD-3-Clause
// The floating-point control word of the calling thread, by processor: rounding, precision,
// exception masks and flushing of denormals as one word. Flags that arithmetic raises are not in
// it.
//
// x86-64: the control bits of MXCSR in the low half, the x87 control word in the high half. arm64:
// FPCR. Elsewhere 0, and setting it does nothing.
#pragma once

#include <cstdint>

namespace lx {

namespace native {

std::uint32_t FloatControl();
void SetFloatControl(std::uint32_t word);

// Sets the precision of x87 arithmetic to its full 64-bit mantissa. Nothing elsewhere.
void ExtendFloatPrecision();

}  // namespace native

struct FloatControlOperations {
  decltype(native::FloatControl)* floatControl = native::FloatControl;
  decltype(native::SetFloatControl)* setFloatControl = native::SetFloatControl;
  decltype(native::ExtendFloatPrecision)* extendFloatPrecision = native::ExtendFloatPrecision;
};

}  // namespace lx
