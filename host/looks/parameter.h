// SPDX-License-Identifier: BSD-3-Clause
// A parameter of the effect: its kind, its range and its default.
#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace glimmerhost {

enum class Kind {
  kList,    // one of some entries; the store holds its index from 0
  kSwitch,  // on or off
  kNumber,
  kWhole,  // a whole number, held as a number
};

// What a number of the store measures, and so in which units a person may type it.
enum class Measure {
  kPlain,   // no unit
  kRadius,  // a diameter as a part of the picture's width
  kX,       // a part of the width, from the left
  kY,       // a part of the height, from the bottom
};

// What the store holds under a key: an index, a switch or a number, by kind.
using Value = std::variant<int, bool, double>;

// When a part of the page is there: if all switches of any one of the groups are on in the
// store. Without a group it is always there.
struct Condition {
  std::vector<std::vector<std::string>> groups;  // keys of switches

  bool Holds(const std::map<std::string, Value>& values) const;
};

struct Parameter {
  std::string key;
  std::string label;
  Kind kind = Kind::kNumber;
  Measure measure = Measure::kPlain;
  Value initial;
  double lowest = 0.0;  // the range that the page offers
  double highest = 0.0;
  double typedLowest = 0.0;  // the range that a typed value may have, at least the offered one
  double typedHighest = 0.0;
  std::vector<std::string> entries;  // of a list
  Condition shown;                   // whether the page shows it
  Condition enabled;                 // whether the page lets it be changed
  std::string note;                  // what the page says beside it, and when
  Condition noteShown;

  // What may be typed, for errors and lists: "a number from 0 to 1", "on or off".
  std::string Allowed() const;

  // What the page offers: "0 to 1", "circle, ellipse or polygon", "on or off".
  std::string Offered() const;

  // The value a text stands for. Lists take an entry's name or its index.
  //   name  how the text's origin is called in an error: an option, or a key
  // Throws UsageError, which names the origin, the text and what is allowed.
  Value Parse(const std::string& name, const std::string& text) const;

  // The same for a radius with its unit; an error gives the limit in that unit.
  //   width  of the picture, in pixels
  Value ParseRadius(const std::string& name, const std::string& text, int width) const;

  // The same for a number that was computed from text.
  Value Check(const std::string& name, const std::string& text, double number) const;

  // Whether a number may be in the store.
  bool Allows(double number) const;

  // As a person would type it.
  std::string Show(const Value& value) const;
};

}  // namespace glimmerhost
