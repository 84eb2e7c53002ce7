// SPDX-License-Identifier: BSD-3-Clause
#include "tests/soak/life.h"

namespace soak {

Hashes Live(const Modules& modules, const LifeKey& key) {
  if (key.kind == "render") {
    return LiveRender(modules, key);
  }
  if (key.kind == "page") {
    return LivePage(modules, key);
  }
  return key.kind == "library" ? LiveLibrary(key) : LivePictures(key);
}

}  // namespace soak
