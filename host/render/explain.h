// SPDX-License-Identifier: BSD-3-Clause
// What a render would do, without doing it.
#pragma once

#include <iosfwd>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"
#include "host/render/shot_settings.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

// A line a frame: the files that would be read, and the one that would be written.
void ListFiles(const ShotPlan& plan, std::ostream& out);

// Grids, memory, how often the aperture is built, and where the grid doubles. Frames are taken to
// be as large as the first one that is there. Throws as reading and the values do.
//   engine  of the module that would render
void Explain(const lx::Footprint& engine, const Page& page, const ShotSettings& settings,
             const ShotPlan& plan, std::ostream& out);

}  // namespace glimmerhost
