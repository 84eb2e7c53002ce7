#include "effect/module_engine.h"

namespace lx {

[[gnu::used]] constexpr EngineMarker kModuleMarker = MakeEngineMarker<FastFootprint>();

DefocusEngine* MakeModuleEngine() { return MakeEngineOf<FastFootprint>(); }

}  // namespace lx
