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
    case 5:
      return "exact";
    default:
      return "single";
  }
}

}  // namespace

DefocusEngine::DefocusEngine() : DefocusEngine(kModeFftw) {}

DefocusEngine::DefocusEngine(std::int32_t mode) : DefocusEngine(MakeBackend(NameOfMode(mode))) {
  if (Library() == nullptr) {
    library_ = std::unique_ptr<FftLibrary>(new (std::nothrow) FftLibrary);
    Finish(library_ != nullptr && library_->HasThreads() ? kStatusOk : kStatusNoThreads);
  }
}

}  // namespace lx
