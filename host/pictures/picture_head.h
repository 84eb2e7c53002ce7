// SPDX-License-Identifier: BSD-3-Clause
// PictureHead: what a file says of its picture before the samples.
#pragma once

namespace glimmerhost {

struct PictureHead {
  int width = 0;
  int height = 0;
  int channels = 0;     // of a pixel, as its reader has them, and 1 of a palette
  int bits = 0;         // of a sample of the file, or of what its reader makes of it
  bool floats = false;  // samples are floating point
};

}  // namespace glimmerhost
