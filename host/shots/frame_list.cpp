// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/frame_list.h"

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <unordered_set>

#include "host/looks/shot_span.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

constexpr std::size_t kMostFrames = 1000000;

// Takes a whole number from the front of the text. False if there is none.
bool TakeNumber(std::string_view* text, int* number) {
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), *number);
  if (error != std::errc() || *number < -kLargestFrame || *number > kLargestFrame) {
    return false;
  }
  text->remove_prefix(static_cast<std::size_t>(end - text->data()));
  return true;
}

bool Take(std::string_view* text, char c) {
  if (text->empty() || text->front() != c) {
    return false;
  }
  text->remove_prefix(1);
  return true;
}

// FIRST, FIRST-LAST or FIRST-LASTxSTEP from the front of the text.
struct Range {
  int first = 0;
  int last = 0;
  int step = 1;
};

bool TakeRange(std::string_view* text, Range* range) {
  if (!TakeNumber(text, &range->first)) {
    return false;
  }
  range->last = range->first;
  if (!Take(text, '-')) {
    return true;
  }
  return TakeNumber(text, &range->last) &&
         (!Take(text, 'x') || (TakeNumber(text, &range->step) && range->step > 0));
}

std::string ShowRange(int first, int last, int step) {
  std::string text = std::to_string(first);
  if (first != last) {
    text += "-" + std::to_string(last);
  }
  if (std::abs(step) > 1) {
    text += "x" + std::to_string(std::abs(step));
  }
  return text;
}

}  // namespace

std::vector<int> ParseFrames(const std::string& name, const std::string& text) {
  const auto refuse = [&](const std::string& allowed) { throw MustBe(name, allowed, text); };
  std::vector<int> frames;
  std::unordered_set<int> seen;
  std::string_view rest = text;
  std::size_t named = 0;
  do {
    Range range;
    if (!TakeRange(&rest, &range)) {
      refuse("a list of frames and ranges (1-10,20-30, 1-100x5, 100-1)");
    }
    const int direction = range.first <= range.last ? 1 : -1;
    // Before they are made: also frames that are named again take their time.
    named += static_cast<std::size_t>((range.last - range.first) * direction / range.step) + 1;
    if (named > kMostFrames) {
      refuse("at most " + std::to_string(kMostFrames) + " frames");
    }
    for (int frame = range.first; (range.last - frame) * direction >= 0;
         frame += range.step * direction) {
      if (seen.insert(frame).second) {
        frames.push_back(frame);
      }
    }
  } while (Take(&rest, ','));
  if (!rest.empty()) {
    refuse("a list of frames and ranges (1-10,20-30, 1-100x5, 100-1)");
  }
  return frames;
}

std::string ShowFrames(const std::vector<int>& frames) {
  std::string text;
  for (std::size_t i = 0; i < frames.size();) {
    std::size_t end = i + 1;
    int step = 1;
    if (end < frames.size()) {
      step = frames[end] - frames[i];
      while (end < frames.size() && frames[end] - frames[end - 1] == step) {
        ++end;
      }
      // Two frames that are no neighbours are shorter side by side.
      if (end - i == 2 && std::abs(step) != 1) {
        end = i + 1;
        step = 1;
      }
    }
    text += (text.empty() ? "" : ",") + ShowRange(frames[i], frames[end - 1], step);
    i = end;
  }
  return text;
}

}  // namespace glimmerhost
