// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/backends.h"

#include "fftlib/backends/footprint.h"

namespace lx {
namespace {

template <class... Each>
std::unique_ptr<Backend> MakeOneOf(FootprintList<Each...> /*list*/, std::string_view name) {
  std::unique_ptr<Backend> made;
  const auto isMade = [&]<class One>() {
    if (One::kName != name) {
      return false;
    }
    made = One::Make();
    return true;
  };
  (void)(isMade.template operator()<Each>() || ...);
  return made;
}

}  // namespace

std::unique_ptr<Backend> MakeBackend(std::string_view name) {
  return MakeOneOf(Footprints{}, name);
}

}  // namespace lx
