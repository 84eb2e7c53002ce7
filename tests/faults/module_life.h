// SPDX-License-Identifier: BSD-3-Clause
// One process's life with a module, in which one request to the system is refused.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "tests/faults/quiet_host.h"
#include "tests/faults/refusals.h"

namespace faults {

inline constexpr int kLifeWidth = 24;
inline constexpr int kLifeHeight = 16;
inline constexpr std::size_t kLifeSamples = std::size_t{kLifeWidth} * kLifeHeight * 4;

using LifeFrame = std::array<std::uint16_t, kLifeSamples>;

// What a frame's buffer holds before it is rendered.
inline constexpr std::uint16_t kUntouched = 0x5aa5;

// The sample of the source at that place.
std::uint16_t SourceSample(std::size_t at);

struct LifeLook {
  const char* name;
  QuietParams::Numbers numbers;
  bool hasSpread;
};

// Where the refused request is.
enum class Stage {
  kFirstFrame,  // from moduleInit up to the end of the first frame
  kLaterFrame   // in one with a wider aperture, on an instance that has rendered one
};

// How that came out, as a host is told.
enum class Told { kDone, kNoModule, kNoInstance, kThrew };

// In the order in which they are rendered.
enum LifeStep : std::size_t {
  kRefusedFrame,  // the one that was being rendered
  kNextFrame,     // the same on the same instance
  kOtherLook,     // of the other aperture there
  kFresh,         // of the narrow aperture on a fresh instance
  kLoadedAnew,    // the same after the module was unloaded and loaded again
  kLifeSteps
};

struct LifeReport {
  bool isFinished = false;
  Told told = Told::kDone;
  long requests = 0;
  const char* refused = nullptr;  // a literal of the library's, which forked processes share
  long requestsOfEnd = 0;         // for memory, while instances end and the module is unloaded
  long kept = 0;                  // blocks of memory
  bool isHeld = true;             // something of the host's, by whoever
  CallList calls;                 // of the stage
  std::array<LifeFrame, kLifeSteps> frames;
};

// Loads the module, renders, goes on and unloads it, all in this process.
//   n  the request of that kind in the stage that is refused; 0: none is
void LiveWithModule(const LifeLook& look, Stage stage, Kind kind, long n, LifeReport* report);

}  // namespace faults
