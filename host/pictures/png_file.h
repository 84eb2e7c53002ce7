// Pictures in PNG files, by libpng.
#pragma once

#include <filesystem>

#include "host/pictures/picture.h"

namespace glimmerhost {

// Palettes, few bits and a transparent colour come out as the colours and alpha that they
// stand for. Throws Failure, which names the file.
Picture ReadPng(const std::filesystem::path& file);

// Throws Failure with the bare reason.
//   bits  8 or 16
void WritePng(const std::filesystem::path& file, const Picture& picture, int bits);

}  // namespace glimmerhost
