// SPDX-License-Identifier: BSD-3-Clause
#include <charconv>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>

#include "host/looks/parameter_entries.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// The text's characters, counting the lines that the parser has come through.
class CountedText {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountedText(const char* at, int* lines) : at_(at), lines_(lines) {}

  reference operator*() const { return *at_; }
  CountedText& operator++() {
    *lines_ += *at_ == '\n' ? 1 : 0;
    ++at_;
    return *this;
  }
  bool operator==(const CountedText& other) const { return at_ == other.at_; }
  bool operator!=(const CountedText& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  int* lines_;
};

constexpr std::string_view kLine = "at line ";

// A fault behind the library's own number and place, and without the bytes that were read, which
// may be anything.
std::string_view ReasonOf(std::string_view fault) {
  const std::size_t place = fault.find("column ");
  const std::string_view before = place == std::string_view::npos ? "] " : ": ";
  const std::size_t begin = fault.find(before, place == std::string_view::npos ? 0 : place);
  fault.remove_prefix(begin == std::string_view::npos ? 0 : begin + before.size());
  return fault.substr(0, fault.find("; last read"));
}

// What the parser meets, one call for each. It builds nothing, so nesting costs nothing, and a
// name that stands twice is seen twice.
class Listener : public nlohmann::json_sax<nlohmann::json> {
 public:
  Listener(const std::string& file, const int& line) : file_(file), line_(line) {}

  std::vector<ParameterEntry> Entries() && { return std::move(entries_); }

  bool null() override { Refuse(); }
  bool boolean(bool on) override { return Take(on ? "on" : "off"); }
  bool number_integer(number_integer_t number) override {
    return Take(std::to_string(number), true);
  }
  bool number_unsigned(number_unsigned_t number) override {
    return Take(std::to_string(number), true);
  }
  bool number_float(number_float_t number, const string_t& /*text*/) override {
    return Take(Shortest(number));
  }
  bool string(string_t& text) override { return Take(text); }
  bool binary(binary_t& /*bytes*/) override { Refuse(); }
  bool start_object(std::size_t /*count*/) override {
    if (isOpen_) {
      Refuse();
    }
    isOpen_ = true;
    return true;
  }
  // An entry's line is its name's: behind a number the parser has read on.
  bool key(string_t& name) override {
    name_ = name;
    nameLine_ = line_;
    return true;
  }
  bool end_object() override { return true; }
  bool start_array(std::size_t /*count*/) override { Refuse(); }
  bool end_array() override { return true; }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& fault) override {
    throw UsageError(Place(LineOf(fault.what())) + kUnreadable + OneLine(ReasonOf(fault.what())));
  }

 private:
  std::string Place(int line) const { return file_ + ":" + std::to_string(line); }

  // The library says it for most faults.
  int LineOf(std::string_view fault) const {
    int line = nameLine_;
    if (const std::size_t at = fault.find(kLine); at != std::string_view::npos) {
      fault.remove_prefix(at + kLine.size());
      std::from_chars(fault.data(), fault.data() + fault.size(), line);
    }
    return line;
  }

  bool Take(const std::string& text, bool wholeNumber = false) {
    if (!isOpen_) {
      Refuse();
    }
    entries_.push_back({Place(nameLine_) + ": ", name_, text, wholeNumber});
    return true;
  }

  [[noreturn]] void Refuse() const {
    if (!isOpen_) {
      throw UsageError(Place(line_) + ": must be an object of values, {\"version\": 1, ...}");
    }
    throw UsageError(Place(nameLine_) + ": " + OneLine(name_) + kAllowedValues);
  }

  const std::string& file_;
  const int& line_;
  bool isOpen_ = false;
  int nameLine_ = 1;
  std::string name_;
  std::vector<ParameterEntry> entries_;
};

}  // namespace

std::vector<ParameterEntry> JsonEntries(const std::string& file, std::string_view text) {
  int line = 1;
  Listener listener(file, line);
  nlohmann::json::sax_parse(CountedText(text.data(), &line),
                            CountedText(text.data() + text.size(), &line), &listener);
  return std::move(listener).Entries();
}

}  // namespace glimmerhost
