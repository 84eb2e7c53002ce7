// SPDX-License-Identifier: BSD-3-Clause
// What a PNG or TIFF file says beside its samples, as both formats can pass it on.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

// Keys are PNG's keywords, at most 79 bytes long; TIFF's tags go under those that mean the
// same. Values are UTF-8.
struct FileText {
  std::string key;
  std::string value;
};

inline constexpr const char* kXmpKey = "XML:com.adobe.xmp";

enum class DotsPer { kNothing, kInch, kCentimetre };

struct Resolution {
  double x;
  double y;
  DotsPer unit = DotsPer::kNothing;  // only the ratio of x to y is known
};

// In the units of PNG: 1 is 100000.
struct PngColours {
  std::optional<std::int32_t> gamma;
  std::optional<std::array<std::int32_t, 8>> chromaticities;  // x, y of white, red, green, blue
  std::optional<int> srgbIntent;
};

// Of a TIFF file, and for one only.
struct TiffCoding {
  std::uint16_t compression = 0;
  std::uint16_t orientation = 1;
  std::vector<std::uint8_t> iptc;
  std::optional<std::uint16_t> exifColourSpace;  // 1 for sRGB
};

struct FileMetadata {
  std::string format;  // "png" or "tiff"
  std::vector<FileText> texts;
  std::string date;  // "2001:02:03 04:05:06", or empty
  std::optional<Resolution> resolution;
  std::vector<std::uint8_t> iccProfile;
  PngColours colours;
  TiffCoding tiff;
};

// The pixel aspect is width over height: many dots across make narrow pixels.
quantel::cSize2 PixelAspectOf(const std::optional<Resolution>& resolution);

// Old files hold Latin-1; newer ones UTF-8, whatever their format prescribes.
std::string ToUtf8(std::string_view text);

bool IsAscii(std::string_view text);

// Whether nothing of it matters to a file of another format.
bool SaysNothing(const FileMetadata& metadata);

// Whether the date has the form above, which is all that a TIFF file may hold.
bool IsFullDate(std::string_view date);

}  // namespace glimmerhost
