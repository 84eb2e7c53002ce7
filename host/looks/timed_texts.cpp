// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/timed_texts.h"

#include <algorithm>
#include <cstddef>
#include <set>

#include "host/looks/keyframes.h"

namespace glimmerhost {
namespace {

// Of several layers the last one that says it is the one that counts.
template <class Says>
std::string OriginOf(const std::vector<LookLayer>& layers, const Says& says) {
  const auto last = std::find_if(layers.rbegin(), layers.rend(),
                                 [&](const LookLayer& layer) { return says(layer.look); });
  return last == layers.rend() ? "" : last->origin;
}

}  // namespace

std::vector<TimedText> TimedTexts(const Page& page, const std::vector<LookLayer>& layers) {
  const Look merged = MergeLayers(page, layers);
  std::vector<TimedText> timed;
  const auto take = [&](const std::string& name) {
    if (const std::string& text = merged.At(name); HasKeyframes(text)) {
      const auto says = [&](const Look& look) { return !look.At(name).empty(); };
      timed.push_back({OriginOf(layers, says) + name, text});
    }
  };
  for (const PageOption& option : page.Options()) {
    if (!option.keys.empty()) {
      take(option.name);
    }
  }
  take(kMix);
  for (const std::string& assignment : merged.set) {
    const std::size_t equals = assignment.find('=');
    const std::string text = equals == std::string::npos ? "" : assignment.substr(equals + 1);
    if (HasKeyframes(text)) {
      const auto says = [&](const Look& look) {
        return std::find(look.set.begin(), look.set.end(), assignment) != look.set.end();
      };
      timed.push_back({OriginOf(layers, says) + "set: " + assignment.substr(0, equals), text});
    }
  }
  return timed;
}

std::vector<int> FramesOutside(const std::vector<TimedText>& timed, const ShotSpan& span) {
  std::set<int> outside;
  for (const auto& [name, text] : timed) {
    for (const KeyframeText& key : ParseKeyframes(name, text)) {
      const double frame = FrameOf(key.time, span, name, text);
      if (key.time.from != KeyframeTime::From::kPart && !span.Holds(static_cast<int>(frame))) {
        outside.insert(static_cast<int>(frame));
      }
    }
  }
  return {outside.begin(), outside.end()};
}

}  // namespace glimmerhost
