// SPDX-License-Identifier: BSD-3-Clause
// The file formats that this build reads and writes: PNG and TIFF by itself, others by a plug-in
// where the system has it. Of PNG and TIFF the plug-in does what the program itself would do with
// a loss.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/coding.h"
#include "host/pictures/not_carried.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_head.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// What a format can hold.
struct OutputFormat {
  std::string name;  // in lower case: "png", "tiff", "openexr"
  bool holdsAlpha = false;
  bool straightOnly = false;       // alpha is straight, and nothing in the file could say else
  bool premultipliedOnly = false;  // alpha is premultiplied, likewise
  bool holdsFloats = false;        // colours are written as the picture's range says
  bool own = false;                // the program writes it itself
};

// What a picture is read for that will be written in that format.
inline std::string KeptFor(const OutputFormat& format) { return format.name; }

// Whether channels beside the picture's, and parts behind it, have a place in the format.
inline bool HoldsExtras(const OutputFormat& format) { return format.name == "openexr"; }

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

// As ReadPictureHead, of such a file.
PictureHead ReadFormatHead(const std::filesystem::path& file);

// A file on its way.
struct OutputFile {
  std::filesystem::path file;  // where it is written
  std::string name;            // what it is to be called, for formats that hold their own name
};

// Writes the picture with its metadata, and closes the file. The same picture gives the same bytes
// each time. What a failure leaves is the caller's to remove.
//   coding  one that SettleCoding gave for the format; formats without whole numbers write half
//           floats unless it says otherwise
//   lost    receives what of the metadata is not in the file; null if nobody asks
// Throws Failure with the bare reason, since the caller knows the file under another name.
void WriteFormat(const OutputFile& file, const OutputFormat& format, const Picture& picture,
                 const Coding& coding, std::vector<NotCarried>* lost);

}  // namespace glimmerhost
