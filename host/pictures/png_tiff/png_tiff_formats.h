// SPDX-License-Identifier: BSD-3-Clause
// The program's own formats, PNG and TIFF: small libraries, which are there within milliseconds.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "host/pictures/beyond_reader.h"
#include "host/pictures/picture_formats.h"

namespace glimmerhost {

// The format of a name that ends in .png, .tif or .tiff.
std::optional<OutputFormat> PngOrTiffOf(const std::filesystem::path& file);

// Whether a file begins as one, whatever its ending. Throws Failure, which names the file, if the
// system does not open it.
bool IsPngOrTiff(const std::filesystem::path& file);

// As ReadFormat. Throws BeyondReader as well, for a file of another format and for what is not read
// in this way. The options' colours are not looked at.
Picture ReadPngOrTiff(const std::filesystem::path& file, const ReadOptions& options, Reader reader,
                      ReadReport* report);

// As WriteFormat. Of what a picture says of itself it knows metadata, not attributes.
void WritePngOrTiff(const std::filesystem::path& file, const OutputFormat& format,
                    const Picture& picture, int bits, std::vector<NotCarried>* lost);

}  // namespace glimmerhost
