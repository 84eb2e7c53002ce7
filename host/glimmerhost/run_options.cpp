#include "host/glimmerhost/run_options.h"

#include "host/support/utf8_path.h"

namespace glimmerhost {

SessionSettings SessionSettingsOf(const RunOptions& options) {
  return {options.values, Utf8Path(options.spread), options.pixelAspect, options.overwrite};
}

}  // namespace glimmerhost
