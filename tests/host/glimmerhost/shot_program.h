// SPDX-License-Identifier: BSD-3-Clause
// A shot to render, in a folder of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/host/glimmerhost/program.h"

namespace host_test {

inline std::string Bytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class ShotProgram : public Program {
 public:
  // Frames that differ, 7 by default.
  void WriteShot(int first, int last) {
    for (int frame = first; frame <= last; ++frame) {
      Picture picture;
      picture.width = 60;
      picture.height = 40;
      picture.samples.assign(picture.PixelCount() * 4, 0);
      for (std::size_t i = 0; i < picture.samples.size(); ++i) {
        picture.samples[i] = i % 4 == 3 ? std::uint16_t{65535}
                                        : static_cast<std::uint16_t>(i * 7919U * (frame % 13 + 1U));
      }
      glimmerhost::PictureOutput output(folder / InputName(frame), true);
      output.Write(picture, 16);
    }
  }

  static std::string InputName(int frame) { return "in." + std::to_string(frame) + ".png"; }

  std::string Shot(const std::string& output, const std::string& options) {
    return Render(folder / "in.@.png", output, options);
  }
};

inline constexpr const char* kAnimated =
    "--shape polygon --radius 'first=2px; last=12px' --emphasis "
    "'first=1; first+3~=60; last=20' --rotation '25%=0; last-1=90' ";

}  // namespace host_test
