// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/look.h"

#include <algorithm>

namespace glimmerhost {
namespace {

std::map<std::string, std::string> Given(const Look& look) {
  std::map<std::string, std::string> texts = look.texts;
  std::erase_if(texts, [](const auto& text) { return text.second.empty(); });
  return texts;
}

}  // namespace

const std::string& Look::At(const std::string& name) const {
  static const std::string none;
  const auto found = texts.find(name);
  return found == texts.end() ? none : found->second;
}

bool Look::operator==(const Look& other) const {
  return Given(*this) == Given(other) && set == other.set;
}

std::vector<LookName> LookNames(const Page& page) {
  std::vector<LookName> names;
  for (const PageOption& option : page.Options()) {
    names.push_back({option.name, option.keys.empty() ? std::vector{option.name} : option.keys});
  }
  for (const char* name : {kSpread, kAlpha, kPixelAspect, kMix, kShot}) {
    const bool known = std::any_of(names.begin(), names.end(),
                                   [&](const LookName& one) { return one.name == name; });
    if (!known) {
      names.push_back({name, {name}});
    }
  }
  return names;
}

}  // namespace glimmerhost
