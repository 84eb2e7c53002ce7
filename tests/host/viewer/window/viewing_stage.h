// SPDX-License-Identifier: BSD-3-Clause
// A clip that is looked at, without a window: files in a folder of its own, the module fast.
#pragma once

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/module/module_choice.h"
#include "host/pictures/picture_file.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/window/viewing.h"
#include "tests/support/scratch_folder.h"

namespace viewer_test {

namespace fs = std::filesystem;

// A grey ramp with a light, other in each frame; opaque.
inline glimmerhost::Picture Ramp(int width, int height, int frame) {
  glimmerhost::Picture picture;
  picture.width = width;
  picture.height = height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto grey = static_cast<std::uint16_t>(x * 257 + y * 31 + frame * 700);
      const bool isLight = x == (width / 2 + frame) % width && y == height / 3;
      const auto sample = isLight ? std::uint16_t{65535} : grey;
      picture.samples.insert(picture.samples.end(), {sample, grey, grey, 65535});
    }
  }
  return picture;
}

inline void Write(const fs::path& file, const glimmerhost::Picture& picture) {
  glimmerhost::PictureOutput(file, true).Write(picture, 16);
}

// Waits for what the signal may bring about.
template <class Sender, class Signal, class Condition>
bool WaitUntil(Sender* sender, Signal signal, const Condition& condition) {
  constexpr int kMilliseconds = 60000;
  QSignalSpy spy(sender, signal);
  while (!condition()) {
    if (!spy.wait(kMilliseconds)) {
      return condition();
    }
  }
  return true;
}

class ViewingStage {
 public:
  explicit ViewingStage(glimmerhost::Trace* trace = nullptr)
      : module(std::make_shared<const glimmerhost::EffectModule>(
            glimmerhost::ModuleChoice{fs::path(MODULE_FOLDER) / "fast" / MODULE_NAME,
                                      lx::FindFootprint("fast")},
            trace)) {}

  bool Settle() {
    return WaitUntil(&viewing, &glimmerhost::Viewing::StateChanged,
                     [this] { return viewing.Loaded() && viewing.IsSettled(); });
  }

  std::string WriteShot(int frames, int width = 96, int height = 64) {
    for (int frame = 1; frame <= frames; ++frame) {
      Write(folder / ("shot.000" + std::to_string(frame) + ".png"), Ramp(width, height, frame));
    }
    return (folder / "shot.####.png").string();
  }

  void Open(const std::string& name) { viewing.Open(QString::fromStdString(name)); }

  glimmerhost::Page page = glimmerhost::Page::Load(PAGE);
  lx_test::ScratchFolder scratch;
  fs::path folder = scratch.Path();
  std::shared_ptr<const glimmerhost::EffectModule> module;
  glimmerhost::LookDocument document{page, nullptr};
  glimmerhost::Viewing viewing{page, module, &document};
};

}  // namespace viewer_test
