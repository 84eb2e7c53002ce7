// SPDX-License-Identifier: BSD-3-Clause
#include "tests/mutations/seed_files.h"

#include <cstddef>
#include <cstdint>

#include "host/pictures/picture_file.h"

namespace mutations {

using glimmerhost::Alpha;
using glimmerhost::Picture;

Picture SmallPicture(int width, int height, Alpha alpha, int frame) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.alpha = alpha;
  picture.samples.resize(picture.PixelCount() * 4);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] =
        i % 4 == 3 && alpha == Alpha::kNone
            ? std::uint16_t{65535}
            : static_cast<std::uint16_t>(i * 7919U * (static_cast<unsigned>(frame) + 1U));
  }
  return picture;
}

void WriteSmall(const std::string& name, int width, int height, int bits, Alpha alpha, int frame) {
  glimmerhost::PictureOutput(name, true).Write(SmallPicture(width, height, alpha, frame), bits);
}

std::string SmallPam() {
  std::string bytes;
  for (const unsigned frame : {1U, 2U}) {
    bytes += "P7\nWIDTH 9\nHEIGHT 6\nDEPTH 3\nMAXVAL 65535\nTUPLTYPE RGB\nENDHDR\n";
    for (unsigned i = 0; i < 9U * 6U * 3U * 2U; ++i) {
      bytes += static_cast<char>(i * 37U * frame);
    }
  }
  return bytes;
}

}  // namespace mutations
