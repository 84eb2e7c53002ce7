// SPDX-License-Identifier: BSD-3-Clause
#include "host/farm/shell_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace glimmerhost {
namespace {

bool IsPlain(char c) {
  constexpr std::string_view kPlain = "_-+=.,:/@%";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kPlain.find(c) != std::string_view::npos;
}

// As a byte: on some processors a char has no sign, on others the bytes of what is not ASCII are
// below 0.
bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < ' ' || byte == 0x7F;
}

// $'...', in which a control character has a name of its own.
std::string WithNames(const std::string& text) {
  std::string word = "$'";
  for (const char c : text) {
    if (IsControl(c)) {
      std::array<char, 8> name{};
      std::snprintf(name.data(), name.size(), "\\%03o", static_cast<unsigned>(c));
      word += name.data();
    } else if (c == '\'' || c == '\\') {
      word += {'\\', c};
    } else {
      word += c;
    }
  }
  return word + "'";
}

}  // namespace

std::string ShellWord(const std::string& text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), IsPlain)) {
    return text;
  }
  if (std::any_of(text.begin(), text.end(), IsControl)) {
    return WithNames(text);
  }
  std::string word = "'";
  for (const char c : text) {
    word += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return word + "'";
}

std::string ShellLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    line += (line.empty() ? "" : " ") + ShellWord(word);
  }
  return line;
}

}  // namespace glimmerhost
