// SPDX-License-Identifier: BSD-3-Clause
// Reading of a file that another program may not have finished.
#pragma once

#include <filesystem>
#include <functional>

namespace glimmerhost {

// Calls read, and throws Failure, which names the file, if it was written to meanwhile: some of
// what was read may be of before and some not there yet, and not every format shows that.
void ReadSteadily(const std::filesystem::path& file, const std::function<void()>& read);

}  // namespace glimmerhost
