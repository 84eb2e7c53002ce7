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

namespace {

// Mixed without rounding.
float MixedFloat(float frame, float blurred, double weight) {
  const double from = frame;
  return static_cast<float>(from + (blurred - from) * weight);
}

template <class Sample>
void Mix(const std::vector<Sample>& frame, double mix, const Picture* mask,
         Sample (*mixed)(Sample, Sample, double), std::vector<Sample>* blurred) {
  constexpr double kOne = 65535.0;
  for (std::size_t i = 0; i < frame.size(); i += 4) {
    const double weight = mask == nullptr ? mix : mix * (mask->samples[i] / kOne);
    for (std::size_t c = i; c < i + 4; ++c) {
      (*blurred)[c] = mixed(frame[c], (*blurred)[c], weight);
    }
  }
}

}  // namespace

void MixSamples(const std::vector<std::uint16_t>& frame, double mix, const Picture* mask,
                std::vector<std::uint16_t>* blurred) {
  Mix(frame, mix, mask, Mixed, blurred);
}

void MixFloats(const std::vector<float>& frame, double mix, const Picture* mask,
               std::vector<float>* blurred) {
  Mix(frame, mix, mask, MixedFloat, blurred);
}

}  // namespace glimmerhost
