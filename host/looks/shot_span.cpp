// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/shot_span.h"

#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

bool TakeFrame(std::string_view* text, int* frame) {
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), *frame);
  if (error != std::errc() || *frame < -kLargestFrame || *frame > kLargestFrame) {
    return false;
  }
  text->remove_prefix(static_cast<std::size_t>(end - text->data()));
  return true;
}

}  // namespace

ShotSpan ParseShotSpan(const std::string& name, const std::string& text) {
  std::string_view rest = text;
  int first = 0;
  bool isSpan = TakeFrame(&rest, &first);
  int last = first;
  if (isSpan && rest.starts_with('-')) {
    rest.remove_prefix(1);
    isSpan = TakeFrame(&rest, &last);
  }
  if (!isSpan || !rest.empty() || last < first) {
    throw MustBe(name, "the first and the last frame of the shot (1001-1100)", text);
  }
  return {first, last};
}

std::string ShowSpan(const ShotSpan& span) {
  const std::string first = std::to_string(span.first.value());
  return span.first == span.last ? first : first + "-" + std::to_string(span.last.value());
}

}  // namespace glimmerhost
