// SPDX-License-Identifier: BSD-3-Clause
// What a library exports, as its file tells it.
#pragma once

#include <string>
#include <vector>

namespace lx_test {

// In alphabetical order.
std::vector<std::string> ExportedNames(const char* file);

}  // namespace lx_test
