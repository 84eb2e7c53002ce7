// Pictures from and to files, by OpenImageIO: PNG, TIFF, EXR, DPX, JPEG and what else the
// installed library reads and writes.
#pragma once

#include <filesystem>
#include <string>

#include "host/glimmerhost/picture.h"

namespace glimmerhost {

// Reads a picture of 1 to 4 channels, or the red, green, blue and alpha of one with more.
// Integer samples become 16 bits; float samples are clamped to 0..1.
//   warning  receives a line if samples were clamped
// Throws Failure, which names the file, if it is missing, no picture, cut short or broken.
Picture ReadPicture(const std::filesystem::path& file, std::string* warning);

// An output that appears whole or not at all: it is written beside its place and moved in.
class PictureOutput {
 public:
  // Checks what can be checked before there is a picture: the format, the folder, and
  // whether a file may be replaced. Throws Failure, or UsageError for an unknown format.
  PictureOutput(std::filesystem::path file, bool overwrite);

  // Removes what a failed write left.
  ~PictureOutput();
  PictureOutput(const PictureOutput&) = delete;
  PictureOutput& operator=(const PictureOutput&) = delete;

  bool HoldsAlpha() const { return holdsAlpha_; }

  // Whether files of this format have straight alpha only, or premultiplied alpha only;
  // none of both where the file says which.
  bool StraightOnly() const;
  bool PremultipliedOnly() const;

  // Writes the picture with its metadata and moves the file in.
  //   bits  8 or 16; formats without whole numbers write half floats
  // Throws Failure, which names the file.
  void Write(const Picture& picture, int bits);

 private:
  std::filesystem::path file_;
  std::filesystem::path part_;
  std::string format_;
  bool overwrite_;
  bool holdsAlpha_ = false;
};

}  // namespace glimmerhost
