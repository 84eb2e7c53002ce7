// SPDX-License-Identifier: BSD-3-Clause
// What is looked for before a library takes memory for what a file claims to hold.
#pragma once

#include <cstdint>
#include <filesystem>

namespace glimmerhost {

// Throws Failure, which names the file, where samples of that size would not fit into this
// machine's memory: a broken header claims any size, and systems end a program that takes it.
//   width, height  above 0
//   pixel          bytes, while the file is read
void CheckMemoryFor(const std::filesystem::path& file, int width, int height, std::uint64_t pixel);

}  // namespace glimmerhost
