// The page: which parameters the effect has, with their kinds, ranges and defaults, and when a
// person sees them.
//
// The module has no page of its own, so this host reads one from a data file. The module
// tells by switches in the store which parts belong to the shape in force.
#pragma once

#include <filesystem>
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
  std::string option;  // empty if no option sets it
  std::string label;
  Kind kind;
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

  // The same for a number that was computed from text.
  Value Check(const std::string& name, const std::string& text, double number) const;

  // As a person would type it.
  std::string Show(const Value& value) const;
};

class Page {
 public:
  // Throws Failure if the file cannot be read or is not a page.
  static Page Load(const std::filesystem::path& file);

  const std::vector<Parameter>& Parameters() const { return parameters_; }

  // Throws UsageError, with the nearest known key, if there is none of that name.
  const Parameter& Find(const std::string& key) const;

  std::map<std::string, Value> Defaults() const;

 private:
  std::vector<Parameter> parameters_;
};

}  // namespace glimmerhost
