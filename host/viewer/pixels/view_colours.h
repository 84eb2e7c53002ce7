// SPDX-License-Identifier: BSD-3-Clause
// ViewColours: from samples to the colours of a screen.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/viewer/pixels/view_settings.h"

namespace glimmerhost {

// One thread at a time.
class ViewColours {
 public:
  //   floats  whether samples are 1 where a colour is full, and not 65535
  ViewColours(const ViewSettings& settings, bool floats);

  // Sets 0xffRRGGBB for each pixel of four samples. What is no number is shown as 0.
  void Show(const float* samples, std::size_t count, std::uint32_t* colours);

 private:
  using Table = std::array<std::uint8_t, 65536>;

  static std::shared_ptr<const Table> TableOf(double gain, double gamma);
  std::uint32_t Lookup(float sample, float scale) const;
  std::uint32_t ColourOf(const float* pixel, float scale) const;
  std::uint32_t GreyOf(float sample, float scale) const;
  float Chosen(const float* pixel) const;
  void ShowThroughDisplay(const float* samples, std::size_t count, std::uint32_t* colours);

  ViewSettings settings_;
  float scale_;  // from a sample to a place in the table
  float unit_;   // from a sample to what the display's transform takes
  std::shared_ptr<const Table> table_;
  std::vector<float> transformed_;
};

}  // namespace glimmerhost
