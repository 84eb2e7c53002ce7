// SPDX-License-Identifier: BSD-3-Clause
// What travels with a picture from one file to the next, and what is said of the rest.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/pictures/picture_file.h"
#include "tests/host/pictures/icc_profile.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::NotCarried;
using glimmerhost::Picture;
using glimmerhost::PictureOutput;
using glimmerhost::ReadReport;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

constexpr int kWidth = 4;
constexpr int kHeight = 3;

using Describe = std::function<void(ImageSpec*)>;

class CarriedMetadata : public testing::Test {
 public:
  // A file of 4 x 3 grey pixels by OpenImageIO itself.
  fs::path Put(const std::string& name, TypeDesc type, const Describe& describe, int channels = 3) {
    fs::path file = folder / name;
    ImageSpec spec(kWidth, kHeight, channels, type);
    describe(&spec);
    const auto output = OIIO::ImageOutput::create(file.string());
    EXPECT_TRUE(output->open(file.string(), spec)) << output->geterror();
    const std::vector<float> samples(static_cast<std::size_t>(kWidth * kHeight * channels), 0.25F);
    EXPECT_TRUE(output->write_image(TypeDesc::FLOAT, samples.data()));
    EXPECT_TRUE(output->close());
    return file;
  }

  // The file as it is after a way through this program, as OpenImageIO sees it.
  ImageSpec Pass(const fs::path& from, const std::string& to) {
    lost.clear();
    ReadReport report;
    const Picture picture = glimmerhost::ReadPicture(from, {}, &report);
    PictureOutput(folder / to, true).Write(picture, picture.bits, &lost);
    left = report.notCarried;
    return Spec(folder / to);
  }

  static ImageSpec Spec(const fs::path& file) {
    const auto input = OIIO::ImageInput::open(file.string());
    EXPECT_TRUE(input) << OIIO::geterror();
    return input ? input->spec() : ImageSpec();
  }

  std::string Lost() const {
    std::string text;
    for (const NotCarried& one : lost) {
      text += one.line + "\n";
    }
    return text;
  }

  lx_test::ScratchFolder folder;
  std::vector<NotCarried> lost;
  std::vector<NotCarried> left;
};

constexpr int kTimecode[] = {0x01020304, 0};  // as film and television write it: 01:02:03:04
constexpr int kKeycode[] = {1, 2, 3, 4, 5, 4, 64};
constexpr int kFilmRate[] = {24000, 1001};

void DescribeShot(ImageSpec* spec) {
  spec->attribute("smpte:TimeCode", OIIO::TypeTimeCode, kTimecode);
  spec->attribute("smpte:KeyCode", OIIO::TypeKeyCode, kKeycode);
  spec->attribute("PixelAspectRatio", 2.0F);
  spec->attribute("ImageDescription", "a garden");
}

void DescribeExr(ImageSpec* spec) {
  DescribeShot(spec);
  spec->attribute("FramesPerSecond", OIIO::TypeRational, kFilmRate);
  const float colours[] = {0.64F, 0.33F, 0.3F, 0.6F, 0.15F, 0.06F, 0.3127F, 0.329F};
  spec->attribute("chromaticities", TypeDesc(TypeDesc::FLOAT, 8), colours);
  spec->attribute("show", "a film");
  spec->attribute("take", 7);
  spec->attribute("lens", 35.5F);
  const float place[] = {1.0F, 2.0F, 3.0F};
  spec->attribute("cameraPos", OIIO::TypeVector, place);
  const float matrix[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
  spec->attribute("worldToCamera", OIIO::TypeMatrix, matrix);
  spec->attribute("compression", "piz");
}

void SetWindows(ImageSpec* spec, int x, int y, const OIIO::ROI& display) {
  spec->x = x;
  spec->y = y;
  spec->set_roi_full(display);
}

void ExpectWindows(const ImageSpec& spec, int x, int y, const OIIO::ROI& display) {
  EXPECT_EQ(x, spec.x);
  EXPECT_EQ(y, spec.y);
  EXPECT_EQ(kWidth, spec.width);
  EXPECT_EQ(kHeight, spec.height);
  EXPECT_EQ(display.xbegin, spec.full_x);
  EXPECT_EQ(display.ybegin, spec.full_y);
  EXPECT_EQ(display.width(), spec.full_width);
  EXPECT_EQ(display.height(), spec.full_height);
}

void ExpectSame(const ImageSpec& a, const ImageSpec& b, const char* name) {
  const OIIO::ParamValue* const before = a.find_attribute(name);
  const OIIO::ParamValue* const after = b.find_attribute(name);
  ASSERT_NE(nullptr, before) << name;
  ASSERT_NE(nullptr, after) << name;
  EXPECT_EQ(before->type(), after->type()) << name;
  EXPECT_EQ(before->get_string(), after->get_string()) << name;
}

TEST_F(CarriedMetadata, OfAnExrIsInTheNextExr) {
  const fs::path file = Put("in.exr", TypeDesc::HALF, DescribeExr);

  const ImageSpec out = Pass(file, "out.exr");

  const ImageSpec in = Spec(file);
  for (const char* name : {"smpte:TimeCode", "smpte:KeyCode", "PixelAspectRatio",
                           "ImageDescription", "FramesPerSecond", "chromaticities", "show", "take",
                           "lens", "cameraPos", "worldToCamera", "compression"}) {
    ExpectSame(in, out, name);
  }
  EXPECT_EQ("piz", out.get_string_attribute("compression"));
  EXPECT_EQ("", Lost());
}

TEST_F(CarriedMetadata, KeepsOverscanAndCropOfAnExr) {
  const OIIO::ROI inner(0, 2, 0, 2);
  const OIIO::ROI outer(-10, 30, -20, 20);
  const fs::path overscan =
      Put("a.exr", TypeDesc::HALF, [&](ImageSpec* spec) { SetWindows(spec, -1, -1, inner); });
  const fs::path crop =
      Put("b.exr", TypeDesc::HALF, [&](ImageSpec* spec) { SetWindows(spec, 7, -5, outer); });

  ExpectWindows(Pass(overscan, "a_out.exr"), -1, -1, inner);
  ExpectWindows(Pass(crop, "b_out.exr"), 7, -5, outer);
}

TEST_F(CarriedMetadata, KeepsWindowsInADpxWhereItsOriginIs0) {
  const OIIO::ROI display(0, 20, 0, 10);
  const fs::path file =
      Put("a.exr", TypeDesc::HALF, [&](ImageSpec* spec) { SetWindows(spec, 2, 1, display); });

  ExpectWindows(Pass(file, "a.dpx"), 2, 1, display);
  EXPECT_EQ("", Lost());
  std::string warning;
  for (const std::uint16_t sample : glimmerhost::ReadPicture(folder / "a.dpx", &warning).samples) {
    EXPECT_TRUE(sample == 16384 || sample == 65535) << sample;
  }
  ExpectWindows(Pass(folder / "a.dpx", "b.exr"), 2, 1, display);
}

TEST_F(CarriedMetadata, NamesWindowsThatAFormatCannotHold) {
  const OIIO::ROI display(0, 2, 0, 2);
  const fs::path file =
      Put("a.exr", TypeDesc::HALF, [&](ImageSpec* spec) { SetWindows(spec, -1, -1, display); });
  for (const auto& [name, label] : {std::pair{"a.png", "PNG"}, std::pair{"a.tif", "TIFF"},
                                    std::pair{"a.dpx", "DPX"}, std::pair{"a.jpg", "JPEG"}}) {
    ExpectWindows(Pass(file, name), 0, 0, OIIO::ROI(0, kWidth, 0, kHeight));
    EXPECT_EQ("the display window 2 x 2 at 0,0 is not carried: " + std::string(label) +
                  " has no place for it; the output is the data window, 4 x 3 at -1,-1\n",
              Lost());
  }
}

TEST_F(CarriedMetadata, GoesFromExrToDpxAndBack) {
  const fs::path file = Put("in.exr", TypeDesc::HALF, DescribeExr);

  const ImageSpec dpx = Pass(file, "out.dpx");

  EXPECT_EQ("01:02:03:04", dpx.get_string_attribute("dpx:TimeCode"));
  ExpectSame(Spec(file), dpx, "smpte:KeyCode");
  EXPECT_NEAR(23.976F, dpx.get_float_attribute("dpx:FrameRate"), 0.001F);
  EXPECT_NEAR(23.976F, dpx.get_float_attribute("dpx:TemporalFrameRate"), 0.001F);
  EXPECT_EQ(2.0F, dpx.get_float_attribute("PixelAspectRatio"));
  EXPECT_EQ(
      "attributes cameraPos, chromaticities, lens, show, take, worldToCamera are not carried: "
      "DPX has no place for them\n",
      Lost());

  const ImageSpec back = Pass(folder / "out.dpx", "back.exr");
  for (const char* name : {"smpte:TimeCode", "smpte:KeyCode", "FramesPerSecond", "PixelAspectRatio",
                           "ImageDescription"}) {
    ExpectSame(Spec(file), back, name);
  }
  EXPECT_EQ("", Lost());
}

TEST_F(CarriedMetadata, GoesFromDpxToExrAndBack) {
  const fs::path file = Put("in.dpx", TypeDesc::UINT16, [](ImageSpec* spec) {
    DescribeShot(spec);
    spec->attribute("dpx:FrameRate", 25.0F);
    spec->attribute("dpx:SlateInfo", "slate 12");
    spec->attribute("dpx:FrameId", "id 5");
    spec->attribute("dpx:FramePosition", 17);
    spec->attribute("dpx:Transfer", "Logarithmic");
  });

  const ImageSpec exr = Pass(file, "out.exr");

  const OIIO::ParamValue* const rate = exr.find_attribute("FramesPerSecond");
  ASSERT_NE(nullptr, rate);
  EXPECT_EQ("25/1", rate->get_string());
  EXPECT_EQ("01:02:03:04", exr.find_attribute("smpte:TimeCode")->get_string());
  EXPECT_EQ("slate 12", exr.get_string_attribute("dpx/SlateInfo"));
  EXPECT_EQ(nullptr, exr.find_attribute("dpx/Packing"));
  EXPECT_EQ("", Lost());

  const ImageSpec back = Pass(folder / "out.exr", "back.dpx");
  for (const char* name :
       {"smpte:TimeCode", "smpte:KeyCode", "dpx:FrameRate", "dpx:SlateInfo", "dpx:FrameId",
        "dpx:FramePosition", "dpx:Transfer", "PixelAspectRatio", "ImageDescription"}) {
    ExpectSame(Spec(file), back, name);
  }
  EXPECT_EQ("", Lost());
}

TEST_F(CarriedMetadata, NamesWhatOfAShotPngAndTiffCannotHold) {
  const fs::path file = Put("in.exr", TypeDesc::HALF, [](ImageSpec* spec) {
    DescribeShot(spec);
    spec->attribute("FramesPerSecond", OIIO::TypeRational, kFilmRate);
    spec->attribute("lens", 35.5F);
  });
  for (const auto& [name, label] : {std::pair{"a.png", "PNG"}, std::pair{"a.tif", "TIFF"}}) {
    const ImageSpec out = Pass(file, name);

    EXPECT_NEAR(2.0F, out.get_float_attribute("PixelAspectRatio"), 0.01F) << name;
    EXPECT_EQ("a garden", out.get_string_attribute("ImageDescription")) << name;
    const std::string end = " is not carried: " + std::string(label) + " has no place for it";
    std::vector<std::string> lines;
    for (const NotCarried& one : lost) {
      lines.push_back(one.line);
    }
    std::sort(lines.begin(), lines.end());
    const std::vector<std::string> expected{
        "attribute lens" + end, "film edge code 1, 2, 3, 4, 5, 4, 64" + end,
        "frame rate 24000/1001" + end, "timecode 01:02:03:04" + end};
    EXPECT_EQ(expected, lines) << name;
  }
}

TEST_F(CarriedMetadata, GoesFromPngAndTiffToExrAndBack) {
  const Describe describe = [](ImageSpec* spec) {
    spec->attribute("PixelAspectRatio", 2.0F);
    spec->attribute("ImageDescription", "a garden");
    spec->attribute("Artist", "somebody");
    spec->attribute("DateTime", "2001:02:03 04:05:06");
  };
  for (const char* name : {"png", "tif"}) {
    const std::string ending = std::string(".") + name;
    const fs::path file = Put("in" + ending, TypeDesc::UINT16, describe);

    const ImageSpec exr = Pass(file, "out.exr");
    EXPECT_EQ("", Lost()) << name;
    const ImageSpec back = Pass(folder / "out.exr", "back" + ending);
    EXPECT_EQ("", Lost()) << name;

    for (const char* attribute : {"ImageDescription", "Artist", "DateTime"}) {
      ExpectSame(Spec(file), exr, attribute);
      ExpectSame(Spec(file), back, attribute);
    }
    EXPECT_NEAR(2.0F, exr.get_float_attribute("PixelAspectRatio"), 0.01F);
    EXPECT_NEAR(2.0F, back.get_float_attribute("PixelAspectRatio"), 0.01F);
  }
}

TEST_F(CarriedMetadata, LeavesOutWhatWasTrueOfTheOldFileAlone) {
  const fs::path file = Put("in.exr", TypeDesc::HALF, [](ImageSpec* spec) {
    spec->attribute("oiio:SHA-1", "0123456789");
    spec->attribute("textureformat", "Plain Texture");
    const char* const views[] = {"left", "right"};
    spec->attribute("multiView", TypeDesc(TypeDesc::STRING, 2), views);
    spec->attribute("show", "a film");
    spec->tile_width = 16;
    spec->tile_height = 16;
  });

  const ImageSpec out = Pass(file, "out.exr");

  EXPECT_EQ("a film", out.get_string_attribute("show"));
  for (const char* name : {"oiio:SHA-1", "textureformat", "multiView", "openexr:levelmode"}) {
    EXPECT_EQ(nullptr, out.find_attribute(name)) << name;
  }
  EXPECT_EQ(0, out.tile_width);
  EXPECT_EQ("", Lost());
}

TEST_F(CarriedMetadata, KeepsAProfileWhereTheFormatHasAPlaceAndNamesItElsewhere) {
  const std::vector<std::uint8_t> profile = lx_test::Profile();
  const fs::path file = Put("in.tif", TypeDesc::UINT16, [&](ImageSpec* spec) {
    spec->attribute("ICCProfile", TypeDesc(TypeDesc::UINT8, static_cast<int>(profile.size())),
                    profile.data());
  });

  ExpectSame(Spec(file), Pass(file, "out.tif"), "ICCProfile");
  ExpectSame(Spec(file), Pass(file, "out.png"), "ICCProfile");
  EXPECT_EQ("", Lost());
  Pass(file, "out.exr");
  EXPECT_EQ("ICC profile is not carried: OpenEXR has no place for it\n", Lost());
}

// Of an RLA file the library makes a dozen of these.
TEST_F(CarriedMetadata, SaysNothingOfWhatFileToolsNoteOfThemselves) {
  const fs::path file = Put("in.exr", TypeDesc::HALF, [](ImageSpec* spec) {
    spec->attribute("Exif:ImageHistory", "made by a tool");
    spec->attribute("rla:JobNumber", 3);
    spec->attribute("rla:ProgramUsed", "a renderer");
  });
  Pass(file, "out.dpx");
  EXPECT_EQ("", Lost());
}

TEST_F(CarriedMetadata, NamesAnOrientationThatIsLost) {
  const fs::path file =
      Put("in.jpg", TypeDesc::UINT8, [](ImageSpec* spec) { spec->attribute("Orientation", 6); });

  EXPECT_EQ(6, Pass(file, "out.tif").get_int_attribute("Orientation"));
  EXPECT_EQ("", Lost());
  for (const char* name : {"out.png", "out.dpx"}) {
    const ImageSpec out = Pass(file, name);
    EXPECT_EQ(kWidth, out.width);
    EXPECT_EQ(0U, Lost().find("orientation 6 is not carried: ")) << Lost();
  }
}

TEST_F(CarriedMetadata, NamesChannelsBesideThePictures) {
  const auto named = [](const std::vector<std::string>& names) {
    return [names](ImageSpec* spec) { spec->channelnames = names; };
  };
  const fs::path some =
      Put("a.exr", TypeDesc::HALF, named({"R", "G", "B", "A", "Z", "normal.X"}), 6);
  const fs::path one = Put("b.exr", TypeDesc::HALF, named({"Y", "Z"}), 2);

  EXPECT_EQ(4, Pass(some, "out.exr").nchannels);
  EXPECT_EQ((std::vector{glimmerhost::SomeNotCarried("channels Z, normal.X",
                                                     "red, green, blue and alpha are")}),
            left);
  EXPECT_EQ(1, Pass(one, "out.exr").nchannels) << "a depth is no alpha";
  EXPECT_EQ(
      (std::vector{glimmerhost::OneNotCarried("channel Z", "", "red, green, blue and alpha are")}),
      left);
}

TEST_F(CarriedMetadata, NamesPartsBehindTheFirst) {
  for (const char* name : {"a.exr", "a.tif"}) {
    const std::string file = (folder / name).string();
    std::vector<ImageSpec> specs(3, ImageSpec(kWidth, kHeight, 3, TypeDesc::HALF));
    for (std::size_t i = 0; i < specs.size(); ++i) {
      specs[i].attribute("oiio:subimagename", "part" + std::to_string(i));
    }
    if (std::string(name) == "a.tif") {
      for (ImageSpec& spec : specs) {
        spec.set_format(TypeDesc::UINT16);
      }
    }
    {
      const auto output = OIIO::ImageOutput::create(file);
      ASSERT_TRUE(output->open(file, 3, specs.data())) << output->geterror();
      for (int part = 0; part < 3; ++part) {
        const std::vector<float> samples(kWidth * kHeight * 3,
                                         0.25F * static_cast<float>(part + 1));
        if (part > 0) {
          ASSERT_TRUE(output->open(file, specs[static_cast<std::size_t>(part)],
                                   OIIO::ImageOutput::AppendSubimage));
        }
        ASSERT_TRUE(output->write_image(TypeDesc::FLOAT, samples.data()));
      }
      ASSERT_TRUE(output->close());
    }
    ReadReport report;

    const Picture picture = glimmerhost::ReadPicture(file, {}, &report);

    EXPECT_EQ(16384, picture.samples[0]) << name;
    ASSERT_EQ(1U, report.notCarried.size()) << name;
    EXPECT_NE(std::string::npos,
              report.notCarried[0].line.find(" not carried: the first alone is the picture"));
  }
}

}  // namespace
