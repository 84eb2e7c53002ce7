// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/pixels/view_colours.h"

#include <algorithm>
#include <cmath>

#include "fftlib/planes/colour_transform.h"

namespace glimmerhost {
namespace {

constexpr float kFull = 65535.0F;
constexpr std::uint32_t kOpaque = 0xff000000U;

std::uint32_t Packed(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return kOpaque | red << 16 | green << 8 | blue;
}

// Red, green, blue and alpha, and where they are in a table.
using Pixel __attribute__((vector_size(4 * sizeof(float)))) = float;
using Places __attribute__((vector_size(4 * sizeof(std::int32_t)))) = std::int32_t;

// Without a branch, which noise about white would make a wrong guess of. The first comparison makes
// 0 of what is no number.
Places PlacesOf(Pixel samples, float scale) {
  const Pixel scaled = samples * scale;
  const Pixel above = scaled > 0.0F ? scaled : Pixel{};
  const Pixel cut = above < kFull ? above : Pixel{} + kFull;
  return __builtin_convertvector(cut + 0.5F, Places);
}

// As transforms want their numbers: a matrix makes of the largest floats what is infinite.
float Finite(float value) {
  constexpr float kLargest = 0x1p100F;
  return std::isfinite(value) ? std::clamp(value, -kLargest, kLargest) : 0.0F;
}

}  // namespace

// 16 bits have their exposure in the table. Floats go on above 1, so that theirs comes before, and
// so does a transform.
ViewColours::ViewColours(const ViewSettings& settings, bool floats) : settings_(settings) {
  const auto gain = static_cast<float>(std::exp2(settings.exposure));
  const bool goesThroughDisplay = settings.display && settings.channel != ViewChannel::kOpacity;
  unit_ = floats ? gain : gain / kFull;
  scale_ = floats ? gain * kFull : 1.0F;
  const bool tableHasGain = !floats && !goesThroughDisplay;
  table_ = TableOf(tableHasGain ? static_cast<double>(gain) : 1.0, settings.gamma);
}

// Those of the thread's last call are kept: making one takes as long as showing a picture does.
std::shared_ptr<const ViewColours::Table> ViewColours::TableOf(double gain, double gamma) {
  thread_local double keptGain = 0.0;
  thread_local double keptGamma = 0.0;
  thread_local std::shared_ptr<const Table> kept;
  if (!kept || gain != keptGain || gamma != keptGamma) {
    auto table = std::make_shared<Table>();
    for (std::size_t i = 0; i < table->size(); ++i) {
      const double linear = std::min(static_cast<double>(i) / kFull * gain, 1.0);
      const double shown = gamma == 1.0 ? linear : std::pow(linear, 1.0 / gamma);
      (*table)[i] = static_cast<std::uint8_t>(shown * 255.0 + 0.5);
    }
    kept = std::move(table);
    keptGain = gain;
    keptGamma = gamma;
  }
  return kept;
}

std::uint32_t ViewColours::Lookup(float sample, float scale) const {
  const Places place = PlacesOf(Pixel{sample, 0.0F, 0.0F, 0.0F}, scale);
  return (*table_)[static_cast<std::size_t>(place[0])];
}

std::uint32_t ViewColours::ColourOf(const float* pixel, float scale) const {
  Pixel samples;
  __builtin_memcpy(&samples, pixel, sizeof samples);
  const Places places = PlacesOf(samples, scale);
  const Table& table = *table_;
  return Packed(table[static_cast<std::size_t>(places[0])],
                table[static_cast<std::size_t>(places[1])],
                table[static_cast<std::size_t>(places[2])]);
}

std::uint32_t ViewColours::GreyOf(float sample, float scale) const {
  const std::uint32_t grey = Lookup(sample, scale);
  return Packed(grey, grey, grey);
}

float ViewColours::Chosen(const float* pixel) const {
  switch (settings_.channel) {
    case ViewChannel::kGreen:
      return pixel[1];
    case ViewChannel::kBlue:
      return pixel[2];
    case ViewChannel::kOpacity:
      return pixel[3];
    case ViewChannel::kLuma:
      return static_cast<float>(lx::kLumaR * pixel[0] + lx::kLumaG * pixel[1] +
                                lx::kLumaB * pixel[2]);
    default:
      return pixel[0];
  }
}

void ViewColours::Show(const float* samples, std::size_t count, std::uint32_t* colours) {
  if (settings_.display && settings_.channel != ViewChannel::kOpacity) {
    ShowThroughDisplay(samples, count, colours);
    return;
  }
  if (settings_.channel == ViewChannel::kColour) {
    for (std::size_t i = 0; i < count; ++i) {
      colours[i] = ColourOf(samples + i * 4, scale_);
    }
    return;
  }
  for (std::size_t i = 0; i < count; ++i) {
    colours[i] = GreyOf(Chosen(samples + i * 4), scale_);
  }
}

// One channel alone is a grey picture, whose grey goes through the transform.
void ViewColours::ShowThroughDisplay(const float* samples, std::size_t count,
                                     std::uint32_t* colours) {
  const bool isColour = settings_.channel == ViewChannel::kColour;
  transformed_.resize(count * 3);
  for (std::size_t i = 0; i < count; ++i) {
    const float* const pixel = samples + i * 4;
    for (std::size_t c = 0; c < 3; ++c) {
      transformed_[i * 3 + c] = Finite((isColour ? pixel[c] : Chosen(pixel)) * unit_);
    }
  }
  settings_.display->Apply(&transformed_);
  for (std::size_t i = 0; i < count; ++i) {
    const float* const colour = transformed_.data() + i * 3;
    colours[i] =
        Packed(Lookup(colour[0], kFull), Lookup(colour[1], kFull), Lookup(colour[2], kFull));
  }
}

}  // namespace glimmerhost
