// SPDX-License-Identifier: BSD-3-Clause
// What the module would keep to itself: it says nothing of a frame that it could not work on, and
// leaves it as a copy of its source.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"
#include "host/module/frame_renderer.h"
#include "host/pictures/picture.h"

namespace glimmerhost {

// Throws Failure if the effect cannot take a picture of that size with these values: its grid
// would be too large, or there is not the memory for it.
//   engine    of the module that will render
//   held      bytes that the effect holds already from the frame before
//   pictures  bytes that are still to be taken for pictures themselves
void CheckGrid(const lx::Footprint& engine, const std::map<std::string, Value>& values, int width,
               int height, std::uint64_t held = 0, std::uint64_t pictures = 0);

// The emphasis up to which rounding is not seen in dark areas of an engine's frames.
double QuietEmphasis(const lx::Footprint& engine);

// Whether the disc that the shape image cuts its aperture from shows nothing: it is off the
// picture, or there is no red in it. A point stays a point then, and the frame what it was. False
// for the other shapes.
bool ApertureHoldsNothing(const FrameInput& input);

// What a person is told of it.
inline constexpr const char* kEmptyAperture =
    "the aperture holds nothing, as its disc shows no red: the picture stays as it is";

// False if the result is the source as it passes the border in 15 bits, since the aperture holds
// nothing. Throws Failure if it is the source for no such reason, though the aperture is larger
// than a pixel and the source has neighbours that differ; there alpha does not count, as it may be
// left alone on purpose. Throws Failure, too, if there is no light in the result though the source
// is a picture, which no aperture moves out of the frame: so it comes from an effect without
// memory. Where an aperture has no spectrum, that is one green throughout.
bool CheckRendered(const FrameInput& input, FrameImage* result);

// Whether CheckRendered takes the result.
bool IsWorkedOn(const FrameInput& input, FrameImage* result);

// Whether a result in floats is the source, but for rounding, since the aperture holds nothing.
bool StayedAsItWas(const FrameInput& input, const Picture& source,
                   const std::vector<float>& result);

}  // namespace glimmerhost
