// The tags of a TIFF file as they stand in it: libtiff tells only of those that it is asked for.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace glimmerhost {

// Of the file's first picture, in their order. Ends early where the file does.
std::vector<std::uint16_t> FirstTiffTags(const std::filesystem::path& file);

}  // namespace glimmerhost
