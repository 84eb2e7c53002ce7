// SPDX-License-Identifier: BSD-3-Clause
// What has to be on a machine for a library to load there.
#pragma once

#include <string>
#include <vector>

namespace lx_test {

// The libraries that a file names and that do not come with every system.
std::vector<std::string> ForeignLibraries(const std::string& file);

}  // namespace lx_test
