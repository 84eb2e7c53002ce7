// A file with values for the effect, named as the options are.
#pragma once

#include <filesystem>
#include <string>

#include "host/glimmerhost/render_settings.h"

namespace glimmerhost {

// Reads TOML in which each key is an option without its dashes (shape = "image", radius-psf1 =
// "20px", match = true) or a key of the store (PRM_Sides = 5).
// Throws Failure if the file cannot be read, UsageError for a key or value that it may not
// have; both name the file.
TypedValues ReadParameterFile(const std::filesystem::path& file);

}  // namespace glimmerhost
