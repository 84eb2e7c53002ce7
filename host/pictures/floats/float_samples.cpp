// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/floats/float_samples.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>

namespace glimmerhost {
namespace {

constexpr std::uint16_t kOne = 65535;

void Count(float value, const RangeMapping& range, ReadReport* report) {
  if (std::isnan(value)) {
    ++report->notNumbers;
  } else if (std::isinf(value)) {
    ++report->infinite;
  } else if (value < range.Min() || value > range.Max()) {
    ++report->cut;
  }
}

std::uint16_t Quantised(float value, const RangeMapping& range, ReadReport* report) {
  Count(value, range, report);
  return static_cast<std::uint16_t>(std::lround(range.ToUnit(value) * float{kOne}));
}

// "1 sample was", "2 samples were", with what stands between.
std::string SamplesWere(std::uint64_t count, const std::string& which) {
  return std::to_string(count) + (count == 1 ? " sample " : " samples ") + which +
         (count == 1 ? " was" : " were");
}

// In the shortest form that reads back as the same.
std::string Shortest(float value) {
  char text[32];
  for (int digits = 1;; ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, double{value});
    if (digits == std::numeric_limits<float>::max_digits10 || std::stof(text) == value) {
      return text;
    }
  }
}

float Finite(float value, ReadReport* report) {
  if (std::isnan(value)) {
    ++report->notNumbers;
  } else if (std::isinf(value)) {
    ++report->infinite;
  }
  return std::isfinite(value) ? value : 0.0F;
}

void KeepFloats(const std::vector<float>& from, int channels, const ChannelMap& map,
                Picture* picture, ReadReport* report) {
  picture->floats.resize(picture->PixelCount() * 4);
  const float* pixel = from.data();
  float* to = picture->floats.data();
  for (std::size_t i = 0; i < picture->PixelCount(); ++i, pixel += channels, to += 4) {
    to[0] = Finite(pixel[map.red], report);
    to[1] = map.grey ? to[0] : Finite(pixel[map.green], report);
    to[2] = map.grey ? to[0] : Finite(pixel[map.blue], report);
    to[3] = map.alpha < 0 ? 1.0F : Finite(pixel[map.alpha], report);
  }
}

void SayOfFloats(const std::filesystem::path& file, ReadReport* report) {
  for (const auto& [count, which] :
       {std::pair{report->infinite, "infinite"}, {report->notNumbers, "not a number"}}) {
    if (count > 0) {
      report->lines.push_back(file.string() + ": " + SamplesWere(count, which) + " taken as 0");
    }
  }
}

void Say(const std::filesystem::path& file, const RangeMapping& range, ReadReport* report) {
  if (const std::uint64_t cut = report->cut + report->infinite; cut > 0) {
    const std::string infinite = std::to_string(report->infinite) + " of them infinite";
    report->lines.push_back(
        file.string() + ": " +
        SamplesWere(cut, "outside " + Shortest(range.Min()) + " to " + Shortest(range.Max())) +
        " cut to that range" + (report->infinite > 0 ? ", " + infinite : ""));
  }
  if (report->notNumbers > 0) {
    report->lines.push_back(file.string() + ": " + SamplesWere(report->notNumbers, "not a number") +
                            " taken as 0");
  }
}

}  // namespace

void SpreadFloats(const std::filesystem::path& file, const std::vector<float>& from, int channels,
                  const ChannelMap& map, const FloatTarget& target, Picture* picture,
                  ReadReport* report) {
  if (target.keepsFloats) {
    KeepFloats(from, channels, map, picture, report);
    SayOfFloats(file, report);
    return;
  }
  const RangeMapping& range = target.range;
  picture->range = range;
  picture->samples.resize(picture->PixelCount() * 4);
  const RangeMapping plain;
  const float* pixel = from.data();
  std::uint16_t* to = picture->samples.data();
  for (std::size_t i = 0; i < picture->PixelCount(); ++i, pixel += channels, to += 4) {
    to[0] = Quantised(pixel[map.red], range, report);
    to[1] = map.grey ? to[0] : Quantised(pixel[map.green], range, report);
    to[2] = map.grey ? to[0] : Quantised(pixel[map.blue], range, report);
    to[3] = map.alpha < 0 ? kOne : Quantised(pixel[map.alpha], plain, report);
  }
  Say(file, range, report);
}

std::vector<float> ToFloats(const std::vector<std::uint16_t>& samples, int channels,
                            const RangeMapping& range) {
  const RangeMapping plain;
  const auto perPixel = static_cast<std::size_t>(channels);
  const std::size_t colours = channels < 3 ? 1 : 3;
  std::vector<float> values(samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const RangeMapping& mapping = i % perPixel < colours ? range : plain;
    values[i] = mapping.FromUnit(static_cast<float>(samples[i]) / float{kOne});
  }
  return values;
}

}  // namespace glimmerhost
