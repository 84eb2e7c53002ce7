#include "host/looks/page.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "host/looks/toml_file.h"
#include "host/support/failure.h"
#include "host/support/nearest.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

std::string JoinOr(const std::vector<std::string>& names) {
  std::string joined;
  for (std::size_t i = 0; i < names.size(); ++i) {
    joined += i == 0 ? "" : i + 1 == names.size() ? " or " : ", ";
    joined += names[i];
  }
  return joined;
}

template <class T>
T Need(const toml::table& table, const char* name) {
  const auto value = table[name].value<T>();
  if (!value) {
    throw std::runtime_error(std::string("a parameter has no ") + name);
  }
  return *value;
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
  if (const toml::array* entries = table["entries"].as_array()) {
    for (const toml::node& entry : *entries) {
      parameter->entries.push_back(entry.value<std::string>().value_or(""));
    }
  }
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

Parameter ReadParameter(const toml::table& table) {
  Parameter parameter;
  parameter.key = Need<std::string>(table, "key");
  parameter.label = Need<std::string>(table, "label");
  parameter.option = table["option"].value_or(std::string());
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

[[noreturn]] void Refuse(const Parameter& parameter, const std::string& name,
                         const std::string& text) {
  throw UsageError(name + " " + text + ": allowed is " + parameter.Allowed());
}

}  // namespace

bool Condition::Holds(const std::map<std::string, Value>& values) const {
  const auto isOn = [&values](const std::string& key) {
    const auto found = values.find(key);
    return found != values.end() && found->second == Value(true);
  };
  return groups.empty() || std::any_of(groups.begin(), groups.end(), [&](const auto& keys) {
           return std::all_of(keys.begin(), keys.end(), isOn);
         });
}

std::string Parameter::Allowed() const {
  switch (kind) {
    case Kind::kList:
      return JoinOr(entries) + " (in the store 0 to " + std::to_string(entries.size() - 1) + ")";
    case Kind::kSwitch:
      return "on or off";
    case Kind::kWhole:
    case Kind::kNumber:
      break;
  }
  const std::string what = kind == Kind::kWhole ? "a whole number" : "a number";
  const bool wider = typedLowest < lowest || typedHighest > highest;
  return what + " from " + Shortest(typedLowest) + " to " + Shortest(typedHighest) +
         (wider ? " (the page offers " + Shortest(lowest) + " to " + Shortest(highest) + ")" : "");
}

std::string Parameter::Offered() const {
  switch (kind) {
    case Kind::kList:
      return JoinOr(entries);
    case Kind::kSwitch:
      return "on or off";
    case Kind::kWhole:
    case Kind::kNumber:
      break;
  }
  return Shortest(lowest) + " to " + Shortest(highest);
}

Value Parameter::Parse(const std::string& name, const std::string& text) const {
  if (kind == Kind::kSwitch) {
    for (const char* on : {"on", "true", "1"}) {
      if (text == on) {
        return true;
      }
    }
    for (const char* off : {"off", "false", "0"}) {
      if (text == off) {
        return false;
      }
    }
    Refuse(*this, name, text);
  }
  if (kind == Kind::kList) {
    const auto entry = std::find(entries.begin(), entries.end(), text);
    if (entry != entries.end()) {
      return Check(name, text, static_cast<double>(entry - entries.begin()));
    }
  }
  double number = 0.0;
  if (!ParseNumber(text, &number)) {
    Refuse(*this, name, text);
  }
  return Check(name, text, number);
}

Value Parameter::Check(const std::string& name, const std::string& text, double number) const {
  const bool whole = number == std::floor(number);
  switch (kind) {
    case Kind::kList:
      if (whole && number >= 0.0 && number < static_cast<double>(entries.size())) {
        return static_cast<int>(number);
      }
      break;
    case Kind::kSwitch:
      break;
    case Kind::kWhole:
    case Kind::kNumber:
      if ((kind == Kind::kNumber || whole) && number >= typedLowest && number <= typedHighest) {
        return number;
      }
      break;
  }
  Refuse(*this, name, text);
}

std::string Parameter::Show(const Value& value) const {
  if (const int* index = std::get_if<int>(&value)) {
    const auto entry = static_cast<std::size_t>(*index);
    return entry < entries.size() ? entries[entry] : std::to_string(*index);
  }
  if (const bool* on = std::get_if<bool>(&value)) {
    return *on ? "on" : "off";
  }
  return Shortest(std::get<double>(value));
}

Page Page::Load(const std::filesystem::path& file) {
  Page page;
  try {
    const toml::table root = ParseTomlFile(file);
    const toml::array* list = root["parameter"].as_array();
    if (list == nullptr || list->empty()) {
      throw std::runtime_error("it has no parameters");
    }
    for (const toml::node& node : *list) {
      const toml::table* table = node.as_table();
      if (table == nullptr) {
        throw std::runtime_error("a parameter is not a table");
      }
      page.parameters_.push_back(ReadParameter(*table));
    }
  } catch (const std::exception& fault) {
    throw Failure(file.string() + ": not a page description: " + fault.what());
  }
  return page;
}

const Parameter& Page::Find(const std::string& key) const {
  std::vector<std::string> keys;
  for (const Parameter& parameter : parameters_) {
    if (parameter.key == key) {
      return parameter;
    }
    keys.push_back(parameter.key);
  }
  throw UsageError(key + ": there is no such parameter; the nearest is " + Nearest(key, keys));
}

std::map<std::string, Value> Page::Defaults() const {
  std::map<std::string, Value> values;
  for (const Parameter& parameter : parameters_) {
    values[parameter.key] = parameter.initial;
  }
  return values;
}

}  // namespace glimmerhost
