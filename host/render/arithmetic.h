// SPDX-License-Identifier: BSD-3-Clause
// The arithmetic of a frame: what may decide how its samples are rounded, in a line of text.
//
// Frames of the same look and input that were made under one text are the same bit for bit, on any
// machine and system; of two texts they may differ. Measured plans are the exception: their text
// says that they are some, and each machine's file of plans may have others.
#pragma once

#include <string>

#include "host/module/effect_module.h"

namespace glimmerhost {

// That of frames that go through a module.
//
//   fast      fast 1
//   double    double 1, x86-64 with AVX and FMA
//   single    likewise
//   exact     exact 1, fftw-3.3.10-sse2-avx, x86-64 with AVX and FMA, 2 threads
//   a file that tells no number of its arithmetic
//             exact of file xxh128:99aa..., x86-64 with AVX and FMA, 2 threads
//
// Threads are counted as an engine made now would. Throws Failure where the file cannot be read.
std::string ArithmeticOf(const EffectModule& module);

// The engine of a module and the number of its arithmetic, which is the same in its builds for all
// systems; the file where it tells no number. With what ArithmeticOf begins: "exact 1".
// Throws Failure where the file cannot be read.
std::string NumberedEngine(const ModuleChoice& choice);

// That of frames of floats, which go through the library.
std::string FloatArithmetic();

}  // namespace glimmerhost
