// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/openimageio_channels.h"

#include <algorithm>
#include <vector>

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

int FindChannel(const OIIO::ImageSpec& spec, const char* name) {
  const auto found =
      std::find_if(spec.channelnames.begin(), spec.channelnames.end(),
                   [name](const std::string& have) { return OIIO::Strutil::iequals(have, name); });
  return found == spec.channelnames.end() ? -1
                                          : static_cast<int>(found - spec.channelnames.begin());
}

bool AreColours(const ChannelMap& map) { return map.red >= 0 && map.green >= 0 && map.blue >= 0; }

}  // namespace

ChannelMap MapChannels(const fs::path& file, const std::string& format,
                       const OIIO::ImageSpec& spec) {
  const ChannelMap named{FindChannel(spec, "R"), FindChannel(spec, "G"), FindChannel(spec, "B"),
                         FindChannel(spec, "A"), false};
  if (format == "openexr" && !AreColours(named)) {
    // A depth beside a brightness is no alpha, whatever its place.
    const int grey = spec.nchannels == 1 ? 0 : FindChannel(spec, "Y");
    if (grey >= 0) {
      return {grey, grey, grey, grey == named.alpha ? -1 : named.alpha, true};
    }
  }
  if (spec.nchannels < 4) {
    return MapPlainChannels(spec.nchannels);
  }
  if (!AreColours(named)) {
    ReadFailure(file, "it has " + std::to_string(spec.nchannels) +
                          " channels, and none of them are named R, G and B");
  }
  return named;
}

std::optional<NotCarried> ChannelsLeft(const ChannelMap& map, const OIIO::ImageSpec& spec) {
  std::vector<std::string> left;
  for (int c = 0; c < spec.nchannels; ++c) {
    if (c != map.red && c != map.green && c != map.blue && c != map.alpha) {
      left.push_back(spec.channel_name(c));
    }
  }
  if (left.empty()) {
    return std::nullopt;
  }
  const std::string why = "red, green, blue and alpha are";
  return left.size() == 1 ? OneNotCarried("channel " + left[0], "", why)
                          : SomeNotCarried("channels " + ListNames(left), why);
}

std::optional<NotCarried> PartsLeft(OIIO::ImageInput* input) {
  const int known = input->spec().get_int_attribute("oiio:subimages", 0);
  const bool more = input->seek_subimage(1, 0);
  (void)input->geterror();
  if (!more) {
    return std::nullopt;
  }
  const std::string why = "the first alone is the picture";
  return known == 2  ? OneNotCarried("the second part of the file", "", why)
         : known > 2 ? SomeNotCarried("parts 2 to " + std::to_string(known) + " of the file", why)
                     : SomeNotCarried("the parts of the file behind the first", why);
}

}  // namespace glimmerhost
