// SPDX-License-Identifier: BSD-3-Clause
// Picture: one picture in memory, as the effect sees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/floats/range.h"
#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

enum class Alpha {
  kNone,           // no alpha channel; samples say opaque
  kStraight,       // colour is independent of alpha
  kPremultiplied,  // colour is already multiplied by alpha
};

struct ColourPath;      // between files and the space that the effect works in
struct FileMetadata;    // what a PNG or TIFF file says beside its samples
struct FileAttributes;  // what any file says, as the plug-in knows it
struct FileExtras;  // channels and parts of a file beside the picture, as the plug-in keeps them
struct PictureLayer;

// Samples are 16 bits or floats, red, green, blue, alpha; rows follow one another without a gap,
// the top row first. Grey pictures have three equal colours.
struct Picture {
  int width = 0;
  int height = 0;
  // One of the two. Floats are finite, and may lie above 1 and below 0.
  std::vector<std::uint16_t> samples;
  std::vector<float> floats;
  Alpha alpha = Alpha::kNone;
  bool grey = false;
  int bits = 16;  // of the file that it came from: 8 or 16
  quantel::cSize2 pixelAspect{1, 1};
  int grownBy = 0;     // pixels that were added on each side since it was read
  RangeMapping range;  // what its colours stand for, where a file of floats is written
  std::shared_ptr<const ColourPath> colours;  // null: a file's values are the picture's
  // One of the two at most: by whom the file was read.
  std::shared_ptr<const FileMetadata> metadata;
  std::shared_ptr<const FileAttributes> attributes;
  std::shared_ptr<const FileExtras>
      extras;                        // null where there are none, or the output has no place
  std::vector<PictureLayer> layers;  // of the extras, what is blurred as the picture is

  bool IsFloat() const { return !floats.empty(); }

  std::size_t PixelCount() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  }
};

struct PictureLayer {
  std::vector<std::string> channels;  // their names: of red, green, blue and alpha, or of one
  bool isData = false;                // numbers and no light: blurred without emphasis
  Picture picture;                    // as large as the one that it belongs to
};

}  // namespace glimmerhost
