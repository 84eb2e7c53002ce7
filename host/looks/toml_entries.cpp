// SPDX-License-Identifier: BSD-3-Clause
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

// How many bytes the letter at a place has; 0 if it is not UTF-8.
std::size_t LetterSize(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned lead = byte(0);
  const std::size_t size = lead < 0x80                    ? 1
                           : lead >= 0xC2 && lead <= 0xDF ? 2
                           : lead >= 0xE0 && lead <= 0xEF ? 3
                           : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                          : 0;
  if (size > text.size() - at) {
    return 0;
  }
  for (std::size_t i = 1; i < size; ++i) {
    // Letters that have shorter forms, halves of two, and what lies behind the last.
    const unsigned least = i > 1 ? 0x80 : lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned most = i > 1 ? 0xBF : lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byte(i) < least || byte(i) > most) {
      return 0;
    }
  }
  return size;
}

// Stands before two digits for a byte that the library does not get: of a letter beyond ASCII, or
// itself.
constexpr char kMark = '`';

// Asked whether a letter beyond ASCII is a blank, the library does what C++ leaves undefined, and
// it asks in many places. So it gets none.
std::string ToMarks(const std::string& file, std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string marked;
  int line = 1;
  for (std::size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; at < text.size();) {
    const std::size_t size = LetterSize(text, at);
    const std::string place = file + ":" + std::to_string(line) + kUnreadable;
    if (size == 0) {
      throw UsageError(place + "not UTF-8");
    }
    // Those that the library itself makes would be taken for ours.
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("\\u0060") || rest.starts_with("\\U00000060")) {
      throw UsageError(place + "` must be written as itself");
    }
    for (const std::size_t end = at + size; at < end; ++at) {
      const auto byte = static_cast<unsigned char>(text[at]);
      if (byte < 0x80 && byte != kMark) {
        marked += text[at];
      } else {
        marked += {kMark, kDigits[byte / 16], kDigits[byte % 16]};
      }
    }
    line += text[at - 1] == '\n' ? 1 : 0;
  }
  return marked;
}

std::string FromMarks(std::string_view marked) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
  std::string text;
  for (std::size_t at = 0; at < marked.size(); ++at) {
    if (marked[at] == kMark && at + 2 < marked.size()) {
      text += static_cast<char>(digit(marked[at + 1]) * 16 + digit(marked[at + 2]));
      at += 2;
    } else {
      text += marked[at];
    }
  }
  return text;
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
  ParameterEntry entry{Place(file, node.source()) + ": ", FromMarks(name), {}};
  if (const auto text = node.value_exact<std::string>()) {
    entry.text = FromMarks(*text);
  } else if (const auto on = node.value_exact<bool>()) {
    entry.text = *on ? "on" : "off";
  } else if (const auto whole = node.value_exact<std::int64_t>()) {
    entry.text = std::to_string(*whole);
    entry.wholeNumber = true;
  } else if (const auto number = node.value_exact<double>()) {
    entry.text = Shortest(*number);
  } else {
    throw UsageError(entry.place + OneLine(entry.name) + kAllowedValues);
  }
  return entry;
}

}  // namespace

std::vector<ParameterEntry> TomlEntries(const std::string& file, std::string_view text) {
  if (HasDotsWithoutEnd(text)) {
    throw UsageError(file + kUnreadable + "its names have dots without end");
  }
  try {
    std::vector<ParameterEntry> entries;
    for (const auto& [name, node] : toml::parse(ToMarks(file, text), std::string_view(file))) {
      entries.push_back(Entry(file, name.str(), node));
    }
    return entries;
  } catch (const toml::parse_error& fault) {
    throw UsageError(Place(file, fault.source()) + kUnreadable +
                     OneLine(FromMarks(fault.description())));
  }
}

}  // namespace glimmerhost
