// SPDX-License-Identifier: BSD-3-Clause
// What the log wrote while the standard error stream was captured.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace lx_test {

// "14:03:07.25 " and its like: the time of a line, with the blank behind it.
inline bool IsTime(std::string_view text) {
  constexpr std::string_view kShape = "00:00:00.00 ";
  return std::equal(
      text.begin(), text.end(), kShape.begin(), kShape.end(), [](char found, char shape) {
        return shape == '0' ? std::isdigit(static_cast<unsigned char>(found)) != 0 : found == shape;
      });
}

// The captured lines without the times that stand in them.
inline std::string LoggedLines() {
  constexpr std::string_view kHead = "(LX LIB) ";
  constexpr std::size_t kTimeLength = 12;
  std::string lines = testing::internal::GetCapturedStderr();
  for (std::size_t head = lines.find(kHead); head != std::string::npos;
       head = lines.find(kHead, head + kHead.size())) {
    const std::size_t time = head + kHead.size();
    if (IsTime(std::string_view(lines).substr(time, kTimeLength))) {
      lines.erase(time, kTimeLength);
    }
  }
  return lines;
}

}  // namespace lx_test
