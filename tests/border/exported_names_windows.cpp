// SPDX-License-Identifier: BSD-3-Clause
#include "tests/border/dll_image.h"
#include "tests/border/exported_names.h"

namespace lx_test {

std::vector<std::string> ExportedNames(const char* file) { return DllImage(file).Exports(); }

}  // namespace lx_test
