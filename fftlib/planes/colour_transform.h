// SPDX-License-Identifier: BSD-3-Clause
// The colour transform between red, green, blue and luma, Cr, Cb.
//
// Single-precision constants, widened. The Cb row differs from the usual one: it is built
// from 0.98 B, and the way back divides by 0.98. The two are inverse up to rounding.
#pragma once

namespace lx {

inline constexpr double kLumaR = 0.29899999499320984;
inline constexpr double kLumaG = 0.5870000123977661;
inline constexpr double kLumaB = 0.11400000005960464;
inline constexpr double kCrR = 0.5;
inline constexpr double kCrG = -0.41868799924850464;
inline constexpr double kCrB = -0.08131200075149536;
inline constexpr double kCbR = -0.2132669985294342;
inline constexpr double kCbG = -0.41868799924850464;
inline constexpr double kCbB = 0.6176890134811401;

inline constexpr double kRCr = 1.4019999504089355;
inline constexpr double kGY = 0.9960359930992126;
inline constexpr double kGCr = 0.714136004447937;
inline constexpr double kGCb = 0.27783599495887756;
inline constexpr double kBY = 1.020408034324646;
inline constexpr double kBCb = 1.4306119680404663;

}  // namespace lx
