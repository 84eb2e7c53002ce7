#include "host/looks/look_layers.h"

#include <algorithm>

#include "host/looks/parameter_file.h"
#include "host/looks/presets.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

constexpr const char* kAlpha = "premultiplied";

std::string KeyOf(const std::string& assignment) {
  return assignment.substr(0, assignment.find('='));
}

// Takes away what is decided anew.
void Override(const std::vector<std::string>& decided, Look* look) {
  const auto isDecided = [&](const std::string& key) {
    return std::find(decided.begin(), decided.end(), key) != decided.end();
  };
  for (const LookName& name : LookNames()) {
    if (std::all_of(name.decides.begin(), name.decides.end(), isDecided)) {
      TextOf(name, look).clear();
    }
  }
  std::erase_if(look->values.set,
                [&](const std::string& assignment) { return isDecided(KeyOf(assignment)); });
}

Look DefaultLook(const Page& page) {
  Look look;
  const auto show = [&](const char* key) {
    const Parameter& parameter = page.Find(key);
    return parameter.Show(parameter.initial);
  };
  look.values.center = show("PRM_Center_X") + "," + show("PRM_Center_Y");
  look.alpha = kAlpha;
  for (const Parameter& parameter : page.Parameters()) {
    for (const LookName& name : LookNames()) {
      if (parameter.option == std::string("--") + name.name && name.decides.size() == 1) {
        TextOf(name, &look) = show(parameter.key.c_str());
      }
    }
    if (parameter.option.empty()) {
      look.values.set.push_back(parameter.key + "=" + show(parameter.key.c_str()));
    }
  }
  return look;
}

}  // namespace

std::vector<LookLayer> ReadLayers(const Look& typed) {
  std::vector<LookLayer> layers;
  if (!typed.values.preset.empty()) {
    layers.push_back({"preset " + typed.values.preset + ": ",
                      ReadParameterFile(PresetFile(typed.values.preset))});
  }
  if (!typed.values.file.empty()) {
    layers.push_back({typed.values.file + ": ", ReadParameterFile(Utf8Path(typed.values.file))});
  }
  layers.push_back({"--", typed});
  return layers;
}

Look MergeLayers(const std::vector<LookLayer>& layers) {
  Look merged;
  for (const auto& [origin, look] : layers) {
    for (const LookName& name : LookNames()) {
      if (const std::string& text = TextOf(name, look); !text.empty()) {
        Override(name.decides, &merged);
        TextOf(name, &merged) = text;
      }
    }
    for (const std::string& assignment : look.values.set) {
      Override({KeyOf(assignment)}, &merged);
      merged.values.set.push_back(assignment);
    }
  }
  return merged;
}

Look UsedLook(const Page& page, const std::vector<LookLayer>& layers) {
  std::vector<LookLayer> all = {{"", DefaultLook(page)}};
  all.insert(all.end(), layers.begin(), layers.end());
  return MergeLayers(all);
}

void SettleLook(const std::vector<LookLayer>& layers, Look* look) {
  const Look merged = MergeLayers(layers);
  look->spread = merged.spread;
  look->pixelAspect = merged.pixelAspect;
  look->alpha = merged.alpha.empty() ? kAlpha : merged.alpha;
}

}  // namespace glimmerhost
