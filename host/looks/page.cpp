// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/page.h"

#include <algorithm>
#include <utility>

#include "host/looks/page_description.h"
#include "host/support/nearest.h"

namespace glimmerhost {

Page Page::Load(const std::filesystem::path& file) {
  PageDescription description = ReadPageDescription(file);
  Page page;
  page.parameters_ = std::move(description.parameters);
  page.options_ = std::move(description.options);
  return page;
}

const PageOption* Page::OptionOf(const std::string& key) const {
  const auto found = std::find_if(options_.begin(), options_.end(), [&](const PageOption& option) {
    return option.keys == std::vector<std::string>{key};
  });
  return found == options_.end() ? nullptr : &*found;
}

const PageOption* Page::SharedOptionOf(const std::string& key) const {
  const auto found = std::find_if(options_.begin(), options_.end(), [&](const PageOption& option) {
    return option.keys.size() > 1 &&
           std::find(option.keys.begin(), option.keys.end(), key) != option.keys.end();
  });
  return found == options_.end() ? nullptr : &*found;
}

const Parameter& Page::Find(const std::string& key) const {
  std::vector<std::string> keys;
  for (const Parameter& parameter : parameters_) {
    if (parameter.key == key) {
      return parameter;
    }
    keys.push_back(parameter.key);
  }
  throw UnknownName("parameter", key, keys);
}

std::map<std::string, Value> Page::Defaults() const {
  std::map<std::string, Value> values;
  for (const Parameter& parameter : parameters_) {
    values[parameter.key] = parameter.initial;
  }
  return values;
}

}  // namespace glimmerhost
