// SPDX-License-Identifier: BSD-3-Clause
// What PNG and TIFF files say beside their samples, carried from one to the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/pictures/picture_file.h"
#include "tests/host/pictures/icc_profile.h"
#include "tests/host/pictures/odd_pictures.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::FileMetadata;
using glimmerhost::Picture;
using lx_test::Profile;
using lx_test::Read;
using lx_test::Sample;
using lx_test::ScratchFolder;
using lx_test::Write;

Picture Described() {
  FileMetadata metadata;
  metadata.format = "tiff";
  metadata.texts = {{"Description",
                     "\xC3\xBC"
                     "ber Licht"},
                    {"Author", "somebody"},
                    {"Copyright", "nobody"},
                    {"Software", "a program"},
                    {"Title", "a title"},
                    {glimmerhost::kXmpKey, "<x:xmpmeta/>"}};
  metadata.date = "2001:02:03 04:05:06";
  metadata.resolution = {72.0, 90.0, glimmerhost::DotsPer::kInch};
  metadata.iccProfile = Profile();
  metadata.tiff.orientation = 6;
  metadata.tiff.iptc = {0x1C, 2, 5, 0, 1, 'a'};
  Picture picture = Sample(5, 4);
  picture.metadata = std::make_shared<FileMetadata>(metadata);
  return picture;
}

std::string TextOf(const FileMetadata& metadata, const std::string& key) {
  for (const auto& text : metadata.texts) {
    if (text.key == key) {
      return text.value;
    }
  }
  return "none";
}

TEST(PngTiffMetadata, GoesAnyWayBetweenTheFormats) {
  const ScratchFolder folder;
  Write(folder / "a.tif", Described(), 8);
  Write(folder / "b.png", Read(folder / "a.tif"), 8);
  Write(folder / "c.png", Read(folder / "b.png"), 8);
  Write(folder / "d.tif", Read(folder / "c.png"), 8);
  for (const char* name : {"a.tif", "b.png", "c.png", "d.tif"}) {
    const Picture picture = Read(folder / name);
    const FileMetadata& metadata = *picture.metadata;
    EXPECT_EQ(
        "\xC3\xBC"
        "ber Licht",
        TextOf(metadata, "Description"))
        << name;
    EXPECT_EQ("somebody", TextOf(metadata, "Author")) << name;
    EXPECT_EQ("nobody", TextOf(metadata, "Copyright")) << name;
    EXPECT_EQ("a program", TextOf(metadata, "Software")) << name;
    EXPECT_EQ("a title", TextOf(metadata, "Title")) << name;
    EXPECT_EQ("<x:xmpmeta/>", TextOf(metadata, glimmerhost::kXmpKey)) << name;
    EXPECT_EQ("2001:02:03 04:05:06", metadata.date) << name;
    EXPECT_EQ(Profile(), metadata.iccProfile) << name;
    // 90 down for 72 across: pixels are wider than high. The nearest whole numbers of dots per
    // metre alone would make it 1181:945.
    EXPECT_EQ(5, picture.pixelAspect.first) << name;
    EXPECT_EQ(4, picture.pixelAspect.second) << name;
  }
}

TEST(PngTiffMetadata, WritesInPngAsUtf8WhatIsNotAscii) {
  const ScratchFolder folder;
  Write(folder / "a.png", Described(), 8);
  std::ifstream file(folder / "a.png", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  EXPECT_NE(std::string::npos, bytes.find("iTXtDescription"));
  EXPECT_NE(std::string::npos, bytes.find("tEXtAuthor"));
}

TEST(PngTiffMetadata, GoesFromTiffToTiffWhole) {
  const ScratchFolder folder;
  Write(folder / "a.tif", Described(), 8);
  Write(folder / "b.tif", Read(folder / "a.tif"), 8);
  const Picture picture = Read(folder / "b.tif");
  const FileMetadata& metadata = *picture.metadata;
  EXPECT_EQ(6, metadata.tiff.orientation);
  EXPECT_EQ((std::vector<std::uint8_t>{0x1C, 2, 5, 0, 1, 'a'}), metadata.tiff.iptc);
  EXPECT_FLOAT_EQ(72.0F, static_cast<float>(metadata.resolution->x));
  EXPECT_FLOAT_EQ(90.0F, static_cast<float>(metadata.resolution->y));
  EXPECT_EQ(glimmerhost::DotsPer::kInch, metadata.resolution->unit);
}

TEST(PngTiffMetadata, KeepsWhatOnlyPngHas) {
  const ScratchFolder folder;
  const std::array<std::int32_t, 8> chromaticities{31270, 32900, 64000, 33000,
                                                   30000, 60000, 15000, 6000};
  FileMetadata metadata;
  metadata.texts = {{"Comment", "a comment"}, {"Of our own", "a word"}};
  metadata.colours.gamma = 55556;
  metadata.colours.chromaticities = chromaticities;
  metadata.resolution = {3.0, 2.0, glimmerhost::DotsPer::kNothing};
  Picture picture = Sample(5, 4);
  picture.metadata = std::make_shared<FileMetadata>(metadata);
  Write(folder / "a.png", picture, 16);
  Write(folder / "b.png", Read(folder / "a.png"), 16);

  const Picture back = Read(folder / "b.png");

  EXPECT_EQ("a comment", TextOf(*back.metadata, "Comment"));
  EXPECT_EQ("a word", TextOf(*back.metadata, "Of our own"));
  EXPECT_EQ(55556, back.metadata->colours.gamma);
  EXPECT_EQ(chromaticities, back.metadata->colours.chromaticities);
  EXPECT_FALSE(back.metadata->colours.srgbIntent);
  EXPECT_EQ(2, back.pixelAspect.first);
  EXPECT_EQ(3, back.pixelAspect.second);
}

TEST(PngTiffMetadata, KeepsTheWordThatSamplesAreSrgb) {
  const ScratchFolder folder;
  FileMetadata metadata;
  metadata.colours.srgbIntent = 1;
  Picture picture = Sample(5, 4);
  picture.metadata = std::make_shared<FileMetadata>(metadata);
  Write(folder / "a.png", picture, 16);
  Write(folder / "b.png", Read(folder / "a.png"), 16);
  EXPECT_EQ(1, Read(folder / "b.png").metadata->colours.srgbIntent);
}

TEST(PngTiffMetadata, LeavesOutAProfileThatDoesNotSuitThePicture) {
  const ScratchFolder folder;
  Picture picture = Sample(5, 4, glimmerhost::Alpha::kNone, true);
  picture.metadata = Described().metadata;  // with a profile of colours
  Write(folder / "a.png", picture, 8);
  const Picture back = Read(folder / "a.png");
  EXPECT_TRUE(back.metadata->iccProfile.empty());
  EXPECT_EQ(picture.samples, back.samples);
}

// What a write says, a line each.
std::string Lost(const std::filesystem::path& file, const Picture& picture) {
  std::vector<glimmerhost::NotCarried> lost;
  glimmerhost::PictureOutput(file, true).Write(picture, 8, &lost);
  std::string lines;
  for (const glimmerhost::NotCarried& one : lost) {
    lines += one.line + "\n";
  }
  return lines;
}

TEST(PngTiffMetadata, NamesWhatTheOtherFormatHasNoPlaceFor) {
  const ScratchFolder folder;
  Picture picture = Described();
  EXPECT_EQ("", Lost(folder / "a.tif", picture));
  EXPECT_EQ(
      "orientation 6 is not carried: PNG has no place for it\n"
      "IPTC record is not carried: PNG has no place for it\n",
      Lost(folder / "a.png", picture));

  FileMetadata metadata;
  metadata.texts = {{"Of our own", "a word"}, {"Author", "somebody"}};
  picture.metadata = std::make_shared<FileMetadata>(metadata);
  EXPECT_EQ("attribute Of our own is not carried: TIFF has no place for it\n",
            Lost(folder / "b.tif", picture));
  metadata.colours.gamma = 55556;
  picture.metadata = std::make_shared<FileMetadata>(metadata);
  EXPECT_EQ("attributes Of our own, gamma are not carried: TIFF has no place for them\n",
            Lost(folder / "b.tif", picture));
  EXPECT_EQ("", Lost(folder / "b.png", picture));
}

TEST(PngTiffMetadata, CarriesAnExifColourSpaceToATiffAlone) {
  const ScratchFolder folder;
  Picture picture = Sample(5, 40);
  FileMetadata metadata;
  metadata.tiff.exifColourSpace = 65535;  // not calibrated
  picture.metadata = std::make_shared<FileMetadata>(metadata);

  EXPECT_EQ("", Lost(folder / "a.tif", picture));
  EXPECT_EQ("attribute Exif:ColorSpace is not carried: PNG has no place for it\n",
            Lost(folder / "a.png", picture));
  const Picture back = Read(folder / "a.tif");

  EXPECT_EQ(65535, back.metadata->tiff.exifColourSpace);
  EXPECT_EQ(picture.samples, back.samples);
}

TEST(PngTiffMetadata, NamesAProfileThatDoesNotSuitThePicture) {
  const ScratchFolder folder;
  Picture picture = Sample(5, 4, glimmerhost::Alpha::kNone, true);
  FileMetadata metadata;
  metadata.iccProfile = Profile();
  picture.metadata = std::make_shared<FileMetadata>(metadata);
  EXPECT_EQ("ICC profile is not carried: it is not one for the picture's channels\n",
            Lost(folder / "a.png", picture));
}

TEST(PngTiffMetadata, NamesFurtherChannelsAndPages) {
  const ScratchFolder folder;
  const auto left = [](const std::filesystem::path& file) {
    glimmerhost::ReadReport report;
    glimmerhost::ReadPicture(file, {}, &report);
    std::string lines;
    for (const glimmerhost::NotCarried& one : report.notCarried) {
      lines += one.line + "\n";
    }
    return lines;
  };
  lx_test::MakeTiff(folder / "a.tif", {.channels = 3});
  EXPECT_EQ("", left(folder / "a.tif"));
  lx_test::MakeTiff(folder / "a.tif", {.mode = "a"});
  EXPECT_EQ(
      "the parts of the file behind the first are not carried: the first alone is the picture\n",
      left(folder / "a.tif"));
  lx_test::MakeTiff(folder / "b.tif", {.channels = 5, .extraSamples = {2, 0}});
  EXPECT_EQ("a further channel is not carried: red, green, blue and alpha are\n",
            left(folder / "b.tif"));
}

TEST(PngTiffMetadata, TakesLatin1ForWhatIsNoUtf8) {
  EXPECT_EQ(
      "\xC3\xBC"
      "ber",
      glimmerhost::ToUtf8("\xFC"
                          "ber"));
  EXPECT_EQ(
      "\xC3\xBC"
      "ber",
      glimmerhost::ToUtf8("\xC3\xBC"
                          "ber"));
  EXPECT_EQ("\xE6\x97\xA5", glimmerhost::ToUtf8("\xE6\x97\xA5"));
  EXPECT_EQ("\xC3\xA6\xC2\x97", glimmerhost::ToUtf8("\xE6\x97"));  // cut within a letter
}

TEST(PngTiffMetadata, TakesDatesOfOneFormOnly) {
  EXPECT_TRUE(glimmerhost::IsFullDate("2001:02:03 04:05:06"));
  for (const char* date : {"", "2001:02:03", "2001-02-03 04:05:06", "2001:02:03 04:05:06 "}) {
    EXPECT_FALSE(glimmerhost::IsFullDate(date)) << date;
  }
}

}  // namespace
