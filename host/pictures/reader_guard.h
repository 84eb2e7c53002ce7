// SPDX-License-Identifier: BSD-3-Clause
// What is looked for in a file before a library reads it that would not survive it.
#pragma once

#include <cstdint>
#include <filesystem>

namespace glimmerhost {

// A DPX file that claims more user data than it has bytes: the library's reader would end the
// program. Throws Failure, which names the file. Of other files nothing is said.
void CheckDpxHeader(const std::filesystem::path& file);

// Throws Failure, which names the file, where samples of that size would not fit into this
// machine's memory: a broken header claims any size, and systems end a program that takes it.
//   width, height  above 0
//   pixel          bytes, while the file is read
void CheckMemoryFor(const std::filesystem::path& file, int width, int height, std::uint64_t pixel);

}  // namespace glimmerhost
