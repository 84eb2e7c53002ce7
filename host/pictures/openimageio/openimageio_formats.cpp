// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/openimageio_formats.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/floats/float_picture.h"
#include "host/pictures/floats/float_samples.h"
#include "host/pictures/guards/dpx_header.h"
#include "host/pictures/guards/reader_guard.h"
#include "host/pictures/openimageio/managed_samples.h"
#include "host/pictures/openimageio/openimageio_channels.h"
#include "host/pictures/openimageio/openimageio_extras.h"
#include "host/pictures/openimageio/openimageio_metadata.h"
#include "host/pictures/openimageio/openimageio_output.h"
#include "host/pictures/pixel_aspect.h"
#include "host/support/failure.h"

namespace glimmerhost {

namespace {

namespace fs = std::filesystem;

constexpr const char* kBitsPerSample = "oiio:BitsPerSample";
constexpr const char* kNoWriter =
    "the picture library had not the memory to write it, or not the threads";
constexpr const char* kStraightAttribute = "oiio:UnassociatedAlpha";

// Of a file whose samples nobody may want.
std::unique_ptr<OIIO::ImageInput> OpenHead(const fs::path& file) {
  CheckDpxHeader(file);
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

std::unique_ptr<OIIO::ImageInput> OpenInput(const fs::path& file) {
  std::unique_ptr<OIIO::ImageInput> input = OpenHead(file);
  CheckDpxLength(file);
  const OIIO::ImageSpec& spec = input->spec();
  // The file's samples, and beside them the picture's.
  const std::uint64_t sample = spec.format.is_floating_point() ? 4 : 2;
  CheckMemoryFor(file, spec.width, spec.height,
                 sample * static_cast<std::uint64_t>(spec.nchannels) + 8);
  return input;
}

void ReadSamples(const fs::path& file, OIIO::TypeDesc type, void* to, OIIO::ImageInput* input) {
  const bool read = input->read_image(0, 0, 0, input->spec().nchannels, type, to);
  // Some readers fill up what is missing and only leave a word about it.
  const std::string trouble = input->geterror();
  if (!read || !trouble.empty()) {
    ReadFailure(file, "cut short or broken: " + trouble);
  }
}

// For a file of whole numbers.
std::vector<std::uint16_t> ManagedWords(const Picture& picture, bool withAlpha,
                                        const OutputFormat& format, std::vector<NotCarried>* lost) {
  std::uint64_t cut = 0;
  std::vector<std::uint16_t> words = CutToWords(ManagedFloats(picture, withAlpha), &cut);
  if (cut > 0 && lost != nullptr) {
    const std::string samples = "outside 0 to 1 in the output's colour space";
    lost->push_back(
        {"samples " + samples, std::to_string(cut) + (cut == 1 ? " sample " : " samples ") +
                                   samples + (cut == 1 ? " is" : " are") + " cut to that range: " +
                                   FormatLabel(format.name) + " has no place beyond"});
  }
  return words;
}

void NoteCutToHalf(std::uint64_t cut, std::vector<NotCarried>* lost) {
  if (cut > 0 && lost != nullptr) {
    lost->push_back({"samples beyond what half floats hold",
                     std::to_string(cut) +
                         (cut == 1 ? " sample beyond 65504 is" : " samples beyond 65504 are") +
                         " cut to that, as half floats hold no more: --bits float keeps them"});
  }
}

quantel::cSize2 PixelAspectOf(const OIIO::ImageSpec& spec) {
  return NearestRatio(spec.get_float_attribute("PixelAspectRatio", 1.0F));
}

OIIO::TypeDesc SampleType(const OutputFormat& format, const Coding& coding, int usualBits) {
  if (format.name == "openexr") {
    return coding.floats && coding.bits == 32 ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::HALF;
  }
  return coding.floats                    ? OIIO::TypeDesc::FLOAT
         : BitsOf(coding, usualBits) == 8 ? OIIO::TypeDesc::UINT8
                                          : OIIO::TypeDesc::UINT16;
}

// The word of a compression as the library takes it.
std::string CompressionWord(const Coding& coding) {
  const bool hasLevel = coding.compression.starts_with("dwa") && coding.quality != 0;
  return coding.compression + (hasLevel ? ":" + std::to_string(coding.quality) : "");
}

// Three samples of 10 bits are a word of the file. Of a row that does not end with a whole word,
// the library loses what is in the last.
bool LosesEndsOfRows(const OIIO::ImageSpec& spec) {
  constexpr int kInWord = 3;
  return spec.get_int_attribute(kBitsPerSample, 0) == 10 &&
         spec.width * spec.nchannels % kInWord != 0;
}

// What was chosen, over what goes on from the input; and what the library would choose otherwise
// than a shot wants it.
void SetCoding(const OutputFormat& format, const Coding& coding, OIIO::ImageSpec* spec) {
  // The time of writing: the same frame would give other bytes each time. Empty, none is written.
  constexpr const char* kDate = "DateTime";
  if (spec->find_attribute(kDate) == nullptr) {
    spec->attribute(kDate, "");
  }
  spec->attribute("tiff:zipquality", DeflateLevel(coding));
  spec->attribute("png:compressionLevel", DeflateLevel(coding));
  if (!coding.compression.empty() && format.name != "png") {
    spec->attribute("compression", CompressionWord(coding));
  }
  if (coding.quality != 0 && format.name != "openexr") {
    spec->attribute("CompressionQuality", coding.quality);
  }
  if (coding.bits != 0 && format.name == "dpx") {
    // Also over the input's own depth, which counts for the library over that of the samples.
    spec->attribute(kBitsPerSample, coding.bits);
  }
  if (format.name == "dpx" && LosesEndsOfRows(*spec)) {
    if (coding.bits != 0) {
      throw Failure("a DPX of 10 bits holds rows of whole words alone: in this picture, of " +
                    std::to_string(spec->width) + " pixels and " + std::to_string(spec->nchannels) +
                    (spec->nchannels == 1 ? " channel" : " channels") +
                    ", the samples of a row cannot be divided by 3; --bits 12 has room for it");
    }
    spec->attribute(kBitsPerSample, 16);
  }
}

// Of the file, where its samples are handed over as 16 bits. Writers drop the low ones.
int DepthOf(const OIIO::ImageSpec& spec) {
  const int bits = spec.get_int_attribute("oiio:BitsPerSample", 16);
  return bits > 8 && bits < 16 ? bits : 16;
}

// How many channels go into a file. Some formats have no place for a brightness alone, or beside an
// alpha: the library refuses that, or ends the program.
int ChannelsFor(const OutputFormat& format, const Picture& picture, bool withAlpha) {
  const bool asColours = format.name == "hdr" || (format.name == "dpx" && withAlpha);
  return (picture.grey && !asColours ? 1 : 3) + (withAlpha ? 1 : 0);
}

// A brightness and its alpha, which the library would call red and green.
void NameGreyChannels(OIIO::ImageSpec* spec) {
  if (spec->nchannels == 2) {
    spec->channelnames = {"Y", "A"};
    spec->alpha_channel = 1;
  }
}

// The picture with further channels, and the parts behind it.
void WriteParts(const std::string& name, FileBytes* bytes, const OIIO::ImageSpec& spec,
                const std::vector<std::byte>& samples, const FileExtras& extras,
                std::unique_ptr<OIIO::ImageOutput> output) {
  std::vector<OutputPart> parts = {{spec, OIIO::TypeDesc::UNKNOWN, samples.data()}};
  for (const FileExtras::Part& part : extras.parts) {
    parts.push_back({part.spec, OIIO::TypeDesc::UNKNOWN, part.samples.data()});
    ShareWithParts(spec, &parts.back().spec);
  }
  WriteWhole(name, bytes, parts, std::move(output));
}

// Null for a format that the library does not know, and where it failed.
std::unique_ptr<OIIO::ImageOutput> MakeOutput(const fs::path& file) {
  // Of a name the library takes the ending, and the name where it has no memory for that, as if its
  // format were unknown. An ending alone is what it takes either way.
  const std::string ending = file.extension().string();
  return OIIO::ImageOutput::create(ending.size() > 1 ? ending.substr(1) : file.string());
}

}  // namespace

std::optional<OutputFormat> OpenImageIoFormatOf(const fs::path& file) {
  (void)OIIO::geterror();
  const std::unique_ptr<OIIO::ImageOutput> output = MakeOutput(file);
  if (!output) {
    // Of a format that it does not know the library says so, and nothing where it failed.
    if (OIIO::geterror().empty()) {
      throw Failure(file.string() + ": " + kNoWriter);
    }
    return std::nullopt;
  }
  const std::string name = output->format_name();
  // One writes nothing, the other onto the terminal.
  if (name == "null" || name == "term") {
    return std::nullopt;
  }
  return OutputFormat{name,
                      output->supports("alpha") != 0,
                      name == "png",
                      name == "openexr",
                      name == "openexr" || name == "hdr",
                      false};
}

Picture ReadByOpenImageIo(const fs::path& file, const ReadOptions& options, ReadReport* report) {
  const std::unique_ptr<OIIO::ImageInput> input = OpenInput(file);
  const OIIO::ImageSpec spec = input->spec();
  const ChannelMap map = MapChannels(file, input->format_name(), spec);
  Picture picture;
  picture.width = spec.width;
  picture.height = spec.height;
  picture.grey = map.grey;
  picture.bits = spec.format == OIIO::TypeDesc::UINT8 ? 8 : 16;
  picture.alpha = map.alpha < 0                                        ? Alpha::kNone
                  : spec.get_int_attribute(kStraightAttribute, 0) != 0 ? Alpha::kStraight
                                                                       : Alpha::kPremultiplied;
  picture.pixelAspect = PixelAspectOf(spec);
  picture.attributes = KeepAttributes(input->format_name(), spec);

  const std::size_t count = picture.PixelCount() * static_cast<std::size_t>(spec.nchannels);
  if (options.colours || spec.format.is_floating_point()) {
    std::vector<float> values(count);
    ReadSamples(file, OIIO::TypeDesc::FLOAT, values.data(), input.get());
    if (options.colours) {
      SpreadManaged(file, values, spec.nchannels, map, options, spec.format.is_floating_point(),
                    &picture, report);
    } else {
      SpreadFloats(file, values, spec.nchannels, map, {options.KeepsFloats(true), options.range},
                   &picture, report);
    }
  } else {
    std::vector<std::uint16_t> samples(count);
    ReadSamples(file, OIIO::TypeDesc::UINT16, samples.data(), input.get());
    SpreadChannels(samples, spec.nchannels, map, &picture);
  }
  if (KeepsExtras(*input, options)) {
    picture.extras = ReadExtras(file, map, input.get(), report);
  }
  if (!options.blurChannels.empty()) {
    picture.layers = TakeLayers(file, spec, picture.extras.get(), options, picture, report);
  }
  if (KeepsExtras(*input, options)) {
    return picture;
  }
  for (const auto& left : {ChannelsLeft(map, spec), PartsLeft(input.get())}) {
    if (left) {
      report->notCarried.push_back(*left);
    }
  }
  return picture;
}

PictureHead ReadHeadByOpenImageIo(const fs::path& file) {
  const std::unique_ptr<OIIO::ImageInput> input = OpenHead(file);
  const OIIO::ImageSpec& spec = input->spec();
  return {spec.width, spec.height, spec.nchannels,
          spec.get_int_attribute("oiio:BitsPerSample", static_cast<int>(spec.format.size() * 8)),
          spec.format.is_floating_point()};
}

void CompleteByOpenImageIo(const fs::path& file, const ReadOptions& options, Picture* picture,
                           ReadReport* report) {
  const std::unique_ptr<OIIO::ImageInput> input = OpenInput(file);
  picture->metadata.reset();
  picture->attributes = KeepAttributes(input->format_name(), input->spec());
  picture->pixelAspect = PixelAspectOf(input->spec());
  if (options.colours) {
    const bool hasAlpha = picture->alpha != Alpha::kNone;
    const bool ofFloats = input->spec().format.is_floating_point();
    const std::vector<float> values = GatherFloats(*picture, 4);
    picture->samples.clear();
    picture->floats.clear();
    SpreadManaged(file, values, 4, {0, 1, 2, hasAlpha ? 3 : -1, false}, options, ofFloats, picture,
                  report);
  }
}

void WriteByOpenImageIo(const OutputFile& file, FileBytes* bytes, const OutputFormat& format,
                        const Picture& picture, const Coding& coding,
                        std::vector<NotCarried>* lost) {
  std::unique_ptr<OIIO::ImageOutput> output = MakeOutput(file.name);
  if (!output) {
    throw Failure(kNoWriter);
  }
  const bool withAlpha = picture.alpha != Alpha::kNone && format.holdsAlpha;
  const int channels = ChannelsFor(format, picture, withAlpha);
  const OIIO::TypeDesc type = SampleType(format, coding, picture.bits);
  // Half floats and floats of an EXR are kept by the same compressions.
  const int bits = format.name == "openexr" ? picture.bits : BitsOf(coding, picture.bits);
  OIIO::ImageSpec spec(picture.width, picture.height, channels, type);
  NameGreyChannels(&spec);
  SetMetadata(picture, format.name, bits, &spec);
  SetCoding(format, coding, &spec);
  // Also for samples that the format would hold otherwise: the library must not convert
  // what is already as it was asked for.
  if (withAlpha && (picture.alpha == Alpha::kStraight || format.straightOnly)) {
    spec.attribute(kStraightAttribute, 1);
  }
  if (format.holdsFloats || coding.floats) {
    const bool withExtras = HoldsExtras(format) && picture.extras;
    std::vector<float> values =
        picture.colours ? ManagedFloats(picture, withAlpha) : GatherFloats(picture, channels);
    std::uint64_t cut = type == OIIO::TypeDesc::HALF ? CutToHalf(&values) : 0;
    if (withExtras) {
      AddExtraChannels(picture, &spec);
      WriteParts(file.name, bytes, spec, WithExtraChannels(picture, values, spec, &cut),
                 *picture.extras, std::move(output));
    } else {
      WriteWhole(file.name, bytes, spec, OIIO::TypeDesc::FLOAT, values.data(), std::move(output));
    }
    NoteCutToHalf(cut, lost);
  } else {
    std::vector<std::uint16_t> samples = picture.colours
                                             ? ManagedWords(picture, withAlpha, format, lost)
                                             : GatherChannels(picture, channels);
    if (type == OIIO::TypeDesc::UINT8) {
      WriteWhole(file.name, bytes, spec, type, ToBytes(samples).data(), std::move(output));
    } else {
      RoundToBits(DepthOf(spec), &samples);
      WriteWhole(file.name, bytes, spec, type, samples.data(), std::move(output));
    }
  }
  if (lost != nullptr) {
    const std::vector<NotCarried> found = MetadataLost(picture, format.name, bits, file.file);
    lost->insert(lost->end(), found.begin(), found.end());
  }
}

}  // namespace glimmerhost
