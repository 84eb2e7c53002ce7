// Between a PNG file's ancillary chunks and FileMetadata.
#pragma once

#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/pictures/not_carried.h"
#include "host/pictures/png_library.h"

namespace glimmerhost {

// What stood before the samples, or all of it once the end has been read.
FileMetadata ReadPngMetadata(const PngLibrary& library);

// To be written with the header. What libpng refuses, such as a profile of colours for a grey
// picture, is left out.
void SetPngMetadata(const FileMetadata& metadata, PngLibrary* library);

// What of it has no place in such a file, or not beside such samples.
std::vector<NotCarried> LostInPng(const FileMetadata& metadata, bool grey);

}  // namespace glimmerhost
