// SPDX-License-Identifier: BSD-3-Clause
// Where glimmerhost is, which renders for the window.
#pragma once

#include <filesystem>

namespace glimmerhost {

// It lies beside the running program, installed as in the build's folder. Throws MissingInput,
// which says where it was looked for.
//   folder  of the running program
std::filesystem::path HostProgram(const std::filesystem::path& folder);
std::filesystem::path HostProgram();

}  // namespace glimmerhost
