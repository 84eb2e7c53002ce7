// SPDX-License-Identifier: BSD-3-Clause
// The back-ends that every test of back-ends runs over: those of the list, and one of the tests'.
#pragma once

#include <gtest/gtest.h>

#include "fftlib/backends/footprint.h"
#include "tests/fftlib/backends/dummy/dummy_footprint.h"

namespace lx_test {

template <class... Own, class... Listed>
testing::Types<Listed..., Own...> WithListed(lx::FootprintList<Listed...> list);

using TestedBackends = decltype(WithListed<DummyFootprint>(lx::Footprints{}));

// Names a test by its back-end.
struct BackendNames {
  template <class Footprint>
  static std::string GetName(int /*index*/) {
    return std::string(Footprint::kName);
  }
};

}  // namespace lx_test
