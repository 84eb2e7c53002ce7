// SPDX-License-Identifier: BSD-3-Clause
// THE list of back-ends, and what a frame takes in each of them, known without linking any:
// whoever plans a render asks here, and the back-ends themselves are built on the same rules.
//
// A back-end pads the frame by a margin on each side, and brings the sides to those of a grid:
//
//   fast             each side to the quickest length that is near
//   exact            one side for both, a power of two
//   double, single   each side to a power of two
//
//   1920 x 1080, margin 101:  fast 2160 x 1296;  exact 4096 x 4096;  double and single 4096 x 2048
//
// Bytes are those of all that a back-end keeps for runs on a grid. What it holds for the length of
// a load alone does not count, nor does what a planner takes.
//
// All functions are pure; any thread may call them.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "fftlib/backends/fast/fast_footprint.h"
#include "fftlib/backends/fftw/fftw_footprint.h"
#include "fftlib/backends/kernels/kernel_footprint.h"
#include "fftlib/core/grid.h"

namespace lx {

// Kinds of back-ends, each by what it says of itself: kName, kDescription, GridFor, BytesAt, Make,
// and kArithmetic, a number that is raised with every change by which a sample may become another.
template <class... Each>
struct FootprintList {};

// A back-end is a folder and its name here.
using Footprints =
    FootprintList<FastFootprint, FftwFootprint, KernelFootprint<double>, KernelFootprint<float>>;

// Any of them, for who chooses while it runs.
struct Footprint {
  std::string_view name;
  std::string_view description;  // one line
  GridSides (*gridFor)(std::int32_t width, std::int32_t height, std::int32_t margin);
  std::uint64_t (*bytesAt)(Size frame, const GridSides& grid);
  std::int32_t largestSide;  // of a grid
};

template <class... Each>
constexpr std::array<Footprint, sizeof...(Each)> FootprintsOf(FootprintList<Each...> /*list*/) {
  return {Footprint{Each::kName, Each::kDescription, &Each::GridFor, &Each::BytesAt,
                    Each::kLargestSide}...};
}

inline constexpr auto kFootprints = FootprintsOf(Footprints{});

// Null for a name that none has.
constexpr const Footprint* FindFootprint(std::string_view name) {
  for (const Footprint& each : kFootprints) {
    if (each.name == name) {
      return &each;
    }
  }
  return nullptr;
}

// The text that stands in a module's file before its back-end's name and a zero: which back-end a
// file has is known before it is loaded, and nothing crosses the border for it. A file without one
// counts as exact. Behind the zero comes the number of its arithmetic, as a text with a zero, too.
inline constexpr std::string_view kEngineMarker = "GlimmerBlur engine: ";

}  // namespace lx
