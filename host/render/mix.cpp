// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/mix.h"

#include <cmath>
#include <cstddef>

namespace glimmerhost {

std::uint16_t Mixed(std::uint16_t frame, std::uint16_t blurred, double weight) {
  const double from = frame;
  const double to = blurred;
  return static_cast<std::uint16_t>(std::floor(from + (to - from) * weight + 0.5));
}

void MixSamples(const std::vector<std::uint16_t>& frame, double mix, const Picture* mask,
                std::vector<std::uint16_t>* blurred) {
  constexpr double kOne = 65535.0;
  for (std::size_t i = 0; i < frame.size(); i += 4) {
    const double weight = mask == nullptr ? mix : mix * (mask->samples[i] / kOne);
    for (std::size_t c = i; c < i + 4; ++c) {
      (*blurred)[c] = Mixed(frame[c], (*blurred)[c], weight);
    }
  }
}

}  // namespace glimmerhost
