// SPDX-License-Identifier: BSD-3-Clause
// Between a TIFF file's tags and FileMetadata.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/pictures/not_carried.h"
#include "host/pictures/png_tiff/tiff_directory.h"

namespace glimmerhost {

FileMetadata ReadTiffMetadata(TIFF* tiff);

// Throws BeyondReader where the plug-in would bring more of the file, or bring it otherwise, into a
// file of that format.
//   directory  all that the picture's has
void CheckTiffMetadata(const FileMetadata& metadata, const std::vector<TiffEntry>& directory,
                       const std::string& keptFor);

// The colour space of an EXIF directory that has nothing else; none for any other.
std::optional<std::uint16_t> LoneColourSpace(const std::vector<TiffEntry>& exif);

// Writes an EXIF directory with what the metadata have for it, before anything else of the file, as
// libtiff would have to read the picture's again behind it. The place of it, or 0 for none.
std::uint64_t WriteTiffExif(const FileMetadata& metadata, TIFF* tiff);

// To be called before samples are written. Compression is the caller's.
void SetTiffMetadata(const FileMetadata& metadata, TIFF* tiff);

// What of it has no place in such a file.
std::vector<NotCarried> LostInTiff(const FileMetadata& metadata);

}  // namespace glimmerhost
