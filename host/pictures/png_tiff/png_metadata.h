// SPDX-License-Identifier: BSD-3-Clause
// Between a PNG file's ancillary chunks and FileMetadata.
#pragma once

#include <string>
#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/pictures/not_carried.h"
#include "host/pictures/png_tiff/png_library.h"

namespace glimmerhost {

// What stood before the samples, or all of it once the end has been read.
FileMetadata ReadPngMetadata(const PngLibrary& library);

// Throws BeyondReader where the plug-in would bring more of the file, or bring it otherwise, into a
// file of that format.
//   grey  of the picture
void CheckPngMetadata(const FileMetadata& metadata, const PngLibrary& library, bool grey,
                      const std::string& keptFor);

// To be written with the header. What libpng refuses, such as a profile of colours for a grey
// picture, is left out.
void SetPngMetadata(const FileMetadata& metadata, PngLibrary* library);

// What of it has no place in such a file, or not beside such samples.
std::vector<NotCarried> LostInPng(const FileMetadata& metadata, bool grey);

}  // namespace glimmerhost
