// SPDX-License-Identifier: BSD-3-Clause
// PNG and TIFF files by the program's own readers and writers beside the plug-in's: wherever the
// own ones do not decline, nobody can tell which it was.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/colour_path.h"
#include "host/pictures/file_metadata.h"
#include "host/pictures/plugged_formats.h"
#include "host/pictures/png_tiff/png_tiff_formats.h"
#include "tests/host/pictures/icc_profile.h"
#include "tests/host/pictures/odd_pictures.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::FileMetadata;
using glimmerhost::NotCarried;
using glimmerhost::OutputFormat;
using glimmerhost::Picture;
using glimmerhost::ReadOptions;
using glimmerhost::ReadReport;
using lx_test::OddPng;
using lx_test::OddTiff;

ReadOptions KeptFor(const std::string& format) {
  ReadOptions options;
  options.keptFor = format;
  return options;
}

// None if the own reader declines.
std::optional<Picture> ReadOwn(const fs::path& file, const ReadOptions& options,
                               ReadReport* report) {
  try {
    return glimmerhost::ReadPngOrTiff(file, options, glimmerhost::Reader::kExact, report);
  } catch (const glimmerhost::BeyondReader&) {
    return std::nullopt;
  }
}

Picture ReadOther(const fs::path& file, const ReadOptions& options, ReadReport* report) {
  return glimmerhost::ReadPlugged(file, "of a test", options, report);
}

void ExpectSame(const Picture& own, const Picture& other, const std::string& what) {
  EXPECT_EQ(other.width, own.width) << what;
  EXPECT_EQ(other.height, own.height) << what;
  EXPECT_EQ(other.alpha, own.alpha) << what;
  EXPECT_EQ(other.grey, own.grey) << what;
  EXPECT_EQ(other.bits, own.bits) << what;
  EXPECT_EQ(other.pixelAspect.first, own.pixelAspect.first) << what;
  EXPECT_EQ(other.pixelAspect.second, own.pixelAspect.second) << what;
  EXPECT_EQ(other.range.Max(), own.range.Max()) << what;
  ASSERT_EQ(other.samples.size(), own.samples.size()) << what;
  for (std::size_t i = 0; i < own.samples.size(); ++i) {
    ASSERT_EQ(other.samples[i], own.samples[i]) << what << ", sample " << i;
  }
}

void ExpectSame(const ReadReport& own, const ReadReport& other, const std::string& what) {
  EXPECT_EQ(other.cut, own.cut) << what;
  EXPECT_EQ(other.infinite, own.infinite) << what;
  EXPECT_EQ(other.notNumbers, own.notNumbers) << what;
  EXPECT_EQ(other.lines, own.lines) << what;
  EXPECT_EQ(other.notCarried, own.notCarried) << what;
}

// What a file says, by its name. Left out is how samples are cut into strips, and what the plug-in
// says of colours without having been told: that they are sRGB, or a gamma, which is what readers
// take a file for that says nothing.
std::map<std::string, std::string> Said(const fs::path& file) {
  const auto input = OIIO::ImageInput::open(file.string());
  EXPECT_TRUE(input) << file << OIIO::geterror();
  std::map<std::string, std::string> said;
  for (const OIIO::ParamValue& attribute : input->spec().extra_attribs) {
    const std::string name = attribute.name().string();
    if (name != "tiff:RowsPerStrip" && name != "oiio:ColorSpace" && name != "oiio:Gamma" &&
        name != "Exif:ColorSpace") {
      said[name] = attribute.get_string();
    }
  }
  return said;
}

using Words = std::map<std::string, std::string>;

std::string Difference(const Words& other, const Words& own) {
  std::string difference;
  for (const auto& [name, value] : other) {
    const auto found = own.find(name);
    if (found == own.end() || found->second != value) {
      difference +=
          name + ": " + value + ", not " + (found == own.end() ? "there" : found->second) + "\n";
    }
  }
  for (const auto& [name, value] : own) {
    difference += other.contains(name) ? "" : name + ": " + value + " is new\n";
  }
  return difference;
}

class Squares final : public glimmerhost::ColourTransform {
 public:
  void Apply(std::vector<float>* colours) const override {
    for (float& value : *colours) {
      value *= value;
    }
  }
};

class BothReaders : public testing::Test {
 public:
  // Expects both to be the same in all ways, or the own one to decline.
  void Compare(const fs::path& file, const std::string& keptFor, bool declines,
               const std::string& what) {
    ReadReport ownReport;
    ReadReport otherReport;
    const ReadOptions options = KeptFor(keptFor);

    const std::optional<Picture> own = ReadOwn(file, options, &ownReport);

    EXPECT_EQ(declines, !own.has_value()) << what;
    for (const bool transformed : {false, true}) {
      CompareCompleted(file, transformed, what + (transformed ? ", transformed" : ", completed"));
    }
    if (own) {
      const Picture other = ReadOther(file, options, &otherReport);
      ExpectSame(*own, other, what);
      ExpectSame(ownReport, otherReport, what);
      // Of grey with alpha the plug-in's TIFF does not say that it has alpha, or which.
      if (keptFor == "tiff" && own->grey && own->alpha != Alpha::kNone) {
        return;
      }
      for (const int bits : {8, 16}) {
        CompareOutputs(*own, other, keptFor, bits, what + ", written with " + std::to_string(bits));
      }
    }
  }

  // Samples by the own reader, and what else there is by the plug-in.
  void CompareCompleted(const fs::path& file, bool transformed, const std::string& what) {
    ReadOptions options = KeptFor(glimmerhost::kAnyFormat);
    if (transformed) {
      const auto path = std::make_shared<glimmerhost::ColourPath>();
      path->in = std::make_shared<Squares>();
      options.colours = path;
    }
    ReadReport ownReport;
    ReadReport otherReport;
    std::string beyond;
    Picture own;
    try {
      own = glimmerhost::ReadPngOrTiff(file, options, glimmerhost::Reader::kExact, &ownReport,
                                       &beyond);
    } catch (const glimmerhost::BeyondReader&) {
      return;
    }
    glimmerhost::CompletePlugged(file, "of a test", options, &own, &ownReport);
    const Picture other = ReadOther(file, options, &otherReport);
    ExpectSame(own, other, what);
    ExpectSame(ownReport, otherReport, what);
    EXPECT_EQ(other.colours, own.colours) << what;
    EXPECT_FALSE(own.metadata) << what;
    const fs::path ownFile = folder / "own.exr";
    const fs::path otherFile = folder / "other.exr";
    const OutputFormat exr = *glimmerhost::FormatOf(ownFile);
    // Outputs are made new.
    fs::remove(ownFile);
    fs::remove(otherFile);
    glimmerhost::WritePlugged({ownFile, "a.exr"}, exr, own, 16, nullptr);
    glimmerhost::WritePlugged({otherFile, "a.exr"}, exr, other, 16, nullptr);
    EXPECT_EQ("", Difference(Said(otherFile), Said(ownFile))) << what;
  }

  void CompareOutputs(const Picture& own, const Picture& other, const std::string& format, int bits,
                      const std::string& what) {
    if (format.empty()) {
      return;
    }
    const std::string ending = format == "png" ? ".png" : ".tif";
    const fs::path ownFile = folder / ("own" + ending);
    const fs::path otherFile = folder / ("other" + ending);
    const OutputFormat form = *glimmerhost::PngOrTiffOf(ownFile);
    std::vector<NotCarried> ownLost;
    std::vector<NotCarried> otherLost;

    fs::remove(ownFile);
    fs::remove(otherFile);
    glimmerhost::WritePngOrTiff(ownFile, form, own, bits, &ownLost);
    glimmerhost::WritePlugged({otherFile, otherFile.filename().string()}, form, other, bits,
                              &otherLost);

    EXPECT_EQ(otherLost, ownLost) << what;
    EXPECT_EQ("", Difference(Said(otherFile), Said(ownFile))) << what;
    ReadReport report;
    const Picture back = ReadOther(ownFile, KeptFor(""), &report);
    ExpectSame(back, ReadOther(otherFile, KeptFor(""), &report), what + ", by the plug-in");
    for (const fs::path& file : {ownFile, otherFile}) {
      const std::optional<Picture> again = ReadOwn(file, KeptFor(""), &report);
      ASSERT_TRUE(again) << what;
      ExpectSame(*again, back, what + ", by the program");
    }
  }

  // A small picture by the own writer.
  fs::path Put(const std::string& name, const FileMetadata& metadata, bool grey = false) {
    Picture picture = lx_test::Sample(5, 4, Alpha::kNone, grey);
    picture.metadata = std::make_shared<FileMetadata>(metadata);
    fs::path file = folder / name;
    fs::remove(file);
    glimmerhost::WritePngOrTiff(file, *glimmerhost::PngOrTiffOf(file), picture, 16, nullptr);
    return file;
  }

  // And by OpenImageIO.
  fs::path Put(const std::string& name, const std::function<void(OIIO::ImageSpec*)>& describe) {
    fs::path file = folder / name;
    OIIO::ImageSpec spec(4, 3, 3, OIIO::TypeDesc::UINT16);
    describe(&spec);
    const auto output = OIIO::ImageOutput::create(file.string());
    EXPECT_TRUE(output->open(file.string(), spec)) << output->geterror();
    const std::vector<float> samples(36, 0.25F);
    EXPECT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, samples.data()));
    EXPECT_TRUE(output->close());
    return file;
  }

  lx_test::ScratchFolder folder;
};

TEST_F(BothReaders, TakePngsOfEveryKindForTheSame) {
  for (const int type : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_PALETTE,
                         PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB_ALPHA}) {
    for (const int bits : {1, 2, 4, 8, 16}) {
      const bool few = type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_PALETTE;
      if ((bits < 8 && !few) || (bits == 16 && type == PNG_COLOR_TYPE_PALETTE)) {
        continue;
      }
      for (const bool interlaced : {false, true}) {
        for (const int transparent : {-1, 1}) {
          if (transparent >= 0 && (type & PNG_COLOR_MASK_ALPHA) != 0) {
            continue;
          }
          OddPng kind;
          kind.colourType = type;
          kind.bits = bits;
          kind.interlaced = interlaced;
          kind.transparent = transparent;
          lx_test::MakePng(folder / "a.png", kind);
          Compare(folder / "a.png", "png", false,
                  "type " + std::to_string(type) + ", " + std::to_string(bits) + " bits" +
                      (interlaced ? ", interlaced" : "") + (transparent >= 0 ? ", clear" : ""));
        }
      }
    }
  }
}

TEST_F(BothReaders, TakeTiffsOfEveryLayoutForTheSame) {
  for (const int bits : {1, 2, 4, 8, 16, 32}) {
    for (const int tile : {0, 16}) {
      for (const bool apart : {false, true}) {
        for (const char* mode : {"wl", "wb", "w8"}) {
          for (const std::uint16_t compression :
               {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                COMPRESSION_PACKBITS}) {
            OddTiff kind;
            kind.bits = bits;
            kind.tile = tile;
            kind.apart = apart;
            kind.mode = mode;
            kind.compression = compression;
            lx_test::MakeTiff(folder / "a.tif", kind);
            Compare(folder / "a.tif", compression == COMPRESSION_NONE ? "tiff" : "",
                    bits < 8 || bits > 16,
                    std::to_string(bits) + " bits, tile " + std::to_string(tile) +
                        (apart ? ", apart, " : ", together, ") + mode + ", compression " +
                        std::to_string(compression));
          }
        }
      }
    }
  }
}

TEST_F(BothReaders, TakeGreyPalettesAndAlphaForTheSame) {
  struct Case {
    std::uint16_t photometric;
    int channels;
    int bits;
    std::vector<std::uint16_t> extra;
    bool declines;
  };
  const std::uint16_t grey = PHOTOMETRIC_MINISBLACK;
  const std::uint16_t white = PHOTOMETRIC_MINISWHITE;
  const std::uint16_t rgb = PHOTOMETRIC_RGB;
  const std::uint16_t clear = EXTRASAMPLE_UNASSALPHA;
  const std::uint16_t multiplied = EXTRASAMPLE_ASSOCALPHA;
  const std::uint16_t other = EXTRASAMPLE_UNSPECIFIED;
  const Case cases[] = {
      {grey, 1, 1, {}, true},
      {grey, 1, 2, {}, true},
      {grey, 1, 4, {}, true},
      {grey, 1, 8, {}, false},
      {grey, 1, 16, {}, false},
      {grey, 2, 8, {clear}, false},
      {grey, 2, 16, {clear}, false},
      {grey, 2, 16, {multiplied}, false},
      {grey, 2, 16, {other}, true},
      {grey, 2, 16, {}, true},
      {white, 1, 1, {}, true},
      {white, 1, 8, {}, false},
      {white, 1, 16, {}, true},
      {PHOTOMETRIC_PALETTE, 1, 1, {}, false},
      {PHOTOMETRIC_PALETTE, 1, 4, {}, false},
      {PHOTOMETRIC_PALETTE, 1, 8, {}, false},
      {rgb, 4, 8, {clear}, false},
      {rgb, 4, 8, {multiplied}, false},
      {rgb, 4, 16, {clear}, false},
      {rgb, 4, 16, {multiplied}, false},
      {rgb, 4, 16, {other}, true},
      {rgb, 4, 16, {}, true},
      {rgb, 5, 16, {clear, other}, true},
      {rgb, 5, 16, {other, clear}, true},
      {rgb, 3, 32, {}, true},
  };
  for (const Case& c : cases) {
    for (const bool apart : {false, true}) {
      OddTiff kind;
      kind.photometric = c.photometric;
      kind.channels = c.channels;
      kind.bits = c.bits;
      kind.extraSamples = c.extra;
      kind.apart = apart;
      lx_test::MakeTiff(folder / "a.tif", kind);
      Compare(folder / "a.tif", "tiff", c.declines,
              "case " + std::to_string(&c - cases) + (apart ? ", apart" : ""));
    }
  }
}

TEST_F(BothReaders, TakeFloatsForTheSame) {
  for (const int bits : {16, 32}) {
    for (const int channels : {1, 3}) {
      OddTiff kind;
      kind.bits = bits;
      kind.channels = channels;
      kind.photometric = channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
      kind.sampleFormat = SAMPLEFORMAT_IEEEFP;
      if (bits == 16) {
        // All halves that are numbers, infinite ones and some that are none.
        kind.width = 256;
        kind.height = 256;
        kind.sample = [](int x, int y, int c) {
          return static_cast<std::uint32_t>((y * 256 + x + c) & 0xFFFF);
        };
      } else {
        // From far below 0 to far above 1 by a factor each.
        kind.sample = [](int x, int y, int c) {
          return static_cast<std::uint32_t>(x * 11 + y + c) * 0x01234567U;
        };
      }
      lx_test::MakeTiff(folder / "a.tif", kind);
      for (const char* range : {"clip", "scale:4", "log:16"}) {
        ReadOptions options;
        options.keptFor = "tiff";
        options.range = glimmerhost::RangeMapping::Parse(range);
        ReadReport ownReport;
        ReadReport otherReport;
        const std::optional<Picture> own = ReadOwn(folder / "a.tif", options, &ownReport);
        ASSERT_TRUE(own) << bits;
        ExpectSame(*own, ReadOther(folder / "a.tif", options, &otherReport),
                   std::to_string(bits) + range);
        ExpectSame(ownReport, otherReport, std::to_string(bits) + range);
      }
    }
  }
}

TEST_F(BothReaders, CarryTextsDatesAndResolutionsAlike) {
  FileMetadata metadata;
  metadata.format = "png";
  metadata.texts = {{"Description", "a garden"},
                    {"Author", "somebody"},
                    {"Copyright", "nobody"},
                    {"Software", "a program"},
                    {"Title", "a title"}};
  metadata.date = "2001:02:03 04:05:06";
  metadata.resolution = {30.0, 60.0, glimmerhost::DotsPer::kCentimetre};
  metadata.iccProfile = lx_test::Profile();
  Compare(Put("a.png", metadata), "png", false, "PNG");
  metadata.format = "tiff";
  metadata.texts.push_back({"Host Computer", "a machine"});
  metadata.texts.push_back({"Make", "a maker"});
  metadata.texts.push_back({"Model", "a model"});
  metadata.tiff.compression = COMPRESSION_LZW;
  metadata.tiff.orientation = 6;
  Compare(Put("a.tif", metadata), "tiff", false, "TIFF");
  metadata.resolution = {72.0, 76.8, glimmerhost::DotsPer::kInch};
  Compare(Put("a.tif", metadata), "tiff", false, "TIFF in inches");
  metadata.resolution = {16.0, 15.0, glimmerhost::DotsPer::kNothing};
  Compare(Put("a.tif", metadata), "tiff", false, "TIFF in no unit");
}

TEST_F(BothReaders, CarryTheColourSpaceOfAnExifDirectoryThatHasNothingElse) {
  const auto describe = [](OIIO::ImageSpec* spec) { spec->attribute("Exif:ColorSpace", 1); };
  const fs::path file = Put("a.tif", describe);
  Compare(file, "tiff", false, "TIFF to TIFF");
  Compare(file, "png", true, "TIFF to PNG");
  ReadReport report;
  const std::optional<Picture> picture = ReadOwn(file, KeptFor("tiff"), &report);
  ASSERT_TRUE(picture);
  const fs::path out = folder / "out.tif";

  fs::remove(out);
  glimmerhost::WritePngOrTiff(out, *glimmerhost::PngOrTiffOf(out), *picture, 16, nullptr);

  for (const fs::path& one : {file, out}) {
    const auto input = OIIO::ImageInput::open(one.string());
    EXPECT_EQ(1, input->spec().get_int_attribute("Exif:ColorSpace")) << one;
  }
}

TEST_F(BothReaders, GoFromPngToTiffAndBackOnlyWithNothingToSay) {
  FileMetadata none;
  Compare(Put("a.png", none), "tiff", false, "PNG to TIFF");
  Compare(Put("a.tif", none), "png", false, "TIFF to PNG");
  FileMetadata some;
  some.texts = {{"Description", "a garden"}};
  Compare(Put("a.png", some), "tiff", true, "PNG to TIFF");
  Compare(Put("a.tif", some), "png", true, "TIFF to PNG");
  Compare(Put("a.tif", some), "", false, "samples alone");
  FileMetadata turned;
  turned.tiff.orientation = 3;
  Compare(Put("a.tif", turned), "png", true, "turned");
  FileMetadata gamma;
  gamma.colours.gamma = 45455;
  Compare(Put("a.png", gamma), "tiff", true, "gamma");
}

TEST_F(BothReaders, LeaveWhatTheOwnOneKnowsLessOfToThePlugIn) {
  const auto said = [](const char* name, const std::string& value) {
    return [name, value](OIIO::ImageSpec* spec) { spec->attribute(name, value); };
  };
  Compare(Put("exif.tif", said("Exif:LensModel", "a lens")), "tiff", true, "EXIF in TIFF");
  Compare(Put("latin.tif", said("Artist", "\xE9")), "tiff", true, "Latin-1");
  Compare(Put("utf8.png", said("Artist", "\xC3\xA9")), "png", true, "letters beyond ASCII");
  Compare(Put("hash.tif", said("ImageDescription", "a garden oiio:SHA-1=0123")), "tiff", true,
          "the library's own words");
  Compare(Put("page.tif",
              [](OIIO::ImageSpec* spec) {
                const int page[] = {1, 2};
                spec->attribute("tiff:pagenumber", page[0]);
                spec->full_width = 99;
              }),
          "tiff", true, "a larger frame");
  Compare(
      Put("double.tif", [](OIIO::ImageSpec* spec) { spec->set_format(OIIO::TypeDesc::DOUBLE); }),
      "", true, "floats of 64 bits");
  FileMetadata xmp;
  xmp.texts = {{glimmerhost::kXmpKey, "<x/>"}};
  Compare(Put("xmp.png", xmp), "png", true, "XMP in PNG");
  Compare(Put("xmp.tif", xmp), "tiff", true, "XMP in TIFF");
  FileMetadata iptc;
  iptc.tiff.iptc = {0x1C, 2, 90, 0, 1, 'x', 0, 0};
  Compare(Put("iptc.tif", iptc), "tiff", true, "IPTC");
  FileMetadata profile;
  profile.iccProfile = lx_test::Profile();
  Compare(Put("grey.tif", profile, true), "png", true, "a profile of other channels");
}

TEST_F(BothReaders, KeepTheGammaOfAPng) {
  FileMetadata metadata;
  metadata.colours.gamma = 55556;  // 1 / 1.8
  const fs::path file = Put("a.png", metadata);
  ReadReport report;
  const std::optional<Picture> picture = ReadOwn(file, KeptFor("png"), &report);
  ASSERT_TRUE(picture);
  const fs::path out = folder / "out.png";

  fs::remove(out);
  glimmerhost::WritePngOrTiff(out, *glimmerhost::PngOrTiffOf(out), *picture, 16, nullptr);

  for (const fs::path& one : {file, out}) {
    const auto input = OIIO::ImageInput::open(one.string());
    EXPECT_NEAR(1.8, input->spec().get_float_attribute("oiio:Gamma"), 1e-4) << one;
  }
}

}  // namespace
