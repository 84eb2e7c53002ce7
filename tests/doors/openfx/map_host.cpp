// SPDX-License-Identifier: BSD-3-Clause
#include "tests/doors/openfx/map_host.h"

#include <cstdio>
#include <type_traits>

namespace lx_test {
namespace {

extern "C" const void* FetchSuite(ofx::PropertySet* host, const char* name, int version) {
  return SuiteOf(*host->host, name, version);
}

std::string TextOf(const OfxValue& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::string>) {
          return '"' + held + '"';
        } else if constexpr (std::is_same_v<Held, void*>) {
          return held != nullptr ? "address" : "null";
        } else {
          return Text(held);
        }
      },
      value);
}

}  // namespace

std::string Text(double number) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.7g", number);
  return text;
}

MapHost::MapHost() : properties_{this, "host", {}}, table_{&properties_, FetchSuite} {}

void MapHost::FailCall(int n, ofx::Status status) {
  const std::lock_guard lock(mutex_);
  calls_ = 0;
  failAt_ = n;
  failWith_ = status;
  failed_.clear();
}

std::string MapHost::FailedCall() const {
  const std::lock_guard lock(mutex_);
  return failed_;
}

bool MapHost::Fails(const char* function, ofx::Status* status) {
  const int call = ++calls_;
  const std::lock_guard lock(mutex_);
  if (call != failAt_) {
    return false;
  }
  failed_ = function;
  *status = failWith_;
  return true;
}

void MapHost::Note(const std::string& line) {
  const std::lock_guard lock(mutex_);
  log_.push_back(line);
}

Log MapHost::TakeLog() {
  const std::lock_guard lock(mutex_);
  return std::exchange(log_, {});
}

}  // namespace lx_test

namespace ofx {

std::string PropertySet::Text() const {
  std::string text;
  for (const auto& [property, held] : values) {
    text += property + ':';
    for (const lx_test::OfxValue& value : held) {
      text += ' ' + lx_test::TextOf(value);
    }
    text += '\n';
  }
  return text;
}

Parameter* ParameterSet::Find(const std::string& name) const {
  for (const auto& parameter : parameters) {
    if (parameter->name == name) {
      return parameter.get();
    }
  }
  return nullptr;
}

ImageEffect::ImageEffect(lx_test::MapHost* owner, std::string label)
    : host(owner),
      properties{owner, label, {}},
      parameters{owner, {owner, label + " parameters", {}}, {}} {}

ImageClip* ImageEffect::Find(const std::string& name) const {
  for (const auto& clip : clips) {
    if (clip->name == name) {
      return clip.get();
    }
  }
  return nullptr;
}

}  // namespace ofx
