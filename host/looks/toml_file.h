// SPDX-License-Identifier: BSD-3-Clause
// TOML from a file, whatever letters its name has.
#pragma once

#include <filesystem>

#include "host/looks/toml_library.h"

namespace glimmerhost {

// Throws toml::parse_error, and std::runtime_error if the file cannot be opened.
toml::table ParseTomlFile(const std::filesystem::path& file);

}  // namespace glimmerhost
