// SPDX-License-Identifier: BSD-3-Clause
// What a person may choose about the reading of a picture, and what is to be said of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/colour_path.h"
#include "host/pictures/floats/range.h"
#include "host/pictures/not_carried.h"

namespace glimmerhost {

inline constexpr const char* kAnyFormat = "any";
inline constexpr const char* kNoFormat = "";  // samples are all that is wanted

// What samples a picture has in memory.
enum class Precision {
  kByFile,  // floats of files of floats, 16 bits of others
  kFloat,
  k16,
};

// By "auto", "float" or "16", and back.
//   name  how the text's origin is called in an error
// Throws UsageError.
Precision ParsePrecision(const std::string& name, const std::string& text);
const char* PrecisionText(Precision precision);

struct ReadOptions {
  RangeMapping range;  // of floating-point files; files of whole numbers have none, nor floats
  std::shared_ptr<const ColourPath> colours = nullptr;  // with one, all files are as of floats

  // The name of the format that the picture will be written in. What a file says beside its
  // samples is kept so that it can go there, or into any.
  std::string keptFor = kAnyFormat;

  // Patterns of channels beside the picture's own that become its layers. They count where the
  // output can hold such channels.
  std::vector<std::string> blurChannels{};

  Precision precision = Precision::k16;

  bool KeepsFloats(bool ofFloats) const {
    return precision == Precision::kFloat || (precision == Precision::kByFile && ofFloats);
  }
};

struct ReadReport {
  // Samples of the picture's own channels. A grey one counts once.
  std::uint64_t cut = 0;         // outside the range: at its nearer end now
  std::uint64_t infinite = 0;    // likewise; 0 now among floats
  std::uint64_t notNumbers = 0;  // 0 now

  // For a person, each naming the file; none if there is nothing to say.
  std::vector<std::string> lines;

  // What of the file is not in the picture.
  std::vector<NotCarried> notCarried;
};

}  // namespace glimmerhost
