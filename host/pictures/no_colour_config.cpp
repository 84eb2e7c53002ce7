// A build without OpenColorIO.
#include "host/pictures/colour_config.h"
#include "host/support/failure.h"

namespace glimmerhost {

const bool kHasColourManagement = false;

std::unique_ptr<const ColourConfig> ColourConfig::Load(const std::filesystem::path& file) {
  throw Failure(file.string() + ": this build has no colour management");
}

}  // namespace glimmerhost
