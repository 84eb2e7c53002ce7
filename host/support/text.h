// SPDX-License-Identifier: BSD-3-Clause
// Between the border's 16-bit text and the program's UTF-8, and between text and numbers.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace glimmerhost {

// Surrogates that stand alone become U+FFFD.
std::string ToUtf8(std::u16string_view text);

// Plain ASCII only, as keys are.
std::u16string ToWide(std::string_view ascii);

// A number in its shortest form that reads back as the same: "0.02", "3600".
std::string Shortest(double value);

// A number, all of the text: "12", "-0.5", "1e-3". False for anything else.
bool ParseNumber(std::string_view text, double* number);

// "1 frame", "12 frames".
std::string Counted(std::size_t count, const std::string& thing);

// "one, two or three".
std::string JoinOr(const std::vector<std::string>& names);

// For a line of a message: control characters become blanks, and what is longer than so many
// bytes of UTF-8 ends in three dots.
std::string OneLine(std::string_view text, std::size_t longest = 200);

// A message as a whole, with what it names: files have names with control characters, too.
std::string AsLine(std::string_view text);

}  // namespace glimmerhost
