// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/png_metadata.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "host/pictures/beyond_reader.h"

namespace glimmerhost {
namespace {

constexpr double kCentimetresPerMetre = 100.0;
constexpr double kInchesPerMetre = 1.0 / 0.0254;

std::vector<FileText> Texts(const PngLibrary& library) {
  std::vector<FileText> texts;
  png_textp text = nullptr;
  int count = 0;
  png_get_text(library.Png(), library.Info(), &text, &count);
  for (int i = 0; i < count; ++i) {
    if (text[i].key != nullptr && text[i].text != nullptr) {
      texts.push_back({text[i].key, ToUtf8(text[i].text)});
    }
  }
  return texts;
}

std::string Date(const PngLibrary& library) {
  png_timep time = nullptr;
  if (png_get_tIME(library.Png(), library.Info(), &time) == 0) {
    return {};
  }
  char date[40];
  std::snprintf(date, sizeof date, "%04d:%02d:%02d %02d:%02d:%02d", time->year, time->month,
                time->day, time->hour, time->minute, time->second);
  return IsFullDate(date) ? date : "";
}

std::optional<Resolution> ReadResolution(const PngLibrary& library) {
  png_uint_32 x = 0;
  png_uint_32 y = 0;
  int unit = 0;
  if (png_get_pHYs(library.Png(), library.Info(), &x, &y, &unit) == 0) {
    return std::nullopt;
  }
  if (unit == PNG_RESOLUTION_METER) {
    return Resolution{x / kCentimetresPerMetre, y / kCentimetresPerMetre, DotsPer::kCentimetre};
  }
  return Resolution{static_cast<double>(x), static_cast<double>(y), DotsPer::kNothing};
}

std::vector<std::uint8_t> Profile(const PngLibrary& library) {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep profile = nullptr;
  png_uint_32 size = 0;
  if (png_get_iCCP(library.Png(), library.Info(), &name, &compression, &profile, &size) == 0) {
    return {};
  }
  return {profile, profile + size};
}

// The chunks themselves: libpng would also tell what it derives from one of them for another.
PngColours Colours(const PngLibrary& library) {
  PngColours colours;
  const png_uint_32 valid =
      png_get_valid(library.Png(), library.Info(), PNG_INFO_gAMA | PNG_INFO_cHRM | PNG_INFO_sRGB);
  png_fixed_point gamma = 0;
  if ((valid & PNG_INFO_gAMA) != 0 &&
      png_get_gAMA_fixed(library.Png(), library.Info(), &gamma) != 0) {
    colours.gamma = gamma;
  }
  std::array<png_fixed_point, 8> c{};
  if ((valid & PNG_INFO_cHRM) != 0 &&
      png_get_cHRM_fixed(library.Png(), library.Info(), &c[0], &c[1], &c[2], &c[3], &c[4], &c[5],
                         &c[6], &c[7]) != 0) {
    colours.chromaticities = c;
  }
  int intent = 0;
  if ((valid & PNG_INFO_sRGB) != 0 && png_get_sRGB(library.Png(), library.Info(), &intent) != 0) {
    colours.srgbIntent = intent;
  }
  return colours;
}

// The four letters of a profile's head that say what it is for.
std::string ProfileSpace(const std::vector<std::uint8_t>& profile) {
  constexpr std::size_t kAt = 16;
  constexpr std::size_t kLength = 4;
  return profile.size() < kAt + kLength
             ? std::string()
             : std::string(profile.begin() + kAt, profile.begin() + kAt + kLength);
}

// What they are for a picture's channels.
std::string SpaceFor(bool grey) { return grey ? "GRAY" : "RGB "; }

void SetTexts(const std::vector<FileText>& texts, PngLibrary* library) {
  std::vector<png_text> list;
  for (const FileText& text : texts) {
    png_text entry{};
    // Latin-1 would do for some of the others; but readers differ in what they take it for.
    entry.compression = IsAscii(text.value) && text.key != kXmpKey ? PNG_TEXT_COMPRESSION_NONE
                                                                   : PNG_ITXT_COMPRESSION_NONE;
    // libpng copies both.
    entry.key = const_cast<char*>(text.key.c_str());
    entry.text = const_cast<char*>(text.value.c_str());
    list.push_back(entry);
  }
  library->Run([&] {
    png_set_text(library->Png(), library->Info(), list.data(), static_cast<int>(list.size()));
  });
}

void SetDate(const std::string& date, PngLibrary* library) {
  if (!IsFullDate(date)) {
    return;
  }
  const auto number = [&date](std::size_t at, std::size_t digits) {
    return std::stoi(date.substr(at, digits));
  };
  const png_time time{static_cast<png_uint_16>(number(0, 4)), static_cast<png_byte>(number(5, 2)),
                      static_cast<png_byte>(number(8, 2)),    static_cast<png_byte>(number(11, 2)),
                      static_cast<png_byte>(number(14, 2)),   static_cast<png_byte>(number(17, 2))};
  library->Run([&] { png_set_tIME(library->Png(), library->Info(), &time); });
}

// The ratio of the two is the pixel aspect, and matters more than either: of whole numbers
// nearby, those that keep it.
void SetResolution(const Resolution& resolution, PngLibrary* library) {
  const double scale = resolution.unit == DotsPer::kInch         ? kInchesPerMetre
                       : resolution.unit == DotsPer::kCentimetre ? kCentimetresPerMetre
                                                                 : 1.0;
  double x = std::round(resolution.x * scale);
  double y = std::round(resolution.y * scale);
  const quantel::cSize2 aspect = PixelAspectOf(resolution);
  const double steps = std::round(resolution.x * scale / aspect.second);
  constexpr double kStepsWhereNoneIsMissed = 100.0;
  if (resolution.unit != DotsPer::kNothing && steps >= kStepsWhereNoneIsMissed) {
    x = steps * aspect.second;
    y = steps * aspect.first;
  }
  if (!(x >= 1.0 && y >= 1.0 && x <= PNG_UINT_31_MAX && y <= PNG_UINT_31_MAX)) {
    return;
  }
  const int unit =
      resolution.unit == DotsPer::kNothing ? PNG_RESOLUTION_UNKNOWN : PNG_RESOLUTION_METER;
  library->Run([&] {
    png_set_pHYs(library->Png(), library->Info(), static_cast<png_uint_32>(x),
                 static_cast<png_uint_32>(y), unit);
  });
}

void SetColours(const PngColours& colours, PngLibrary* library) {
  const png_structp png = library->Png();
  const png_infop info = library->Info();
  if (colours.gamma) {
    library->Run([&] { png_set_gAMA_fixed(png, info, *colours.gamma); });
  }
  if (colours.chromaticities) {
    const auto& c = *colours.chromaticities;
    library->Run(
        [&] { png_set_cHRM_fixed(png, info, c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7]); });
  }
  if (colours.srgbIntent) {
    library->Run([&] { png_set_sRGB(png, info, *colours.srgbIntent); });
  }
}

}  // namespace

FileMetadata ReadPngMetadata(const PngLibrary& library) {
  FileMetadata metadata;
  metadata.format = "png";
  metadata.texts = Texts(library);
  metadata.date = Date(library);
  metadata.resolution = ReadResolution(library);
  metadata.iccProfile = Profile(library);
  metadata.colours = Colours(library);
  return metadata;
}

// Of keys with a colon most have a meaning of their own: packed records and other files' fields.
void CheckPngMetadata(const FileMetadata& metadata, const PngLibrary& library, bool grey,
                      const std::string& keptFor) {
  if (keptFor != metadata.format && !SaysNothing(metadata)) {
    throw BeyondReader("what it says of itself is for a TIFF file");
  }
  if (png_get_valid(library.Png(), library.Info(), PNG_INFO_eXIf) != 0) {
    throw BeyondReader("it has an EXIF record");
  }
  for (const FileText& text : metadata.texts) {
    const bool isPlain = text.key.find(':') == std::string::npos || text.key == "oiio:ColorSpace" ||
                         text.key == "oiio:Gamma";
    if (!isPlain || text.key.starts_with("Raw profile") || !IsAscii(text.key + text.value)) {
      throw BeyondReader("it has a text of a kind of its own");
    }
  }
  if (!metadata.iccProfile.empty() && ProfileSpace(metadata.iccProfile) != SpaceFor(grey)) {
    throw BeyondReader("its ICC profile is not one for its channels");
  }
}

void SetPngMetadata(const FileMetadata& metadata, PngLibrary* library) {
  SetTexts(metadata.texts, library);
  SetDate(metadata.date, library);
  if (metadata.resolution) {
    SetResolution(*metadata.resolution, library);
  }
  SetColours(metadata.colours, library);
  if (!metadata.iccProfile.empty()) {
    library->Run([&] {
      png_set_iCCP(library->Png(), library->Info(), "ICC profile", PNG_COMPRESSION_TYPE_BASE,
                   metadata.iccProfile.data(),
                   static_cast<png_uint_32>(metadata.iccProfile.size()));
    });
  }
}

std::vector<NotCarried> LostInPng(const FileMetadata& metadata, bool grey) {
  const std::string why = "PNG has no place for it";
  std::vector<NotCarried> lost;
  if (metadata.tiff.orientation != 1) {
    lost.push_back(OneNotCarried("orientation", std::to_string(metadata.tiff.orientation), why));
  }
  if (metadata.tiff.exifColourSpace) {
    lost.push_back(OneNotCarried("attribute Exif:ColorSpace", "", why));
  }
  if (!metadata.tiff.iptc.empty()) {
    lost.push_back(OneNotCarried("IPTC record", "", why));
  }
  if (!metadata.iccProfile.empty() && ProfileSpace(metadata.iccProfile) != SpaceFor(grey)) {
    lost.push_back(OneNotCarried("ICC profile", "", "it is not one for the picture's channels"));
  }
  return lost;
}

}  // namespace glimmerhost
