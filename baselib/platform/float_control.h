// The floating-point control word of the calling thread, by processor.
#pragma once

#include <cstdint>

namespace lx {

// x86-64: the control bits of MXCSR in the low half, the x87 control word in the high
// half. arm64: FPCR. Elsewhere 0, and setting it does nothing.
std::uint32_t FloatControl();
void SetFloatControl(std::uint32_t word);
void ExtendFloatPrecision();

}  // namespace lx
