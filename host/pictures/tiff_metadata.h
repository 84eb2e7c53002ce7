// Between a TIFF file's tags and FileMetadata.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/pictures/not_carried.h"

namespace glimmerhost {

FileMetadata ReadTiffMetadata(TIFF* tiff);

// Throws BeyondReader where the plug-in would bring more of the file, or bring it otherwise, into a
// file of that format.
//   tags  all that the directory has
void CheckTiffMetadata(TIFF* tiff, const std::vector<std::uint16_t>& tags,
                       const std::string& keptFor);

// To be called before samples are written. Compression is the caller's.
void SetTiffMetadata(const FileMetadata& metadata, TIFF* tiff);

// What of it has no place in such a file.
std::vector<NotCarried> LostInTiff(const FileMetadata& metadata);

}  // namespace glimmerhost
