#include "host/glimmerhost/picture_file.h"

#include <OpenImageIO/imageio.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/glimmerhost/failure.h"
#include "host/glimmerhost/measures.h"
#include "host/glimmerhost/quiet_stderr.h"

namespace glimmerhost {

struct FileMetadata {
  std::string format;
  OIIO::ParamValueList attributes;
};

namespace {

namespace fs = std::filesystem;

constexpr const char* kStraightAttribute = "oiio:UnassociatedAlpha";
constexpr const char* kBitsAttribute = "oiio:BitsPerSample";

// Which of a file's channels are the picture's. Grey uses one for all three colours; -1 is
// no alpha.
struct ChannelMap {
  int red;
  int green;
  int blue;
  int alpha;
  bool grey;
};

int FindChannel(const OIIO::ImageSpec& spec, const char* name) {
  const auto found =
      std::find_if(spec.channelnames.begin(), spec.channelnames.end(),
                   [name](const std::string& have) { return OIIO::Strutil::iequals(have, name); });
  return found == spec.channelnames.end() ? -1
                                          : static_cast<int>(found - spec.channelnames.begin());
}

ChannelMap MapChannels(const OIIO::ImageSpec& spec, const fs::path& file) {
  switch (spec.nchannels) {
    case 1:
      return {0, 0, 0, -1, true};
    case 2:
      return {0, 0, 0, 1, true};
    case 3:
      return {0, 1, 2, -1, false};
    default:
      break;
  }
  const ChannelMap named{FindChannel(spec, "R"), FindChannel(spec, "G"), FindChannel(spec, "B"),
                         FindChannel(spec, "A"), false};
  if (named.red < 0 || named.green < 0 || named.blue < 0) {
    throw Failure(file.string() + ": it has " + std::to_string(spec.nchannels) +
                  " channels, and none of them are named R, G and B");
  }
  return named;
}

bool IsFloat(const OIIO::TypeDesc& type) { return type.is_floating_point(); }

// Copies the mapped channels into a picture of red, green, blue, alpha.
void Spread(const std::vector<std::uint16_t>& from, int channels, const ChannelMap& map,
            Picture* picture) {
  picture->samples.resize(picture->PixelCount() * 4);
  const std::uint16_t* pixel = from.data();
  std::uint16_t* to = picture->samples.data();
  for (std::size_t i = 0; i < picture->PixelCount(); ++i, pixel += channels, to += 4) {
    to[0] = pixel[map.red];
    to[1] = pixel[map.green];
    to[2] = pixel[map.blue];
    to[3] = map.alpha < 0 ? std::uint16_t{65535} : pixel[map.alpha];
  }
}

// Float samples to 16 bits. True if one lay outside 0..1 or was no number.
bool Quantise(const std::vector<float>& from, std::vector<std::uint16_t>* to) {
  bool clamped = false;
  std::transform(from.begin(), from.end(), to->begin(), [&clamped](float v) {
    const float unit = v > 0.0F ? (v < 1.0F ? v : 1.0F) : 0.0F;
    clamped = clamped || unit != v;
    return static_cast<std::uint16_t>(std::lround(unit * 65535.0F));
  });
  return clamped;
}

[[noreturn]] void ReadFailure(const fs::path& file, const std::string& why) {
  std::string line = why.empty() ? "it is not a picture that can be read" : why;
  std::replace(line.begin(), line.end(), '\n', ' ');
  throw Failure(file.string() + ": " + line);
}

std::unique_ptr<OIIO::ImageInput> OpenInput(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(file, error)) {
    ReadFailure(file, "there is no such file");
  }
  if (!fs::is_regular_file(file, error)) {
    ReadFailure(file, "it is not a file");
  }
  if (fs::file_size(file, error) == 0) {
    ReadFailure(file, "it is empty");
  }
  OIIO::ImageSpec config;
  config.attribute(kStraightAttribute, 1);
  std::unique_ptr<OIIO::ImageInput> input = OIIO::ImageInput::open(file.string(), &config);
  if (!input) {
    ReadFailure(file, OIIO::geterror());
  }
  return input;
}

// The sides that memory and the effect's sizes can stand at all; a broken header may claim
// anything.
void CheckSides(const OIIO::ImageSpec& spec, const fs::path& file) {
  constexpr int kLargestSide = 65535;
  if (spec.width < 1 || spec.height < 1 || spec.width > kLargestSide ||
      spec.height > kLargestSide || spec.depth > 1 || spec.nchannels < 1) {
    ReadFailure(file, "its size of " + std::to_string(spec.width) + " x " +
                          std::to_string(spec.height) + " cannot be worked on");
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

// Colour samples that go into a file of the given channel count.
std::vector<std::uint16_t> Gather(const Picture& picture, int channels) {
  std::vector<std::uint16_t> out(picture.PixelCount() * static_cast<std::size_t>(channels));
  const std::uint16_t* pixel = picture.samples.data();
  std::uint16_t* to = out.data();
  const int colours = channels < 3 ? 1 : 3;
  for (std::size_t i = 0; i < picture.PixelCount(); ++i, pixel += 4, to += channels) {
    if (colours == 1) {
      to[0] = static_cast<std::uint16_t>((pixel[0] + pixel[1] + pixel[2] + 1) / 3);
    } else {
      std::copy(pixel, pixel + 3, to);
    }
    if (channels > colours) {
      to[colours] = pixel[3];
    }
  }
  return out;
}

std::vector<std::uint8_t> ToBytes(const std::vector<std::uint16_t>& samples) {
  std::vector<std::uint8_t> bytes(samples.size());
  std::transform(samples.begin(), samples.end(), bytes.begin(),
                 [](std::uint16_t v) { return static_cast<std::uint8_t>((v + 128U) / 257U); });
  return bytes;
}

}  // namespace

Picture ReadPicture(const fs::path& file, std::string* warning) {
  const QuietStderr quiet;
  const std::unique_ptr<OIIO::ImageInput> input = OpenInput(file);
  const OIIO::ImageSpec& spec = input->spec();
  CheckSides(spec, file);
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
  std::vector<std::uint16_t> samples(count);
  bool read = false;
  if (IsFloat(spec.format)) {
    std::vector<float> values(count);
    read = input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, values.data());
    if (read && Quantise(values, &samples)) {
      *warning = file.string() + ": samples outside 0 to 1 were cut to that range";
    }
  } else {
    read = input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::UINT16, samples.data());
  }
  // Some readers fill up what is missing and only leave a word about it.
  const std::string trouble = input->geterror();
  if (!read || !trouble.empty()) {
    ReadFailure(file, "it is cut short or broken: " + trouble);
  }
  Spread(samples, spec.nchannels, map, &picture);
  return picture;
}

PictureOutput::PictureOutput(fs::path file, bool overwrite)
    : file_(std::move(file)), overwrite_(overwrite) {
  const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(file_.string());
  if (!output) {
    (void)OIIO::geterror();
    throw UsageError("-o " + file_.string() +
                     ": allowed is a name that ends in .png, .tif, .exr, .dpx, .jpg or another "
                     "format that OpenImageIO writes");
  }
  format_ = output->format_name();
  holdsAlpha_ = output->supports("alpha") != 0;
  std::error_code error;
  if (fs::is_directory(file_, error)) {
    throw Failure(file_.string() + ": it is a folder");
  }
  if (!overwrite_ && fs::exists(file_, error)) {
    throw Failure(file_.string() + ": it exists already; --overwrite replaces it");
  }
  const fs::path folder = file_.has_parent_path() ? file_.parent_path() : fs::path(".");
  if (!fs::is_directory(folder, error)) {
    throw Failure(folder.string() + ": there is no such folder");
  }
  if (access(folder.c_str(), W_OK) != 0) {
    throw Failure(folder.string() + ": the folder cannot be written to");
  }
  part_ = folder / ("." + file_.stem().string() + "." + std::to_string(getpid()) + ".part" +
                    file_.extension().string());
}

PictureOutput::~PictureOutput() {
  std::error_code error;
  fs::remove(part_, error);
}

bool PictureOutput::StraightOnly() const { return format_ == "png"; }

bool PictureOutput::PremultipliedOnly() const { return format_ == "openexr"; }

void PictureOutput::Write(const Picture& picture, int bits) {
  const auto fail = [this](std::string why) {
    std::replace(why.begin(), why.end(), '\n', ' ');
    throw Failure(file_.string() + ": it cannot be written: " + why);
  };
  const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(file_.string());
  const bool withAlpha = picture.alpha != Alpha::kNone && holdsAlpha_;
  const int channels = (picture.grey ? 1 : 3) + (withAlpha ? 1 : 0);
  const bool half = format_ == "openexr";
  const OIIO::TypeDesc type = half        ? OIIO::TypeDesc::HALF
                              : bits == 8 ? OIIO::TypeDesc::UINT8
                                          : OIIO::TypeDesc::UINT16;
  OIIO::ImageSpec spec(picture.width, picture.height, channels, type);
  if (picture.metadata) {
    const bool sameFormat = picture.metadata->format == format_ && bits == picture.bits;
    for (const OIIO::ParamValue& attribute : picture.metadata->attributes) {
      if (!DescribesCoding(attribute, sameFormat)) {
        spec.extra_attribs.push_back(attribute);
      }
    }
  }
  // Also for samples that the format would hold otherwise: the library must not convert
  // what is already as it was asked for.
  if (withAlpha && (picture.alpha == Alpha::kStraight || StraightOnly())) {
    spec.attribute(kStraightAttribute, 1);
  }
  if (!output->open(part_.string(), spec)) {
    fail(output->geterror());
  }
  const std::vector<std::uint16_t> samples = Gather(picture, channels);
  const bool written = type == OIIO::TypeDesc::UINT8
                           ? output->write_image(OIIO::TypeDesc::UINT8, ToBytes(samples).data())
                           : output->write_image(OIIO::TypeDesc::UINT16, samples.data());
  if (!written || !output->close()) {
    fail(output->geterror());
  }
  std::error_code error;
  if (!overwrite_ && fs::exists(file_, error)) {
    fail("another program has made it meanwhile");
  }
  fs::rename(part_, file_, error);
  if (error) {
    fail(error.message());
  }
}

}  // namespace glimmerhost
