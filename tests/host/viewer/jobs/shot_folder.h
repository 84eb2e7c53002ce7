// SPDX-License-Identifier: BSD-3-Clause
// A shot in a folder of its own, for jobs to render.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/pictures/picture_file.h"
#include "host/viewer/jobs/render_words.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {

inline const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

inline Picture ReadBack(const std::filesystem::path& file) {
  std::string warning;
  return ReadPicture(file, &warning);
}

class ShotFolder {
 public:
  // Frames that differ, of opaque noise.
  ShotFolder(int first, int last, int width = 60, int height = 40) {
    std::filesystem::create_directory(folder / "out");
    for (int frame = first; frame <= last; ++frame) {
      Picture picture;
      picture.width = width;
      picture.height = height;
      picture.samples.resize(picture.PixelCount() * 4);
      std::uint32_t state = static_cast<std::uint32_t>(frame);
      for (std::size_t i = 0; i < picture.samples.size(); ++i) {
        state = state * 1664525U + 1013904223U;
        picture.samples[i] =
            i % 4 == 3 ? std::uint16_t{65535} : static_cast<std::uint16_t>(state >> 16U);
      }
      PictureOutput(In(frame), false).Write(picture, 16);
      input.frames.push_back(frame);
    }
    input.input = (folder / "in.@.png").string();
    input.span = {first, last};
    input.look["radius"] = "first=3px; last=9px";
    target.output = (folder / "out" / "out.@.png").string();
    target.manifest = ManifestBeside(target.output);
    target.frames = input.frames;
  }

  std::filesystem::path In(int frame) const {
    return folder / ("in." + std::to_string(frame) + ".png");
  }
  std::filesystem::path Out(int frame) const {
    return folder / "out" / ("out." + std::to_string(frame) + ".png");
  }

  void Break(int frame) const { std::ofstream(In(frame)) << "no picture"; }

  // A program in the place of glimmerhost.
  std::filesystem::path Script(const std::string& text) const {
    const std::filesystem::path file = folder / "script";
    std::ofstream(file) << "#!/bin/bash\n" << text << "\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    return file;
  }

  std::vector<std::string> Words() const { return RenderWords(ThePage(), input, target); }

  lx_test::ScratchFolder folder;
  JobInput input;
  RenderTarget target;
};

}  // namespace glimmerhost
