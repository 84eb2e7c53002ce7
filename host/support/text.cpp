// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace glimmerhost {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

bool IsHigh(std::uint32_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLow(std::uint32_t c) { return c >= 0xDC00 && c < 0xE000; }

void AppendUtf8(std::uint32_t c, std::string* out) {
  const auto put = [out](std::uint32_t byte) { out->push_back(static_cast<char>(byte)); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | (c >> 6));
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | (c >> 18));
    put(0x80 | ((c >> 12) & 0x3F));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t c = text[i];
    if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00U);
    } else if (IsHigh(c) || IsLow(c)) {
      c = kReplacement;
    }
    AppendUtf8(c, &out);
  }
  return out;
}

std::u16string ToWide(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

std::string Shortest(double value) {
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), end.ptr};
}

bool ParseNumber(std::string_view text, double* number) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
  }
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(*number);
}

std::string Counted(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string JoinOr(const std::vector<std::string>& names) {
  std::string joined;
  for (std::size_t i = 0; i < names.size(); ++i) {
    joined += i == 0 ? "" : i + 1 == names.size() ? " or " : ", ";
    joined += names[i];
  }
  return joined;
}

std::string OneLine(std::string_view text, std::size_t longest) {
  std::size_t size = std::min(text.size(), longest);
  // Not within a character.
  while (size > 0 && size < text.size() && (text[size] & 0xC0) == 0x80) {
    --size;
  }
  std::string line(text.substr(0, size));
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return size < text.size() ? line + "..." : line;
}

std::string AsLine(std::string_view text) { return OneLine(text, text.size()); }

}  // namespace glimmerhost
