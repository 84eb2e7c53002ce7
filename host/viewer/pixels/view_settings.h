// SPDX-License-Identifier: BSD-3-Clause
// How a person looks at pictures: nothing of it changes what is rendered.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/pictures/colour_path.h"

namespace glimmerhost {

// One channel alone is shown in grey; luma is the effect's own.
enum class ViewChannel { kColour, kRed, kGreen, kBlue, kOpacity, kLuma };

// A sample becomes, in this order: times 2^exposure; through the display transform; cut to 0..1;
// to the power of 1 / gamma. Premultiplied colours are shown as they are, that is over black. Alpha
// goes through no transform.
struct ViewSettings {
  ViewChannel channel = ViewChannel::kColour;
  double exposure = 0.0;                           // stops
  double gamma = 1.0;                              // above 0
  std::shared_ptr<const ColourTransform> display;  // null: samples as they are
  bool wipes = false;
  double wipe = 0.5;  // a part of the picture's width: left of it is before, right of it after
  bool showsBefore = false;  // all of it is before, whatever the wipe

  bool operator==(const ViewSettings&) const = default;
};

// Where the picture is in the viewport. All in pixels of the device.
struct ViewPlace {
  double zoom = 1.0;  // pixels of the screen for one of the picture
  double left = 0.0;  // where the picture's corner lies, from the viewport's
  double top = 0.0;
  int width = 0;  // of the viewport
  int height = 0;

  bool operator==(const ViewPlace&) const = default;
};

// Rows without a gap, the top row first: 0xffRRGGBB, and 0 outside the picture.
struct ViewPixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

}  // namespace glimmerhost
