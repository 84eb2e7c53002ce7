// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/openimageio_metadata.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

#include "host/pictures/colour_path.h"

namespace glimmerhost {
namespace {

constexpr const char* kTimecode = "smpte:TimeCode";
constexpr const char* kKeycode = "smpte:KeyCode";
constexpr const char* kFrameRate = "FramesPerSecond";
constexpr const char* kPixelAspect = "PixelAspectRatio";
constexpr const char* kOrientation = "Orientation";
constexpr const char* kProfile = "ICCProfile";

// A DPX file's fields in an EXR, where names of other formats with a colon would be left out.
constexpr std::string_view kDpxField = "dpx:";
constexpr std::string_view kDpxInExr = "dpx/";
constexpr const char* kDpxTransferInExr = "dpx/Transfer";

// How a DPX file's samples are packed.
constexpr const char* kDpxCoding[] = {
    "dpx:Packing",           "dpx:ImageDescriptor", "dpx:EndOfLinePadding",
    "dpx:EndOfImagePadding", "dpx:Signal",          "dpx:Version",
    "dpx:EncryptKey",        "dpx:DittoKey",        "dpx:Encoding"};

// In DPX files, the texts of what two attributes say already.
constexpr const char* kDpxTimecode = "dpx:TimeCode";
constexpr const char* kDpxKeycode = "dpx:FilmEdgeCode";

// How files of one format keep their samples. What follows from an ICC profile goes with it.
constexpr const char* kCodingStarts[] = {
    "tiff:", "jpeg:", "png:", "openexr:", "ICCProfile:", "oiio:subimage"};

// True of one file alone: hashes, small copies, the way tiles were made, views in other channels.
constexpr const char* kNeverCarried[] = {
    "oiio:UnassociatedAlpha", "oiio:SHA-1",        "oiio:ConstantColor",
    "oiio:AverageColor",      "oiio:subimages",    "planarconfig",
    "textureformat",          "wrapmodes",         "multiView",
    "openexr:chunkCount",     "openexr:levelmode", "openexr:roundingmode",
    "thumbnail_width",        "thumbnail_height",  "thumbnail_nchannels",
    "thumbnail_image"};

// What samples mean as colours.
constexpr const char* kColourWords[] = {
    kProfile,           "chromaticities",        "oiio:ColorSpace",  "oiio:Gamma",
    "Exif:ColorSpace",  "dpx:Transfer",          "dpx:Colorimetric", kDpxTransferInExr,
    "dpx/Colorimetric", "acesImageContainerFlag"};

template <std::size_t kCount>
bool IsOneOf(const std::string& name, const char* const (&names)[kCount]) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

bool DescribesCoding(const std::string& name) {
  return name == "compression" || name == "oiio:BitsPerSample" || IsOneOf(name, kDpxCoding) ||
         std::any_of(std::begin(kCodingStarts), std::end(kCodingStarts),
                     [&name](const char* start) { return name.starts_with(start); });
}

std::string NameIn(const std::string& format, const std::string& name) {
  if (format == "openexr" && name.starts_with(kDpxField)) {
    return std::string(kDpxInExr) + name.substr(kDpxField.size());
  }
  if (format == "dpx" && name.starts_with(kDpxInExr)) {
    return std::string(kDpxField) + name.substr(kDpxInExr.size());
  }
  return name;
}

// Rates of film and television are whole numbers, or these divided by 1.001.
std::array<int, 2> RateRatio(float rate) {
  constexpr float kNear = 0.002F;
  const float whole = std::round(rate);
  const float longer = std::round(rate * 1.001F);
  if (std::fabs(rate - whole) < kNear) {
    return {static_cast<int>(whole), 1};
  }
  if (std::fabs(rate - longer / 1.001F) < kNear) {
    return {static_cast<int>(longer) * 1000, 1001};
  }
  return {static_cast<int>(std::lround(rate * 1000.0F)), 1000};
}

// DPX has numbers in its parts for film and television, other formats a ratio.
void TranslateFrameRate(const std::string& format, OIIO::ParamValueList* attributes) {
  const auto ratio = attributes->find(kFrameRate);
  if (format == "dpx") {
    if (ratio == attributes->end() || ratio->type() != OIIO::TypeRational) {
      return;
    }
    const auto* const parts = static_cast<const int*>(ratio->data());
    const float rate = static_cast<float>(parts[0]) / static_cast<float>(parts[1]);
    if (std::isfinite(rate)) {
      attributes->attribute("dpx:FrameRate", rate);
      attributes->attribute("dpx:TemporalFrameRate", rate);
    }
    attributes->remove(kFrameRate);
    return;
  }
  float rate = attributes->get_float("dpx:FrameRate", 0.0F);
  rate = rate > 0.0F ? rate : attributes->get_float("dpx:TemporalFrameRate", 0.0F);
  constexpr float kLargest = 10000.0F;
  if (ratio == attributes->end() && rate > 0.0F && rate < kLargest) {
    attributes->attribute(kFrameRate, OIIO::TypeRational, RateRatio(rate).data());
    attributes->remove("dpx:FrameRate");
    attributes->remove("dpx:TemporalFrameRate");
  }
}

// Whether what the input says of its colours is wrong of the output.
bool ChangesColours(const Picture& picture) {
  return picture.colours != nullptr && !picture.colours->sameSpace;
}

// What of the metadata is true of a file of that format with such samples.
OIIO::ParamValueList AttributesFor(const Picture& picture, const std::string& format, int bits) {
  const bool sameCoding = picture.attributes->format == format && bits == picture.bits;
  OIIO::ParamValueList attributes;
  for (const OIIO::ParamValue& attribute : picture.attributes->list) {
    const std::string name = attribute.name().string();
    const bool twice = format == "openexr" && (name == kDpxTimecode || name == kDpxKeycode);
    if (ChangesColours(picture) && IsOneOf(name, kColourWords)) {
      continue;
    }
    // Views in other channels, if these are there.
    const bool isView = name == "multiView" && picture.extras != nullptr && format == "openexr";
    if (!twice && (isView || !IsOneOf(name, kNeverCarried)) &&
        (sameCoding || !DescribesCoding(name))) {
      attributes.push_back(attribute);
    }
  }
  TranslateFrameRate(format, &attributes);
  // An EXR says of itself that it is linear, and the writer of DPX would rather believe that.
  if (format == "dpx" && attributes.contains(kDpxTransferInExr)) {
    attributes.remove("oiio:ColorSpace");
  }
  OIIO::ParamValueList named;
  for (const OIIO::ParamValue& attribute : attributes) {
    const std::string name = NameIn(format, attribute.name().string());
    named.push_back(
        OIIO::ParamValue(name, attribute.type(), attribute.nvalues(), attribute.data()));
  }
  return named;
}

// Writers would take these and make something else of them, or complain on the terminal.
bool IsRefused(const std::string& format, const OIIO::ParamValue& attribute) {
  const std::string name = attribute.name().string();
  if (format == "openexr") {
    return name == kProfile || name == "GPS:VersionID";
  }
  // A turned picture's sides would be exchanged, and its rows not.
  constexpr int kFirstTurned = 5;
  return format == "dpx" && name == kOrientation && attribute.get_int() >= kFirstTurned;
}

bool SamePlace(const OIIO::ROI& a, const OIIO::ROI& b) {
  return a.xbegin == b.xbegin && a.xend == b.xend && a.ybegin == b.ybegin && a.yend == b.yend;
}

std::string ShowWindow(const OIIO::ROI& window) {
  return std::to_string(window.width()) + " x " + std::to_string(window.height()) + " at " +
         std::to_string(window.xbegin) + "," + std::to_string(window.ybegin);
}

struct Windows {
  OIIO::ROI data;
  OIIO::ROI display;
};

// As the file had them, with what the picture has grown since. A picture from no file has had one
// of its own size.
Windows WindowsOf(const Picture& picture) {
  const int by = picture.grownBy;
  const OIIO::ROI own(0, picture.width - 2 * by, 0, picture.height - 2 * by);
  Windows windows{own, own};
  if (picture.attributes) {
    windows = {picture.attributes->data, picture.attributes->display};
  }
  OIIO::ROI& data = windows.data;
  data = OIIO::ROI(data.xbegin - by, data.xend + by, data.ybegin - by, data.yend + by);
  return windows;
}

// Writers of other formats take what origin they are given, and some write beyond their memory.
bool HoldsWindows(const std::string& format, const Windows& windows) {
  return format == "openexr" ||
         (format == "dpx" && windows.display.xbegin == 0 && windows.display.ybegin == 0 &&
          windows.data.xbegin >= 0 && windows.data.ybegin >= 0);
}

std::optional<NotCarried> DisplayWindowLost(const Picture& picture, const std::string& format) {
  const Windows windows = WindowsOf(picture);
  if (SamePlace(windows.data, windows.display) || HoldsWindows(format, windows)) {
    return std::nullopt;
  }
  return OneNotCarried("the display window", ShowWindow(windows.display),
                       FormatLabel(format) +
                           " has no place for it; the output is the data window, " +
                           ShowWindow(windows.data));
}

std::string ShowValue(const OIIO::ParamValue& attribute) {
  std::string text = attribute.get_string();
  if (attribute.type() == OIIO::TypeRational && text.ends_with("/1")) {
    text.resize(text.size() - 2);
  }
  return text;
}

struct Labelled {
  const char* name;
  const char* label;
  bool withValue;
};

constexpr Labelled kLabelled[] = {
    {kTimecode, "timecode", true},       {kKeycode, "film edge code", true},
    {kFrameRate, "frame rate", true},    {kPixelAspect, "pixel aspect", true},
    {kOrientation, "orientation", true}, {kProfile, "ICC profile", false}};

// Attributes that say what holds without them, too, or nothing about the picture.
bool IsTrivial(const OIIO::ParamValue& attribute) {
  const std::string name = attribute.name().string();
  if (name == kOrientation || name == "dpx:HeldCount" || name == "dpx/HeldCount") {
    return attribute.get_int() == 1;
  }
  if (name == "screenWindowWidth") {
    return attribute.get_float() == 1.0F;
  }
  if (name == kPixelAspect) {
    return std::fabs(attribute.get_float() - 1.0F) < 1e-4F;
  }
  if (name == "screenWindowCenter") {
    return attribute.get_float_indexed(0) == 0.0F && attribute.get_float_indexed(1) == 0.0F;
  }
  if (name == "dpx:UserBits" || name == "dpx/UserBits") {
    return attribute.get_int() == 0;
  }
  // What tools for files note of themselves is of no use to anyone behind them.
  if (name == "Exif:ImageHistory" || name.starts_with("rla:")) {
    return true;
  }
  const std::string text = attribute.get_string();
  if (name.ends_with("Transfer") || name.ends_with("Colorimetric")) {
    return text == "Undefined" || text == "User defined";
  }
  return name == kDpxTimecode || name == kDpxKeycode || name == "name" ||
         name == "ResolutionUnit" || name == "Exif:ExifVersion" || name == "Exif:FlashPixVersion" ||
         name == "GPS:VersionID" || name.starts_with("oiio:") || DescribesCoding(name);
}

bool IsIn(const OIIO::ImageSpec& spec, const OIIO::ParamValue& attribute) {
  const std::string name = attribute.name().string();
  if (name == kPixelAspect) {
    // Resolutions in whole dots make the ratio inexact.
    constexpr float kNear = 0.02F;
    const float aspect = attribute.get_float();
    return std::fabs(spec.get_float_attribute(name, 1.0F) - aspect) < kNear * aspect;
  }
  if (name == kTimecode && spec.get_string_attribute(kDpxTimecode) == attribute.get_string()) {
    return true;  // as a text
  }
  // Some formats write names in their own letters.
  const OIIO::ParamValue* const found = spec.find_attribute(name, OIIO::TypeDesc::UNKNOWN, false);
  if (found == nullptr) {
    return false;
  }
  return (name != kTimecode && name != kKeycode && name != kOrientation) ||
         found->get_string() == attribute.get_string();
}

}  // namespace

std::shared_ptr<const FileAttributes> KeepAttributes(const std::string& format,
                                                     const OIIO::ImageSpec& spec) {
  auto metadata = std::make_shared<FileAttributes>();
  metadata->format = format;
  metadata->list = spec.extra_attribs;
  metadata->data = spec.roi();
  metadata->display = spec.roi_full();
  // A place on a page, which PNG and TIFF may name, is none in a display window.
  const bool hasDisplay =
      format == "openexr" || spec.full_width != spec.width || spec.full_height != spec.height;
  if (!hasDisplay || spec.full_width < 1 || spec.full_height < 1) {
    metadata->data = OIIO::ROI(0, spec.width, 0, spec.height);
    metadata->display = metadata->data;
  }
  return metadata;
}

void SetMetadata(const Picture& picture, const std::string& format, int bits,
                 OIIO::ImageSpec* spec) {
  const Windows windows = WindowsOf(picture);
  if (HoldsWindows(format, windows) && windows.data.width() == spec->width &&
      windows.data.height() == spec->height) {
    spec->x = windows.data.xbegin;
    spec->y = windows.data.ybegin;
    spec->set_roi_full(windows.display);
  }
  if (!picture.attributes) {
    return;
  }
  for (const OIIO::ParamValue& attribute : AttributesFor(picture, format, bits)) {
    if (!IsRefused(format, attribute)) {
      spec->extra_attribs.push_back(attribute);
    }
  }
}

std::vector<NotCarried> MetadataLost(const Picture& picture, const std::string& format, int bits,
                                     const std::filesystem::path& written) {
  std::vector<NotCarried> lost;
  if (const auto window = DisplayWindowLost(picture, format)) {
    lost.push_back(*window);
  }
  const std::unique_ptr<OIIO::ImageInput> input = OIIO::ImageInput::open(written.string());
  if (!input) {
    (void)OIIO::geterror();
  }
  if (!picture.attributes || !input) {
    return lost;
  }
  const std::string why = FormatLabel(format) + " has no place for ";
  const FileAttributes& metadata = *picture.attributes;
  if (ChangesColours(picture)) {
    const std::string another = "the output is in another colour space";
    if (metadata.list.contains(kProfile)) {
      lost.push_back(OneNotCarried("ICC profile", "", another));
    }
    if (metadata.list.contains("chromaticities")) {
      lost.push_back(SomeNotCarried("chromaticities", another));
    }
  }
  std::vector<std::string> others;
  for (const OIIO::ParamValue& attribute : AttributesFor(picture, format, bits)) {
    if (IsTrivial(attribute) || IsIn(input->spec(), attribute)) {
      continue;
    }
    const std::string name = attribute.name().string();
    const auto* const known = std::find_if(std::begin(kLabelled), std::end(kLabelled),
                                           [&](const Labelled& l) { return name == l.name; });
    if (known != std::end(kLabelled)) {
      lost.push_back(
          OneNotCarried(known->label, known->withValue ? ShowValue(attribute) : "", why + "it"));
    } else {
      others.push_back(name);
    }
  }
  if (others.size() == 1) {
    lost.push_back(OneNotCarried("attribute " + others[0], "", why + "it"));
  } else if (!others.empty()) {
    lost.push_back(SomeNotCarried("attributes " + ListNames(others), why + "them"));
  }
  return lost;
}

}  // namespace glimmerhost
