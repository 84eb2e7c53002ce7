// SPDX-License-Identifier: BSD-3-Clause
#include "effect/module_engine.h"

namespace lx {

[[gnu::used]] constexpr EngineMarker kModuleMarker = MakeEngineMarker<FastFootprint>();

DefocusEngine* MakeModuleEngine() { return MakeEngineOf<FastFootprint>(); }

}  // namespace lx
