// SPDX-License-Identifier: BSD-3-Clause
// The looks that a render is put together from, one over the other.
#pragma once

#include <string>
#include <vector>

#include "host/looks/look.h"
#include "host/looks/page.h"

namespace glimmerhost {

// What a person asks for.
struct TypedLook : Look {
  std::string preset;  // its name; empty for none
  std::string file;    // a look file over the preset, and under what was typed; empty for none
};

struct LookLayer {
  std::string origin;  // what an error puts before a name: "--", or "film.toml: "
  Look look;
};

// The preset's look, the file's and what was typed, each over those before it. Reads the files
// anew: whoever must be sure of one answer calls it once.
// Throws what reading the files throws, and UsageError for an unknown preset.
std::vector<LookLayer> ReadLayers(const Page& page, const TypedLook& typed);

// One look for the layers, which gives the store the same values as they do. What a layer over
// it decides is not in it, and every key is set once.
Look MergeLayers(const Page& page, const std::vector<LookLayer>& layers);

// The same over the page's defaults: all that is used, for saving.
Look UsedLook(const Page& page, const std::vector<LookLayer>& layers);

// What the layers decide beside the values of the store.
struct PictureLook {
  std::string spread;       // empty for none
  std::string pixelAspect;  // A:B; empty for that of the picture's file
  std::string alpha;        // never empty
};
PictureLook PictureLookOf(const Page& page, const std::vector<LookLayer>& layers);

}  // namespace glimmerhost
