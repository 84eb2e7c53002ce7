// SPDX-License-Identifier: BSD-3-Clause
// A module whose render throws what a module may throw.
#include <cstdint>

#include "tests/host/module/one_class_module.h"

namespace {

class BrokenRender final : public one_class_module::Render {
 public:
  void renderFrame(int /*frame*/, std::uintptr_t /*word1*/, std::uintptr_t /*word2*/) override {
    throw quantel::cNotSupported("broken_module", 12, u"it is \"%s\"", u"broken");
  }
};

}  // namespace

void moduleInit(quantel::cPtr<qplugin::iQpluginModule> module) {
  one_class_module::Init<BrokenRender>(module);
}

void moduleCleanUp() {}
