// SPDX-License-Identifier: BSD-3-Clause
// Between the floats of a file and the 16 bits of a Picture.
#pragma once

#include <filesystem>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/picture.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// What becomes of floats: floats again, of which those that are not finite are 0; or 16 bits of a
// range.
struct FloatTarget {
  bool keepsFloats = false;
  RangeMapping range{};
};

// Brings the mapped channels of a file's samples into the picture, whose size is set and which
// remembers the range. Alpha in 16 bits is cut to 0 to 1 and not mapped.
//   channels  of a pixel of the file
//   report    receives what became of the samples, and a line about it
void SpreadFloats(const std::filesystem::path& file, const std::vector<float>& from, int channels,
                  const ChannelMap& map, const FloatTarget& target, Picture* picture,
                  ReadReport* report);

// What GatherChannels gave, as the values that the picture's range says.
//   channels  1 to 4; of 2 and 4 the last is alpha
std::vector<float> ToFloats(const std::vector<std::uint16_t>& samples, int channels,
                            const RangeMapping& range);

}  // namespace glimmerhost
