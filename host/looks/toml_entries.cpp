// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/looks/parameter_entries.h"
#include "host/looks/toml_library.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// Steps over a string, a comment or a single character of TOML, from its first character. What is
// open at the end of its line, or of the text, ends there.
std::size_t StepOver(std::string_view text, std::size_t at) {
  const char first = text[at];
  if (first == '#') {
    return text.find('\n', at);
  }
  if (first != '"' && first != '\'') {
    return at + 1;
  }
  const std::string_view rest = text.substr(at);
  const bool manyLines = rest.starts_with("\"\"\"") || rest.starts_with("'''");
  const std::string_view end = rest.substr(0, manyLines ? 3 : 1);
  for (std::size_t i = at + end.size(); i < text.size(); ++i) {
    if (text.substr(i).starts_with(end) || (text[i] == '\n' && !manyLines)) {
      return i + end.size();
    }
    if (text[i] == '\\' && first == '"') {
      ++i;
    }
  }
  return std::string_view::npos;
}

// Each dot of a name opens a table in the one before, and the library takes tables apart by one
// call in another. No parameter has a dot in its name; a number has one.
bool HasDotsWithoutEnd(std::string_view text) {
  constexpr int kMany = 500;
  int dots = 0;
  for (std::size_t at = 0; at < text.size(); at = StepOver(text, at)) {
    dots += text[at] == '.' ? 1 : 0;
  }
  return dots > kMany;
}

bool IsBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

std::size_t FindBeyondAscii(std::string_view text, std::size_t from, std::size_t end) {
  for (std::size_t at = from; at < end; ++at) {
    if (IsBeyondAscii(text[at])) {
      return at;
    }
  }
  return std::string_view::npos;
}

// The first place behind a backslash that ends a line where a text goes on.
std::size_t GoOn(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(" \t\r\n", at), text.size());
}

// Where a letter beyond ASCII stands in a long string's place for blanks: first on a line, if a
// backslash ends the one before. npos if there is none.
std::size_t LetterForBlanks(std::string_view text, std::size_t from, std::size_t end) {
  for (std::size_t at = text.find('\\', from); at < end; at = text.find('\\', at)) {
    const std::size_t next = GoOn(text, at + 1);
    const std::string_view blanks = text.substr(at + 1, next - at - 1);
    if (blanks.find('\n') != std::string_view::npos && next < end && IsBeyondAscii(text[next])) {
      return next;
    }
    at += 2;
  }
  return std::string_view::npos;
}

// A name or a value without quotes from its first character: to what may stand behind it. Quotes in
// it open nothing.
std::size_t EndOfWord(std::string_view text, std::size_t at) {
  constexpr std::string_view kBehind = " \t\r\n=,[]{}#";
  return std::min(text.find_first_of(kBehind, at), text.size());
}

// Asked whether such a letter is a blank, the library does what C++ leaves undefined. TOML has none
// outside of strings and comments, but for a mark at its beginning; npos if there is none.
std::size_t FindLetterForBlanks(std::string_view text) {
  for (std::size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; at < text.size();) {
    const bool stepsOver = text[at] == '#' || text[at] == '"' || text[at] == '\'';
    const std::size_t end = std::min(
        stepsOver ? StepOver(text, at) : std::max(EndOfWord(text, at), at + 1), text.size());
    const std::size_t found = !stepsOver ? FindBeyondAscii(text, at, end)
                              : text.substr(at).starts_with("\"\"\"")
                                  ? LetterForBlanks(text, at, end)
                                  : std::string_view::npos;
    if (found < end) {
      return found;
    }
    at = end;
  }
  return std::string_view::npos;
}

std::string Place(const std::string& file, const toml::source_region& region) {
  std::string place = file;
  if (region.begin.line != 0) {
    place += ':';
    place += std::to_string(region.begin.line);
  }
  return place;
}

ParameterEntry Entry(const std::string& file, std::string_view name, const toml::node& node) {
  ParameterEntry entry{Place(file, node.source()) + ": ", std::string(name), {}};
  if (const auto text = node.value_exact<std::string>()) {
    entry.text = *text;
  } else if (const auto on = node.value_exact<bool>()) {
    entry.text = *on ? "on" : "off";
  } else if (const auto whole = node.value_exact<std::int64_t>()) {
    entry.text = std::to_string(*whole);
    entry.wholeNumber = true;
  } else if (const auto number = node.value_exact<double>()) {
    entry.text = Shortest(*number);
  } else {
    throw UsageError(entry.place + OneLine(name) + kAllowedValues);
  }
  return entry;
}

}  // namespace

std::vector<ParameterEntry> TomlEntries(const std::string& file, std::string_view text) {
  if (HasDotsWithoutEnd(text)) {
    throw UsageError(file + kUnreadable + "its names have dots without end");
  }
  if (const std::size_t at = FindLetterForBlanks(text); at < text.size()) {
    const auto line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    throw Failure(file + ":" + std::to_string(line) + kUnreadable +
                  "a letter beyond ASCII where none may stand");
  }
  try {
    std::vector<ParameterEntry> entries;
    for (const auto& [name, node] : toml::parse(text, std::string_view(file))) {
      entries.push_back(Entry(file, name.str(), node));
    }
    return entries;
  } catch (const toml::parse_error& fault) {
    throw UsageError(Place(file, fault.source()) + kUnreadable + OneLine(fault.description()));
  }
}

}  // namespace glimmerhost
