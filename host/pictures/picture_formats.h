// The file formats that this build reads and writes. One source defines them: by OpenImageIO
// where the system has it, by libpng and libtiff otherwise.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/not_carried.h"
#include "host/pictures/picture.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// What a format can hold.
struct OutputFormat {
  std::string name;  // in lower case: "png", "tiff", "openexr"
  bool holdsAlpha = false;
  bool straightOnly = false;       // alpha is straight, and nothing in the file could say else
  bool premultipliedOnly = false;  // alpha is premultiplied, likewise
  bool holdsFloats = false;        // colours are written as the picture's range says
};

// For a person: "PNG and TIFF".
extern const char* const kReadableFormats;

// What an output's name may end in: ".png, .tif or .tiff".
extern const char* const kWritableEndings;

// The format that a file's ending asks for; none if this build does not write it.
std::optional<OutputFormat> FormatOf(const std::filesystem::path& file);

// Reads a file that is there and not empty, whatever its ending.
// Throws Failure, which names the file.
Picture ReadFormat(const std::filesystem::path& file, const ReadOptions& options,
                   ReadReport* report);

// Writes the picture with its metadata into a file of that name, and closes it. What a failure
// leaves is the caller's to remove.
//   bits  8 or 16; formats without whole numbers write half floats
//   lost  receives what of the metadata is not in the file; null if nobody asks
// Throws Failure with the bare reason, since the caller knows the file under another name.
void WriteFormat(const std::filesystem::path& file, const OutputFormat& format,
                 const Picture& picture, int bits, std::vector<NotCarried>* lost);

}  // namespace glimmerhost
