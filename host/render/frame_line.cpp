// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/frame_line.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace glimmerhost {
namespace {

// What the parser meets, one call for each. False ends the reading: it is another line then.
class Listener : public nlohmann::json_sax<nlohmann::json> {
 public:
  // Whether all is there that each such line has.
  bool IsWhole() const { return isWhole_ && hasFrame_ && hasState_ && hasOutput_ && hasSeconds_; }

  FrameLine Line() && { return std::move(line_); }

  bool null() override { return !IsFrameOrSeconds(); }
  bool boolean(bool /*on*/) override { return !IsFrameOrSeconds(); }
  bool number_integer(number_integer_t number) override {
    return TakeWhole(number) && TakeNumber(static_cast<double>(number));
  }
  bool number_unsigned(number_unsigned_t number) override {
    if (IsAt("count")) {
      line_.count = number;
    }
    constexpr number_unsigned_t kMost = std::numeric_limits<int>::max();
    return TakeWhole(static_cast<number_integer_t>(std::min(number, kMost + 1))) &&
           TakeNumber(static_cast<double>(number));
  }
  bool number_float(number_float_t number, const string_t& /*text*/) override {
    return !IsAt("frame") && TakeNumber(number);
  }
  bool string(string_t& text) override {
    if (depth_ == 2 && key_ == "remarks") {
      line_.report.remarks.push_back(text);
    } else if (IsAt("output")) {
      line_.report.output = text;
      hasOutput_ = true;
    } else if (IsAt("fault")) {
      line_.report.fault = text;
    } else if (IsAt("state")) {
      const std::optional<FrameState> state = StateOf(text);
      line_.report.state = state.value_or(FrameState::kFailed);
      hasState_ = state.has_value();
      return hasState_;
    }
    return !IsFrameOrSeconds();
  }
  bool binary(binary_t& /*bytes*/) override { return false; }
  bool start_object(std::size_t /*count*/) override { return Enter(); }
  bool key(string_t& name) override {
    if (depth_ == 1) {
      key_ = name;
    }
    return true;
  }
  bool end_object() override { return Leave(); }
  bool start_array(std::size_t /*count*/) override { return depth_ > 0 && Enter(); }
  bool end_array() override { return Leave(); }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*fault*/) override {
    return false;
  }

 private:
  bool IsAt(std::string_view name) const { return depth_ == 1 && key_ == name; }
  bool IsFrameOrSeconds() const { return IsAt("frame") || IsAt("seconds"); }

  bool Enter() {
    ++depth_;
    return true;
  }
  bool Leave() {
    --depth_;
    isWhole_ = depth_ == 0;
    return true;
  }

  bool TakeWhole(number_integer_t number) {
    if (!IsAt("frame")) {
      return true;
    }
    line_.report.frame = static_cast<int>(number);
    hasFrame_ = line_.report.frame == number;
    return hasFrame_;
  }

  bool TakeNumber(double number) {
    if (IsAt("seconds")) {
      line_.report.seconds = number;
      hasSeconds_ = true;
    } else if (IsAt("elapsed")) {
      line_.elapsed = number;
    }
    return true;
  }

  FrameLine line_;
  int depth_ = 0;
  std::string key_;
  bool isWhole_ = false;
  bool hasFrame_ = false;
  bool hasState_ = false;
  bool hasOutput_ = false;
  bool hasSeconds_ = false;
};

}  // namespace

std::optional<FrameLine> ParseFrameLine(const std::string& line) {
  Listener listener;
  const bool isRead = nlohmann::json::sax_parse(line, &listener);
  return isRead && listener.IsWhole() ? std::optional(std::move(listener).Line()) : std::nullopt;
}

}  // namespace glimmerhost
