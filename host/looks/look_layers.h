// The looks that a render is put together from, one over the other.
#pragma once

#include <string>
#include <vector>

#include "host/looks/look.h"
#include "host/looks/page.h"

namespace glimmerhost {

struct LookLayer {
  std::string origin;  // what an error puts before a name: "--", or "film.toml: "
  Look look;
};

// The preset's look, the parameter file's and what was typed, each over those before it. Reads
// the files anew: whoever must be sure of one answer calls it once.
// Throws what reading the files throws, and UsageError for a preset that there is not.
std::vector<LookLayer> ReadLayers(const Look& typed);

// One look for the layers, which gives the store the same values as they do. What a layer over
// it decides is not in it, and every key is set once.
Look MergeLayers(const std::vector<LookLayer>& layers);

// The same over the page's defaults: all that is used, for saving.
Look UsedLook(const Page& page, const std::vector<LookLayer>& layers);

// Fills in what decides more than the values of the store, spread, pixel aspect and alpha, from
// the layers, and alpha's default.
void SettleLook(const std::vector<LookLayer>& layers, Look* look);

}  // namespace glimmerhost
