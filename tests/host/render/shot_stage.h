// SPDX-License-Identifier: BSD-3-Clause
// A shot in a folder of its own, for the loader, the renderer or the writer alone.
#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/looks/page.h"
#include "host/looks/parameter_file.h"
#include "host/pictures/picture_file.h"
#include "host/render/frame_work.h"
#include "host/render/shot_settings.h"
#include "host/shots/shot_plan.h"
#include "tests/support/scratch_folder.h"

namespace render_test {

using glimmerhost::FrameChannel;
using glimmerhost::FrameFiles;
using glimmerhost::FrameState;
using glimmerhost::FrameWork;
using glimmerhost::Picture;
namespace fs = std::filesystem;

// A file that stands for a pipe: written, and read from its beginning.
using PipeFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

using Works = std::vector<std::unique_ptr<FrameWork>>;

// No test has more frames, so that nobody waits who runs alone.
inline constexpr std::size_t kRoom = 16;

// Pixels that all hold the sample, opaque.
inline Picture EvenPicture(std::uint16_t sample, int width = 4, int height = 2) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.samples.assign(picture.PixelCount() * 4, sample);
  for (std::size_t i = 3; i < picture.samples.size(); i += 4) {
    picture.samples[i] = 65535;
  }
  return picture;
}

class ShotStage : public testing::Test {
 public:
  static std::string InputName(int frame) { return "in." + std::to_string(frame) + ".png"; }
  static std::string OutputName(int frame) { return "out." + std::to_string(frame) + ".png"; }

  // Frames from 1 on, whose files nobody has made yet.
  void Plan(int frames) {
    plan.span = {1, frames};
    plan.isShot = true;
    for (int frame = 1; frame <= frames; ++frame) {
      plan.files.push_back(FilesOf(frame));
    }
  }

  FrameFiles FilesOf(int frame) const {
    return {frame, folder / InputName(frame), folder / OutputName(frame), {}};
  }

  void WriteInput(int frame, const Picture& picture) const {
    glimmerhost::PictureOutput(folder / InputName(frame), false).Write(picture, 16);
  }

  // A PNG file that ends where samples would begin.
  void WriteHeadAlone(int frame, std::uint32_t width, std::uint32_t height) const {
    std::string chunk("IHDR");
    for (const std::uint32_t side : {width, height}) {
      for (int shift = 24; shift >= 0; shift -= 8) {
        chunk += static_cast<char>(side >> shift & 0xFFU);
      }
    }
    chunk += std::string("\x08\x02\0\0\0", 5);  // 8 bits, in colour
    const auto sum = static_cast<std::uint32_t>(crc32(
        0, reinterpret_cast<const unsigned char*>(chunk.data()), static_cast<uInt>(chunk.size())));
    std::string bytes = std::string("\x89PNG\r\n\x1A\n\0\0\0\x0D", 12) + chunk;
    for (int shift = 24; shift >= 0; shift -= 8) {
      bytes += static_cast<char>(sum >> shift & 0xFFU);
    }
    // What follows claims to be samples.
    bytes += std::string("\0\0\0\x10IDAT", 8);
    std::ofstream(folder / InputName(frame), std::ios::binary) << bytes;
  }

  void WriteText(const std::string& name, const std::string& text) const {
    std::ofstream(folder / name) << text;
  }

  std::string TextOf(const std::string& name) const {
    std::ifstream in(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  PipeFile OpenPipe() const {
    return {std::fopen((folder / "pipe.pam").string().c_str(), "wb+"), std::fclose};
  }

  // The look of a parameter file with these lines.
  void Use(const std::string& lines) {
    settings.layers = {{"a.toml: ", glimmerhost::ParseParameters(page, "a.toml", lines)}};
  }

  // What waits in a channel that has been closed, or is closed by somebody else.
  static Works TakeAll(FrameChannel* channel) {
    Works works;
    while (std::optional<std::unique_ptr<FrameWork>> work = channel->Take()) {
      works.push_back(std::move(*work));
    }
    return works;
  }

  static std::vector<FrameState> StatesOf(const Works& works) {
    std::vector<FrameState> states;
    for (const auto& work : works) {
      states.push_back(work->report.state);
    }
    return states;
  }

  lx_test::ScratchFolder folder;
  const glimmerhost::Page page = glimmerhost::Page::Load(PAGE);
  glimmerhost::ShotSettings settings;
  glimmerhost::ShotPlan plan;
};

using States = std::vector<FrameState>;

}  // namespace render_test
