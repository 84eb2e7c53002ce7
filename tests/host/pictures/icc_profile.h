// SPDX-License-Identifier: BSD-3-Clause
// A small profile of colours for tests of what files carry.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace lx_test {

// A profile that libpng takes: the head of one for RGB displays and a single tag, "text".
inline std::vector<std::uint8_t> Profile() {
  std::vector<std::uint8_t> profile(344, 0);
  const auto put = [&profile](std::size_t at, const std::string& text) {
    std::copy(text.begin(), text.end(), profile.begin() + static_cast<std::ptrdiff_t>(at));
  };
  put(0, std::string("\x00\x00\x01\x58", 4));  // 344
  put(8, "\x02");
  put(12, "mntrRGB XYZ ");
  put(36, "acsp");
  // The illuminant, D50: 0.9642, 1, 0.8249 in 16.16.
  put(68, std::string("\x00\x00\xF6\xD6\x00\x01\x00\x00\x00\x00\xD3\x2D", 12));
  // One tag, of 200 bytes from 144 on.
  put(128, std::string("\x00\x00\x00\x01"
                       "cprt\x00\x00\x00\x90\x00\x00\x00\xC8",
                       16));
  put(144, "text");
  for (std::size_t i = 152; i < profile.size(); ++i) {
    profile[i] = static_cast<std::uint8_t>(i * i % 251);
  }
  return profile;
}

}  // namespace lx_test
