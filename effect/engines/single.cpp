// SPDX-License-Identifier: BSD-3-Clause
#include "effect/module_engine.h"

namespace lx {

[[gnu::used]] constexpr EngineMarker kModuleMarker = MakeEngineMarker<KernelFootprint<float>>();

DefocusEngine* MakeModuleEngine() { return MakeEngineOf<KernelFootprint<float>>(); }

}  // namespace lx
