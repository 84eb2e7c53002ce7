// SPDX-License-Identifier: BSD-3-Clause
// What an operation of the engine, and every step below it, comes to.
#pragma once

#include <cstdint>

namespace lx {

inline constexpr std::int32_t kStatusOk = 0;
inline constexpr std::int32_t kStatusSizeRange = 1;  // a padded or block size outside 2 to
                                                     // 8192, or an image without samples
inline constexpr std::int32_t kStatusNoMemory = 2;
inline constexpr std::int32_t kStatusSourceSize = 3;   // source not of the PSF's size
inline constexpr std::int32_t kStatusNotLoaded = 4;    // run without PSF or source
inline constexpr std::int32_t kStatusDestination = 5;  // destination unlike the source
inline constexpr std::int32_t kStatusFloatImage = 6;   // float image not accepted here
inline constexpr std::int32_t kStatusChannels = 7;     // too few channels or mask bits
inline constexpr std::int32_t kStatusEdgeMode = 8;     // SetEdgeMode knows 1 and 2
inline constexpr std::int32_t kStatusNoPlan = 9;
inline constexpr std::int32_t kStatusNoThreads = 10;  // transform threads did not start

// A step that refuses its arguments and leaves the engine's status alone.
inline constexpr std::int32_t kRefused = -1;

}  // namespace lx
