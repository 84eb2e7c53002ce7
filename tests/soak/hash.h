// SPDX-License-Identifier: BSD-3-Clause
// Hashes of what a life has made.
#pragma once

#include <string>
#include <vector>

#include "tests/fftlib/backends/fast/hash.h"

namespace soak {

inline std::uint64_t HashOf(const std::string& text) {
  return lx_test::HashOf(text.data(), text.size());
}

template <class Sample>
std::uint64_t HashOf(const std::vector<Sample>& samples) {
  return lx_test::HashOf(samples.data(), samples.size() * sizeof(Sample));
}

}  // namespace soak
