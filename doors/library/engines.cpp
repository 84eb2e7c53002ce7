// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/engines.h"

#include <algorithm>
#include <new>
#include <string>

#include "doors/library/refusal.h"

namespace lx {

std::unique_ptr<Backend> MakeEngine(std::int32_t engine) {
  std::unique_ptr<Backend> made;
  switch (engine) {
    case GLIMMERBLUR_FAST:
      made = FastFootprint::Make();
      break;
    case GLIMMERBLUR_EXACT:
#ifdef GLIMMERBLUR_WITH_EXACT
      made = FftwFootprint::Make();
      break;
#else
      throw Refusal(GLIMMERBLUR_NOT_BUILT, "The engine exact is not in this build of the library.");
#endif
    default:
      throw Refusal(GLIMMERBLUR_INVALID_ARGUMENT,
                    "The engine is " + std::to_string(engine) + "; it must be 0 or 1.");
  }
  if (made == nullptr) {
    throw std::bad_alloc();
  }
  return made;
}

const Footprint* FootprintOf(const Backend& engine) {
  return &*std::find_if(kFootprints.begin(), kFootprints.end(), [&](const Footprint& footprint) {
    return footprint.name == engine.Name();
  });
}

}  // namespace lx
