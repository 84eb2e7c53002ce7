// SPDX-License-Identifier: BSD-3-Clause
// The program as a person runs it.
#include "tests/host/glimmerhost/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/picture_file.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Picture;
using host_test::Outcome;
using host_test::Program;
using host_test::Read;
using host_test::RunProgram;

TEST_F(Program, BlursTheExample) {
  const Outcome outcome =
      RunProgram(Render(NIGHT, "out.png", "--shape polygon --sides 6 --radius 40px"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("", outcome.text);  // no progress line where there is no terminal
  const Picture before = Read(NIGHT);
  const Picture after = Read(folder / "out.png");
  EXPECT_EQ(before.width, after.width);
  EXPECT_EQ(before.height, after.height);
  EXPECT_EQ(16, after.bits);
  const auto roughness = [](const Picture& picture) {
    double sum = 0;
    for (std::size_t i = 4; i < picture.samples.size(); ++i) {
      sum += std::abs(picture.samples[i] - picture.samples[i - 4]);
    }
    return sum;
  };
  EXPECT_LT(roughness(after), 0.2 * roughness(before));
  EXPECT_EQ(1, folder.FileCount());
}

TEST_F(Program, KeepsColoursInTheirPlaces) {
  const fs::path input = WriteInput("in.png", 40, 30, Alpha::kNone, true);
  for (const char* name : {"out.png", "out.tif", "out.exr", "out.dpx"}) {
    if (!glimmerhost::FormatOf(name)) {
      continue;  // a build without it
    }
    ASSERT_EQ(0, RunProgram(Render(input, name, "--radius 5px")).code) << name;
    const Picture out = Read(folder / name);
    for (std::size_t i = 0; i < out.samples.size(); i += 4) {
      ASSERT_NEAR(50000, out.samples[i], 20) << name;
      ASSERT_NEAR(20000, out.samples[i + 1], 20) << name;
      ASSERT_NEAR(5000, out.samples[i + 2], 20) << name;
      ASSERT_EQ(65535, out.samples[i + 3]) << name;
    }
  }
}

// The picture's top must stay at the top, and its left at the left.
TEST_F(Program, KeepsSidesInTheirPlaces) {
  Picture picture;
  picture.width = 40;
  picture.height = 40;
  picture.samples.assign(40 * 40 * 4, 0);
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 40; ++x) {
      picture.samples[(y * 40 + x) * 4] = x < 20 ? 60000 : 0;      // red on the left
      picture.samples[(y * 40 + x) * 4 + 2] = y < 20 ? 60000 : 0;  // blue on top
      picture.samples[(y * 40 + x) * 4 + 3] = 65535;
    }
  }
  {
    glimmerhost::PictureOutput output(folder / "in.png", true);
    output.Write(picture, 16);
  }

  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "out.png", "--radius 4px")).code);

  const Picture out = Read(folder / "out.png");
  const auto at = [&](int x, int y, int c) { return out.samples[(y * 40 + x) * 4 + c]; };
  EXPECT_GT(at(5, 30, 0), 59000);
  EXPECT_LT(at(35, 30, 0), 100);
  EXPECT_GT(at(30, 5, 2), 59000);
  EXPECT_LT(at(30, 35, 2), 100);
}

TEST_F(Program, PremultipliesStraightAlphaUnlessToldNotTo) {
  // Two halves: opaque black, and clear white. Blurred premultiplied, the border is black
  // throughout; as they are, white bleeds in.
  Picture picture;
  picture.width = 40;
  picture.height = 10;
  picture.alpha = Alpha::kStraight;
  picture.samples.assign(40 * 10 * 4, 0);
  for (int i = 0; i < 400; ++i) {
    const bool clear = i % 40 >= 20;
    for (int c = 0; c < 3; ++c) {
      picture.samples[i * 4 + c] = clear ? 65535 : 0;
    }
    picture.samples[i * 4 + 3] = clear ? 0 : 65535;
  }
  {
    glimmerhost::PictureOutput output(folder / "in.png", true);
    output.Write(picture, 16);
  }

  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "pre.png", "--radius 4px")).code);
  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "as.png", "--radius 4px --alpha as-is")).code);

  EXPECT_LT(Read(folder / "pre.png").samples[20 * 4], 50);
  EXPECT_GT(Read(folder / "as.png").samples[20 * 4], 20000);
  const int alpha = Read(folder / "pre.png").samples[20 * 4 + 3];
  EXPECT_GT(alpha, 10000);
  EXPECT_LT(alpha, 50000);
}

TEST_F(Program, RendersTheSmallestAndOddSizes) {
  for (const auto& [w, h] : {std::pair{1, 1}, {1, 7}, {33, 1}, {37, 23}}) {
    const fs::path input = WriteInput("in.png", w, h, Alpha::kNone, true);
    const Outcome outcome = RunProgram(Render(input, "out.png", "--radius 0.3px --overwrite"));
    ASSERT_EQ(0, outcome.code) << outcome.text;
    const Picture out = Read(folder / "out.png");
    EXPECT_EQ(w, out.width);
    EXPECT_NEAR(50000, out.samples[0], 4);
  }
}

TEST_F(Program, TakesBitsFromItsOptionAndElseFromTheInput) {
  const fs::path input = WriteInput("in.png", 20, 20);
  ASSERT_EQ(0, RunProgram(Render(input, "same.png")).code);
  ASSERT_EQ(0, RunProgram(Render(input, "eight.png", "--bits 8")).code);
  ASSERT_EQ(0, RunProgram(Render(folder / "eight.png", "again.png")).code);

  EXPECT_EQ(16, Read(folder / "same.png").bits);
  EXPECT_EQ(8, Read(folder / "eight.png").bits);
  EXPECT_EQ(8, Read(folder / "again.png").bits);
}

TEST_F(Program, StretchesTheApertureByThePixelAspect) {
  const fs::path input = WriteInput("in.png", 60, 60);
  ASSERT_EQ(0, RunProgram(Render(input, "one.png", "--radius 6px")).code);
  ASSERT_EQ(0, RunProgram(Render(input, "two.png", "--radius 6px --pixel-aspect 2:1")).code);
  ASSERT_EQ(0,
            RunProgram(Render(input, "narrow.png", "--shape ellipse --radius-x 3px --radius-y 6px"))
                .code);

  EXPECT_NE(Read(folder / "one.png").samples, Read(folder / "two.png").samples);
  const auto two = Read(folder / "two.png").samples;
  const auto narrow = Read(folder / "narrow.png").samples;
  for (std::size_t i = 0; i < two.size(); ++i) {
    ASSERT_NEAR(narrow[i], two[i], 400) << i;  // other grids round the masks otherwise
  }
}

TEST_F(Program, ReplacesAFileOnlyIfTold) {
  const fs::path input = WriteInput("in.png", 20, 20);
  ExpectRefusal(Render(input, "in.png"), 1, "--overwrite");
  EXPECT_EQ(0, RunProgram(Render(input, "in.png", "--overwrite")).code);
  EXPECT_EQ(1, folder.FileCount());
}

TEST_F(Program, RefusesValuesWithTheOptionAndWhatIsAllowed) {
  const fs::path input = WriteInput("in.png", 20, 20);
  const struct {
    const char* options;
    const char* says;
  } cases[] = {
      {"--shape heart", "--shape must be circle, ellipse, polygon or image"},
      {"--set PRM_Shape=4", "must be circle, ellipse, polygon or image"},
      {"--emphasis 501", "--emphasis must be a number from 0 to 500"},
      {"--emphasis -1", "--emphasis must be a number from 0 to 500"},
      {"--threads 0", "--threads must be a whole number from 1 on"},
      {"--sides 51", "--sides must be a whole number from 3 to 50"},
      {"--radius 11px", "--radius must be "},
      {"--radius many", "--radius must be "},
      {"--rotation nan", "--rotation must be "},
      {"--bits 12", "--bits must be 8 or 16"},
      {"--alpha none", "--alpha must be premultiplied or as-is"},
      {"--pixel-aspect 0:1", "--pixel-aspect must be A:B"},
      {"--center 1", "--center must be "},
      {"--set PRM_Side=5", "PRM_Sides"},
      {"--nonsense", "nonsense"},
  };
  for (const auto& [options, says] : cases) {
    ExpectRefusal(Render(input, "out.png", options), 2, says);
  }
  ExpectRefusal("render", 2, "required");
  ExpectRefusal("", 2, "a command is missing");
  ExpectRefusal(Render(input, "out.xyz"), 2, "must be a name that ends in");
}

// Refusals are looked at in the tests' own process elsewhere; here the program ends by itself.
TEST_F(Program, EndsWithTheLineAndTheCodeOfItsCommandLine) {
  const fs::path input = WriteInput("in.png", 20, 20);
  const struct {
    std::string arguments;
    int code;
    const char* says;
  } cases[] = {
      {Render(input, "in.png"), 1, "in.png: exists already; --overwrite replaces it"},
      {Render(input, "out.png", "--bits 12"), 2, "--bits must be 8 or 16"},
      {Render(folder / "missing.png", "out.png"), 3, "missing.png: "},
  };
  for (const auto& [arguments, code, says] : cases) {
    ExpectProgramRefusal(arguments, code, says);
    ExpectRefusal(arguments, code, says);
    const lx_test::CommandLineRun here =
        lx_test::RunCommandLineHere(lx_test::SplitArguments(arguments));
    EXPECT_EQ(RunProgram(arguments).text, here.err);
    EXPECT_EQ("", here.out);
  }
}

TEST_F(Program, TakesANegativeRotation) {
  const fs::path input = WriteInput("in.png", 20, 20);
  EXPECT_EQ(0, RunProgram(Render(input, "out.png", "--shape ellipse --rotation -30")).code);
}

TEST_F(Program, FailsInOneLineForWhatItCannotRead) {
  std::ofstream(folder / "text.png") << "no picture";
  ExpectRefusal(Render(folder / "text.png", "out.png"), 1, "text.png: ");
  ExpectRefusal(Render(folder / "missing.png", "out.png"), 3, "not found");
  const fs::path input = WriteInput("cut.png", 100, 100);
  fs::resize_file(input, fs::file_size(input) / 2);
  ExpectRefusal(Render(input, "out.png"), 1, "cut.png: ");
}

TEST_F(Program, FailsForAPictureThatTheGridCannotTake) {
  const fs::path input = WriteInput("wide.png", 8200, 2);
  ExpectRefusal(Render(input, "out.png", "--radius 1px --engine exact"), 1, "8192 pixels at most");
  const fs::path wider = WriteInput("wider.png", 32760, 2);
  ExpectRefusal(Render(wider, "out.png", "--radius 10px"), 1, "32768 pixels at most");
}

// A picture of black with lights of one pixel.
Picture Lights(int width, int height, const std::vector<std::pair<int, int>>& lights) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.samples.assign(picture.PixelCount() * 4, 0);
  for (std::size_t i = 3; i < picture.samples.size(); i += 4) {
    picture.samples[i] = 65535;
  }
  for (const auto& [x, y] : lights) {
    std::fill_n(picture.samples.begin() + (y * width + x) * 4, 4, std::uint16_t{65535});
  }
  return picture;
}

void Write(const Picture& picture, const fs::path& file) {
  glimmerhost::PictureOutput output(file, true);
  output.Write(picture, 16);
}

int RedAt(const Picture& picture, int x, int y) {
  return picture.samples[static_cast<std::size_t>((y * picture.width + x) * 4)];
}

TEST_F(Program, OpensLightsIntoBrightAperturesWithEmphasis) {
  Write(Lights(120, 90, {{60, 45}}), folder / "in.png");
  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "plain.png", "--radius 10px")).code);
  ASSERT_EQ(0,
            RunProgram(Render(folder / "in.png", "lens.png", "--radius 10px --emphasis 75")).code);

  const Picture plain = Read(folder / "plain.png");
  const Picture lens = Read(folder / "lens.png");
  for (const auto& [x, y] : {std::pair{60, 45}, {54, 45}, {66, 45}, {60, 51}}) {
    EXPECT_LT(RedAt(plain, x, y), 300);
    EXPECT_GT(RedAt(lens, x, y), 50000);
  }
  EXPECT_LT(RedAt(lens, 60, 60), 20);
}

TEST_F(Program, WarnsOfNoiseAboveTheEmphasisFromWhichTheEngineHasIt) {
  const fs::path input = WriteInput("in.png", 20, 20);
  EXPECT_EQ("", RunProgram(Render(input, "fast.png", "--emphasis 500")).text);
  for (const auto& [engine, quiet] :
       {std::pair<std::string, int>{"exact", 75}, {"double", 75}, {"single", 50}}) {
    const std::string arguments = " --overwrite --engine " + engine + " --emphasis ";
    const std::string most = std::to_string(quiet);
    const std::string more = std::to_string(quiet + 1);
    EXPECT_EQ("", RunProgram(Render(input, "out.png", arguments + most)).text);
    const Outcome outcome = RunProgram(Render(input, "out.png", arguments + more));
    EXPECT_EQ(0, outcome.code);
    EXPECT_EQ("glimmerhost: an emphasis of " + more +
                  " shows rounding noise in dark areas; up to " + most +
                  ", and with the engine fast at any, none can be seen\n",
              outcome.text);
  }
}

// A triangle that points up and to the left stays one: the picture of the aperture is seen by
// every light as it is. It is centred on the frame, whatever its own size.
TEST_F(Program, ShowsLightsAsThePictureOfTheAperture) {
  Write(Lights(120, 90, {{60, 45}}), folder / "in.png");
  std::vector<std::pair<int, int>> corner;
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x + y < 12; ++x) {
      corner.emplace_back(x + 14, y + 14);
    }
  }
  Write(Lights(40, 40, corner), folder / "small.png");
  // The middle of even sizes: rows count from the bottom.
  Write(Lights(300, 20, {{150, 9}}), folder / "wide.png");
  Write(Lights(7, 7, {{3, 3}}), folder / "odd.png");
  const std::string shape =
      "--shape image --radius-psf1 15px --radius-psf2 14px --emphasis 60 --spread '";

  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "small_out.png",
                                 shape + (folder / "small.png").string() + "'"))
                   .code);
  const Picture out = Read(folder / "small_out.png");
  EXPECT_GT(RedAt(out, 55, 40), 40000);
  EXPECT_GT(RedAt(out, 64, 40), 40000);
  EXPECT_GT(RedAt(out, 55, 49), 40000);
  EXPECT_LT(RedAt(out, 64, 49), 1000);
  EXPECT_LT(RedAt(out, 52, 40), 1000);
  // One pixel in the middle: the light stays what it is.
  for (const char* name : {"wide", "odd"}) {
    ASSERT_EQ(0, RunProgram(Render(folder / "in.png", std::string(name) + "_out.png",
                                   shape + (folder / name).string() + ".png'"))
                     .code);
    const Picture same = Read(folder / (std::string(name) + "_out.png"));
    EXPECT_GT(RedAt(same, 60, 45), 65000) << name;
    EXPECT_LT(RedAt(same, 61, 45), 1000) << name;
  }
}

TEST_F(Program, TakesTheApertureFromTheFrameWithoutASpreadPicture) {
  Write(Lights(120, 90, {{30, 20}, {34, 20}, {90, 60}}), folder / "in.png");
  // The disc holds the first two lights: each light becomes two, four apart.
  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "out.png",
                                 "--shape image --center 32px,20px --radius-psf1 6px "
                                 "--radius-psf2 7px --emphasis 60"))
                   .code);
  const Picture out = Read(folder / "out.png");
  int lit = 0;
  for (int x = 80; x < 100; ++x) {
    int column = 0;
    for (int y = 55; y < 65; ++y) {
      column = std::max(column, RedAt(out, x, y));
    }
    lit += column > 40000 ? 1 : 0;
  }
  EXPECT_EQ(2, lit);
}

TEST_F(Program, LeavesAPictureWhoseApertureHoldsNothingAndSaysSo) {
  const fs::path input = WriteInput("in.png", 60, 40);
  Picture green = Read(WriteInput("green.png", 60, 40, Alpha::kNone, true));
  for (std::size_t i = 0; i < green.samples.size(); i += 4) {
    green.samples[i] = 0;
    green.samples[i + 1] = 65535;
  }
  glimmerhost::PictureOutput(folder / "green.png", true).Write(green, 16);
  const std::string disc = "--overwrite --shape image --radius-psf1 8px --radius-psf2 12px ";
  for (const std::string& options :
       {disc + "--spread '" + (folder / "green.png").string() + "'", disc + "--center 200%,50%",
        disc + "--center 200%,50% --emphasis 20"}) {
    const Outcome outcome = RunProgram(Render(input, "out.png", options));
    EXPECT_EQ(0, outcome.code) << options << outcome.text;
    EXPECT_EQ(
        "glimmerhost: the aperture holds nothing, as its disc shows no red: the picture stays "
        "as it is\n",
        outcome.text)
        << options;
    EXPECT_EQ(Read(input).samples, Read(folder / "out.png").samples) << options;
  }
}

TEST_F(Program, SaysWhichOptionsHaveNoEffectAndDoesNotReadASpreadInVain) {
  const fs::path input = WriteInput("in.png", 20, 16);
  const std::string circle = " has no effect with the shape circle\n";
  for (const auto& [options, says] : {
           std::pair<std::string, std::string>{"--sides 5", "glimmerhost: --sides" + circle},
           {"--spread /no/such.png", "glimmerhost: --spread" + circle},
           {"--shape polygon --sides 5", ""},
           {"--range log:8", "glimmerhost: --range has no effect on a picture of whole numbers\n"},
       }) {
    const Outcome outcome = RunProgram(Render(input, "out.png", "--overwrite " + options));
    EXPECT_EQ(0, outcome.code) << options << outcome.text;
    EXPECT_EQ(says, outcome.text) << options;
  }
}

TEST_F(Program, GivesTheSamePictureOnOneProcessor) {
  const fs::path input = WriteInput("in.png", 200, 150);
  ASSERT_EQ(0, RunProgram(Render(input, "all.png", "--radius 9px --emphasis 30")).code);
  ASSERT_EQ(0, RunProgram(Render(input, "one.png", "--radius 9px --emphasis 30 --threads 1")).code);
  const auto all = Read(folder / "all.png").samples;
  const auto one = Read(folder / "one.png").samples;
  for (std::size_t i = 0; i < all.size(); ++i) {
    // The transforms' plans differ with their threads; samples pass the border in 15 bits.
    ASSERT_NEAR(all[i], one[i], 4) << i;
  }
}

// --- psf ---

std::string Psf(const fs::path& output, const std::string& options) {
  return "psf -o '" + output.string() + "' " + options;
}

TEST_F(Program, ShowsTheApertureOfAPointEnlarged) {
  ASSERT_EQ(0, RunProgram(Psf(folder / "disc.png", "--radius 20px --size 200x160 --zoom 3")).code);

  const Picture psf = Read(folder / "disc.png");
  // Twenty pixels and a border of 2 on either side of the light.
  EXPECT_EQ((2 * 22 + 1) * 3, psf.width);
  EXPECT_EQ(psf.width, psf.height);
  EXPECT_TRUE(psf.grey);
  // Its centre lies half a pixel to the left of the light, and half a one below it.
  for (int y = 0; y < 45; ++y) {
    for (int x = 0; x < 45; ++x) {
      const double distance = std::hypot(x - 22 + 0.5, y - 22 - 0.5);
      const int sample = RedAt(psf, x * 3 + 1, y * 3 + 1);
      if (distance < 19) {
        ASSERT_GT(sample, 64000) << x << "," << y;
      } else if (distance > 21) {
        ASSERT_EQ(0, sample) << x << "," << y;
      }
    }
  }
  // Each pixel is a square of three.
  for (int k = 0; k < 9; ++k) {
    EXPECT_EQ(RedAt(psf, 2 * 3, 22 * 3), RedAt(psf, 2 * 3 + k % 3, 22 * 3 + k / 3));
  }
}

TEST_F(Program, ShowsAnApertureOfAPictureWithItsSoftEdge) {
  Picture white = Lights(50, 50, {});
  std::fill(white.samples.begin(), white.samples.end(), std::uint16_t{65535});
  Write(white, folder / "white.png");
  ASSERT_EQ(0, RunProgram(Psf(folder / "psf.png",
                              "--shape image --radius-psf1 5px --radius-psf2 15px --size 100x100 "
                              "--zoom 1 --spread '" +
                                  (folder / "white.png").string() + "'"))
                   .code);
  const Picture psf = Read(folder / "psf.png");
  const int middle = psf.width / 2;
  EXPECT_GT(RedAt(psf, middle + 4, middle), 65000);
  // Half way down the ramp; the mask has 8 bits.
  EXPECT_NEAR(0.5 * 65535, RedAt(psf, middle + 10, middle), 400);
  EXPECT_NEAR(0.2 * 65535, RedAt(psf, middle - 13, middle), 400);
}

TEST_F(Program, RefusesAPsfThatItCannotShow) {
  const fs::path out = folder / "psf.png";
  ExpectRefusal(Psf(out, "--shape image"), 2, "--spread");
  ExpectRefusal(Psf(out, "--size 100"), 2, "--size must be WIDTHxHEIGHT");
  ExpectRefusal(Psf(out, "--size 0x10"), 2, "--size must be ");
  ExpectRefusal(Psf(out, "--size 10x32769"), 2, "from 1 to 32768");
  ExpectRefusal(Psf(out, "--zoom 65"), 2, "--zoom must be a whole number from 1 to 64");
  ExpectRefusal(Psf(out, "--sides 2"), 2, "--sides must be ");
  ExpectRefusal(Psf(out, "--size 8000x10 --radius 50% --engine exact"), 1, "8192");
  ExpectRefusal(Psf(out, "--size 30000x10 --radius 50%"), 1, "32768");
  ExpectRefusal(Psf(out, "--size 10x10 --pixel-aspect 1000000:1"), 1, "holds no pixel");
  ExpectRefusal("psf", 2, "required");
}

TEST_F(Program, SaysThatAnApertureIsLargerThanTheFrame) {
  const Outcome outcome = RunProgram(Psf(folder / "psf.png", "--radius 40px --size 90x60"));
  EXPECT_EQ(0, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("a larger --size shows all of it"));
}

TEST_F(Program, SaysWhatIsWrongWithAModule) {
  const fs::path input = WriteInput("in.png", 20, 20);
  ExpectProgramRefusal(Render(input, "out.png", "--module /no/such.so"), 3, "not found");
  ExpectProgramRefusal(Render(input, "out.png", "--module '" NIGHT "'"), 1,
                       "not a module that can be loaded");
  ExpectProgramRefusal(Render(input, "out.png", "--module '" NO_MODULE "'"), 1,
                       "no function moduleInit");
  ExpectProgramRefusal(Render(input, "out.png", "--module '" BROKEN_MODULE "'"), 1,
                       "the module failed: it is \"broken\" (broken_module, line 12)");
}

TEST_F(Program, TellsOfTheModuleAndItsParameters) {
  const Outcome outcome = RunProgram("info");

  EXPECT_EQ(0, outcome.code);
  for (const char* part :
       {"{2FD3AFEC-CDAB-453D-9E3A-F3E6DDA03F08}", "{1FD3AFEC-CDAB-453D-9E3A-F3E6DDA03F08}",
        "DeveloperName:<LXTorvane Q-S> EffectName:<GlimmerBlur>", "PRM_RadiusPSF2",
        "a whole number from 3 to 50; default 6; option --sides"}) {
    EXPECT_NE(std::string::npos, outcome.text.find(part)) << part;
  }
}

// Its words, whatever lines they stand in.
std::string OneSpaced(const std::string& text) {
  std::istringstream words(text);
  std::string line;
  for (std::string word; words >> word;) {
    line += (line.empty() ? "" : " ") + word;
  }
  return line;
}

TEST_F(Program, KeepsItsHelpInEightyColumns) {
  for (const char* command :
       {"", "render", "submit", "psf", "page", "session", "wisdom", "check", "presets", "info"}) {
    std::istringstream help(RunProgram(std::string(command) + " --help").text);
    for (std::string line; std::getline(help, line);) {
      EXPECT_LE(line.size(), 80U) << line;
      EXPECT_EQ(std::string::npos, line.find("TEXT")) << line;
      EXPECT_EQ(std::string::npos, line.find('{')) << line;
    }
  }
}

TEST_F(Program, NamesTheNearestForAMistypedCommandOrOption) {
  ExpectRefusal("rendr", 2, "unknown command \"rendr\"; did you mean \"render\"?");
  ExpectRefusal("render a.png -o b.png --radus=4px", 2,
                "unknown option \"--radus\"; did you mean \"--radius\"?");
  ExpectRefusal("render --emphsis 4", 2,
                "unknown option \"--emphsis\"; did you mean \"--emphasis\"?");
  ExpectRefusal("wisdom --grids 512", 2, "unknown option \"--grids\"; did you mean \"--grid\"?");
  ExpectRefusal("render -r 4", 2, "unknown option \"-r\"\n");
  ExpectRefusal("frobnicate", 2, "unknown command \"frobnicate\"\n");
  ExpectRefusal("--versin", 2, "unknown option \"--versin\"; did you mean \"--version\"?");
  ExpectRefusal("render a.png b.png -o c.png", 2, "unexpected argument \"b.png\"");
  ExpectRefusal("render a.png -o b.png --radius", 2, "--radius needs a value");
  ExpectRefusal("render -o b.png", 2, "INPUT is required");
}

TEST_F(Program, SaysThatAnOptionWasGivenTwice) {
  ExpectRefusal("render a.png -o b.png --radius 4px --radius 5px", 2,
                "--radius can be given only once\n");
  ExpectRefusal("render a.png -o b.png --bits 8 --bits 16", 2, "--bits can be given only once\n");
  ExpectRefusal("psf -o a.png -o b.png", 2, "--output can be given only once\n");
}

TEST_F(Program, TakesEmptyBitsForBitsThatAreNotGiven) {
  const fs::path input = WriteInput("in.png", 20, 10);

  const Outcome outcome = RunProgram(Render(input, "out.png", "--radius 2px --bits ''"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
}

TEST_F(Program, GivesTheLimitOfARadiusInTheUnitThatWasTyped) {
  const std::string render = Render(WriteInput("in.png", 20, 10), "out.png");
  ExpectRefusal(render + "--radius 11px", 2, "--radius must be between 0 and 10px, not 11px\n");
  ExpectRefusal(render + "--radius 101%", 2, "--radius must be between 0 and 100%, not 101%\n");
  ExpectRefusal(render + "--radius-x -0.5", 2, "--radius-x must be between 0 and 1, not -0.5\n");
}

TEST_F(Program, ExplainsEveryOption) {
  const Outcome outcome = RunProgram("render --help");

  EXPECT_EQ(0, outcome.code);
  for (const char* option :
       {"--shape",       "--radius",      "--radius-x",  "--radius-y",   "--match",
        "--sides",       "--rotation",    "--emphasis",  "--emph-alpha", "--center",
        "--radius-psf1", "--radius-psf2", "--set",       "--spread",     "--pixel-aspect",
        "--alpha",       "--bits",        "--overwrite", "--quiet",      "--module",
        "--threads",     "--params"}) {
    EXPECT_NE(std::string::npos, outcome.text.find(option)) << option;
  }
  // What this build reads and writes differs between systems.
  EXPECT_NE(std::string::npos, OneSpaced(outcome.text).find(glimmerhost::kReadableFormats));
  EXPECT_NE(std::string::npos, OneSpaced(outcome.text).find(glimmerhost::kWritableEndings));
  EXPECT_NE(std::string::npos, RunProgram("--version").text.find("5.13"));
  EXPECT_EQ(0, RunProgram("--help").code);
}

}  // namespace
