// SPDX-License-Identifier: BSD-3-Clause
// Colour spaces of a small configuration, whose numbers are worked out by hand.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "host/glimmerhost/colour_options.h"
#include "host/support/failure.h"
#include "tests/host/glimmerhost/program.h"

namespace {

using glimmerhost::ParseColours;
using host_test::Outcome;
using host_test::RunProgram;
using OIIO::TypeDesc;

// To the reference, which is linear: twice the value; its square; red and blue exchanged; and
// an eighth more, so that black is not 0.
constexpr const char* kConfig = R"(ocio_profile_version: 2
search_path: ""
roles:
  scene_linear: Linear
  camera: Squared
file_rules:
  - !<Rule> {name: Default, colorspace: Linear}
displays:
  screen:
    - !<View> {name: plain, colorspace: Linear}
colorspaces:
  - !<ColorSpace>
    name: Linear
  - !<ColorSpace>
    name: Halved
    aliases: [dark]
    to_scene_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Squared
    to_scene_reference: !<ExponentTransform> {value: [2, 2, 2, 1]}
  - !<ColorSpace>
    name: Exchanged
    to_scene_reference: !<MatrixTransform> {matrix: [0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Lifted
    from_scene_reference: !<MatrixTransform> {offset: [0.125, 0.125, 0.125, 0]}
)";

class ColourSpaces : public host_test::Program {
 public:
  ColourSpaces() {
    std::ofstream(folder / "config.ocio") << kConfig;
    config = (folder / "config.ocio").string();
  }

  // A flat picture of 24 x 16, which a blur leaves as it is.
  std::string Flat(const std::string& name, TypeDesc type, const std::vector<float>& pixel,
                   const std::vector<std::uint8_t>& profile = {}) {
    std::string file = (folder / name).string();
    OIIO::ImageSpec spec(24, 16, static_cast<int>(pixel.size()), type);
    if (!profile.empty()) {
      spec.attribute("ICCProfile", TypeDesc(TypeDesc::UINT8, static_cast<int>(profile.size())),
                     profile.data());
    }
    // Otherwise the library would multiply by alpha for a format that wants it so.
    spec.attribute("oiio:UnassociatedAlpha", name.ends_with(".exr") ? 0 : 1);
    std::vector<float> samples;
    for (int i = 0; i < 24 * 16; ++i) {
      samples.insert(samples.end(), pixel.begin(), pixel.end());
    }
    const auto output = OIIO::ImageOutput::create(file);
    EXPECT_TRUE(output->open(file, spec)) << output->geterror();
    EXPECT_TRUE(output->write_image(TypeDesc::FLOAT, samples.data()));
    EXPECT_TRUE(output->close());
    return file;
  }

  // The pixel in the middle, as the file has it.
  std::vector<float> Middle(const std::string& name) {
    OIIO::ImageSpec asIs;
    asIs.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open((folder / name).string(), &asIs);
    if (!input) {
      ADD_FAILURE() << OIIO::geterror();
      return {};
    }
    const auto channels = static_cast<std::size_t>(input->spec().nchannels);
    std::vector<float> samples(std::size_t{24} * 16 * channels);
    EXPECT_TRUE(
        input->read_image(0, 0, 0, input->spec().nchannels, TypeDesc::FLOAT, samples.data()));
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>((8 * 24 + 12) * channels);
    return {first, first + static_cast<std::ptrdiff_t>(channels)};
  }

  Outcome RenderIn(const std::string& input, const std::string& output,
                   const std::string& options) {
    return RunProgram(
        Render(input, output,
               "--radius 2px --quiet --overwrite --colour-config '" + config + "' " + options));
  }

  // The effect has 15 bits, and a half float 11.
  void ExpectMiddle(const std::vector<float>& expected, const std::string& name) {
    const std::vector<float> pixel = Middle(name);
    ASSERT_EQ(expected.size(), pixel.size()) << name;
    for (std::size_t c = 0; c < pixel.size(); ++c) {
      EXPECT_NEAR(expected[c], pixel[c], 0.0005F + expected[c] / 2048.0F) << name << " " << c;
    }
  }

  std::string config;
};

TEST_F(ColourSpaces, GoFromTheInputsToTheOutputs) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {0.5F, 0.25F, 0.75F});

  EXPECT_EQ("", RenderIn(input, "a.exr", "--colour-in Squared --colour-out Linear").text);
  EXPECT_EQ("", RenderIn(input, "b.exr", "--colour-in Squared --colour-out Halved").text);
  EXPECT_EQ("", RenderIn(input, "c.exr", "--colour-in Exchanged --colour-out Linear").text);

  ExpectMiddle({0.25F, 0.0625F, 0.5625F}, "a.exr");
  ExpectMiddle({0.125F, 0.03125F, 0.28125F}, "b.exr");
  ExpectMiddle({0.75F, 0.25F, 0.5F}, "c.exr");
}

TEST_F(ColourSpaces, OfFloatsEndWhereTheSamplesOfTheFileDo) {
  const std::string input = Flat("in.exr", TypeDesc::FLOAT, {200000.0F, 8.0F, 1.0F});

  EXPECT_EQ("", RenderIn(input, "a.exr", "--colour-out Halved --bits float").text);
  const std::string told = RenderIn(input, "b.exr", "--colour-out Halved --bits half").text;

  ExpectMiddle({100000.0F, 4.0F, 0.5F}, "a.exr");
  ExpectMiddle({65504.0F, 4.0F, 0.5F}, "b.exr");
  EXPECT_NE(std::string::npos, told.find("384 samples beyond 65504")) << told;
}

TEST_F(ColourSpaces, ComeBackWhereOnlyTheInputsIsGiven) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {0.5F, 0.25F, 0.75F});

  EXPECT_EQ("", RenderIn(input, "out.exr", "--colour-in Squared").text);

  ExpectMiddle({0.5F, 0.25F, 0.75F}, "out.exr");
}

TEST_F(ColourSpaces, BeginInSceneLinearWhereOnlyTheOutputsIsGiven) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {0.25F, 0.0625F, 0.5625F});

  EXPECT_EQ("", RenderIn(input, "out.exr", "--colour-out Squared").text);

  ExpectMiddle({0.5F, 0.25F, 0.75F}, "out.exr");
}

TEST_F(ColourSpaces, AreKnownByRoleAndAliasToo) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {0.5F, 0.5F, 0.5F});

  EXPECT_EQ("", RenderIn(input, "out.exr", "--colour-in camera --colour-out dark").text);

  ExpectMiddle({0.125F, 0.125F, 0.125F}, "out.exr");
}

// The edge of the blur shows in which space it happened: between 0 and 1 in the middle of an edge
// there is half the light.
TEST_F(ColourSpaces, AreLeftBehindForTheBlur) {
  const std::string file = (folder / "edge.png").string();
  OIIO::ImageSpec spec(64, 64, 3, TypeDesc::UINT16);
  std::vector<float> samples(std::size_t{64} * 64 * 3, 0.0F);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = i / 3 % 64 < 32 ? 0.0F : 1.0F;
  }
  {
    const auto output = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(output->open(file, spec));
    ASSERT_TRUE(output->write_image(TypeDesc::FLOAT, samples.data()));
    ASSERT_TRUE(output->close());
  }
  ASSERT_EQ(0, RunProgram(Render(file, "plain.png", "--radius 6px --quiet")).code);

  EXPECT_EQ("", RunProgram(Render(file, "light.png",
                                  "--radius 6px --quiet --colour-in Squared "
                                  "--colour-config '" +
                                      config + "'"))
                    .text);

  const host_test::Picture plain = host_test::Read(folder / "plain.png");
  const host_test::Picture light = host_test::Read(folder / "light.png");
  int between = 0;
  for (std::size_t x = 24; x < 40; ++x) {
    const double blurred = plain.samples[(32 * 64 + x) * 4] / 65535.0;
    const double expected = std::sqrt(blurred);
    between += blurred > 0.1 && blurred < 0.9 ? 1 : 0;
    // At black the root is steep: a step of 15 bits is 0.006.
    EXPECT_NEAR(expected, light.samples[(32 * 64 + x) * 4] / 65535.0, 0.006) << x;
  }
  EXPECT_GT(between, 5);
}

TEST_F(ColourSpaces, ComeBeforeTheRangeWhichFilesOfWholeNumbersThenHave) {
  const std::string whole = Flat("in.png", TypeDesc::UINT16, {1.0F, 0.75F, 0.25F});

  const Outcome cut = RenderIn(whole, "cut.exr", "--colour-in Halved --colour-out Linear");
  EXPECT_NE(std::string::npos, cut.text.find("768 samples outside 0 to 1 were cut to that range"))
      << cut.text;
  ExpectMiddle({1.0F, 1.0F, 0.5F}, "cut.exr");

  EXPECT_EQ(
      "",
      RenderIn(whole, "scaled.exr", "--colour-in Halved --colour-out Linear --range scale:4").text);
  ExpectMiddle({2.0F, 1.5F, 0.5F}, "scaled.exr");

  // What the range made is undone, whatever the output.
  EXPECT_EQ("", RenderIn(whole, "back.png", "--colour-in Halved --range scale:4").text);
  ExpectMiddle({1.0F, 0.75F, 0.25F}, "back.png");
}

TEST_F(ColourSpaces, SayWhatAnOutputOfWholeNumbersCuts) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {2.0F, 0.5F, 0.25F});

  const Outcome outcome = RenderIn(input, "out.png", "--colour-out Linear --range scale:4");

  EXPECT_EQ(
      "glimmerhost: 384 samples outside 0 to 1 in the output's colour space are cut to that range: "
      "PNG has no place beyond\n",
      outcome.text);
  ExpectMiddle({1.0F, 0.5F, 0.25F}, "out.png");
}

TEST_F(ColourSpaces, HoldOfColoursThatAreNotMultipliedByAlpha) {
  // Premultiplied: a colour of 0.5, 0.25 and 0, of which there is a half.
  const std::string exr = Flat("in.exr", TypeDesc::HALF, {0.25F, 0.125F, 0.0F, 0.5F});
  const std::string png = Flat("in.png", TypeDesc::UINT16, {0.5F, 0.25F, 0.0F, 0.5F});

  for (const std::string& input : {exr, png}) {
    EXPECT_EQ("", RenderIn(input, "out.exr", "--colour-in Squared --colour-out Linear").text);
    ExpectMiddle({0.125F, 0.03125F, 0.0F, 0.5F}, "out.exr");
    EXPECT_EQ("", RenderIn(input, "out.png", "--colour-in Squared --colour-out Linear").text);
    ExpectMiddle({0.25F, 0.0625F, 0.0F, 0.5F}, "out.png");
  }
  // Where there is nothing, a raised black does not light up.
  const std::string nothing = Flat("nothing.exr", TypeDesc::HALF, {0.0F, 0.0F, 0.0F, 0.0F});
  EXPECT_EQ("", RenderIn(nothing, "nothing.out.exr", "--colour-out Lifted").text);
  ExpectMiddle({0.0F, 0.0F, 0.0F, 0.0F}, "nothing.out.exr");
}

TEST_F(ColourSpaces, MakeColoursOfAGreyPicture) {
  const std::string grey = Flat("in.exr", TypeDesc::HALF, {0.5F});

  EXPECT_EQ("", RenderIn(grey, "out.exr", "--colour-in Squared --colour-out Linear").text);

  ExpectMiddle({0.25F, 0.25F, 0.25F}, "out.exr");
}

TEST_F(ColourSpaces, TakeTheProfileAwayWhereItWouldBeWrong) {
  const std::string input =
      Flat("in.tif", TypeDesc::UINT16, {0.5F, 0.5F, 0.5F}, std::vector<std::uint8_t>(132, 7));
  const auto profile = [&](const std::string& name) {
    return OIIO::ImageInput::open((folder / name).string())->spec().find_attribute("ICCProfile");
  };

  EXPECT_EQ("", RenderIn(input, "same.tif", "--colour-in Squared").text);
  EXPECT_NE(nullptr, profile("same.tif"));
  EXPECT_EQ("glimmerhost: ICC profile is not carried: the output is in another colour space\n",
            RenderIn(input, "other.tif", "--colour-in Squared --colour-out Linear").text);
  EXPECT_EQ(nullptr, profile("other.tif"));
}

TEST_F(ColourSpaces, ComeFromTheEnvironmentsConfigurationIfNoneIsNamed) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {0.5F, 0.5F, 0.5F});
  const std::string command =
      Render(input, "out.exr", "--radius 2px --quiet --colour-in Squared --colour-out Linear");

  EXPECT_EQ("", RunProgram(command, {{"OCIO", config}}).text);

  ExpectMiddle({0.25F, 0.25F, 0.25F}, "out.exr");
}

TEST_F(ColourSpaces, AreRefusedWithoutAConfigurationThatHasThem) {
  const std::string input = Flat("in.exr", TypeDesc::HALF, {0.5F, 0.5F, 0.5F});
  const std::string of = " --colour-config '" + config + "'";

  EXPECT_EQ(2, RunProgram(Render(input, "a.exr", "--colour-in Linear"), {{"OCIO", ""}}).code);
  ExpectRefusal(Render(input, "a.exr", "--colour-in Squard" + of), 2,
                "--colour-in: unknown colour space \"Squard\"; did you mean "
                "\"Squared\"?");
  ExpectRefusal(Render(input, "a.exr", "--colour-out linar" + of), 2, "did you mean \"Linear\"?");
  ExpectRefusal(Render(input, "a.exr", of), 2, " needs --colour-in or --colour-out");
  ExpectRefusal(Render(input, "a.exr", "--colour-in Linear --colour-config none.ocio"), 3,
                "none.ocio: not found");
  std::ofstream(folder / "bad.ocio") << "no configuration";
  ExpectRefusal(
      Render(input, "a.exr",
             "--colour-in Linear --colour-config '" + (folder / "bad.ocio").string() + "'"),
      1, "not a colour configuration that can be read");
  std::string text = kConfig;
  text.replace(text.find("scene_linear"), 12, "other_linear");
  std::ofstream(folder / "roleless.ocio") << text;
  ExpectRefusal(
      Render(input, "a.exr",
             "--colour-in Squared --colour-config '" + (folder / "roleless.ocio").string() + "'"),
      1, "the configuration has no role scene_linear");
}

TEST_F(ColourSpaces, LeaveEverythingAsItWasWhereNoneIsGiven) {
  EXPECT_EQ(nullptr, ParseColours({}));
  EXPECT_THROW(ParseColours({.config = config, .in = {}, .out = {}}), glimmerhost::UsageError);
}

}  // namespace
