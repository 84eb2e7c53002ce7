// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/look_layers.h"

#include <algorithm>

#include "host/looks/parameter_file.h"
#include "host/looks/presets.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

constexpr const char* kUsualAlpha = "premultiplied";

std::string KeyOf(const std::string& assignment) {
  return assignment.substr(0, assignment.find('='));
}

// Takes away what is decided anew.
void Override(const std::vector<LookName>& names, const std::vector<std::string>& decided,
              Look* look) {
  const auto isDecided = [&](const std::string& key) {
    return std::find(decided.begin(), decided.end(), key) != decided.end();
  };
  for (const LookName& name : names) {
    if (std::all_of(name.decides.begin(), name.decides.end(), isDecided)) {
      look->texts.erase(name.name);
    }
  }
  std::erase_if(look->set,
                [&](const std::string& assignment) { return isDecided(KeyOf(assignment)); });
}

// A key has its own option, or shares one with keys that have none either: a point. Others can only
// be set by their keys.
Look DefaultLook(const Page& page) {
  Look look;
  look[kAlpha] = kUsualAlpha;
  look[kMix] = "1";
  for (const Parameter& parameter : page.Parameters()) {
    const std::string text = parameter.Show(parameter.initial);
    if (const PageOption* own = page.OptionOf(parameter.key)) {
      look[own->name] = text;
    } else if (const PageOption* shared = page.SharedOptionOf(parameter.key)) {
      std::string& point = look[shared->name];
      point += point.empty() ? text : "," + text;
    } else {
      look.set.push_back(parameter.key + "=" + text);
    }
  }
  return look;
}

}  // namespace

std::vector<LookLayer> ReadLayers(const Page& page, const TypedLook& typed) {
  std::vector<LookLayer> layers;
  if (!typed.preset.empty()) {
    layers.push_back(
        {"preset " + typed.preset + ": ", ReadParameterFile(page, PresetFile(typed.preset))});
  }
  if (!typed.file.empty()) {
    layers.push_back({typed.file + ": ", ReadParameterFile(page, Utf8Path(typed.file))});
  }
  layers.push_back({"--", typed});
  return layers;
}

Look MergeLayers(const Page& page, const std::vector<LookLayer>& layers) {
  const std::vector<LookName> names = LookNames(page);
  Look merged;
  for (const auto& [origin, look] : layers) {
    for (const LookName& name : names) {
      if (const std::string& text = look.At(name.name); !text.empty()) {
        Override(names, name.decides, &merged);
        merged[name.name] = text;
      }
    }
    for (const std::string& assignment : look.set) {
      Override(names, {KeyOf(assignment)}, &merged);
      merged.set.push_back(assignment);
    }
  }
  return merged;
}

Look UsedLook(const Page& page, const std::vector<LookLayer>& layers) {
  std::vector<LookLayer> all = {{"", DefaultLook(page)}};
  all.insert(all.end(), layers.begin(), layers.end());
  return MergeLayers(page, all);
}

PictureLook PictureLookOf(const Page& page, const std::vector<LookLayer>& layers) {
  const Look merged = MergeLayers(page, layers);
  const std::string& alpha = merged.At(kAlpha);
  return {merged.At(kSpread), merged.At(kPixelAspect), alpha.empty() ? kUsualAlpha : alpha};
}

}  // namespace glimmerhost
