// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/second_clip.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/pictures/alpha.h"
#include "host/pictures/floats/float_picture.h"
#include "host/pictures/picture_file.h"

namespace glimmerhost {
namespace {

// The picture in the middle of a black one of that size.
Picture Centred(const Picture& picture, int width, int height) {
  Picture canvas = picture;
  canvas.width = width;
  canvas.height = height;
  canvas.samples.assign(canvas.PixelCount() * 4, 0);
  // Where the picture's first pixel comes to lie, outside if the picture is larger. Rows are
  // halved from the bottom, as the effect does where it looks for the middle.
  const int left = width / 2 - picture.width / 2;
  const int bottom = height / 2 - picture.height / 2;
  const int top = height - bottom - picture.height;
  const int firstX = std::max(left, 0);
  const int endX = std::min(left + picture.width, width);
  for (int y = std::max(top, 0); y < std::min(top + picture.height, height); ++y) {
    const auto from =
        picture.samples.begin() + (std::ptrdiff_t{y - top} * picture.width + (firstX - left)) * 4;
    const auto to = canvas.samples.begin() + (std::ptrdiff_t{y} * width + firstX) * 4;
    std::copy_n(from, std::ptrdiff_t{endX - firstX} * 4, to);
  }
  return canvas;
}

Picture ReadNoting(const std::filesystem::path& file, std::vector<std::string>* remarks) {
  std::string warning;
  Picture picture = ReadPicture(file, &warning);
  if (!warning.empty()) {
    remarks->push_back(warning);
  }
  return picture;
}

}  // namespace

quantel::cPtr<FrameImage> OpenSpread(const std::filesystem::path& file, int width, int height,
                                     bool premultiplied, std::vector<std::string>* remarks) {
  if (file.empty()) {
    return {};
  }
  Picture picture = ReadNoting(file, remarks);
  if (premultiplied) {
    Premultiply(&picture);
  }
  return quantel::cPtr<FrameImage>(new FrameImage(Centred(picture, width, height)));
}

quantel::cPtr<FrameImage> SpreadOfItself(const Picture& picture) {
  std::uint64_t cut = 0;
  return quantel::cPtr<FrameImage>(new FrameImage(Quantised(picture, &cut)));
}

}  // namespace glimmerhost
