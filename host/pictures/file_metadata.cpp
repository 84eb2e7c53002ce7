// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/file_metadata.h"

#include <algorithm>
#include <cstddef>

#include "host/pictures/pixel_aspect.h"

namespace glimmerhost {
namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// How many bytes follow the first of a character; -1 if none starts so.
std::ptrdiff_t BytesAfter(unsigned char first) {
  return first < 0x80   ? 0
         : first < 0xC2 ? -1
         : first < 0xE0 ? 1
         : first < 0xF0 ? 2
         : first < 0xF5 ? 3
                        : -1;
}

bool IsUtf8(std::string_view text) {
  for (auto at = text.begin(); at != text.end();) {
    const std::ptrdiff_t more = BytesAfter(static_cast<unsigned char>(*at++));
    if (more < 0 || text.end() - at < more || !std::all_of(at, at + more, IsContinuation)) {
      return false;
    }
    at += more;
  }
  return true;
}

}  // namespace

quantel::cSize2 PixelAspectOf(const std::optional<Resolution>& resolution) {
  if (!resolution || !(resolution->x > 0.0) || !(resolution->y > 0.0)) {
    return {1, 1};
  }
  return NearestRatio(resolution->y / resolution->x);
}

std::string ToUtf8(std::string_view text) {
  if (IsUtf8(text)) {
    return std::string(text);
  }
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      out += c;
    } else {
      out += static_cast<char>(0xC0U | (byte >> 6U));
      out += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return out;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool SaysNothing(const FileMetadata& metadata) {
  const PngColours& colours = metadata.colours;
  return metadata.texts.empty() && metadata.date.empty() && !metadata.resolution &&
         metadata.iccProfile.empty() && !colours.gamma && !colours.chromaticities &&
         !colours.srgbIntent && metadata.tiff.orientation == 1 && metadata.tiff.iptc.empty() &&
         !metadata.tiff.exifColourSpace;
}

bool IsFullDate(std::string_view date) {
  constexpr std::string_view kForm = "0000:00:00 00:00:00";
  return date.size() == kForm.size() &&
         std::equal(date.begin(), date.end(), kForm.begin(), [](char c, char form) {
           return form == '0' ? c >= '0' && c <= '9' : c == form;
         });
}

}  // namespace glimmerhost
