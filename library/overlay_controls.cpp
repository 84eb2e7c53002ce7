// SPDX-License-Identifier: BSD-3-Clause
#include "library/overlay_controls.h"

#include <cmath>
#include <numbers>

#include "baselib/utils/convert.h"
#include "baselib/utils/distance.h"

namespace lx {
namespace {

// A picture of no size makes these infinite or not-a-number, and so they go to the host.
double PartOf(float pointer, std::int32_t size) {
  return static_cast<double>(pointer) / static_cast<double>(size);
}

void WriteSize(ControlLX* target, float size) {
  if (auto* control = static_cast<SizeControlLX*>(target)) {
    control->value = static_cast<double>(size);
    control->Commit();
  }
}

}  // namespace

bool OverlayControlLX::Hits(float handleX, float handleY, float x, float y) const {
  const auto reach = static_cast<double>(static_cast<float>(owner->HandleSize()));
  return std::abs(static_cast<double>(handleX) - static_cast<double>(x)) < reach &&
         std::abs(static_cast<double>(handleY) - static_cast<double>(y)) < reach;
}

// What press, drag and release mean to any control.
//   findPart  the part under the pointer, 0 for none
//   drag      moves what is held after the pointer
template <class FindPart, class Drag>
void OverlayControlLX::Follow(std::int32_t event, float x, float y, const FindPart& findPart,
                              const Drag& drag) {
  if (owner == nullptr || event < kEventHover || event > kEventRelease) {
    return;
  }
  if (event == kEventHover || event == kEventPress) {
    hoverPart = findPart();
  }
  if (event == kEventPress) {
    activePart = hoverPart;
  }
  if (event == kEventDrag) {
    drag();
  }
  ApplyEvent(event, x, y);
  if (event == kEventRelease) {
    activePart = 0;
  }
}

void CrosshairOverlayLX::HandleEvent(std::int32_t event, float pointerX, float pointerY) {
  const auto findPart = [&] { return Hits(screenX, screenY, pointerX, pointerY) ? 1 : 0; };
  const auto drag = [&] {
    if (activePart != 0) {
      x = NarrowToFloat(PartOf(pointerX, owner->pictureWidth));
      y = NarrowToFloat(PartOf(pointerY, owner->pictureHeight));
    }
  };
  Follow(event, pointerX, pointerY, findPart, drag);
}

void CrosshairOverlayLX::ApplyEvent(std::int32_t event, float pointerX, float pointerY) {
  if (data == nullptr) {
    return;
  }
  // Asked for at every event, whether or not anything is held.
  const quantel::cSize2 size = data->PictureSize();
  if (activePart == 0) {
    return;
  }
  if (event == kEventPress && dragFlag != nullptr) {
    *dragFlag = 1;
  }
  // Intended: the release writes once more, and leaves the drag flag to the adapter.
  if (event == kEventDrag || event == kEventRelease) {
    if (auto* position = static_cast<PositionControlLX*>(target)) {
      position->x = PartOf(pointerX, size.first);
      position->y = PartOf(pointerY, size.second);
      position->Commit();
    }
  }
}

std::int32_t CircleOverlayLX::HandleUnder(float pointerX, float pointerY) const {
  // Handles may lie on one another. The lowest number wins.
  for (std::int32_t part = 1; part <= 3; ++part) {
    if ((part == 2 || lockAspect == 0) &&
        Hits(handleX[part - 1], handleY[part - 1], pointerX, pointerY)) {
      return part;
    }
  }
  return 0;
}

void CircleOverlayLX::HandleEvent(std::int32_t event, float pointerX, float pointerY) {
  Follow(
      event, pointerX, pointerY, [&] { return HandleUnder(pointerX, pointerY); },
      [&] { Resize(pointerX, pointerY); });
}

// The size of the part that is held follows the pointer.
void CircleOverlayLX::Resize(float pointerX, float pointerY) {
  const auto width = static_cast<double>(owner->pictureWidth);
  const auto height = static_cast<double>(owner->pictureHeight);
  const double distance =
      DistanceOf(static_cast<double>(pointerX) - width * static_cast<double>(x),
                 static_cast<double>(pointerY) - height * static_cast<double>(y));
  switch (activePart) {
    case 1:
      ResizeFromCorner(static_cast<double>(pointerX), width);
      break;
    case 2:
      sizeX = NarrowToFloat(2.0 * distance / width);
      break;
    case 3:
      // By the width as well: both sizes are fractions of it.
      sizeY = NarrowToFloat(2.0 * distance / width);
      break;
    default:
      break;
  }
}

// Only the pointer's x counts, and the proportions stay.
void CircleOverlayLX::ResizeFromCorner(double pointerX, double width) {
  const double ratio = static_cast<double>(sizeY) / static_cast<double>(sizeX);
  const double dx = pointerX - width * static_cast<double>(x);
  const double radians = static_cast<double>(rotation) * std::numbers::pi / 180.0;
  constexpr double kCorner = -std::numbers::pi / 4.0;
  const double q =
      dx / (std::cos(radians) * std::cos(kCorner) - ratio * std::sin(radians) * std::sin(kCorner));
  sizeX = NarrowToFloat(2.0 * q / width);
  sizeY = NarrowToFloat(2.0 * q * ratio / width);
}

void CircleOverlayLX::ApplyEvent(std::int32_t event, float /*x*/, float /*y*/) {
  if (data == nullptr || activePart == 0) {
    return;
  }
  if (event == kEventPress && dragFlag != nullptr) {
    *dragFlag = 1;
  }
  if (event == kEventDrag || event == kEventRelease) {
    WriteTargets();
  }
  // Intended: the flag is shared, so this ends the drag of whatever else is held.
  if (event == kEventRelease && dragFlag != nullptr) {
    *dragFlag = 0;
  }
}

// Intended: both targets may be the same control, which then keeps the second size.
void CircleOverlayLX::WriteTargets() {
  if (activePart == 1 || activePart == 2) {
    WriteSize(target, sizeX);
  }
  if (activePart == 1 || activePart == 3) {
    WriteSize(target2, sizeY);
  }
}

}  // namespace lx
