// SPDX-License-Identifier: BSD-3-Clause
// The engine of a module's instances, and what a module's file says of it.
//
// A module links one source of effect/engines/, which defines both.
#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <utility>

#include "fftlib/backends/footprint.h"
#include "fftlib/fftlib.h"

namespace lx {

// A new engine of the module's kind, owned by the caller; null where there is no memory for one.
DefocusEngine* MakeModuleEngine();

// "GlimmerBlur engine: double", say, a zero, the number of its arithmetic and zeros behind it. In
// the module's file this is what tells its engine; no code of a module reads it, and the linker
// must keep it all the same.
struct EngineMarker {
  std::array<char, 40> text;
};
extern const EngineMarker kModuleMarker;

template <class Footprint>
constexpr EngineMarker MakeEngineMarker() {
  EngineMarker marker{};
  auto* const end = std::copy(kEngineMarker.begin(), kEngineMarker.end(), marker.text.begin());
  auto* place = std::copy(Footprint::kName.begin(), Footprint::kName.end(), end) + 1;
  static_assert(Footprint::kArithmetic >= 1 && Footprint::kArithmetic < 100);
  if (Footprint::kArithmetic >= 10) {
    *place++ = static_cast<char>('0' + Footprint::kArithmetic / 10);
  }
  *place = static_cast<char>('0' + Footprint::kArithmetic % 10);
  return marker;
}

// An engine on that back-end, which is the only one to be linked.
template <class Footprint>
DefocusEngine* MakeEngineOf() {
  std::unique_ptr<Backend> backend = Footprint::Make();
  return backend != nullptr ? new (std::nothrow) DefocusEngine(std::move(backend)) : nullptr;
}

}  // namespace lx
