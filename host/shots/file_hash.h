// SPDX-License-Identifier: BSD-3-Clause
// What tells whether a file is the same: XXH3 of 128 bits, as "xxh128:" and 32 digits. It finds
// accidents; it is no proof against somebody who wants another file to pass.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace glimmerhost {

// Throws Failure, which names the file, if it cannot be read; MissingInput if it is not there.
std::string FileHash(const std::filesystem::path& file);

// Of a text.
std::string TextHash(std::string_view text);

// A file as it was at a time. Whoever holds the state knows without reading whether the file may
// have changed since.
struct FileState {
  std::uint64_t size = 0;
  std::int64_t time = 0;  // of the last change, in ticks of this system's clock for files; 0 if it
                          // was so recent that the next change may have the same
  std::string hash;

  bool operator==(const FileState&) const = default;
};

// The state now. Throws as FileHash.
//   known  an earlier state: where size and time are as in it, its hash is believed
FileState StateOfFile(const std::filesystem::path& file, const FileState& known = {});

// The same of samples that were in no file, as they lie in memory.
std::string SamplesHash(const std::vector<std::uint16_t>& samples);

}  // namespace glimmerhost
