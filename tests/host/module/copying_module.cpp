// SPDX-License-Identifier: BSD-3-Clause
// A module whose render leaves the frame as its source, as the effect does where it cannot work.
#include <cstddef>
#include <cstdint>

#include "tests/host/module/one_class_module.h"

namespace {

class CopyingRender final : public one_class_module::Render {
 public:
  void renderFrame(int frame, std::uintptr_t /*word1*/, std::uintptr_t /*word2*/) override {
    const auto from = clip_->frame(frame, target_->format()->descriptor(), 3);
    const auto to = target_->outputFrame(3);
    const quantel::cSize2 size = from->size();
    const std::size_t count =
        static_cast<std::size_t>(size.first) * static_cast<std::size_t>(size.second) * 4;
    for (std::size_t i = 0; i < count; ++i) {
      const unsigned inside = from->buffer()[i] / 2U;
      to->buffer()[i] = static_cast<std::uint16_t>(2 * inside + (inside >= 16384 ? 1 : 0));
    }
  }
};

}  // namespace

void moduleInit(quantel::cPtr<qplugin::iQpluginModule> module) {
  one_class_module::Init<CopyingRender>(module);
}

void moduleCleanUp() {}
