// SPDX-License-Identifier: BSD-3-Clause
// The program's own formats, PNG and TIFF: small libraries, which are there within milliseconds.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
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
// in this way: floats are not where the options have colours.
//   metadataBeyond  where not null: receives why what the file says beside its samples is not all
//                   in the picture, and is otherwise left. BeyondReader is thrown of samples alone.
Picture ReadPngOrTiff(const std::filesystem::path& file, const ReadOptions& options, Reader reader,
                      ReadReport* report, std::string* metadataBeyond = nullptr);

// As ReadFormatHead. Throws BeyondReader as ReadPngOrTiff does with kBestEffort.
PictureHead ReadPngOrTiffHead(const std::filesystem::path& file);

// Throws Failure, which names the file, if a block of a TIFF file is broken and that can be told:
// what reads for the plug-in hides it. Of files of other formats nothing is said, nor of blocks
// that libtiff itself cannot decode.
void CheckTiffBlocks(const std::filesystem::path& file);

// As WriteFormat. Of what a picture says of itself it knows metadata, not attributes.
void WritePngOrTiff(const std::filesystem::path& file, const OutputFormat& format,
                    const Picture& picture, const Coding& coding, std::vector<NotCarried>* lost);

}  // namespace glimmerhost
