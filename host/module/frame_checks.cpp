// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/frame_checks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

#include "host/looks/foresight.h"
#include "host/looks/keys.h"
#include "host/module/image_aperture.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

constexpr std::uint64_t kMebibyte = 1024 * 1024;

struct Samples {
  const std::uint16_t* first;
  int width;
  int height;

  const std::uint16_t* At(int x, int y) const {
    return first + (static_cast<std::ptrdiff_t>(y) * width + x) * 4;
  }
};

Samples SamplesOf(FrameImage* frame) {
  const quantel::cSize2 size = frame->size();
  return {frame->buffer(), size.first, size.second};
}

// In with its upper 15 bits, and out with the top one in the place of the sixteenth.
std::uint16_t ThroughBorder(std::uint16_t sample) {
  const unsigned inside = sample >> 1U;
  return static_cast<std::uint16_t>((inside >> 14U) | (inside << 1U));
}

bool IsCopy(const Samples& source, const Samples& result) {
  const std::size_t count =
      static_cast<std::size_t>(source.width) * static_cast<std::size_t>(source.height) * 4;
  for (std::size_t i = 0; i < count; ++i) {
    if (i % 4 != 3 && ThroughBorder(source.first[i]) != result.first[i]) {
      return false;
    }
  }
  return true;
}

// A transform rounds by what is brightest.
bool IsCopy(const std::vector<float>& source, const std::vector<float>& result) {
  constexpr float kRounding = 1e-5F;
  float brightest = 0.0F;
  float farthest = 0.0F;
  for (std::size_t i = 0; i < source.size(); ++i) {
    if (i % 4 != 3) {
      brightest = std::max(brightest, std::abs(source[i]));
      farthest = std::max(farthest, std::abs(source[i] - result[i]));
    }
  }
  return farthest <= kRounding * brightest;
}

bool Differ(const std::uint16_t* a, const std::uint16_t* b, double by) {
  for (int c = 0; c < 3; ++c) {
    if (std::abs(a[c] - b[c]) > by) {
      return true;
    }
  }
  return false;
}

// Whether neighbours differ by more than that.
bool HasEdges(const Samples& picture, double by) {
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      if ((x > 0 && Differ(picture.At(x, y), picture.At(x - 1, y), by)) ||
          (y > 0 && Differ(picture.At(x, y), picture.At(x, y - 1), by))) {
        return true;
      }
    }
  }
  return false;
}

ImageAperture CutFrom(const FrameInput& input) {
  return ApertureFrom((input.spread ? input.spread : input.source).Object(), input.values);
}

// How far from the edges of a frame light is that no aperture moves out of it. What is drawn has
// light in its middle, and beyond the frame its edges go on. A disc cut from a picture may have all
// its light at its rim.
int ReachOf(const FrameInput& input, int width) {
  if (ShapeOf(input.values) != Shape::kImage) {
    return 0;
  }
  const auto number = [&](const char* key) { return std::get<double>(input.values.at(key)); };
  constexpr int kRounding = 2;
  const double rim = 0.5 * width * std::max(number(kRadiusPsf1Key), number(kRadiusPsf2Key));
  return static_cast<int>(std::min(std::ceil(rim), static_cast<double>(width))) + kRounding;
}

// Which samples of a pixel a result has no light in.
enum class Unlit { kNone, kRedAndBlue, kAll };

// Where the aperture's spectrum could not be made, all planes are 0. Chroma of 0 is a green then,
// the same in all pixels, and alpha may be the source's.
Unlit UnlitOf(const Samples& result) {
  const auto* const end = result.At(0, result.height);
  if (std::all_of(result.first, end, [](auto sample) { return sample == 0; })) {
    return Unlit::kAll;
  }
  for (const std::uint16_t* pixel = result.first; pixel < end; pixel += 4) {
    if (pixel[0] != 0 || pixel[2] != 0 || pixel[1] != result.first[1]) {
      return Unlit::kNone;
    }
  }
  return Unlit::kRedAndBlue;
}

// Whether there is no light in a result, though the source has more that stays in the frame than
// rounding can take away. Of one with nothing at all alpha counts, too.
bool IsLost(const FrameInput& input, const Samples& source, const Samples& result) {
  constexpr std::uint64_t kSeen = 256;  // of 65535, on the average
  const Unlit unlit = UnlitOf(result);
  if (unlit == Unlit::kNone) {
    return false;
  }
  const int step = unlit == Unlit::kAll ? 1 : 2;
  const int reach = ReachOf(input, source.width);
  std::uint64_t sum = 0;
  for (int y = reach; y < source.height - reach && 2 * reach < source.width; ++y) {
    const std::uint16_t* const end = source.At(source.width - reach, y);
    for (const std::uint16_t* sample = source.At(reach, y); sample < end; sample += step) {
      sum += *sample;
    }
  }
  const std::uint64_t pixels =
      static_cast<std::uint64_t>(source.width) * static_cast<std::uint64_t>(source.height);
  return sum > kSeen * pixels * (4 / static_cast<unsigned>(step));
}

}  // namespace

void CheckGrid(const lx::Footprint& engine, const std::map<std::string, Value>& values, int width,
               int height, std::uint64_t held, std::uint64_t pictures) {
  const Foresight foresight = Foresee(engine, values, width, height);
  if (foresight.grid == lx::GridSides{}) {
    throw Failure("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                  " with a radius of " + Shortest(std::round(foresight.radius * 10.0) / 10.0) +
                  " pixels is too large: the longer side and twice the radius, rounded up and "
                  "one more, may come to " +
                  std::to_string(engine.largestSide) + " pixels at most");
  }
  const std::uint64_t available = AvailableMemory();
  if (available != 0 && foresight.effectBytes + pictures > available + held) {
    const std::string beside =
        pictures == 0 ? "" : " and " + std::to_string(pictures / kMebibyte) + " MiB for pictures";
    throw Failure("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                  " needs " + std::to_string(foresight.effectBytes / kMebibyte) +
                  " MiB for the effect" + beside + ", and this machine has " +
                  std::to_string(available / kMebibyte) + " MiB left");
  }
}

// The inverse curve turns what rounding leaves of a black area into light: half a 16-bit step at an
// emphasis of 80, a hundred at 100. The engine fast keeps what is bright apart from what is dark.
double QuietEmphasis(const lx::Footprint& engine) {
  if (engine.name == lx::FastFootprint::kName) {
    return std::numeric_limits<double>::infinity();
  }
  constexpr double kSingle = 50.0;
  constexpr double kDouble = 75.0;
  return engine.name == std::string_view("single") ? kSingle : kDouble;
}

bool ApertureHoldsNothing(const FrameInput& input) {
  return ShapeOf(input.values) == Shape::kImage && CutFrom(input).holdsNothing;
}

namespace {

enum class Outcome { kWorked, kNoAperture, kLost, kLeftAlone };

// Of a frame that came back as it was.
Outcome OutcomeOfCopy(const FrameInput& input, const Samples& source) {
  // Less might be lost where samples are rounded.
  constexpr double kClear = 64.0;
  if (ShapeOf(input.values) != Shape::kImage) {
    return HasEdges(source, kClear) ? Outcome::kLeftAlone : Outcome::kWorked;
  }
  const ImageAperture aperture = CutFrom(input);
  if (aperture.holdsNothing) {
    return Outcome::kNoAperture;
  }
  // A point of light rightly leaves a frame as it is, and one with little beside it nearly so.
  const bool isPoint = aperture.beside <= 0.0;
  return isPoint || !HasEdges(source, kClear / aperture.beside) ? Outcome::kWorked
                                                                : Outcome::kLeftAlone;
}

Outcome OutcomeOf(const FrameInput& input, FrameImage* result) {
  const Samples source = SamplesOf(input.source.Object());
  if (IsLost(input, source, SamplesOf(result))) {
    return Outcome::kLost;
  }
  if (ApertureRadius(input.values, source.width) <= 1.0 || !IsCopy(source, SamplesOf(result))) {
    return Outcome::kWorked;
  }
  return OutcomeOfCopy(input, source);
}

}  // namespace

bool CheckRendered(const FrameInput& input, FrameImage* result) {
  const Outcome outcome = OutcomeOf(input, result);
  if (outcome == Outcome::kLost) {
    throw Failure("the effect gave an empty frame for a picture: it had not the memory for it");
  }
  if (outcome == Outcome::kLeftAlone) {
    throw Failure(
        "the effect gave the frame back as it was, though its aperture is larger than a "
        "pixel: it could not work on it");
  }
  return outcome == Outcome::kWorked;
}

bool IsWorkedOn(const FrameInput& input, FrameImage* result) {
  const Outcome outcome = OutcomeOf(input, result);
  return outcome == Outcome::kWorked || outcome == Outcome::kNoAperture;
}

bool StayedAsItWas(const FrameInput& input, const Picture& source,
                   const std::vector<float>& result) {
  return ApertureRadius(input.values, source.width) > 1.0 && ApertureHoldsNothing(input) &&
         IsCopy(source.floats, result);
}

}  // namespace glimmerhost
