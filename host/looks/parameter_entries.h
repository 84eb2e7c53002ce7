// SPDX-License-Identifier: BSD-3-Clause
// The entries of a parameter file, before anything is known of what they mean.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace glimmerhost {

struct ParameterEntry {
  std::string place;  // what an error begins with: "film.toml:3: "
  std::string name;
  std::string text;          // the value as a person would have typed it
  bool wholeNumber = false;  // whether it was written as one
};

// The entries of a file's text, whose nesting no file can drive the stack to its end with.
//   file  its name for errors
// Throw Failure where the text is none of its format, UsageError for a value that is neither a
// text nor a number nor a switch. In TOML a name stands once.
std::vector<ParameterEntry> TomlEntries(const std::string& file, std::string_view text);
std::vector<ParameterEntry> JsonEntries(const std::string& file, std::string_view text);

// A value that is not one of these.
inline constexpr const char* kAllowedValues = " must be a text, a number, true or false";

// What a text that is none of its format fails with.
inline constexpr const char* kUnreadable = ": cannot be read as a look: ";

}  // namespace glimmerhost
