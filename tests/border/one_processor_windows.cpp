// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include "tests/border/dll_image.h"
#include "tests/border/module_path.h"
#include "tests/border/one_processor.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace lx_test {
namespace {

void Write(void** slot, void* value) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
  *slot = value;
  VirtualProtect(slot, sizeof *slot, protection, &protection);
}

void WINAPI TellOneProcessor(SYSTEM_INFO* info) {
  GetSystemInfo(info);
  info->dwNumberOfProcessors = 1;
}

}  // namespace

// The system tells the machine's processors whatever the process may run on, so that the answer
// is changed on its way to the module.
struct OneProcessor::Before {
  DllImage module{ModuleFile()};
  void** slot = module.ImportSlot("GetSystemInfo");
  void* function = slot != nullptr ? *slot : nullptr;
};

OneProcessor::OneProcessor() : before_(new Before) {
  if (before_->slot == nullptr) {
    ADD_FAILURE() << "the module asks for its processors in another way";
    return;
  }
  Write(before_->slot, reinterpret_cast<void*>(&TellOneProcessor));
}

OneProcessor::~OneProcessor() {
  if (before_->slot != nullptr) {
    Write(before_->slot, before_->function);
  }
}

}  // namespace lx_test
