// What tells whether a file is the same: XXH3 of 128 bits, as "xxh128:" and 32 digits. It finds
// accidents; it is no proof against somebody who wants another file to pass.
#pragma once

#include <filesystem>
#include <string>

namespace glimmerhost {

// Throws Failure, which names the file, if it cannot be read; MissingInput if it is not there.
std::string FileHash(const std::filesystem::path& file);

}  // namespace glimmerhost
