// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/picture_formats.h"

#include <cstdint>
#include <string>
#include <utility>

#include "host/pictures/channels.h"
#include "host/pictures/floats/float_picture.h"
#include "host/pictures/plugged_formats.h"
#include "host/pictures/png_tiff/png_tiff_formats.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// What of a picture only the plug-in does, before its file is looked at; empty for nothing.
std::string BeyondOwn(const ReadOptions& options) {
  if (options.colours) {
    return "its colours are to be transformed";
  }
  const std::string& kept = options.keptFor;
  return kept.empty() || kept == "png" || kept == "tiff"
             ? ""
             : "what it says of itself is for a format that is neither PNG nor TIFF";
}

Picture ReadByPlugin(const fs::path& file, const ReadOptions& options, ReadReport* report) {
  std::string why = BeyondOwn(options);
  if (IsPngOrTiff(file)) {
    ReadReport found;
    std::string beyond;
    try {
      // Samples are ours wherever they come out the same: the plug-in's reader takes longer, and
      // passes over damage.
      Picture picture = ReadPngOrTiff(file, options, Reader::kExact, &found, &beyond);
      why = why.empty() ? beyond : why;
      if (!why.empty()) {
        CompletePlugged(file, why, options, &picture, &found);
      }
      *report = std::move(found);
      return picture;
    } catch (const BeyondReader& samples) {
      why = why.empty() ? samples.what() : why;
    }
    CheckTiffBlocks(file);
  }
  return ReadPlugged(file, why, options, report);
}

}  // namespace

std::optional<OutputFormat> FormatOf(const fs::path& file) {
  const std::optional<OutputFormat> own = PngOrTiffOf(file);
  return own || !kHasPicturePlugin ? own : PluggedFormatOf(file);
}

Picture ReadFormat(const fs::path& file, const ReadOptions& options, ReadReport* report) {
  if (kHasPicturePlugin) {
    return ReadByPlugin(file, options, report);
  }
  try {
    return ReadPngOrTiff(file, options, Reader::kBestEffort, report);
  } catch (const BeyondReader& beyond) {
    ReadFailure(file, beyond.what());
  }
}

PictureHead ReadFormatHead(const fs::path& file) {
  try {
    return ReadPngOrTiffHead(file);
  } catch (const BeyondReader& beyond) {
    if (!kHasPicturePlugin) {
      ReadFailure(file, beyond.what());
    }
    return ReadPluggedHead(file, IsPngOrTiff(file) ? beyond.what() : "");
  }
}

namespace {

// Floats for a file of whole numbers.
Picture ForWholeNumbers(const OutputFormat& format, const Picture& picture,
                        std::vector<NotCarried>* lost) {
  std::uint64_t cut = 0;
  Picture words = Quantised(picture, &cut);
  if (cut > 0 && lost != nullptr) {
    const bool isTiff = format.name == "tiff";
    lost->push_back(CutNotCarried(cut, isTiff ? "--bits float keeps them"
                                              : FormatLabel(format.name) + " has no place beyond"));
  }
  return words;
}

}  // namespace

void WriteFormat(const OutputFile& file, const OutputFormat& format, const Picture& picture,
                 const Coding& coding, std::vector<NotCarried>* lost) {
  const bool takesFloats = format.holdsFloats || coding.floats || picture.colours;
  if (picture.IsFloat() && !takesFloats) {
    WriteFormat(file, format, ForWholeNumbers(format, picture, lost), coding, lost);
    return;
  }
  if (kHasPicturePlugin && (picture.colours || picture.attributes || !format.own)) {
    WritePlugged(file, format, picture, coding, lost);
  } else {
    WritePngOrTiff(file.file, format, picture, coding, lost);
  }
}

}  // namespace glimmerhost
