// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/option_set.h"

#include <CLI/CLI.hpp>
#include <cstddef>

namespace glimmerhost {

void OptionSet::List(const std::string& name, const OptionText& text, bool required,
                     bool repeated) {
  if (!text.isListed) {
    return;
  }
  const std::size_t comma = name.find(',');
  options_.push_back({comma == std::string::npos ? name : name.substr(comma + 1),
                      comma == std::string::npos ? "" : name.substr(0, comma), text, required,
                      repeated});
}

void OptionSet::Argument(const std::string& name, std::string* value, const std::string& help) {
  app_->add_option(name, *value)->required();
  List(name, {"", "", help}, true, false);
}

void OptionSet::Arguments(const std::string& name, std::vector<std::string>* values,
                          const std::string& help) {
  app_->add_option(name, *values)->required();
  List(name, {"", "", help}, true, true);
}

void OptionSet::Value(const std::string& name, std::string* value, const OptionText& text) {
  app_->add_option(name, *value);
  List(name, text, false, false);
}

void OptionSet::ReadValue(const std::string& name,
                          const std::function<void(const std::string&)>& read,
                          const OptionText& text) {
  app_->add_option_function<std::string>(name, read);
  List(name, text, false, false);
}

void OptionSet::NeededValue(const std::string& name, std::string* value, const OptionText& text) {
  app_->add_option(name, *value)->required();
  List(name, text, true, false);
}

void OptionSet::Values(const std::string& name, std::vector<std::string>* values,
                       const OptionText& text) {
  app_->add_option(name, *values)->take_all()->allow_extra_args(false);
  List(name, text, false, true);
}

void OptionSet::Switch(const std::string& name, bool* value, const std::string& group,
                       const std::string& help) {
  app_->add_flag(name, *value);
  List(name, {group, "", help}, false, false);
}

void OptionSet::Switch(const std::string& name, std::string* value, const std::string& group,
                       const std::string& help) {
  app_->add_flag(name + "{on}", *value);
  List(name, {group, "", help}, false, false);
}

}  // namespace glimmerhost
