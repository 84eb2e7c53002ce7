// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <bit>

#include "tests/support/processors.h"

namespace lx_test {

struct ProcessorsAsBefore::Mask {
  DWORD_PTR processors = 0;
};

namespace {

DWORD_PTR Allowed() {
  DWORD_PTR process = 0;
  DWORD_PTR machine = 0;
  GetProcessAffinityMask(GetCurrentProcess(), &process, &machine);
  return process;
}

}  // namespace

int ProcessorCount() { return std::popcount(Allowed()); }

ProcessorsAsBefore::ProcessorsAsBefore() : mask_(std::make_unique<Mask>()) {
  mask_->processors = Allowed();
}

ProcessorsAsBefore::~ProcessorsAsBefore() {
  SetProcessAffinityMask(GetCurrentProcess(), mask_->processors);
}

}  // namespace lx_test
