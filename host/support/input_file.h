// SPDX-License-Identifier: BSD-3-Clause
// A file that is to be read, before it is opened.
#pragma once

#include <filesystem>

namespace glimmerhost {

// Throws MissingInput if nothing of that name is there, and Failure for what is no regular file: a
// pipe would be waited for, and a device may have no end. Both name the file.
void RequireFile(const std::filesystem::path& file);

}  // namespace glimmerhost
