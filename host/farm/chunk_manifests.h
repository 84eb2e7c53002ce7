// SPDX-License-Identifier: BSD-3-Clause
// The manifests of chunks, where a shot is cut otherwise than the last time.
#pragma once

#include "host/farm/farm_job.h"

namespace glimmerhost {

// Gives the manifest of each chunk the lines of its frames from manifests of other cuts that are
// later than it: a chunk knows no other manifest, and would take their frames for somebody else's.
// Throws Failure.
void CarryManifests(const FarmJob& job);

}  // namespace glimmerhost
