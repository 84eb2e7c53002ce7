// SPDX-License-Identifier: BSD-3-Clause
// The bits of the floating-point control word that flush denormals: a change that the word keeps
// and that arithmetic shows. baselib/platform/float_control.h tells what the word is on each
// processor.
#pragma once

#include <cstdint>

#if defined(__x86_64__)
// MXCSR, in the low half.
constexpr std::uint32_t kFlushingBits = 0x8000;
#elif defined(__aarch64__)
// FPCR. It reads as 0 at the bit of MXCSR, whatever is written there.
constexpr std::uint32_t kFlushingBits = 0x1000000;
#else
// There is no word to change.
constexpr std::uint32_t kFlushingBits = 0;
#endif
