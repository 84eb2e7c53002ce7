// SPDX-License-Identifier: BSD-3-Clause
// What was asked for and changes nothing, since the look's shape has no use for it.
#pragma once

#include <string>
#include <vector>

#include "host/looks/keys.h"
#include "host/looks/look_layers.h"
#include "host/looks/page.h"

namespace glimmerhost {

// The shapes that the layers name, in order, each once: several where keyframes change it. All of
// them where a text is no shape, which is told by whoever takes the values.
std::vector<Shape> ShapesOf(const Page& page, const std::vector<LookLayer>& layers);

// A line for each option of the uppermost layer, which was typed, that none of the shapes has a use
// for: "--sides has no effect with the shape circle". Looks below it are made for more than one
// use.
std::vector<std::string> IdleOptions(const Page& page, const std::vector<LookLayer>& layers);

}  // namespace glimmerhost
