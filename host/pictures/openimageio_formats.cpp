#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/float_samples.h"
#include "host/pictures/openimageio_output.h"
#include "host/pictures/picture_formats.h"
#include "host/pictures/pixel_aspect.h"
#include "host/pictures/quiet_stderr.h"
#include "host/support/failure.h"

namespace glimmerhost {

struct FileMetadata {
  std::string format;
  OIIO::ParamValueList attributes;
};

namespace {

namespace fs = std::filesystem;

constexpr const char* kStraightAttribute = "oiio:UnassociatedAlpha";
constexpr const char* kBitsAttribute = "oiio:BitsPerSample";

int FindChannel(const OIIO::ImageSpec& spec, const char* name) {
  const auto found =
      std::find_if(spec.channelnames.begin(), spec.channelnames.end(),
                   [name](const std::string& have) { return OIIO::Strutil::iequals(have, name); });
  return found == spec.channelnames.end() ? -1
                                          : static_cast<int>(found - spec.channelnames.begin());
}

ChannelMap MapChannels(const OIIO::ImageSpec& spec, const fs::path& file) {
  if (spec.nchannels < 4) {
    return MapPlainChannels(spec.nchannels);
  }
  const ChannelMap named{FindChannel(spec, "R"), FindChannel(spec, "G"), FindChannel(spec, "B"),
                         FindChannel(spec, "A"), false};
  if (named.red < 0 || named.green < 0 || named.blue < 0) {
    ReadFailure(file, "it has " + std::to_string(spec.nchannels) +
                          " channels, and none of them are named R, G and B");
  }
  return named;
}

std::unique_ptr<OIIO::ImageInput> OpenInput(const fs::path& file) {
  OIIO::ImageSpec config;
  config.attribute(kStraightAttribute, 1);
  std::unique_ptr<OIIO::ImageInput> input = OIIO::ImageInput::open(file.string(), &config);
  if (!input) {
    ReadFailure(file, OIIO::geterror());
  }
  const OIIO::ImageSpec& spec = input->spec();
  CheckSides(file, spec.width, spec.height);
  if (spec.depth > 1 || spec.nchannels < 1) {
    ReadFailure(file, "it holds no flat picture");
  }
  return input;
}

void ReadSamples(const fs::path& file, OIIO::TypeDesc type, void* to, OIIO::ImageInput* input) {
  const bool read = input->read_image(0, 0, 0, input->spec().nchannels, type, to);
  // Some readers fill up what is missing and only leave a word about it.
  const std::string trouble = input->geterror();
  if (!read || !trouble.empty()) {
    ReadFailure(file, "it is cut short or broken: " + trouble);
  }
}

std::shared_ptr<const FileMetadata> KeepMetadata(const OIIO::ImageInput& input,
                                                 const OIIO::ImageSpec& spec) {
  auto metadata = std::make_shared<FileMetadata>();
  metadata->format = input.format_name();
  metadata->attributes = spec.extra_attribs;
  return metadata;
}

// Attributes that describe the old file's coding and would be wrong for the new one.
bool DescribesCoding(const OIIO::ParamValue& attribute, bool sameFormat) {
  const std::string name = attribute.name().string();
  return name == kStraightAttribute || name == "planarconfig" ||
         (!sameFormat &&
          (name == "compression" || name == kBitsAttribute || name.starts_with("tiff:")));
}

}  // namespace

const char* const kReadableFormats = "PNG, TIFF, EXR, DPX, JPEG and what else OpenImageIO reads";
const char* const kWritableEndings =
    ".png, .tif, .exr, .dpx, .jpg or another format that OpenImageIO writes";

std::optional<OutputFormat> FormatOf(const fs::path& file) {
  const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(file.string());
  if (!output) {
    (void)OIIO::geterror();
    return std::nullopt;
  }
  const std::string name = output->format_name();
  return OutputFormat{name, output->supports("alpha") != 0, name == "png", name == "openexr",
                      name == "openexr" || name == "hdr"};
}

Picture ReadFormat(const fs::path& file, const ReadOptions& options, ReadReport* report) {
  const QuietStderr quiet;
  const std::unique_ptr<OIIO::ImageInput> input = OpenInput(file);
  const OIIO::ImageSpec& spec = input->spec();
  const ChannelMap map = MapChannels(spec, file);
  Picture picture;
  picture.width = spec.width;
  picture.height = spec.height;
  picture.grey = map.grey;
  picture.bits = spec.format == OIIO::TypeDesc::UINT8 ? 8 : 16;
  picture.alpha = map.alpha < 0                                        ? Alpha::kNone
                  : spec.get_int_attribute(kStraightAttribute, 0) != 0 ? Alpha::kStraight
                                                                       : Alpha::kPremultiplied;
  picture.pixelAspect = NearestRatio(spec.get_float_attribute("PixelAspectRatio", 1.0F));
  picture.metadata = KeepMetadata(*input, spec);

  const std::size_t count = picture.PixelCount() * static_cast<std::size_t>(spec.nchannels);
  if (spec.format.is_floating_point()) {
    std::vector<float> values(count);
    ReadSamples(file, OIIO::TypeDesc::FLOAT, values.data(), input.get());
    SpreadFloats(file, values, spec.nchannels, map, options.range, &picture, report);
  } else {
    std::vector<std::uint16_t> samples(count);
    ReadSamples(file, OIIO::TypeDesc::UINT16, samples.data(), input.get());
    SpreadChannels(samples, spec.nchannels, map, &picture);
  }
  return picture;
}

void WriteFormat(const fs::path& file, const OutputFormat& format, const Picture& picture,
                 int bits) {
  std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(file.string());
  const bool withAlpha = picture.alpha != Alpha::kNone && format.holdsAlpha;
  const int channels = (picture.grey ? 1 : 3) + (withAlpha ? 1 : 0);
  const OIIO::TypeDesc type = format.name == "openexr" ? OIIO::TypeDesc::HALF
                              : bits == 8              ? OIIO::TypeDesc::UINT8
                                                       : OIIO::TypeDesc::UINT16;
  OIIO::ImageSpec spec(picture.width, picture.height, channels, type);
  if (picture.metadata) {
    const bool sameFormat = picture.metadata->format == format.name && bits == picture.bits;
    for (const OIIO::ParamValue& attribute : picture.metadata->attributes) {
      if (!DescribesCoding(attribute, sameFormat)) {
        spec.extra_attribs.push_back(attribute);
      }
    }
  }
  // Also for samples that the format would hold otherwise: the library must not convert
  // what is already as it was asked for.
  if (withAlpha && (picture.alpha == Alpha::kStraight || format.straightOnly)) {
    spec.attribute(kStraightAttribute, 1);
  }
  const std::vector<std::uint16_t> samples = GatherChannels(picture, channels);
  if (type == OIIO::TypeDesc::UINT8 && !format.holdsFloats) {
    WriteWhole(file, spec, type, ToBytes(samples).data(), std::move(output));
  } else if (format.holdsFloats) {
    WriteWhole(file, spec, OIIO::TypeDesc::FLOAT, ToFloats(samples, channels, picture.range).data(),
               std::move(output));
  } else {
    WriteWhole(file, spec, OIIO::TypeDesc::UINT16, samples.data(), std::move(output));
  }
}

}  // namespace glimmerhost
