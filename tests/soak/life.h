// SPDX-License-Identifier: BSD-3-Clause
// A life: an instance or an object of ours from its making to its end, with all that is done to it.
//
// Its key alone decides what happens in it and what comes out, whatever else the process has done
// before and does at the same time: a fresh process that lives it again gets the same hashes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/soak/modules.h"

namespace soak {

struct LifeKey {
  std::string kind;    // render, page, library or pictures
  std::string engine;  // of the module; of no meaning for library and pictures
  unsigned seed = 0;
};

// What each frame came to, or each step of a page, or what became of a broken picture.
using Hashes = std::vector<std::uint64_t>;

//   modules  must hold the key's engine, where the kind needs a module
Hashes Live(const Modules& modules, const LifeKey& key);

// A render instance: frames of any size, looks of any kind, stores with numbers that are none,
// hosts that throw.
Hashes LiveRender(const Modules& modules, const LifeKey& key);

// A page under a hand that drags handles and changes values.
Hashes LivePage(const Modules& modules, const LifeKey& key);

// An object of the library: samples and channels of all kinds, tiles, cancelled renders, looks and
// frames that are refused.
Hashes LiveLibrary(const LifeKey& key);

// Files that something has happened to, read by our own readers.
Hashes LivePictures(const LifeKey& key);

}  // namespace soak
