// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/page_description.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

#include "host/looks/look.h"
#include "host/looks/toml_file.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// The value under a name that must be there.
template <class T>
T Need(const toml::table& table, const char* name) {
  const auto value = table[name].value<T>();
  if (!value) {
    throw std::runtime_error(std::string("a parameter or option has no ") + name);
  }
  return *value;
}

// Calls back with each table of an array.
template <class Callback>
void ForTables(const toml::table& root, const char* name, const Callback& callback) {
  const toml::array* list = root[name].as_array();
  if (list == nullptr) {
    if (root.contains(name)) {
      throw std::runtime_error(std::string(name) + " is not an array of tables");
    }
    return;
  }
  for (const toml::node& node : *list) {
    const toml::table* table = node.as_table();
    if (table == nullptr) {
      throw std::runtime_error(std::string("a ") + name + " is not a table");
    }
    callback(*table);
  }
}

// An array of texts; none where it is missing.
std::vector<std::string> ReadTexts(const toml::table& table, const char* name) {
  std::vector<std::string> texts;
  if (!table.contains(name)) {
    return texts;
  }
  const toml::array* list = table[name].as_array();
  const auto isText = [](const toml::node& node) { return node.is_string(); };
  if (list == nullptr || !std::all_of(list->begin(), list->end(), isText)) {
    throw std::runtime_error(std::string(name) + " is not a list of texts");
  }
  for (const toml::node& node : *list) {
    texts.push_back(*node.value<std::string>());
  }
  return texts;
}

void ReadRange(const toml::table& table, const char* name, const Parameter& parameter,
               double* lowest, double* highest) {
  const toml::array* range = table[name].as_array();
  if (range == nullptr || range->size() != 2) {
    throw std::runtime_error(parameter.key + " has no " + name + " of two numbers");
  }
  *lowest = (*range)[0].value<double>().value_or(0.0);
  *highest = (*range)[1].value<double>().value_or(0.0);
}

void ReadRanges(const toml::table& table, Parameter* parameter) {
  ReadRange(table, "range", *parameter, &parameter->lowest, &parameter->highest);
  ReadRange(table, table.contains("typed") ? "typed" : "range", *parameter, &parameter->typedLowest,
            &parameter->typedHighest);
}

void ReadEntries(const toml::table& table, Parameter* parameter) {
  parameter->entries = ReadTexts(table, "entries");
  if (parameter->entries.empty()) {
    throw std::runtime_error(parameter->key + " has no entries");
  }
}

// An array of groups, each a key or an array of keys.
Condition ReadCondition(const toml::table& table, const char* name, const std::string& key) {
  Condition condition;
  if (!table.contains(name)) {
    return condition;
  }
  const auto fail = [&] {
    throw std::runtime_error(key + " has a " + name + " that is not of keys and arrays of keys");
  };
  const toml::array* groups = table[name].as_array();
  if (groups == nullptr || groups->empty()) {
    fail();
  }
  for (const toml::node& group : *groups) {
    std::vector<std::string> keys;
    if (const toml::array* several = group.as_array()) {
      for (const toml::node& one : *several) {
        keys.push_back(one.value<std::string>().value_or(""));
      }
    } else {
      keys.push_back(group.value<std::string>().value_or(""));
    }
    if (keys.empty() || std::find(keys.begin(), keys.end(), "") != keys.end()) {
      fail();
    }
    condition.groups.push_back(keys);
  }
  return condition;
}

Measure ReadMeasure(const toml::table& table, const std::string& key) {
  const std::string name = table["measure"].value_or(std::string());
  const std::pair<const char*, Measure> measures[] = {
      {"", Measure::kPlain}, {"radius", Measure::kRadius}, {"x", Measure::kX}, {"y", Measure::kY}};
  for (const auto& [known, measure] : measures) {
    if (name == known) {
      return measure;
    }
  }
  throw std::runtime_error(key + " has the unknown measure " + name);
}

Parameter ReadParameter(const toml::table& table) {
  Parameter parameter;
  parameter.key = Need<std::string>(table, "key");
  parameter.label = Need<std::string>(table, "label");
  parameter.measure = ReadMeasure(table, parameter.key);
  const auto kind = Need<std::string>(table, "kind");
  if (kind == "list") {
    parameter.kind = Kind::kList;
    parameter.initial = static_cast<int>(Need<std::int64_t>(table, "default"));
    ReadEntries(table, &parameter);
  } else if (kind == "switch") {
    parameter.kind = Kind::kSwitch;
    parameter.initial = Need<bool>(table, "default");
  } else if (kind == "number" || kind == "whole") {
    parameter.kind = kind == "number" ? Kind::kNumber : Kind::kWhole;
    parameter.initial = Need<double>(table, "default");
    ReadRanges(table, &parameter);
  } else {
    throw std::runtime_error(parameter.key + " is of the unknown kind " + kind);
  }
  parameter.shown = ReadCondition(table, "shown", parameter.key);
  parameter.enabled = ReadCondition(table, "enabled", parameter.key);
  parameter.note = table["note"].value_or(std::string());
  parameter.noteShown = ReadCondition(table, "note_shown", parameter.key);
  return parameter;
}

void Replace(const std::string& mark, const std::string& by, std::string* text) {
  for (std::size_t at = 0; (at = text->find(mark, at)) != std::string::npos; at += by.size()) {
    text->replace(at, mark.size(), by);
  }
}

const Parameter& FindKey(const std::vector<Parameter>& parameters, const std::string& option,
                         const std::string& key) {
  const auto found = std::find_if(parameters.begin(), parameters.end(),
                                  [&](const Parameter& one) { return one.key == key; });
  if (found == parameters.end()) {
    throw std::runtime_error("the option " + option + " sets " + key + ", which is no parameter");
  }
  return *found;
}

// Several keys take one text: the same radius, or the two parts of a point.
void CheckTogether(const std::string& option, const std::vector<Measure>& measures) {
  const bool radii = std::all_of(measures.begin(), measures.end(),
                                 [](Measure measure) { return measure == Measure::kRadius; });
  const bool point = measures == std::vector<Measure>{Measure::kX, Measure::kY};
  const bool alone = measures.size() == 1 && measures[0] == Measure::kPlain;
  if (!radii && !point && !alone) {
    throw std::runtime_error("the option " + option + " sets keys that no one text can be for");
  }
}

// A look file has the name without dashes, as a bare key.
void CheckName(const std::string& name) {
  const bool hasDashes = name.starts_with("--") && name.size() > 2 && name[2] != '-';
  if (!hasDashes ||
      name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-") != std::string::npos) {
    throw std::runtime_error("the option " + name +
                             " must be -- and small letters, digits or dashes");
  }
}

// When any of the keys is shown.
Condition AnyShown(const std::vector<std::string>& keys, const std::string& option,
                   const std::vector<Parameter>& parameters) {
  Condition any;
  for (const std::string& key : keys) {
    const Condition& shown = FindKey(parameters, option, key).shown;
    if (shown.groups.empty()) {
      return {};
    }
    any.groups.insert(any.groups.end(), shown.groups.begin(), shown.groups.end());
  }
  return any;
}

//   table  a parameter's, or an option's
//   name   the option's with its dashes
PageOption ReadOption(const toml::table& table, const std::string& name,
                      std::vector<std::string> keys, const std::vector<Parameter>& parameters) {
  PageOption option;
  CheckName(name);
  option.name = name.substr(2);
  option.keys = std::move(keys);
  option.group = Need<std::string>(table, "group");
  option.help = Need<std::string>(table, "help");
  std::vector<Measure> measures;
  for (const std::string& key : option.keys) {
    measures.push_back(FindKey(parameters, name, key).measure);
  }
  if (option.keys.empty() && option.name != kSpread) {
    throw std::runtime_error("the option " + name + " sets no keys");
  }
  option.shown = option.keys.empty() ? ReadCondition(table, "shown", option.name)
                                     : AnyShown(option.keys, name, parameters);
  if (!option.keys.empty()) {
    CheckTogether(name, measures);
    const Parameter& first = FindKey(parameters, name, option.keys.front());
    option.isSwitch = first.kind == Kind::kSwitch;
    option.choices = first.entries;
    Replace("{default}", first.Show(first.initial), &option.help);
    Replace("{range}", first.Offered(), &option.help);
  }
  option.value = option.isSwitch ? "" : Need<std::string>(table, "value");
  return option;
}

// Those that set no key, and then in the order of the parameters: what sets several keys before
// what sets one of these alone, which goes over it.
std::vector<PageOption> ReadOptions(const toml::table& root,
                                    const std::vector<Parameter>& parameters) {
  std::vector<PageOption> shared;
  ForTables(root, "option", [&](const toml::table& table) {
    shared.push_back(
        ReadOption(table, Need<std::string>(table, "name"), ReadTexts(table, "keys"), parameters));
  });
  std::vector<PageOption> options;
  const auto take = [&](const auto& isWanted) {
    for (auto option = shared.begin(); option != shared.end();) {
      const bool wanted = isWanted(*option);
      if (wanted) {
        options.push_back(*option);
      }
      option = wanted ? shared.erase(option) : option + 1;
    }
  };
  take([](const PageOption& option) { return option.keys.empty(); });
  ForTables(root, "parameter", [&](const toml::table& table) {
    const auto key = Need<std::string>(table, "key");
    take([&](const PageOption& option) {
      return std::find(option.keys.begin(), option.keys.end(), key) != option.keys.end();
    });
    if (table.contains("option")) {
      options.push_back(ReadOption(table, Need<std::string>(table, "option"), {key}, parameters));
    }
  });
  return options;
}

// Group by group, and within each as they were.
void Sort(const std::vector<std::string>& groups, std::vector<PageOption>* options) {
  const auto place = [&](const PageOption& option) {
    const auto group = std::find(groups.begin(), groups.end(), option.group);
    if (group == groups.end()) {
      throw std::runtime_error("the option --" + option.name + " is of the unknown group " +
                               option.group);
    }
    return group - groups.begin();
  };
  std::stable_sort(options->begin(), options->end(),
                   [&](const PageOption& a, const PageOption& b) { return place(a) < place(b); });
  for (auto option = options->begin(); option != options->end(); ++option) {
    place(*option);
    if (std::any_of(options->begin(), option,
                    [&](const PageOption& other) { return other.name == option->name; })) {
      throw std::runtime_error("the option --" + option->name + " is there twice");
    }
  }
}

// Options are taken one after another. What sets several keys behind what sets one of them would
// take that one back.
void CheckOrder(const std::vector<PageOption>& options) {
  for (auto option = options.begin(); option != options.end(); ++option) {
    const auto shares = [&](const std::string& key) {
      return std::find(option->keys.begin(), option->keys.end(), key) != option->keys.end();
    };
    const auto before = std::find_if(options.begin(), option, [&](const PageOption& other) {
      return other.keys.size() < option->keys.size() &&
             std::any_of(other.keys.begin(), other.keys.end(), shares);
    });
    if (before != option) {
      throw std::runtime_error("the option --" + before->name + " is in a group before that of --" +
                               option->name + ", which it goes over");
    }
  }
}

}  // namespace

PageDescription ReadPageDescription(const std::filesystem::path& file) {
  PageDescription page;
  try {
    const toml::table root = ParseTomlFile(file);
    ForTables(root, "parameter",
              [&](const toml::table& table) { page.parameters.push_back(ReadParameter(table)); });
    if (page.parameters.empty()) {
      throw std::runtime_error("it has no parameters");
    }
    page.options = ReadOptions(root, page.parameters);
    Sort(ReadTexts(root, "groups"), &page.options);
    CheckOrder(page.options);
  } catch (const std::exception& fault) {
    throw Failure(file.string() + ": not a page description: " + fault.what());
  }
  return page;
}

}  // namespace glimmerhost
