// SPDX-License-Identifier: BSD-3-Clause
// The engines that this build of the library has.
#pragma once

#include <cstdint>
#include <memory>

#include "fftlib/backends/backend.h"
#include "fftlib/backends/footprint.h"

namespace lx {

//   engine  a glimmerblur_engine
// Throws a Refusal where this build has it not.
std::unique_ptr<Backend> MakeEngine(std::int32_t engine);

// What a frame takes in it.
const Footprint* FootprintOf(const Backend& engine);

}  // namespace lx
