// SPDX-License-Identifier: BSD-3-Clause
// Channels and parts of an EXR beside the picture: kept bit for bit, or blurred.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/colour_path.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/host/pictures/exr_layers.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Coding;
using glimmerhost::NotCarried;
using glimmerhost::Picture;
using glimmerhost::PictureLayer;
using glimmerhost::PictureOutput;
using glimmerhost::ReadOptions;
using glimmerhost::ReadReport;
using lx_test::ExrPart;
using lx_test::Jumping;
using lx_test::ReadExr;
using OIIO::TypeDesc;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

// Four channels of the picture, among others of all three types.
ExrPart Layered() {
  ExrPart part;
  part.channels = {
      {"R", TypeDesc::HALF, Jumping(1)},
      {"G", TypeDesc::HALF, Jumping(2)},
      {"B", TypeDesc::HALF, Jumping(3)},
      {"A", TypeDesc::HALF, [](int, int) { return 1.0; }},
      {"Z", TypeDesc::FLOAT, [](int x, int y) { return 10.0 + x * 3.7 + y * 0.01; }},
      {"diffuse.R", TypeDesc::HALF, Jumping(4)},
      {"diffuse.G", TypeDesc::HALF, Jumping(5)},
      {"diffuse.B", TypeDesc::HALF, Jumping(6)},
      {"id", TypeDesc::UINT32, [](int x, int y) { return 4000000000.0 + x + 100.0 * y; }},
      {"normal.X", TypeDesc::HALF, [](int x, int) { return x % 2 == 0 ? -1.0 : 1.0; }}};
  return part;
}

class ExrExtras : public testing::Test {
 public:
  Picture Take(const std::string& name, const std::vector<std::string>& blurred = {}) {
    report = {};
    ReadOptions options;
    options.keptFor = "openexr";
    options.blurChannels = blurred;
    return glimmerhost::ReadPicture(folder / name, options, &report);
  }

  void Put(const std::string& name, const Picture& picture, const Coding& coding = {}) {
    PictureOutput(folder / name, true).Write(picture, coding);
  }

  // In and out again.
  void Pass(const std::string& from, const std::string& to, const Coding& coding = {}) {
    Put(to, Take(from), coding);
    for (const NotCarried& one : report.notCarried) {
      EXPECT_EQ("", one.line);
    }
  }

  lx_test::ScratchFolder folder;
  ReadReport report;
};

TEST_F(ExrExtras, GoOnBitForBitInTheirOwnTypes) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});

  Pass("in.exr", "out.exr");

  const ReadExr in = lx_test::Read(folder / "in.exr");
  const ReadExr out = lx_test::Read(folder / "out.exr");
  EXPECT_EQ(10U, out.bits.size());
  for (const char* name : {"Z", "diffuse.R", "diffuse.G", "diffuse.B", "id", "normal.X"}) {
    EXPECT_EQ(in.types.at(name), out.types.at(name)) << name;
    EXPECT_TRUE(in.bits.at(name) == out.bits.at(name)) << name;
  }
}

// Not numbers and infinities among them: nobody looks at what is kept.
TEST_F(ExrExtras, KeepWhatIsNoNumber) {
  ExrPart part = Layered();
  part.channels[4].sample = [](int x, int) { return x == 3 ? std::nan("") : kInfinite; };
  lx_test::MakeExr(folder / "in.exr", {part});

  Pass("in.exr", "out.exr");

  EXPECT_TRUE(lx_test::Read(folder / "in.exr").bits.at("Z") ==
              lx_test::Read(folder / "out.exr").bits.at("Z"));
  EXPECT_TRUE(report.lines.empty());
}

TEST_F(ExrExtras, ChangeNothingOfThePicturesOwnChannels) {
  ExrPart alone = Layered();
  alone.channels.resize(4);
  lx_test::MakeExr(folder / "alone.exr", {alone});
  lx_test::MakeExr(folder / "all.exr", {Layered()});
  Coding floats(32);
  floats.floats = true;
  for (const Coding& coding : {Coding(), floats}) {
    Pass("alone.exr", "alone_out.exr", coding);
    Pass("all.exr", "all_out.exr", coding);

    const ReadExr expected = lx_test::Read(folder / "alone_out.exr");
    const ReadExr got = lx_test::Read(folder / "all_out.exr");
    for (const char* name : {"R", "G", "B", "A"}) {
      EXPECT_EQ(expected.types.at(name), got.types.at(name)) << name;
      EXPECT_TRUE(expected.bits.at(name) == got.bits.at(name)) << name;
    }
  }
}

TEST_F(ExrExtras, StandBesideAGreyPicture) {
  ExrPart part;
  part.channels = {{"Y", TypeDesc::HALF, Jumping(1)}, {"Z", TypeDesc::FLOAT, Jumping(2)}};
  lx_test::MakeExr(folder / "in.exr", {part});

  Pass("in.exr", "out.exr");

  const ReadExr out = lx_test::Read(folder / "out.exr");
  EXPECT_EQ(2U, out.bits.size());
  EXPECT_TRUE(lx_test::Read(folder / "in.exr").bits.at("Z") == out.bits.at("Z"));
}

TEST_F(ExrExtras, ThatArePartsGoOnWithHeadersChannelsAndWindows) {
  ExrPart second;
  second.width = 7;
  second.height = 5;
  second.channels = {{"left.R", TypeDesc::FLOAT, Jumping(7)}, {"mask", TypeDesc::HALF, Jumping(8)}};
  second.describe = [](OIIO::ImageSpec* spec) {
    spec->x = -3;
    spec->y = 4;
    spec->attribute("oiio:subimagename", "second");
    spec->attribute("note", "of the second");
    spec->attribute("compression", "piz");
  };
  ExrPart third;
  third.channels = {{"id", TypeDesc::UINT32, [](int x, int y) { return x * y; }}};
  third.describe = [](OIIO::ImageSpec* spec) { spec->attribute("oiio:subimagename", "third"); };
  ExrPart first = Layered();
  first.describe = [](OIIO::ImageSpec* spec) { spec->attribute("oiio:subimagename", "beauty"); };
  std::vector<ExrPart> parts = {first, second, third};
  for (ExrPart& part : parts) {
    const auto describe = part.describe;
    part.describe = [describe](OIIO::ImageSpec* spec) {
      describe(spec);
      spec->full_x = 2;
      spec->full_width = 100;
      spec->full_height = 50;
    };
  }
  lx_test::MakeExr(folder / "in.exr", parts);

  Pass("in.exr", "out.exr");

  ASSERT_EQ(3, lx_test::PartCount(folder / "out.exr"));
  for (const int part : {1, 2}) {
    const ReadExr in = lx_test::Read(folder / "in.exr", part);
    const ReadExr out = lx_test::Read(folder / "out.exr", part);
    EXPECT_TRUE(in.bits == out.bits) << part;
    EXPECT_TRUE(in.types == out.types) << part;
    EXPECT_TRUE(in.spec.roi() == out.spec.roi()) << part;
    EXPECT_TRUE(in.spec.roi_full() == out.spec.roi_full()) << part;
    EXPECT_EQ(in.spec.get_string_attribute("oiio:subimagename"),
              out.spec.get_string_attribute("oiio:subimagename"));
    EXPECT_EQ(in.spec.get_string_attribute("note"), out.spec.get_string_attribute("note"));
    EXPECT_EQ(in.spec.get_string_attribute("compression"),
              out.spec.get_string_attribute("compression"));
  }
  EXPECT_EQ("beauty",
            lx_test::Read(folder / "out.exr").spec.get_string_attribute("oiio:subimagename"));
  EXPECT_TRUE(lx_test::Read(folder / "in.exr").bits.at("Z") ==
              lx_test::Read(folder / "out.exr").bits.at("Z"));
}

// The standard wants windows, aspect, timecode and chromaticities alike in all parts of a file.
TEST_F(ExrExtras, ThatArePartsAgreeWithThePictureWhatIsTakenFromIt) {
  ExrPart second;
  second.channels = {{"mask", TypeDesc::HALF, Jumping(8)}};
  const float colours[] = {0.64F, 0.33F, 0.3F, 0.6F, 0.15F, 0.06F, 0.3127F, 0.329F};
  const int timecode[] = {0x01020304, 0};
  const auto describe = [&](OIIO::ImageSpec* spec) {
    spec->attribute("chromaticities", TypeDesc(TypeDesc::FLOAT, 8), colours);
    spec->attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    spec->attribute("PixelAspectRatio", 2.0F);
  };
  ExrPart first = Layered();
  first.describe = describe;
  second.describe = describe;
  lx_test::MakeExr(folder / "in.exr", {first, second});
  Picture picture = Take("in.exr");
  auto path = std::make_shared<glimmerhost::ColourPath>();
  picture.colours = path;

  Put("out.exr", picture);

  ASSERT_EQ(2, lx_test::PartCount(folder / "out.exr"));
  for (const int part : {0, 1}) {
    const OIIO::ImageSpec spec = lx_test::Read(folder / "out.exr", part).spec;
    EXPECT_EQ(nullptr, spec.find_attribute("chromaticities")) << part;
    EXPECT_NE(nullptr, spec.find_attribute("smpte:TimeCode")) << part;
    EXPECT_EQ(2.0F, spec.get_float_attribute("PixelAspectRatio")) << part;
  }
}

TEST_F(ExrExtras, GiveTheSameBytesEachTime) {
  ExrPart second;
  second.channels = {{"mask", TypeDesc::HALF, Jumping(8)}};
  lx_test::MakeExr(folder / "in.exr", {Layered(), second});
  const Picture picture = Take("in.exr");
  Put("a.exr", picture);
  const ReadExr part = lx_test::Read(folder / "a.exr", 1);

  EXPECT_EQ("", part.spec.get_string_attribute("DateTime"));
  EXPECT_EQ("", lx_test::Read(folder / "a.exr").spec.get_string_attribute("DateTime"));
}

TEST_F(ExrExtras, AreNotEvenReadForAFormatThatCannotHoldThem) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});
  ReadOptions options;
  options.keptFor = "dpx";

  const Picture picture = glimmerhost::ReadPicture(folder / "in.exr", options, &report);

  EXPECT_EQ(nullptr, picture.extras);
  ASSERT_EQ(1U, report.notCarried.size());
  EXPECT_EQ(0U, report.notCarried[0].line.find("channels Z, id, diffuse.R, "))
      << report.notCarried[0].line;
}

TEST_F(ExrExtras, MoveWithAPictureThatHasGrown) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});
  Picture picture = Take("in.exr");
  picture.width += 4;
  picture.height += 4;
  picture.grownBy = 2;
  picture.samples.assign(picture.PixelCount() * 4, 1000);

  Put("out.exr", picture);

  const ReadExr in = lx_test::Read(folder / "in.exr");
  const ReadExr out = lx_test::Read(folder / "out.exr");
  for (int y = 0; y < 24; ++y) {
    for (int x = 0; x < 34; ++x) {
      const bool isInside = x >= 2 && x < 32 && y >= 2 && y < 22;
      const double expected =
          isInside ? in.values.at("Z")[static_cast<std::size_t>((y - 2) * 30 + x - 2)] : 0.0;
      ASSERT_EQ(expected, out.values.at("Z")[static_cast<std::size_t>(y * 34 + x)])
          << x << "," << y;
    }
  }
}

TEST_F(ExrExtras, ThatAreAskedForBecomeLayers) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});

  const Picture picture = Take("in.exr", {"diffuse.*", "normal.?", "Z"});

  ASSERT_EQ(3U, picture.layers.size());
  using Names = std::vector<std::string>;
  std::vector<Names> names;
  for (const PictureLayer& layer : picture.layers) {
    names.push_back(layer.channels);
    EXPECT_EQ(layer.channels.size() == 1, layer.isData);
    EXPECT_EQ(30, layer.picture.width);
    EXPECT_EQ(20, layer.picture.height);
  }
  EXPECT_EQ((std::vector<Names>{{"Z"}, {"diffuse.R", "diffuse.G", "diffuse.B"}, {"normal.X"}}),
            names);
}

TEST_F(ExrExtras, OfALayerWithAlphaTakeItAlongAskedForOrNot) {
  ExrPart part = Layered();
  part.channels.push_back({"diffuse.A", TypeDesc::HALF, Jumping(9)});
  lx_test::MakeExr(folder / "in.exr", {part});

  const Picture picture = Take("in.exr", {"diffuse.R", "diffuse.G", "diffuse.B"});

  ASSERT_EQ(1U, picture.layers.size());
  EXPECT_EQ(4U, picture.layers[0].channels.size());
  EXPECT_EQ(glimmerhost::Alpha::kPremultiplied, picture.layers[0].picture.alpha);
}

// An infinite sample, which a half float beyond its end would be, spoils all that is blurred next.
TEST_F(ExrExtras, ThatAreLayersOfHalfFloatsAreCutToThemWithALine) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});
  Picture picture = Take("in.exr", {"diffuse.*"});
  ASSERT_EQ(1U, picture.layers.size());
  for (Picture* each : {&picture, &picture.layers[0].picture}) {
    each->floats.assign(each->samples.size(), 0.5F);
    each->samples.clear();
  }
  picture.layers[0].picture.floats[0] = 1e6F;
  picture.layers[0].picture.floats[5] = -1e6F;

  std::vector<NotCarried> lost;
  PictureOutput(folder / "out.exr", true).Write(picture, {}, &lost);

  const ReadExr out = lx_test::Read(folder / "out.exr");
  EXPECT_EQ(65504.0, out.values.at("diffuse.R")[0]);
  EXPECT_EQ(-65504.0, out.values.at("diffuse.G")[1]);
  EXPECT_EQ(0.5, out.values.at("diffuse.G")[0]);
  ASSERT_EQ(1U, lost.size());
  EXPECT_EQ(0U, lost[0].line.find("2 samples beyond 65504 are cut")) << lost[0].line;
}

TEST_F(ExrExtras, OfWhichSomeColoursAreAskedForAreNumbers) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});

  const Picture picture = Take("in.exr", {"diffuse.R"});

  ASSERT_EQ(1U, picture.layers.size());
  EXPECT_TRUE(picture.layers[0].isData);
}

// 15 bits would be lost on the way through the effect; without it, 16 are.
TEST_F(ExrExtras, ThatAreNumbersComeBackOverTheirOwnSpan) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});

  Put("out.exr", Take("in.exr", {"Z", "normal.X", "id"}));

  const ReadExr in = lx_test::Read(folder / "in.exr");
  const ReadExr out = lx_test::Read(folder / "out.exr");
  EXPECT_TRUE(report.lines.empty());
  EXPECT_TRUE(in.types == out.types);
  // Half a step of 16 bits of the span, which is 107.49 of Z.
  for (std::size_t i = 0; i < in.values.at("Z").size(); ++i) {
    ASSERT_NEAR(in.values.at("Z")[i], out.values.at("Z")[i], 107.49 / 65535 * 0.51 + 1e-5) << i;
    ASSERT_EQ(in.values.at("normal.X")[i], out.values.at("normal.X")[i]) << i;
    // As floats, which hold every 256th of these.
    ASSERT_NEAR(in.values.at("id")[i], out.values.at("id")[i], 256.0) << i;
  }
}

TEST_F(ExrExtras, ThatAreNoNumbersAreTakenAsThePicturesAre) {
  ExrPart part = Layered();
  part.channels[4].sample = [](int x, int y) {
    return x == 0 && y == 0 ? std::nan("") : x == 1 && y == 0 ? kInfinite : x % 2 == 0 ? -2.0 : 6.0;
  };
  lx_test::MakeExr(folder / "in.exr", {part});

  Put("out.exr", Take("in.exr", {"Z"}));

  const std::vector<double> values = lx_test::Read(folder / "out.exr").values.at("Z");
  EXPECT_NEAR(0.0, values[0], 1e-4);
  EXPECT_EQ(6.0, values[1]);
  EXPECT_EQ(-2.0, values[2]);
  const std::string name = (folder / "in.exr").string() + ": channel Z: ";
  ASSERT_EQ(2U, report.lines.size());
  EXPECT_EQ(name + "1 sample outside -2 to 6 was cut to that range, 1 of them infinite",
            report.lines[0]);
  EXPECT_EQ(name + "1 sample not a number was taken as 0", report.lines[1]);
}

TEST_F(ExrExtras, ThatAreTheSameEverywhereStayAsTheyAre) {
  ExrPart part = Layered();
  part.channels[4].sample = [](int, int) { return 0.1; };
  lx_test::MakeExr(folder / "in.exr", {part});

  const Picture picture = Take("in.exr", {"Z"});

  EXPECT_TRUE(picture.layers.empty());
  Put("out.exr", picture);
  EXPECT_TRUE(lx_test::Read(folder / "in.exr").bits.at("Z") ==
              lx_test::Read(folder / "out.exr").bits.at("Z"));
}

TEST_F(ExrExtras, OfNoSuchNameAreAFailureThatNamesThemAndWhatThereIs) {
  lx_test::MakeExr(folder / "in.exr", {Layered()});
  try {
    Take("in.exr", {"Z", "specular.*"});
    FAIL();
  } catch (const glimmerhost::Failure& fault) {
    EXPECT_EQ((folder / "in.exr").string() +
                  ": --blur-channels specular.*: no channel has such a name; there are R, G, B, A, "
                  "Z, id, diffuse.R, diffuse.G and 2 more",
              fault.what());
  }
  EXPECT_NO_THROW(Take("in.exr", {"R", "*"}));
}

}  // namespace
