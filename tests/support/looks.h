// SPDX-License-Identifier: BSD-3-Clause
// Looks as they come to the store.
#pragma once

#include <map>
#include <string>

#include "host/looks/keyframed_values.h"
#include "host/looks/look_layers.h"
#include "tests/support/looks.h"

namespace lx_test {

// The values for one picture of that size.
inline std::map<std::string, glimmerhost::Value> StillValuesOf(const glimmerhost::Page& page,
                                                               const glimmerhost::TypedLook& typed,
                                                               int width, int height) {
  return glimmerhost::StillValues(page, glimmerhost::ReadLayers(page, typed), width, height);
}

}  // namespace lx_test
