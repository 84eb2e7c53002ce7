// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_metadata.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/beyond_reader.h"
#include "host/pictures/png_tiff/tiff_tags.h"

namespace glimmerhost {
namespace {

struct TextTag {
  std::uint32_t tag;
  const char* key;
};

constexpr TextTag kTextTags[] = {
    {TIFFTAG_IMAGEDESCRIPTION, "Description"},
    {TIFFTAG_ARTIST, "Author"},
    {TIFFTAG_COPYRIGHT, "Copyright"},
    {TIFFTAG_SOFTWARE, "Software"},
    {TIFFTAG_DOCUMENTNAME, "Title"},
    {TIFFTAG_PAGENAME, "Page Name"},
    {TIFFTAG_MAKE, "Make"},
    {TIFFTAG_MODEL, "Model"},
    {TIFFTAG_HOSTCOMPUTER, "Host Computer"},
};

// Null for a text that no tag means.
const TextTag* FindTextTag(const std::string& key) {
  const auto* const found = std::find_if(std::begin(kTextTags), std::end(kTextTags),
                                         [&key](const TextTag& tag) { return tag.key == key; });
  return found == std::end(kTextTags) ? nullptr : found;
}

std::string Text(TIFF* tiff, std::uint32_t tag) {
  const char* text = nullptr;
  if (TIFFGetField(tiff, tag, &text) == 0) {
    return {};
  }
  // It is there, and there was no memory for it.
  if (text == nullptr) {
    throw std::bad_alloc();
  }
  return text;
}

std::vector<std::uint8_t> Block(TIFF* tiff, std::uint32_t tag) {
  std::uint32_t size = 0;
  const std::uint8_t* bytes = nullptr;
  if (TIFFGetField(tiff, tag, &size, &bytes) == 0 || size == 0) {
    return {};
  }
  if (bytes == nullptr) {
    throw std::bad_alloc();
  }
  return {bytes, bytes + size};
}

void SetBlock(TIFF* tiff, std::uint32_t tag, std::size_t size, const void* bytes) {
  if (size > 0) {
    SetBlockTag(tiff, tag, size, bytes);
  }
}

std::optional<Resolution> ReadResolution(TIFF* tiff) {
  float x = 0.0F;
  float y = 0.0F;
  if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) == 0 ||
      TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y) == 0) {
    return std::nullopt;
  }
  std::uint16_t unit = 0;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  return Resolution{x, y,
                    unit == RESUNIT_INCH         ? DotsPer::kInch
                    : unit == RESUNIT_CENTIMETER ? DotsPer::kCentimetre
                                                 : DotsPer::kNothing};
}

void SetResolution(const Resolution& resolution, TIFF* tiff) {
  TIFFSetField(tiff, TIFFTAG_XRESOLUTION, resolution.x);
  TIFFSetField(tiff, TIFFTAG_YRESOLUTION, resolution.y);
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT,
               resolution.unit == DotsPer::kInch         ? RESUNIT_INCH
               : resolution.unit == DotsPer::kCentimetre ? RESUNIT_CENTIMETER
                                                         : RESUNIT_NONE);
}

// What says how samples are stored, and what is carried as it stands. Of every other tag the
// plug-in may know something.
constexpr std::uint16_t kKnownTags[] = {
    TIFFTAG_SUBFILETYPE,  TIFFTAG_IMAGEWIDTH,      TIFFTAG_IMAGELENGTH,    TIFFTAG_BITSPERSAMPLE,
    TIFFTAG_COMPRESSION,  TIFFTAG_PHOTOMETRIC,     TIFFTAG_FILLORDER,      TIFFTAG_STRIPOFFSETS,
    TIFFTAG_ORIENTATION,  TIFFTAG_SAMPLESPERPIXEL, TIFFTAG_ROWSPERSTRIP,   TIFFTAG_STRIPBYTECOUNTS,
    TIFFTAG_XRESOLUTION,  TIFFTAG_YRESOLUTION,     TIFFTAG_PLANARCONFIG,   TIFFTAG_RESOLUTIONUNIT,
    TIFFTAG_DATETIME,     TIFFTAG_PREDICTOR,       TIFFTAG_COLORMAP,       TIFFTAG_TILEWIDTH,
    TIFFTAG_TILELENGTH,   TIFFTAG_TILEOFFSETS,     TIFFTAG_TILEBYTECOUNTS, TIFFTAG_EXTRASAMPLES,
    TIFFTAG_SAMPLEFORMAT, TIFFTAG_ICCPROFILE};

bool IsKnown(std::uint16_t tag) {
  const auto means = [tag](const TextTag& known) { return known.tag == tag; };
  return std::find(std::begin(kKnownTags), std::end(kKnownTags), tag) != std::end(kKnownTags) ||
         std::any_of(std::begin(kTextTags), std::end(kTextTags), means);
}

bool Has(const std::vector<TiffEntry>& directory, std::uint16_t tag) {
  return std::any_of(directory.begin(), directory.end(),
                     [tag](const TiffEntry& entry) { return entry.tag == tag; });
}

}  // namespace

std::optional<std::uint16_t> LoneColourSpace(const std::vector<TiffEntry>& exif) {
  if (exif.size() != 1 || exif[0].tag != EXIFTAG_COLORSPACE || exif[0].type != TIFF_SHORT ||
      exif[0].count != 1) {
    return std::nullopt;
  }
  return static_cast<std::uint16_t>(exif[0].value);
}

std::uint64_t WriteTiffExif(const FileMetadata& metadata, TIFF* tiff) {
  std::uint64_t place = 0;
  if (metadata.tiff.exifColourSpace) {
    const bool isMade = TIFFCreateEXIFDirectory(tiff) == 0;
    SetTag(tiff, EXIFTAG_COLORSPACE, *metadata.tiff.exifColourSpace);
    if (!isMade || TIFFWriteCustomDirectory(tiff, &place) == 0) {
      throw TagRefused();
    }
    TIFFFreeDirectory(tiff);
    TIFFCreateDirectory(tiff);
  }
  return place;
}

void CheckTiffMetadata(const FileMetadata& metadata, const std::vector<TiffEntry>& directory,
                       const std::string& keptFor) {
  for (const TiffEntry& entry : directory) {
    if (!IsKnown(entry.tag) && (entry.tag != TIFFTAG_EXIFIFD || !metadata.tiff.exifColourSpace)) {
      throw BeyondReader("it has a tag " + std::to_string(entry.tag));
    }
  }
  if (keptFor != metadata.format && !SaysNothing(metadata)) {
    throw BeyondReader("what it says of itself is for a PNG file");
  }
  for (const FileText& text : metadata.texts) {
    // Words of OpenImageIO's own, which it takes out of a description.
    if (!IsAscii(text.value) || text.value.find("oiio:") != std::string::npos) {
      throw BeyondReader("it has a text of a kind of its own");
    }
  }
  if (!metadata.date.empty() && !IsFullDate(metadata.date)) {
    throw BeyondReader("its date is of a kind of its own");
  }
  if (Has(directory, TIFFTAG_XRESOLUTION) != Has(directory, TIFFTAG_YRESOLUTION)) {
    throw BeyondReader("it has a resolution in one direction alone");
  }
}

FileMetadata ReadTiffMetadata(TIFF* tiff) {
  FileMetadata metadata;
  metadata.format = "tiff";
  for (const TextTag& known : kTextTags) {
    if (const std::string text = Text(tiff, known.tag); !text.empty()) {
      metadata.texts.push_back({known.key, ToUtf8(text)});
    }
  }
  if (const std::vector<std::uint8_t> xmp = Block(tiff, TIFFTAG_XMLPACKET); !xmp.empty()) {
    // As text it ends where a zero is.
    metadata.texts.push_back({kXmpKey, {xmp.begin(), std::find(xmp.begin(), xmp.end(), 0)}});
  }
  metadata.date = Text(tiff, TIFFTAG_DATETIME);
  metadata.resolution = ReadResolution(tiff);
  metadata.iccProfile = Block(tiff, TIFFTAG_ICCPROFILE);
  metadata.tiff.iptc = Block(tiff, TIFFTAG_RICHTIFFIPTC);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &metadata.tiff.compression);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &metadata.tiff.orientation);
  return metadata;
}

void SetTiffMetadata(const FileMetadata& metadata, TIFF* tiff) {
  for (const FileText& text : metadata.texts) {
    if (const TextTag* const known = FindTextTag(text.key); known != nullptr) {
      SetTextTag(tiff, known->tag, text.value);
    } else if (text.key == kXmpKey) {
      SetBlock(tiff, TIFFTAG_XMLPACKET, text.value.size(), text.value.data());
    }
  }
  if (IsFullDate(metadata.date)) {
    SetTextTag(tiff, TIFFTAG_DATETIME, metadata.date);
  }
  if (metadata.resolution) {
    SetResolution(*metadata.resolution, tiff);
  }
  SetBlock(tiff, TIFFTAG_ICCPROFILE, metadata.iccProfile.size(), metadata.iccProfile.data());
  SetBlock(tiff, TIFFTAG_RICHTIFFIPTC, metadata.tiff.iptc.size(), metadata.tiff.iptc.data());
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, metadata.tiff.orientation);
}

std::vector<NotCarried> LostInTiff(const FileMetadata& metadata) {
  std::vector<std::string> names;
  for (const FileText& text : metadata.texts) {
    if (text.key != kXmpKey && FindTextTag(text.key) == nullptr) {
      names.push_back(text.key);
    }
  }
  const std::pair<bool, const char*> colours[] = {
      {metadata.colours.gamma.has_value(), "gamma"},
      {metadata.colours.chromaticities.has_value(), "chromaticities"},
      {metadata.colours.srgbIntent.has_value(), "sRGB intent"}};
  for (const auto& [there, name] : colours) {
    if (there) {
      names.emplace_back(name);
    }
  }
  if (names.empty()) {
    return {};
  }
  return {names.size() == 1
              ? OneNotCarried("attribute " + names[0], "", "TIFF has no place for it")
              : SomeNotCarried("attributes " + ListNames(names), "TIFF has no place for them")};
}

}  // namespace glimmerhost
