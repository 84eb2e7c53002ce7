// SPDX-License-Identifier: BSD-3-Clause
// Engines by the integers that name back-ends. Apart from the rest: who is built on one back-end
// and asks for no integer links no other.
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include "fftlib/backends/backends.h"
#include "fftlib/backends/fftw/fft_library.h"
#include "fftlib/fftlib.h"

namespace lx {
namespace {

std::string_view NameOfMode(std::int32_t mode) {
  switch (mode) {
    case kModeKernelF64:
      return "double";
    case kModeNone:
      return "none";
    case kModeFftw:
    // 5 is no mode of its own, and counts as 4.
    case 5:
      return "exact";
    default:
      return "single";
  }
}

}  // namespace

DefocusEngine::DefocusEngine() : DefocusEngine(kModeFftw) {}

DefocusEngine::DefocusEngine(std::int32_t mode) : DefocusEngine(MakeBackend(NameOfMode(mode))) {
  // An engine by number holds the transform library in every mode: its threads are started, and its
  // wisdom read and written, also where nothing is transformed by it.
  if (Library() == nullptr) {
    library_ = std::unique_ptr<FftLibrary>(new (std::nothrow) FftLibrary);
    Finish(library_ != nullptr && library_->HasThreads() ? kStatusOk : kStatusNoThreads);
  }
}

}  // namespace lx
