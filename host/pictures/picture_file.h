// SPDX-License-Identifier: BSD-3-Clause
// Pictures from and to files, in the formats that this build knows.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/pictures/picture.h"
#include "host/pictures/picture_formats.h"
#include "host/pictures/picture_head.h"

namespace glimmerhost {

// Reads a picture of 1 to 4 channels, or the red, green, blue and alpha of one with more.
// Integer samples become 16 bits; float samples are brought into 0..1 and cut to it.
// Throws Failure, which names the file, if it is no picture, cut short or broken; MissingInput
// if it is not there.
Picture ReadPicture(const std::filesystem::path& file, const ReadOptions& options,
                    ReadReport* report);

// The same as things are without options.
//   keptFor  as among the options
//   warning  receives what is to be said, in one line
Picture ReadPicture(const std::filesystem::path& file, const std::string& keptFor,
                    std::string* warning);

// The samples alone. What else the file says is not to be relied on.
inline Picture ReadPicture(const std::filesystem::path& file, std::string* warning) {
  return ReadPicture(file, kNoFormat, warning);
}

// What a file says of its picture. No samples are read, and a file that lacks some does as well.
// Throws as ReadPicture does.
PictureHead ReadPictureHead(const std::filesystem::path& file);

// The format that an output's name asks for. Throws UsageError, which names -o, for an unknown one.
OutputFormat OutputFormatOf(const std::filesystem::path& file);

// An output that appears whole or not at all: it is written beside its place and moved in.
class PictureOutput {
 public:
  // Checks what can be checked before there is a picture: the format, the folder, and
  // whether a file may be replaced. Throws Failure, or UsageError for an unknown format.
  PictureOutput(std::filesystem::path file, bool overwrite);

  const OutputFormat& Format() const { return format_; }

  // Writes the picture with its metadata and moves the file in. It is on the disk then.
  //   coding    one that SettleCoding gave for the format
  //   lost      receives what of the metadata is not in the file; null if nobody asks
  //   finished  is called with the finished file before it is moved in; what it throws, this throws
  // Throws Failure, which names the file. Nothing is left of it then, and a file that was there
  // is as it was.
  void Write(const Picture& picture, const Coding& coding, std::vector<NotCarried>* lost = nullptr,
             const std::function<void(const std::filesystem::path&)>& finished = {});

 private:
  std::filesystem::path file_;
  OutputFormat format_;
  bool overwrite_;
};

}  // namespace glimmerhost
