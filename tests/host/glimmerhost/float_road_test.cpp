// SPDX-License-Identifier: BSD-3-Clause
// Which road a frame takes, in floats through the library or in 16 bits through the module; and
// that both give the same picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "host/pictures/picture_file.h"
#include "tests/host/glimmerhost/program.h"
#include "tests/host/glimmerhost/program_here.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Picture;
using host_test::RunHere;

class FloatRoad : public host_test::Program {
 public:
  std::string File(const std::string& name) const { return (folder / name).string(); }

  // Floats as a TIFF file of them.
  std::string WriteFloats(const std::string& name, const Picture& picture) const {
    glimmerhost::Coding coding;
    coding.floats = true;
    coding.bits = 32;
    glimmerhost::PictureOutput(folder / name, true).Write(picture, coding);
    return File(name);
  }

  static Picture ReadFloats(const fs::path& file) {
    glimmerhost::ReadOptions options;
    options.precision = glimmerhost::Precision::kByFile;
    glimmerhost::ReadReport report;
    return glimmerhost::ReadPicture(file, options, &report);
  }

  std::string Manifest() const {
    std::ifstream in(folder / "m.jsonl");
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

// Whole numbers of all colours, with points of light, and alpha if asked for.
Picture Speckled(int width, int height, bool withAlpha) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.alpha = withAlpha ? glimmerhost::Alpha::kPremultiplied : glimmerhost::Alpha::kNone;
  picture.samples.resize(picture.PixelCount() * 4);
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < picture.samples.size(); i += 4) {
    random = random * 1664525U + 1013904223U;
    const bool isLight = (random >> 16U) % 50 == 0;
    const unsigned alpha = withAlpha && !isLight ? 20000 + (random >> 17U) : 65535;
    for (std::size_t c = 0; c < 3; ++c) {
      random = random * 1664525U + 1013904223U;
      picture.samples[i + c] =
          static_cast<std::uint16_t>(isLight ? 65535 : (random >> 16U) % (alpha / 3 + 1));
    }
    picture.samples[i + 3] = static_cast<std::uint16_t>(alpha);
  }
  return picture;
}

// Even floats, with one point of light.
Picture Lit(int width, int height, float value, float light) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.floats.assign(picture.PixelCount() * 4, value);
  for (std::size_t i = 3; i < picture.floats.size(); i += 4) {
    picture.floats[i] = 1.0F;
  }
  const std::size_t middle =
      (static_cast<std::size_t>(height / 2) * static_cast<std::size_t>(width) +
       static_cast<std::size_t>(width / 2)) *
      4;
  std::fill_n(picture.floats.begin() + static_cast<std::ptrdiff_t>(middle), 3, light);
  return picture;
}

double SumOf(const Picture& picture) {
  double sum = 0.0;
  for (std::size_t i = 0; i < picture.floats.size(); i += 4) {
    sum += static_cast<double>(picture.floats[i]);
  }
  return sum;
}

int LargestDifference(const Picture& one, const Picture& other) {
  EXPECT_EQ(one.samples.size(), other.samples.size());
  int largest = 0;
  for (std::size_t i = 0; i < std::min(one.samples.size(), other.samples.size()); ++i) {
    largest = std::max(largest, std::abs(one.samples[i] - other.samples[i]));
  }
  return largest;
}

// 15 bits at the border make half a step of them at emphasis 1, and by the curve's slope more
// above.
TEST_F(FloatRoad, AgreesWithTheModuleWithinItsFifteenBits) {
  int number = 0;
  for (const auto& [width, height] : {std::pair{61, 44}, {50, 37}}) {
    for (const bool withAlpha : {false, true}) {
      const std::string source = File("in" + std::to_string(++number) + ".tif");
      glimmerhost::PictureOutput(source, true).Write(Speckled(width, height, withAlpha), {});
      for (const std::string look :
           {"--radius 7.3px", "--shape ellipse --radius-x 9px --radius-y 4px --rotation 30",
            "--shape polygon --sides 5 --radius 8px --rotation 10",
            "--shape polygon --sides 6 --radius 5px --pixel-aspect 2:1",
            "--shape image --center 40%,60% --radius-psf1 3px --radius-psf2 6px"}) {
        for (const auto& [emphasis, most] : {std::pair{"1", 2}, {"20", 95}}) {
          for (const std::string road : {"float", "16"}) {
            const auto run = RunHere("render " + source + " -o " + File(road + ".tif") +
                                     " --overwrite --quiet --precision " + road + " --emphasis " +
                                     emphasis + " " + look);
            ASSERT_EQ(0, run.code) << run.text;
          }
          const int difference = LargestDifference(host_test::Read(File("float.tif")),
                                                   host_test::Read(File("16.tif")));
          EXPECT_LE(difference, most) << look << " at " << emphasis << ", " << width;
          EXPECT_GT(difference, 0);
        }
      }
    }
  }
}

TEST_F(FloatRoad, IsTakenByFloatsAlone) {
  const std::string floats = WriteFloats("floats.tif", Lit(40, 30, 0.25F, 1000.0F));
  const std::string words = WriteInput("words.tif", 40, 30).string();
  for (const auto& [input, options, road] : {std::tuple{floats, "", "float"},
                                             {words, "", "16"},
                                             {words, "--precision float", "float"},
                                             {floats, "--precision 16", "16"},
                                             {floats, "--range scale:2000", "16"},
                                             {floats, "--engine double", "16"},
                                             {words, "--centred", "float"}}) {
    const std::string line = "render " + input + " -o " + File("out.tif") +
                             " --overwrite --quiet --radius 5px " + options;
    fs::remove(folder / "m.jsonl");
    ASSERT_EQ(0, RunHere(line + " --manifest " + File("m.jsonl")).code) << options;
    EXPECT_NE(std::string::npos, Manifest().find(std::string("\"precision\":\"") + road + '"'))
        << options << Manifest();
    const std::string explained = RunHere(line + " --explain").text;
    EXPECT_NE(std::string::npos,
              explained.find(road == std::string("16")
                                 ? "Precision           16 bits, through the module\n"
                                 : "Precision           float, through the library"))
        << explained;
  }
}

TEST_F(FloatRoad, KeepsALightAboveWhite) {
  const std::string input = WriteFloats("in.tif", Lit(60, 50, 0.0F, 1000.0F));
  const auto run =
      RunHere("render " + input + " -o " + File("out.tif") + " --quiet --bits float --radius 9px");
  ASSERT_EQ(0, run.code) << run.text;
  EXPECT_EQ("", run.text);
  const Picture out = ReadFloats(folder / "out.tif");
  EXPECT_NEAR(1000.0, SumOf(out), 1e-3);
  const float brightest = *std::max_element(out.floats.begin(), out.floats.end());
  EXPECT_NEAR(1000.0 / (3.14159 * 81), static_cast<double>(brightest), 0.05);
}

TEST_F(FloatRoad, TellsWhatWholeNumbersCut) {
  const std::string input = WriteFloats("in.tif", Lit(60, 50, 0.0F, 1000.0F));
  const std::string to = "render " + input + " --quiet --radius 2px -o ";
  EXPECT_NE(
      std::string::npos,
      RunHere(to + File("out.png"))
          .text.find(" samples outside 0 to 1 are cut to that range: PNG has no place beyond\n"));
  EXPECT_NE(
      std::string::npos,
      RunHere(to + File("out.tif"))
          .text.find(" samples outside 0 to 1 are cut to that range: --bits float keeps them\n"));
}

TEST_F(FloatRoad, CountsWhatIsNotFinite) {
  Picture picture = Lit(30, 20, 0.5F, 0.5F);
  picture.floats[0] = std::nanf("");
  picture.floats[41] = INFINITY;
  picture.floats[42] = -INFINITY;
  const std::string input = WriteFloats("in.tif", picture);
  const auto run = RunHere("render " + input + " -o " + File("out.tif") + " --quiet --manifest " +
                           File("m.jsonl"));
  ASSERT_EQ(0, run.code);
  EXPECT_NE(std::string::npos, run.text.find("in.tif: 2 samples infinite were taken as 0\n"));
  EXPECT_NE(std::string::npos, run.text.find("in.tif: 1 sample not a number was taken as 0\n"));
  EXPECT_NE(std::string::npos, Manifest().find("\"clipped_samples\":2"));
  EXPECT_NE(std::string::npos, Manifest().find("\"not_numbers\":1"));
}

TEST_F(FloatRoad, MixesMasksAndGrowsInFloats) {
  Picture picture = Lit(40, 30, 0.0F, 100.0F);
  picture.alpha = glimmerhost::Alpha::kPremultiplied;
  const std::string input = WriteFloats("in.tif", picture);
  const std::string to =
      "render " + input + " --quiet --overwrite --bits float --radius 4px -o " + File("out.tif");
  const auto light = [&](const std::string& options) {
    const auto run = RunHere(to + " " + options);
    EXPECT_EQ(0, run.code) << run.text;
    const Picture out = ReadFloats(folder / "out.tif");
    const std::size_t middle =
        static_cast<std::size_t>(out.height / 2) * static_cast<std::size_t>(out.width) +
        static_cast<std::size_t>(out.width / 2);
    return out.floats[middle * 4];
  };
  const float blurred = light("");
  EXPECT_LT(blurred, 10.0F);
  EXPECT_NEAR(100.0, light("--mix 0"), 1e-4);
  EXPECT_NEAR(0.25 * 100.0 + 0.75 * static_cast<double>(blurred), light("--mix 0.75"), 1e-4);
  Picture mask = Lit(40, 30, 0.0F, 0.0F);
  WriteFloats("mask.tif", mask);
  EXPECT_NEAR(100.0, light("--mask " + File("mask.tif")), 1e-4);
  ASSERT_EQ(0, RunHere(to + " --grow").code);
  const Picture grown = ReadFloats(folder / "out.tif");
  EXPECT_EQ(50, grown.width);
  EXPECT_NEAR(100.0, SumOf(grown), 1e-3);
}

// Where it stands: half a pixel off in the module, and in floats by default, too.
TEST_F(FloatRoad, MovesNothingUnlessItIsToBeCentred) {
  const std::string input = WriteFloats("in.tif", Lit(40, 30, 0.0F, 1.0F));
  const auto middle = [&](const std::string& options) {
    const auto run = RunHere("render " + input + " -o " + File("out.tif") +
                             " --overwrite --quiet --bits float --radius 6px " + options);
    EXPECT_EQ(0, run.code) << run.text;
    const Picture out = ReadFloats(folder / "out.tif");
    double sumX = 0.0;
    for (std::size_t i = 0; i < out.PixelCount(); ++i) {
      sumX += static_cast<double>(out.floats[i * 4]) * static_cast<double>(i % 40);
    }
    return sumX / SumOf(out) - 20.0;
  };
  EXPECT_NEAR(-0.5, middle(""), 2e-3);
  EXPECT_NEAR(-0.5, middle("--precision 16"), 2e-2);
  EXPECT_NEAR(0.0, middle("--centred"), 2e-3);
}

TEST_F(FloatRoad, IsRefusedBesideWhatAsksForTheModule) {
  const std::string to = "render " + WriteInput("in.tif", 8, 8).string() + " -o " + File("out.tif");
  ExpectRefusal(to + " --precision half", 2, "--precision must be auto, float or 16, not half");
  ExpectRefusal(to + " --precision float --range clip", 2,
                "--precision float cannot be used with --range, which is for 16 bits");
  ExpectRefusal(to + " --precision float --engine double", 2,
                "--precision float cannot be used with --engine double: frames in floats do not go "
                "through a module");
  ExpectRefusal(to + " --centred --precision 16", 2,
                "--centred needs floats, and --precision 16 asks for 16 bits");
  ExpectRefusal(to + " --centred --engine single", 2,
                "--centred needs floats, and --engine single asks for 16 bits");
}

TEST_F(FloatRoad, SaysWhatToDoAboutPixelsThatItHasNotRoomFor) {
  const std::string input = WriteFloats("in.tif", Lit(40, 30, 0.0F, 1.0F));
  const std::string to =
      "render " + input + " -o " + File("out.tif") + " --radius 5px --quiet --overwrite";
  ExpectRefusal(to + " --pixel-aspect 200:1", 1,
                "a pixel aspect of 200:1 cannot be rendered in floats, where 1:100 to 100:1 can: "
                "--pixel-aspect gives another, and --precision 16 takes any");
  EXPECT_EQ(0, RunHere(to + " --pixel-aspect 200:1 --precision 16").code);
  EXPECT_EQ(0, RunHere(to + " --pixel-aspect 100:1").code);
}

// The three spreads: nothing, too dim to be seen as lit, and a disc of a single pixel.
TEST_F(FloatRoad, SaysThatAnApertureHoldsNothingWhereThePictureStays) {
  const std::string input = WriteFloats("in.tif", Lit(60, 40, 0.25F, 9.0F));
  const auto spread = [&](const char* name, float value) {
    return " --spread " + WriteFloats(name, Lit(60, 40, value, value));
  };
  const std::string to = "render " + input + " -o " + File("out.tif") +
                         " --bits float --quiet --overwrite --shape image";
  const std::string disc = " --radius-psf1 5px --radius-psf2 9px";

  const auto black = RunHere(to + disc + spread("black.tif", 0.0F));
  EXPECT_EQ(
      "glimmerhost: the aperture holds nothing, as its disc shows no red: the picture stays as it "
      "is\n",
      black.text);
  EXPECT_EQ(ReadFloats(input).floats, ReadFloats(File("out.tif")).floats);

  EXPECT_EQ("", RunHere(to + disc + spread("dim.tif", 0.1F)).text);

  const std::vector<float> blurred = ReadFloats(File("out.tif")).floats;
  EXPECT_LT(*std::max_element(blurred.begin(), blurred.end()), 1.01F);

  EXPECT_EQ("", RunHere(to + " --radius-psf1 0 --radius-psf2 0" + spread("white.tif", 1.0F)).text);
}

TEST_F(FloatRoad, IsToldOfByInfo) {
  EXPECT_NE(std::string::npos,
            RunHere("info").text.find("floating point  through the library, in floats"));
  EXPECT_NE(
      std::string::npos,
      RunHere("info --engine double").text.find("floating point  through the module, in 16 bits"));
}

// 16 copies of 8 bytes a pixel, and of 16.
TEST_F(FloatRoad, TakesTwiceTheMemoryForPictures) {
  const std::string input = WriteFloats("in.tif", Lit(1024, 512, 0.0F, 1.0F));
  const std::string to = "render " + input + " -o " + File("out.tif") + " --explain";
  EXPECT_NE(std::string::npos, RunHere(to).text.find(", 128 MiB for pictures"));
  EXPECT_NE(std::string::npos, RunHere(to + " --precision 16").text.find(", 64 MiB for pictures"));
}

// A frame of the other road is not the same.
TEST_F(FloatRoad, IsPartOfWhatMakesAFrameStale) {
  const std::string input = WriteFloats("in.tif", Lit(40, 30, 0.0F, 1.0F));
  const std::string to = "render " + input + " -o " + File("out.tif") +
                         " --skip-existing --manifest " + File("m.jsonl") + " --quiet";
  const auto isSkipped = [&](const std::string& options) {
    const std::string before = Manifest();
    EXPECT_EQ(0, RunHere(to + " " + options).code);
    return Manifest() == before;
  };
  EXPECT_FALSE(isSkipped(""));
  EXPECT_TRUE(isSkipped(""));
  EXPECT_FALSE(isSkipped("--precision 16"));
  EXPECT_FALSE(isSkipped("--centred"));
  EXPECT_TRUE(isSkipped("--centred"));
}

}  // namespace
