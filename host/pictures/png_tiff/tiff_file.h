// SPDX-License-Identifier: BSD-3-Clause
// Pictures in TIFF files, by libtiff.
#pragma once

#include <filesystem>
#include <string>

#include "host/pictures/beyond_reader.h"
#include "host/pictures/coding.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_head.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// Reads the first picture of the file: strips or tiles, its samples together or each kind
// apart, of 1 to 32 bits or floating point, grey, by a palette or in colour.
// Throws Failure, which names the file, and BeyondReader.
//   metadataBeyond  as of ReadPngOrTiff
Picture ReadTiff(const std::filesystem::path& file, const ReadOptions& options, Reader reader,
                 ReadReport* report, std::string* metadataBeyond);

// Throws Failure, which names the file, and BeyondReader.
PictureHead ReadTiffHead(const std::filesystem::path& file);

// As CheckTiffBlocks, of a TIFF file.
void CheckBlocksOfTiff(const std::filesystem::path& file);

// Throws Failure with the bare reason.
//   coding  of 8 or 16 bits, or of floats of 32
void WriteTiff(const std::filesystem::path& file, const Picture& picture, const Coding& coding);

}  // namespace glimmerhost
