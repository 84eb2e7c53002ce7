#include "host/looks/units.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

enum class Unit { kPlain, kPercent, kPixels };

struct Measure {
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

bool ParseMeasure(std::string_view text, Measure* measure) {
  measure->unit = TakeSuffix(&text, "px")  ? Unit::kPixels
                  : TakeSuffix(&text, "%") ? Unit::kPercent
                                           : Unit::kPlain;
  return ParseNumber(text, &measure->number);
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

double ParseRadius(const std::string& option, const std::string& text, int width) {
  Measure measure{};
  if (!ParseMeasure(text, &measure)) {
    throw UsageError(option + " " + text +
                     ": allowed is a radius in pixels (40px), a part of the width (4%) or a "
                     "plain number (0.04)");
  }
  switch (measure.unit) {
    case Unit::kPixels:
      return 2.0 * measure.number / width;
    case Unit::kPercent:
      return measure.number / 100.0;
    case Unit::kPlain:
      break;
  }
  return measure.number;
}

Fractions ParsePoint(const std::string& option, const std::string& text, int width, int height) {
  const std::size_t comma = text.find(',');
  Measure x{};
  Measure y{};
  if (comma == std::string::npos || !ParseMeasure(std::string_view(text).substr(0, comma), &x) ||
      !ParseMeasure(std::string_view(text).substr(comma + 1), &y) ||
      (x.unit == Unit::kPixels) != (y.unit == Unit::kPixels)) {
    throw UsageError(option + " " + text +
                     ": allowed is X,Y in fractions (0.5,0.5), in percent (50%,50%) or in pixels "
                     "from the top left (100px,50px)");
  }
  if (x.unit == Unit::kPixels) {
    // The effect counts rows from the bottom one.
    return {x.number / width, (height - 1 - y.number) / height};
  }
  const auto fraction = [](const Measure& measure) {
    return measure.unit == Unit::kPercent ? measure.number / 100.0 : measure.number;
  };
  return {fraction(x), fraction(y)};
}

quantel::cSize2 ParseRatio(const std::string& option, const std::string& text) {
  quantel::cSize2 ratio{};
  if (!ParsePair(text, ':', 1000000.0, &ratio)) {
    throw UsageError(option + " " + text +
                     ": allowed is A:B, two whole numbers from 1 to 1000000 (16:15)");
  }
  return ratio;
}

quantel::cSize2 ParseSize(const std::string& option, const std::string& text) {
  quantel::cSize2 size{};
  if (!ParsePair(text, 'x', 32768.0, &size)) {
    throw UsageError(option + " " + text +
                     ": allowed is WIDTHxHEIGHT, two whole numbers from 1 to 32768 (1920x1080)");
  }
  return size;
}

}  // namespace glimmerhost
