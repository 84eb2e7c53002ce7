// SPDX-License-Identifier: BSD-3-Clause
// What a process tells machines of a frame: a line of JSON, which ShotReport writes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "host/render/shot_report.h"

namespace glimmerhost {

struct FrameLine {
  FrameReport report;
  std::optional<std::size_t> count;  // of all frames; none if nobody knows
  std::optional<double> elapsed;     // seconds since the process began
};

// None for any other line. Throws std::bad_alloc where there is no memory: no object of the JSON
// library is made for it, as these ask for memory in their destructors, and end the program where
// there is none.
std::optional<FrameLine> ParseFrameLine(const std::string& line);

}  // namespace glimmerhost
