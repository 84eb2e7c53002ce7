// SPDX-License-Identifier: BSD-3-Clause
// What tells whether a file is the same: XXH3 of 128 bits, as "xxh128:" and 32 digits. It finds
// accidents; it is no proof against somebody who wants another file to pass.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace glimmerhost {

// Throws Failure, which names the file, if it cannot be read; MissingInput if it is not there.
std::string FileHash(const std::filesystem::path& file);

// The same of samples that were in no file, as they lie in memory.
std::string SamplesHash(const std::vector<std::uint16_t>& samples);

}  // namespace glimmerhost
