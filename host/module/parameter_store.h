// SPDX-License-Identifier: BSD-3-Clause
// ParameterStore: the values that a module reads and writes, under their keys.
#pragma once

#include <map>
#include <string>

#include "host/looks/page.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// A key that is not there reads as 0 and off. Any key can be written.
class ParameterStore final : public qplugin::iQpluginParams, public quantel::cRefCount {
 public:
  explicit ParameterStore(std::map<std::string, Value> values);

  const std::map<std::string, Value>& Values() const { return values_; }
  void Set(const std::string& key, const Value& value) { values_[key] = value; }

  double getFloat(const quantel::wstring& key, int zero) override;
  void setFloat(const quantel::wstring& key, const float& value) override;
  bool getBool(const quantel::wstring& key, int zero) override;
  void setBool(const quantel::wstring& key, bool value) override;
  quantel::cColour getColour(const quantel::wstring& key, quantel::cColour defaultColour) override;
  int getList(const quantel::wstring& key) override;
  void setList(const quantel::wstring& key, int entry) override;

 private:
  std::map<std::string, Value> values_;
};

}  // namespace glimmerhost
