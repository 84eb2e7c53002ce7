// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/openimageio_extras.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "host/pictures/floats/float_picture.h"
#include "host/pictures/floats/float_samples.h"
#include "host/pictures/guards/reader_guard.h"
#include "host/pictures/openimageio/managed_samples.h"
#include "host/support/channel_patterns.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::byte>;
using Channel = FileExtras::Channel;

constexpr const char* kFormat = "openexr";

// Reads all channels of a part as they are.
Bytes ReadNative(const fs::path& file, int part, OIIO::ImageInput* input) {
  const OIIO::ImageSpec spec = input->spec(part);
  CheckSides(file, spec.width, spec.height);
  CheckMemoryFor(file, spec.width, spec.height, 2 * spec.pixel_bytes(true));
  Bytes samples(spec.image_bytes(true));
  const bool read =
      input->read_image(part, 0, 0, spec.nchannels, OIIO::TypeDesc::UNKNOWN, samples.data());
  const std::string trouble = input->geterror();
  if (!read || !trouble.empty()) {
    ReadFailure(file, "cut short or broken: " + trouble);
  }
  return samples;
}

bool IsPictures(const ChannelMap& map, int channel) {
  return channel == map.red || channel == map.green || channel == map.blue || channel == map.alpha;
}

std::vector<Channel> ReadChannels(const fs::path& file, const ChannelMap& map,
                                  OIIO::ImageInput* input) {
  const OIIO::ImageSpec spec = input->spec(0);
  std::vector<Channel> channels;
  std::vector<std::size_t> places;
  std::size_t place = 0;
  for (int c = 0; c < spec.nchannels; ++c) {
    if (!IsPictures(map, c)) {
      channels.push_back({spec.channel_name(c), spec.channelformat(c), {}});
      places.push_back(place);
    }
    place += spec.channelformat(c).size();
  }
  if (channels.empty()) {
    return channels;
  }
  const Bytes samples = ReadNative(file, 0, input);
  for (std::size_t c = 0; c < channels.size(); ++c) {
    const std::size_t size = channels[c].type.size();
    channels[c].samples.resize(spec.image_pixels() * size);
    for (std::size_t i = 0; i < spec.image_pixels(); ++i) {
      std::memcpy(channels[c].samples.data() + i * size, samples.data() + i * place + places[c],
                  size);
    }
  }
  return channels;
}

// As it was, but for what was true of the old file alone.
OIIO::ImageSpec PartSpec(OIIO::ImageSpec spec) {
  for (const char* name : {"oiio:subimages", "openexr:chunkCount", "openexr:levelmode",
                           "openexr:roundingmode", "textureformat", "oiio:SHA-1"}) {
    spec.erase_attribute(name);
  }
  // The time of writing would stand here.
  if (spec.find_attribute("DateTime") == nullptr) {
    spec.attribute("DateTime", "");
  }
  spec.tile_width = 0;
  spec.tile_height = 0;
  spec.tile_depth = 0;
  return spec;
}

std::vector<FileExtras::Part> ReadParts(const fs::path& file, OIIO::ImageInput* input,
                                        ReadReport* report) {
  std::vector<FileExtras::Part> parts;
  for (int part = 1; input->seek_subimage(part, 0); ++part) {
    const OIIO::ImageSpec spec = input->spec();
    if (spec.deep) {
      report->notCarried.push_back(OneNotCarried(
          "part " + std::to_string(part + 1) + " of the file", "", "its samples are deep"));
      continue;
    }
    parts.push_back({PartSpec(spec), ReadNative(file, part, input)});
  }
  (void)input->geterror();
  return parts;
}

std::vector<float> FloatsOf(const Channel& channel) {
  const std::size_t count = channel.samples.size() / channel.type.size();
  std::vector<float> values(count);
  if (channel.type == OIIO::TypeDesc::UINT32) {
    // The library would take the largest of these for 1.
    for (std::size_t i = 0; i < count; ++i) {
      std::uint32_t value = 0;
      std::memcpy(&value, channel.samples.data() + i * sizeof value, sizeof value);
      values[i] = static_cast<float>(value);
    }
  } else {
    OIIO::convert_pixel_values(channel.type, channel.samples.data(), OIIO::TypeDesc::FLOAT,
                               values.data(), static_cast<int>(count));
  }
  return values;
}

Bytes InType(const std::vector<float>& values, OIIO::TypeDesc type) {
  Bytes samples(values.size() * type.size());
  if (type == OIIO::TypeDesc::UINT32) {
    constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t i = 0; i < values.size(); ++i) {
      const auto value =
          static_cast<std::uint32_t>(std::clamp(std::round(double{values[i]}), 0.0, kLargest));
      std::memcpy(samples.data() + i * sizeof value, &value, sizeof value);
    }
  } else {
    OIIO::convert_pixel_values(OIIO::TypeDesc::FLOAT, values.data(), type, samples.data(),
                               static_cast<int>(values.size()));
  }
  return samples;
}

const Channel* Find(const FileExtras& extras, const std::string& name) {
  const auto found = std::find_if(extras.channels.begin(), extras.channels.end(),
                                  [&name](const Channel& channel) { return channel.name == name; });
  return found == extras.channels.end() ? nullptr : &*found;
}

// "diffuse." of "diffuse.R", and nothing of "Z".
std::string LayerOf(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos ? std::string() : name.substr(0, dot + 1);
}

Picture EmptyLike(const Picture& picture) {
  Picture layer;
  layer.width = picture.width;
  layer.height = picture.height;
  layer.pixelAspect = picture.pixelAspect;
  return layer;
}

// A layer with colours.
PictureLayer ColourLayer(const fs::path& file, const std::string& beginning,
                         const FileExtras& extras, const ReadOptions& options,
                         const Picture& picture, ReadReport* report) {
  PictureLayer layer;
  layer.channels = {beginning + "R", beginning + "G", beginning + "B"};
  layer.picture = EmptyLike(picture);
  layer.picture.alpha = Alpha::kNone;
  if (Find(extras, beginning + "A") != nullptr) {
    layer.channels.push_back(beginning + "A");
    layer.picture.alpha = Alpha::kPremultiplied;
  }
  const std::size_t count = layer.channels.size();
  std::vector<float> values(picture.PixelCount() * count);
  for (std::size_t c = 0; c < count; ++c) {
    const std::vector<float> channel = FloatsOf(*Find(extras, layer.channels[c]));
    for (std::size_t i = 0; i < channel.size(); ++i) {
      values[i * count + c] = channel[i];
    }
  }
  const fs::path name = file.string() + ": layer " + beginning.substr(0, beginning.size() - 1);
  const auto channels = static_cast<int>(count);
  ReadReport found;
  if (options.colours) {
    SpreadManaged(name, values, channels, MapPlainChannels(channels), options, true, &layer.picture,
                  &found);
  } else {
    SpreadFloats(name, values, channels, MapPlainChannels(channels),
                 {options.KeepsFloats(true), options.range}, &layer.picture, &found);
  }
  report->lines.insert(report->lines.end(), found.lines.begin(), found.lines.end());
  return layer;
}

// A channel of numbers, over all that they span. None where all are the same: no blur would change
// them.
std::optional<PictureLayer> DataLayer(const fs::path& file, const Channel& channel,
                                      const Picture& picture, const ReadOptions& options,
                                      ReadReport* report) {
  const std::vector<float> values = FloatsOf(channel);
  float lowest = std::numeric_limits<float>::max();
  float highest = std::numeric_limits<float>::lowest();
  for (const float value : values) {
    if (std::isfinite(value)) {
      lowest = std::min(lowest, value);
      highest = std::max(highest, value);
    }
  }
  if (!(lowest < highest)) {
    return std::nullopt;
  }
  PictureLayer layer;
  layer.channels = {channel.name};
  layer.isData = true;
  layer.picture = EmptyLike(picture);
  layer.picture.grey = true;
  ReadReport found;
  SpreadFloats(file.string() + ": channel " + channel.name, values, 1, MapPlainChannels(1),
               {options.KeepsFloats(true), RangeMapping::Span(lowest, highest)}, &layer.picture,
               &found);
  report->lines.insert(report->lines.end(), found.lines.begin(), found.lines.end());
  return layer;
}

void CheckPatterns(const fs::path& file, const OIIO::ImageSpec& spec,
                   const std::vector<std::string>& patterns) {
  for (const std::string& pattern : patterns) {
    const bool isAny =
        std::any_of(spec.channelnames.begin(), spec.channelnames.end(),
                    [&pattern](const std::string& name) { return MatchesPattern(pattern, name); });
    if (!isAny) {
      throw Failure(file.string() + ": --blur-channels " + pattern +
                    ": no channel has such a name; there are " + ListNames(spec.channelnames));
    }
  }
}

// What each of the extras' channels has become where it was blurred, by its name.
std::vector<std::pair<std::string, std::vector<float>>> BlurredChannels(const Picture& picture) {
  std::vector<std::pair<std::string, std::vector<float>>> blurred;
  for (const PictureLayer& layer : picture.layers) {
    const auto count = static_cast<int>(layer.channels.size());
    const bool withAlpha = layer.picture.alpha != Alpha::kNone;
    const std::vector<float> values = layer.picture.colours
                                          ? ManagedFloats(layer.picture, withAlpha)
                                          : GatherFloats(layer.picture, count);
    for (std::size_t c = 0; c < layer.channels.size(); ++c) {
      std::vector<float> channel(layer.picture.PixelCount());
      for (std::size_t i = 0; i < channel.size(); ++i) {
        channel[i] = values[i * layer.channels.size() + c];
      }
      blurred.emplace_back(layer.channels[c], std::move(channel));
    }
  }
  return blurred;
}

// In the place that it has in a picture that has grown; zeros beside it.
Bytes Grown(const Channel& channel, const Picture& picture) {
  const auto by = static_cast<std::size_t>(picture.grownBy);
  if (by == 0) {
    return channel.samples;
  }
  const std::size_t size = channel.type.size();
  const std::size_t grown = static_cast<std::size_t>(picture.width) * size;
  const std::size_t row = grown - 2 * by * size;
  Bytes samples(picture.PixelCount() * size);
  for (std::size_t y = 0; (y + 1) * row <= channel.samples.size(); ++y) {
    std::copy_n(channel.samples.data() + y * row, row,
                samples.data() + (y + by) * grown + by * size);
  }
  return samples;
}

}  // namespace

bool KeepsExtras(const OIIO::ImageInput& input, const ReadOptions& options) {
  return options.keptFor == kFormat && std::string(input.format_name()) == kFormat;
}

std::shared_ptr<const FileExtras> ReadExtras(const fs::path& file, const ChannelMap& map,
                                             OIIO::ImageInput* input, ReadReport* report) {
  auto extras = std::make_shared<FileExtras>();
  extras->channels = ReadChannels(file, map, input);
  extras->parts = ReadParts(file, input, report);
  return extras->channels.empty() && extras->parts.empty() ? nullptr : extras;
}

std::vector<PictureLayer> TakeLayers(const fs::path& file, const OIIO::ImageSpec& spec,
                                     const FileExtras* extras, const ReadOptions& options,
                                     const Picture& picture, ReadReport* report) {
  CheckPatterns(file, spec, options.blurChannels);
  std::vector<PictureLayer> layers;
  if (extras == nullptr) {
    return layers;
  }
  const auto isAsked = [&](const std::string& name) {
    return Find(*extras, name) != nullptr && MatchesAny(options.blurChannels, name);
  };
  const auto isColour = [&](const std::string& beginning) {
    return isAsked(beginning + "R") && isAsked(beginning + "G") && isAsked(beginning + "B");
  };
  for (const Channel& channel : extras->channels) {
    const std::string beginning = LayerOf(channel.name);
    const std::string last = channel.name.substr(beginning.size());
    const bool isOfColour =
        isColour(beginning) && (last == "R" || last == "G" || last == "B" || last == "A");
    if (isOfColour && last == "R") {
      layers.push_back(ColourLayer(file, beginning, *extras, options, picture, report));
    } else if (!isOfColour && isAsked(channel.name)) {
      if (auto layer = DataLayer(file, channel, picture, options, report)) {
        layers.push_back(std::move(*layer));
      }
    }
  }
  return layers;
}

void AddExtraChannels(const Picture& picture, OIIO::ImageSpec* spec) {
  if (!picture.extras || picture.extras->channels.empty()) {
    return;
  }
  spec->channelformats.assign(static_cast<std::size_t>(spec->nchannels), spec->format);
  for (const Channel& channel : picture.extras->channels) {
    spec->channelnames.push_back(channel.name);
    spec->channelformats.push_back(channel.type);
    ++spec->nchannels;
  }
}

void ShareWithParts(const OIIO::ImageSpec& first, OIIO::ImageSpec* part) {
  part->set_roi_full(first.roi_full());
  for (const char* name : {"PixelAspectRatio", "smpte:TimeCode", "chromaticities"}) {
    part->erase_attribute(name);
    if (const OIIO::ParamValue* const shared = first.find_attribute(name)) {
      part->attribute(name, shared->type(), shared->data());
    }
  }
}

std::vector<std::byte> WithExtraChannels(const Picture& picture, const std::vector<float>& own,
                                         const OIIO::ImageSpec& spec, std::uint64_t* cut) {
  const std::size_t pixels = picture.PixelCount();
  const std::size_t pixelBytes = spec.pixel_bytes(true);
  const std::size_t ownBytes = own.size() / pixels * spec.format.size();
  Bytes samples(pixels * pixelBytes);
  const auto place = [&](const Bytes& from, std::size_t size, std::size_t at) {
    for (std::size_t i = 0; i < pixels; ++i) {
      std::memcpy(samples.data() + i * pixelBytes + at, from.data() + i * size, size);
    }
  };
  place(InType(own, spec.format), ownBytes, 0);
  auto blurred = BlurredChannels(picture);
  std::size_t at = ownBytes;
  for (const Channel& channel : picture.extras->channels) {
    const auto found = std::find_if(blurred.begin(), blurred.end(), [&channel](const auto& one) {
      return one.first == channel.name;
    });
    if (found != blurred.end() && channel.type == OIIO::TypeDesc::HALF) {
      *cut += CutToHalf(&found->second);
    }
    place(found == blurred.end() ? Grown(channel, picture) : InType(found->second, channel.type),
          channel.type.size(), at);
    at += channel.type.size();
  }
  return samples;
}

}  // namespace glimmerhost
