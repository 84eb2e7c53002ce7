// SPDX-License-Identifier: BSD-3-Clause
// The page: which parameters the effect has, when a person sees them, and by which options they are
// typed.
//
// The module has no page of its own, so this host reads one from a data file. That file is the one
// list of parameters: options, their help, completion, the names in look files and the values of
// the store come from it. The module tells by switches in the store which parts belong to the shape
// in force.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/looks/parameter.h"

namespace glimmerhost {

// An option of the command line, and a name in look files.
struct PageOption {
  std::string name;                  // without dashes
  std::vector<std::string> keys;     // of the store, that it sets; none for what no parameter is
  bool isSwitch = false;             // may stand without a value
  std::string value;                 // what stands for the value in help: "RADIUS"
  std::vector<std::string> choices;  // the values that it may have, if they are names
  std::string group;                 // the title under which help has it
  std::string help;                  // one line, with defaults and ranges
  Condition shown;                   // when the page shows any of what it sets
};

class Page {
 public:
  // Throws Failure if the file cannot be read or is not a page.
  static Page Load(const std::filesystem::path& file);

  // In the order of the file.
  const std::vector<Parameter>& Parameters() const { return parameters_; }

  // Group by group. One that sets several keys stands before those that set one of these alone.
  const std::vector<PageOption>& Options() const { return options_; }

  // The option that sets a key and no other; null if there is none.
  const PageOption* OptionOf(const std::string& key) const;

  // The first option that sets a key and others with it; null if there is none.
  const PageOption* SharedOptionOf(const std::string& key) const;

  // Throws UsageError, with the nearest known key, if there is none of that name.
  const Parameter& Find(const std::string& key) const;

  std::map<std::string, Value> Defaults() const;

 private:
  std::vector<Parameter> parameters_;
  std::vector<PageOption> options_;
};

}  // namespace glimmerhost
