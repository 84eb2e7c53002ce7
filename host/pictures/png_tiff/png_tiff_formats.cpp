// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/png_tiff_formats.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/file_bytes.h"
#include "host/pictures/png_tiff/png_file.h"
#include "host/pictures/png_tiff/png_metadata.h"
#include "host/pictures/png_tiff/tiff_file.h"
#include "host/pictures/png_tiff/tiff_metadata.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using Start = std::array<unsigned char, 8>;

Start StartOf(const fs::path& file) {
  FileBytes bytes(file, FileUse::kRead);
  if (!bytes.IsOpen()) {
    ReadFailure(file, "the system does not open it");
  }
  Start start{};
  // What cannot be read is not to be taken for another format.
  if (bytes.Read(start.data(), start.size()) < start.size() && bytes.IsUnreadable()) {
    ReadFailure(file, "the system does not read it");
  }
  return start;
}

bool IsPng(const Start& start) {
  return start == Start{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
}

// 42, or 43 for files of more than 4 GiB, in the byte order that the two letters name.
bool IsTiff(const Start& start) {
  const auto version = [&start](unsigned char first, unsigned low, unsigned high) {
    return start[0] == first && start[1] == first && start[high] == 0 &&
           (start[low] == 42 || start[low] == 43);
  };
  return version('I', 2, 3) || version('M', 3, 2);
}

}  // namespace

std::optional<OutputFormat> PngOrTiffOf(const fs::path& file) {
  // Not as a narrow string: of a name that has none, that throws.
  fs::path::string_type ending = file.extension().native();
  for (auto& letter : ending) {
    letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  if (ending == fs::path(".png").native()) {
    return OutputFormat{"png", true, true, false, false, true};
  }
  if (ending == fs::path(".tif").native() || ending == fs::path(".tiff").native()) {
    return OutputFormat{"tiff", true, false, false, false, true};
  }
  return std::nullopt;
}

bool IsPngOrTiff(const fs::path& file) {
  const Start start = StartOf(file);
  return IsPng(start) || IsTiff(start);
}

Picture ReadPngOrTiff(const fs::path& file, const ReadOptions& options, Reader reader,
                      ReadReport* report, std::string* metadataBeyond) {
  const Start start = StartOf(file);
  if (IsPng(start)) {
    return ReadPng(file, options, reader, metadataBeyond);
  }
  if (!IsTiff(start)) {
    throw BeyondReader("not a picture that can be read: it must be PNG or TIFF");
  }
  return ReadTiff(file, options, reader, report, metadataBeyond);
}

PictureHead ReadPngOrTiffHead(const fs::path& file) {
  const Start start = StartOf(file);
  if (!IsPng(start) && !IsTiff(start)) {
    throw BeyondReader("not a picture that can be read: it must be PNG or TIFF");
  }
  return IsPng(start) ? ReadPngHead(file) : ReadTiffHead(file);
}

void CheckTiffBlocks(const fs::path& file) {
  if (IsTiff(StartOf(file))) {
    CheckBlocksOfTiff(file);
  }
}

void WritePngOrTiff(const fs::path& file, const OutputFormat& format, const Picture& picture,
                    const Coding& coding, std::vector<NotCarried>* lost) {
  const bool png = format.name == "png";
  if (png) {
    WritePng(file, picture, coding);
  } else {
    WriteTiff(file, picture, coding);
  }
  if (lost != nullptr && picture.grownBy > 0) {
    lost->push_back(GrownNotCarried(picture.width - 2 * picture.grownBy,
                                    picture.height - 2 * picture.grownBy, picture.grownBy,
                                    format.name));
  }
  if (lost != nullptr && picture.metadata) {
    const std::vector<NotCarried> found =
        png ? LostInPng(*picture.metadata, picture.grey) : LostInTiff(*picture.metadata);
    lost->insert(lost->end(), found.begin(), found.end());
  }
}

}  // namespace glimmerhost
