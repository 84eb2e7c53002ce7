// SPDX-License-Identifier: BSD-3-Clause
// Between the samples of a file and a picture whose colours go by a ColourPath.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/picture.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// Brings the mapped channels of a file's samples into the picture by way of the options' colours,
// which are not null. Size and alpha of the picture are set. A grey picture becomes one of colours,
// since a transform may tint it.
//   channels  of a pixel of the file
//   ofFloats  whether its samples are floats
//   report    receives what became of the samples, and a line about it
void SpreadManaged(const std::filesystem::path& file, const std::vector<float>& from, int channels,
                   const ChannelMap& map, const ReadOptions& options, bool ofFloats,
                   Picture* picture, ReadReport* report);

// The values that go into a file: red, green, blue and, if asked for, alpha. None is larger than a
// half float can be.
std::vector<float> ManagedFloats(const Picture& picture, bool withAlpha);

// For a file of whole numbers: 16 bits, what is outside 0 to 1 at the nearer end.
//   cut  receives how many were outside by more than rounding makes
std::vector<std::uint16_t> CutToWords(const std::vector<float>& values, std::uint64_t* cut);

}  // namespace glimmerhost
