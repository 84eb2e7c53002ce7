// SPDX-License-Identifier: BSD-3-Clause
#include "effect/module_engine.h"

namespace lx {

[[gnu::used]] constexpr EngineMarker kModuleMarker = MakeEngineMarker<KernelFootprint<double>>();

DefocusEngine* MakeModuleEngine() { return MakeEngineOf<KernelFootprint<double>>(); }

}  // namespace lx
