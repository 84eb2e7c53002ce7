// SPDX-License-Identifier: BSD-3-Clause
// Pictures and files of them for the tests of every library of formats.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"

namespace lx_test {

// Whole bytes, spread to 16 bits; opaque without alpha, otherwise of one half-clear alpha.
inline glimmerhost::Picture Sample(int width, int height,
                                   glimmerhost::Alpha alpha = glimmerhost::Alpha::kNone,
                                   bool grey = false) {
  glimmerhost::Picture picture;
  picture.width = width;
  picture.height = height;
  picture.alpha = alpha;
  picture.grey = grey;
  picture.samples.resize(picture.PixelCount() * 4);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = static_cast<std::uint16_t>((i / (grey ? 4 : 1)) % 256 * 257);
    if (i % 4 == 3) {
      picture.samples[i] = alpha == glimmerhost::Alpha::kNone ? 65535 : 30000 + 257;
    }
  }
  return picture;
}

inline glimmerhost::Picture Read(const std::filesystem::path& file) {
  std::string warning;
  return glimmerhost::ReadPicture(file, glimmerhost::kAnyFormat, &warning);
}

inline void Write(const std::filesystem::path& file, const glimmerhost::Picture& picture,
                  int bits) {
  glimmerhost::PictureOutput output(file, true);
  output.Write(picture, bits);
}

// Writes a picture under that name, cuts it shorter and shorter and expects a Failure each time.
inline void ExpectCutsRefused(const std::filesystem::path& file) {
  Write(file, Sample(200, 150), 8);
  const auto size = std::filesystem::file_size(file);
  for (const double part : {0.9, 0.5, 0.02}) {
    std::filesystem::resize_file(file,
                                 static_cast<std::uintmax_t>(static_cast<double>(size) * part));
    EXPECT_THROW(Read(file), glimmerhost::Failure) << file << " " << part;
  }
}

}  // namespace lx_test
