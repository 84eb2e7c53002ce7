// SPDX-License-Identifier: BSD-3-Clause
// What the module would keep to itself: it says nothing of a frame that it could not work on, and
// leaves it as a copy of its source.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"
#include "host/module/frame_renderer.h"

namespace glimmerhost {

// Throws Failure if the effect cannot take a picture of that size with these values: its grid
// would be too large, or there is not the memory for it.
//   engine  of the module that will render
//   held    bytes that the effect holds already from the frame before
void CheckGrid(const lx::Footprint& engine, const std::map<std::string, Value>& values, int width,
               int height, std::uint64_t held = 0);

// Whether rounding would be seen in dark areas of an engine's frames.
bool ShowsNoise(const lx::Footprint& engine, double emphasis);

// Throws Failure if the result is the source as it passes the border in 15 bits, though the
// aperture is larger than a pixel and the source has neighbours that differ. Alpha does not
// count: it may be left alone on purpose.
void CheckRendered(const FrameInput& input, FrameImage* result);

}  // namespace glimmerhost
