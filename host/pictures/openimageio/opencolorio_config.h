// SPDX-License-Identifier: BSD-3-Clause
// Colour configurations by OpenColorIO.
#pragma once

#include <filesystem>
#include <memory>

#include "host/pictures/colour_config.h"

namespace glimmerhost {

// As ColourConfig::Load.
std::unique_ptr<const ColourConfig> LoadOpenColorIoConfig(const std::filesystem::path& file);

}  // namespace glimmerhost
