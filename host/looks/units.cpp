// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/units.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

struct Quantity {
  double number;
  Unit unit;
};

bool TakeSuffix(std::string_view* text, std::string_view suffix) {
  if (!text->ends_with(suffix)) {
    return false;
  }
  text->remove_suffix(suffix.size());
  return true;
}

bool ParseQuantity(std::string_view text, Quantity* quantity) {
  quantity->unit = TakeSuffix(&text, "px")  ? Unit::kPixels
                   : TakeSuffix(&text, "%") ? Unit::kPercent
                                            : Unit::kPlain;
  return ParseNumber(text, &quantity->number);
}

// Two whole numbers from 1 to the largest, with that character between them.
bool ParsePair(const std::string& text, char between, double largest, quantel::cSize2* pair) {
  const std::size_t middle = text.find(between);
  double first = 0.0;
  double second = 0.0;
  const auto isCount = [=](double n) { return n >= 1.0 && n <= largest && n == std::floor(n); };
  if (middle == std::string::npos ||
      !ParseNumber(std::string_view(text).substr(0, middle), &first) ||
      !ParseNumber(std::string_view(text).substr(middle + 1), &second) || !isCount(first) ||
      !isCount(second)) {
    return false;
  }
  *pair = {static_cast<std::int32_t>(first), static_cast<std::int32_t>(second)};
  return true;
}

}  // namespace

TypedRadius ParseRadius(const std::string& option, const std::string& text, int width) {
  Quantity quantity{};
  if (!ParseQuantity(text, &quantity)) {
    throw MustBe(option, "a radius in pixels (40px), a part of the width (4%) or a number (0.04)",
                 text);
  }
  switch (quantity.unit) {
    case Unit::kPixels:
      return {2.0 * quantity.number / width, quantity.unit};
    case Unit::kPercent:
      return {quantity.number / 100.0, quantity.unit};
    case Unit::kPlain:
      break;
  }
  return {quantity.number, quantity.unit};
}

std::string ShowRadius(const TypedRadius& radius, int width) {
  switch (radius.unit) {
    case Unit::kPixels:
      return Shortest(radius.part * width / 2.0) + "px";
    case Unit::kPercent:
      return Shortest(radius.part * 100.0) + "%";
    case Unit::kPlain:
      break;
  }
  return Shortest(radius.part);
}

Fractions ParsePoint(const std::string& option, const std::string& text, int width, int height) {
  const std::size_t comma = text.find(',');
  Quantity x{};
  Quantity y{};
  if (comma == std::string::npos || !ParseQuantity(std::string_view(text).substr(0, comma), &x) ||
      !ParseQuantity(std::string_view(text).substr(comma + 1), &y) ||
      (x.unit == Unit::kPixels) != (y.unit == Unit::kPixels)) {
    throw MustBe(option,
                 "X,Y in fractions (0.5,0.5), in percent (50%,50%) or in pixels from the top left "
                 "(100px,50px)",
                 text);
  }
  if (x.unit == Unit::kPixels) {
    // The effect counts rows from the bottom one.
    return {x.number / width, (height - 1 - y.number) / height};
  }
  const auto fraction = [](const Quantity& quantity) {
    return quantity.unit == Unit::kPercent ? quantity.number / 100.0 : quantity.number;
  };
  return {fraction(x), fraction(y)};
}

quantel::cSize2 ParseRatio(const std::string& option, const std::string& text) {
  quantel::cSize2 ratio{};
  if (!ParsePair(text, ':', 1000000.0, &ratio)) {
    throw MustBe(option, "A:B, two whole numbers from 1 to 1000000 (16:15)", text);
  }
  return ratio;
}

quantel::cSize2 ParseSize(const std::string& option, const std::string& text) {
  quantel::cSize2 size{};
  if (!ParsePair(text, 'x', 32768.0, &size)) {
    throw MustBe(option, "WIDTHxHEIGHT, two whole numbers from 1 to 32768 (1920x1080)", text);
  }
  return size;
}

}  // namespace glimmerhost
