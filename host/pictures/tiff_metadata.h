// Between a TIFF file's tags and FileMetadata.
#pragma once

#include <tiffio.h>

#include "host/pictures/file_metadata.h"
#include "host/pictures/not_carried.h"

namespace glimmerhost {

FileMetadata ReadTiffMetadata(TIFF* tiff);

// To be called before samples are written. Compression is the caller's.
void SetTiffMetadata(const FileMetadata& metadata, TIFF* tiff);

// What of it has no place in such a file.
std::vector<NotCarried> LostInTiff(const FileMetadata& metadata);

}  // namespace glimmerhost
