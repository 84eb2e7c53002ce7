// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/coding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/pictures/picture_formats.h"
#include "host/support/failure.h"

namespace {

using glimmerhost::Coding;
using glimmerhost::OutputFormat;
using glimmerhost::SettleCoding;
using glimmerhost::UsageError;
using Lines = std::vector<std::string>;

Coding CodingOf(const std::string& bits, const std::string& compression = "", int quality = 0) {
  Coding coding;
  glimmerhost::ParseBits(bits, &coding);
  coding.compression = compression;
  coding.quality = quality;
  return coding;
}

std::string Refusal(const std::string& format, Coding coding) {
  OutputFormat output;
  output.name = format;
  try {
    SettleCoding(output, &coding);
  } catch (const UsageError& fault) {
    return fault.what();
  }
  return "";
}

Lines Settled(const std::string& format, Coding* coding) {
  OutputFormat output;
  output.name = format;
  return SettleCoding(output, coding);
}

TEST(Coding, HalvesAndFloatsAreDepthsOfTheirOwn) {
  EXPECT_EQ(16, CodingOf("half").bits);
  EXPECT_TRUE(CodingOf("half").floats);
  EXPECT_EQ(32, CodingOf("float").bits);
  EXPECT_TRUE(CodingOf("float").floats);
  EXPECT_EQ(12, CodingOf("12").bits);
  EXPECT_FALSE(CodingOf("12").floats);
  EXPECT_EQ(Coding(), CodingOf(""));
  EXPECT_THROW(CodingOf("9"), UsageError);
}

TEST(Coding, IsLeftAsItIsWhereTheFormatHasIt) {
  const struct {
    const char* format;
    Coding coding;
  } cases[] = {
      {"png", CodingOf("8", "small")},
      {"tiff", CodingOf("float", "packbits")},
      {"openexr", CodingOf("half", "b44a")},
      {"openexr", CodingOf("float", "dwab", 200)},
      {"dpx", CodingOf("10")},
      {"dpx", CodingOf("12")},
      {"jpeg", CodingOf("8", "", 100)},
      {"openexr", CodingOf("")},
      {"of no table", CodingOf("16", "", 0)},
  };
  for (const auto& [format, coding] : cases) {
    Coding settled = coding;
    EXPECT_EQ(Lines(), Settled(format, &settled)) << format;
    EXPECT_EQ(coding, settled) << format;
  }
}

TEST(Coding, OfSixteenBitsIsHalfWhereThereAreFloatsAlone) {
  Coding coding = CodingOf("16");

  EXPECT_EQ(Lines(), Settled("openexr", &coding));

  EXPECT_EQ(CodingOf("half"), coding);
}

TEST(Coding, NamesInOneLineEachWhatHasNoEffectAndDropsIt) {
  const struct {
    const char* format;
    Coding coding;
    const char* line;
  } cases[] = {
      {"jpeg", CodingOf("16"), "--bits 16 has no effect: JPEG has 8"},
      {"openexr", CodingOf("8"), "--bits 8 has no effect: OpenEXR has half or float"},
      {"hdr", CodingOf("16"), "--bits 16 has no effect: HDR has one kind of samples"},
      {"dpx", CodingOf("", "zip"),
       "--compression zip has no effect: DPX has no choice of compressions"},
      {"png", CodingOf("", "", 90), "--quality 90 has no effect: PNG has no choice of qualities"},
      {"openexr", CodingOf("", "piz", 45),
       "--quality 45 has no effect: OpenEXR has one with --compression dwaa or dwab"},
  };
  for (const auto& [format, coding, line] : cases) {
    Coding settled = coding;
    EXPECT_EQ(Lines{line}, Settled(format, &settled));
    EXPECT_EQ(0, settled.bits) << line;
    EXPECT_EQ(0, settled.quality) << line;
    EXPECT_EQ(std::string(format) == "openexr" ? coding.compression : "", settled.compression);
  }
}

TEST(Coding, ThatAFormatLacksIsRefusedWithAListOfWhatItHas) {
  EXPECT_EQ("--bits must be 8 or 16 for PNG, not 12", Refusal("png", CodingOf("12")));
  EXPECT_EQ("--bits must be 8, 16 or float for TIFF, not half", Refusal("tiff", CodingOf("half")));
  EXPECT_EQ("--bits must be 8, 10, 12 or 16 for DPX, not float", Refusal("dpx", CodingOf("float")));
  EXPECT_EQ("--bits must be left out for HDR, not float", Refusal("hdr", CodingOf("float")));
  EXPECT_EQ(
      "--compression must be none, rle, zips, zip, piz, pxr24, b44, b44a, dwaa or dwab for "
      "OpenEXR, not lzw",
      Refusal("openexr", CodingOf("", "lzw")));
  EXPECT_EQ("--compression must be none, lzw, zip or packbits for TIFF, not piz",
            Refusal("tiff", CodingOf("", "piz")));
  EXPECT_EQ("--quality must be a whole number from 1 to 100 for JPEG, not 101",
            Refusal("jpeg", CodingOf("", "", 101)));
}

TEST(Coding, TakesDeflateForTheZipOfATiff) {
  Coding coding = CodingOf("", "deflate");

  EXPECT_EQ(Lines(), Settled("tiff", &coding));

  EXPECT_EQ("zip", coding.compression);
}

TEST(Coding, HasAWholeQualityFrom1On) {
  EXPECT_EQ(1, glimmerhost::ParseQuality("1"));
  EXPECT_EQ(1000, glimmerhost::ParseQuality("1000"));
  for (const char* text : {"0", "-1", "1001", "9.5", "best", ""}) {
    EXPECT_THROW(glimmerhost::ParseQuality(text), UsageError) << text;
  }
}

TEST(Coding, OnlySmallFilesAndStoredOnesAreDeflatedOtherwiseThanFast) {
  EXPECT_EQ(1, glimmerhost::DeflateLevel(CodingOf("", "")));
  EXPECT_EQ(1, glimmerhost::DeflateLevel(CodingOf("", "zip")));
  EXPECT_EQ(1, glimmerhost::DeflateLevel(CodingOf("", "fast")));
  EXPECT_EQ(0, glimmerhost::DeflateLevel(CodingOf("", "none")));
  EXPECT_EQ(9, glimmerhost::DeflateLevel(CodingOf("", "small")));
}

}  // namespace
