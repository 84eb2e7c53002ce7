// SPDX-License-Identifier: BSD-3-Clause
#include "effect/module_engine.h"

namespace lx {

[[gnu::used]] constexpr EngineMarker kModuleMarker = MakeEngineMarker<FftwFootprint>();

DefocusEngine* MakeModuleEngine() { return MakeEngineOf<FftwFootprint>(); }

}  // namespace lx
