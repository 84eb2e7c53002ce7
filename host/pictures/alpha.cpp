// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/alpha.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

template <class Sample>
using Operation = Sample (*)(Sample, Sample);

template <class Sample>
void ForSamples(std::vector<Sample>* samples, Operation<Sample> operation) {
  for (std::size_t i = 0; i + 3 < samples->size(); i += 4) {
    Sample* pixel = samples->data() + i;
    for (int c = 0; c < 3; ++c) {
      pixel[c] = operation(pixel[c], pixel[3]);
    }
  }
}

// Of the two kinds of samples one is there.
void ForColours(Picture* picture, Operation<std::uint16_t> ofWords, Operation<float> ofFloats) {
  ForSamples(&picture->samples, ofWords);
  ForSamples(&picture->floats, ofFloats);
}

float MultipliedFloat(float colour, float alpha) { return colour * alpha; }

// Below that an alpha is what rounding leaves of none.
float DividedFloat(float colour, float alpha) {
  constexpr float kLeast = 0x1p-24F;
  return alpha < kLeast ? 0.0F : colour / alpha;
}

}  // namespace

std::uint16_t Multiplied(std::uint16_t colour, std::uint16_t alpha) {
  const std::uint32_t product = std::uint32_t{colour} * alpha;
  return static_cast<std::uint16_t>((std::uint64_t{product} + 32767) / 65535);
}

std::uint16_t Divided(std::uint16_t colour, std::uint16_t alpha) {
  if (alpha == 0) {
    return 0;
  }
  const std::uint64_t quotient = (std::uint64_t{colour} * 65535 + alpha / 2U) / alpha;
  return static_cast<std::uint16_t>(std::min<std::uint64_t>(quotient, 65535));
}

bool ParsePremultiplied(const std::string& name, const std::string& text) {
  if (text == "premultiplied" || text == "as-is") {
    return text == "premultiplied";
  }
  throw MustBe(name, "premultiplied or as-is", text);
}

void Premultiply(Picture* picture) {
  if (picture->alpha == Alpha::kStraight) {
    ForColours(picture, Multiplied, MultipliedFloat);
    picture->alpha = Alpha::kPremultiplied;
  }
}

void Unpremultiply(Picture* picture) {
  if (picture->alpha == Alpha::kPremultiplied) {
    ForColours(picture, Divided, DividedFloat);
    picture->alpha = Alpha::kStraight;
  }
}

void SettleAlpha(const OutputFormat& format, Alpha before, Picture* picture) {
  if (format.straightOnly || (before == Alpha::kStraight && !format.premultipliedOnly)) {
    Unpremultiply(picture);
  }
}

}  // namespace glimmerhost
