// SPDX-License-Identifier: BSD-3-Clause
// The directories of a TIFF file as they stand in it: libtiff tells only of the tags that it is
// asked for, and leaves the picture when it is asked for another directory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace glimmerhost {

struct TiffEntry {
  std::uint16_t tag;
  std::uint16_t type;
  std::uint64_t count;
  std::uint64_t value;  // the first of whole numbers that stand in the entry; otherwise their place
};

// Of the file's first picture, in their order. Ends early where the file does.
std::vector<TiffEntry> FirstTiffDirectory(const std::filesystem::path& file);

// Of the directory at a place of the file.
std::vector<TiffEntry> TiffDirectoryAt(const std::filesystem::path& file, std::uint64_t place);

}  // namespace glimmerhost
