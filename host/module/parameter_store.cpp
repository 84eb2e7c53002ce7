// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/parameter_store.h"

#include <utility>

#include "host/support/text.h"

namespace glimmerhost {
namespace {

// The value under a key as a T, or nothing's value for a key of another kind.
template <class T>
T Get(const std::map<std::string, Value>& values, const quantel::wstring& key) {
  const auto found = values.find(ToUtf8(key));
  const T* value = found == values.end() ? nullptr : std::get_if<T>(&found->second);
  return value == nullptr ? T{} : *value;
}

}  // namespace

ParameterStore::ParameterStore(std::map<std::string, Value> values) : values_(std::move(values)) {}

double ParameterStore::getFloat(const quantel::wstring& key, int /*zero*/) {
  return Get<double>(values_, key);
}

void ParameterStore::setFloat(const quantel::wstring& key, const float& value) {
  values_[ToUtf8(key)] = static_cast<double>(value);
}

bool ParameterStore::getBool(const quantel::wstring& key, int /*zero*/) {
  return Get<bool>(values_, key);
}

void ParameterStore::setBool(const quantel::wstring& key, bool value) {
  values_[ToUtf8(key)] = value;
}

// No parameter of this host is a colour.
quantel::cColour ParameterStore::getColour(const quantel::wstring& /*key*/,
                                           quantel::cColour defaultColour) {
  return defaultColour;
}

int ParameterStore::getList(const quantel::wstring& key) { return Get<int>(values_, key); }

void ParameterStore::setList(const quantel::wstring& key, int entry) {
  values_[ToUtf8(key)] = entry;
}

}  // namespace glimmerhost
