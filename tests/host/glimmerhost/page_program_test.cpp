// SPDX-License-Identifier: BSD-3-Clause
// The page and its handles as a person plays them through the program.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/host/glimmerhost/program.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Picture;
using host_test::Outcome;
using host_test::Program;
using host_test::Read;
using host_test::RunProgram;

class PageProgram : public Program {
 public:
  // A session of these lines behind a picture of 200 x 100, written into the folder.
  std::string Session(const std::string& lines, const std::string& options = "") {
    if (!fs::exists(folder / "in.png")) {
      WriteInput("in.png", 200, 100);
    }
    std::ofstream(folder / "a.session") << "load in.png\n" << lines;
    return "session '" + (folder / "a.session").string() + "' -o '" + (folder / "").string() +
           "' " + options;
  }

  void ExpectSession(const std::string& lines, const std::string& options = "") {
    const Outcome outcome = RunProgram(Session(lines, options));
    EXPECT_EQ(0, outcome.code) << outcome.text;
    EXPECT_EQ("", outcome.text);
  }

  // The calls of a session, without the steps.
  std::vector<std::string> TraceOf(const std::string& lines, const std::string& from) {
    const std::string text = RunProgram(Session(lines, "--trace")).text;
    std::vector<std::string> calls;
    std::size_t start = text.find(from);
    while (start < text.size()) {
      const std::size_t end = text.find('\n', start);
      calls.push_back(text.substr(start, end - start));
      start = end + 1;
    }
    return calls;
  }
};

std::string Sample(const Picture& picture, int x, int y) {
  const std::uint16_t* sample =
      picture.samples.data() +
      (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
       static_cast<std::size_t>(x)) *
          4;
  return std::to_string(sample[0]) + " " + std::to_string(sample[1]) + " " +
         std::to_string(sample[2]);
}

constexpr const char* kWhite = "65535 65535 65535";
constexpr const char* kYellow = "65535 65535 0";
constexpr const char* kBlack = "0 0 0";

TEST_F(PageProgram, PaintsTheHandlesOnThePicture) {
  const fs::path input = WriteInput("in.png", 200, 100);
  const fs::path out = folder / "page.png";
  const Outcome outcome =
      RunProgram("page '" + input.string() + "' -o '" + out.string() +
                 "' --shape image --center 25%,60% --radius-psf1 20px --radius-psf2 30px");

  ASSERT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("", outcome.text);
  const Picture page = Read(out);
  const Picture before = Read(input);
  // The crosshair's arms reach from 10 to 25 pixels away, in white.
  for (const int away : {10, 25}) {
    EXPECT_EQ(kWhite, Sample(page, 50 + away, 40));
    EXPECT_EQ(kWhite, Sample(page, 50, 40 + away));
  }
  EXPECT_EQ(Sample(before, 50 + 9, 40), Sample(page, 50 + 9, 40));
  EXPECT_EQ(Sample(before, 50, 40 - 27), Sample(page, 50, 40 - 27));
  // Its handle: five pixels of outline within seven of black.
  EXPECT_EQ(kWhite, Sample(page, 47, 37));
  EXPECT_EQ(kBlack, Sample(page, 46, 36));
  EXPECT_EQ(Sample(before, 49, 39), Sample(page, 49, 39));
  // The handles of the rings, 20 and 30 pixels to the right.
  EXPECT_EQ(kYellow, Sample(page, 67, 37));
  EXPECT_EQ(kBlack, Sample(page, 66, 36));
  EXPECT_EQ(kYellow, Sample(page, 77, 37));
  EXPECT_EQ(Sample(before, 150, 80), Sample(page, 150, 80));
}

TEST_F(PageProgram, SaysThatOtherShapesHaveNoHandles) {
  const fs::path input = WriteInput("in.png", 40, 30);
  const Outcome outcome =
      RunProgram("page '" + input.string() + "' -o '" + (folder / "page.png").string() + "'");

  EXPECT_EQ(0, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("--shape image has handles on the picture"));
  EXPECT_EQ(Read(input).samples, Read(folder / "page.png").samples);
}

TEST_F(PageProgram, TakesAParameterFile) {
  const fs::path input = WriteInput("in.png", 200, 100);
  std::ofstream(folder / "film.toml") << "shape = \"image\"\ncenter = \"25%,60%\"\n";
  const Outcome outcome =
      RunProgram("page '" + input.string() + "' -o '" + (folder / "page.png").string() +
                 "' --params '" + (folder / "film.toml").string() + "'");

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ(kWhite, Sample(Read(folder / "page.png"), 60, 40));
}

TEST_F(PageProgram, StretchesRingsByThePixelAspect) {
  const fs::path input = WriteInput("in.png", 200, 100);
  const Outcome outcome =
      RunProgram("page '" + input.string() + "' -o '" + (folder / "page.png").string() +
                 "' --shape image --radius-psf1 20px --pixel-aspect 2:1");

  EXPECT_EQ(0, outcome.code) << outcome.text;
  const Picture page = Read(folder / "page.png");
  // Straight below the middle the outline runs just inside of 40 pixels.
  EXPECT_EQ(kYellow, Sample(page, 100, 50 + 39));
  EXPECT_NE(kYellow, Sample(page, 100, 50 + 19));
}

TEST_F(PageProgram, RefusesAPageThatItCannotWrite) {
  const fs::path input = WriteInput("in.png", 20, 20);
  ExpectRefusal("page '" + input.string() + "' -o '" + input.string() + "'", 1, "--overwrite");
  ExpectRefusal("page '" + input.string() + "' -o x.xyz", 2, "must be a name that ends in");
  ExpectRefusal(
      "page '" + (folder / "none.png").string() + "' -o '" + (folder / "page.png").string() + "'",
      3, "not found");
  ExpectRefusal("page", 2, "required");
}

TEST_F(PageProgram, PlaysADragIntoTheStore) {
  ExpectSession(
      "set PRM_Shape image\n"
      "set PRM_RadiusPSF2 0.2\n"
      "draw\n"
      "press 100 50\n"
      "move 60 40\n"
      "release 50 25\n"
      "expect PRM_Center_X 0.25\n"
      "expect PRM_Center_Y 0.75\n"
      "press 70 25\n"  // the second ring's handle: 200 x 0.2 / 2 = 20 away
      "move 80 65\n"   // 30 and 40: 50 of 200, twice
      "release 0 0\n"
      "expect PRM_RadiusPSF2 0.5\n");
}

TEST_F(PageProgram, LetsThePictureFollowTheDrag) {
  ExpectSession(
      "set PRM_Shape image\n"
      "set PRM_RadiusPSF1 0.1\n"
      "set PRM_RadiusPSF2 0.2\n"
      "draw\n"
      "render\n"
      "save before.png\n"
      "expect same before.png\n"
      "press 100 50\n"
      "move 60 40\n"
      "release 60 40\n"
      "expect same before.png\n"
      "render\n"
      "expect different before.png\n"
      "save after.png\n"
      "show source\n"
      "expect same in.png\n"
      "show result\n"
      "expect same after.png\n");

  EXPECT_NE(Read(folder / "before.png").samples, Read(folder / "after.png").samples);
}

TEST_F(PageProgram, RendersWhatRenderRenders) {
  ExpectSession("set PRM_Shape polygon\nset PRM_RadiusX 0.1\nset PRM_Sides 5\nrender\nsave a.png\n",
                "--emphasis 20");
  ASSERT_EQ(0, RunProgram(Render(folder / "in.png", "b.png",
                                 "--shape polygon --radius-x 0.1 --sides 5 --emphasis 20"))
                   .code);

  EXPECT_EQ(Read(folder / "b.png").samples, Read(folder / "a.png").samples);
}

TEST_F(PageProgram, PaintsASnapshotAndLeavesTheSavedPictureClean) {
  ExpectSession("set PRM_Shape image\ndraw\nsnapshot s.png\nsave p.png\n");

  EXPECT_EQ(kWhite, Sample(Read(folder / "s.png"), 110, 50));
  EXPECT_EQ(Read(folder / "in.png").samples, Read(folder / "p.png").samples);
}

TEST_F(PageProgram, KeepsStraightAlphaInWhatItSaves) {
  WriteInput("in.png", 200, 100, Alpha::kStraight, true);
  ExpectSession("save p.png\nexpect same p.png\n");

  const Picture picture = Read(folder / "p.png");
  EXPECT_EQ(Alpha::kStraight, picture.alpha);
  EXPECT_NEAR(50000, picture.samples[0], 1);
}

TEST_F(PageProgram, ShowsThePartsOfTheShape) {
  ExpectSession(
      "expect row PRM_RadiusX shown\n"
      "expect row PRM_Sides hidden\n"
      "set PRM_Shape polygon\n"
      "expect row PRM_Sides shown\n"
      "expect row PRM_RadiusY enabled\n"
      "set PRM_Match on\n"
      "expect row PRM_RadiusY disabled\n"
      "set PRM_Shape image\n"
      "expect row PRM_RadiusX hidden\n"
      "expect row PRM_Center_X shown\n");
}

TEST_F(PageProgram, OpensAndClosesTheColourBox) {
  ExpectSession(
      "expect row lxColourBoxWidgetC hidden\n"
      "colour\n"
      "expect row lxColourBoxWidgetC shown\n"
      "expect row lxColourButtonWidgetC shown\n"
      "colour\n"
      "expect row lxColourBoxWidgetC shown\n"
      "notify lxColourButton_PRM\n"
      "expect row lxColourBoxWidgetC hidden\n"
      "colour\n"
      "notify PRM_GlimmerFocus_Page\n"
      "expect row lxColourButtonWidgetC hidden\n");
}

TEST_F(PageProgram, TakesAnotherPictureUnderTheSamePage) {
  WriteInput("wide.png", 400, 100);
  ExpectSession(
      "set PRM_Shape image\n"
      "load wide.png\n"
      "draw\n"
      "press 200 50\n"
      "release 100 50\n"
      "expect PRM_Center_X 0.25\n"
      "expect same wide.png\n");
}

TEST_F(PageProgram, CutsTheApertureOutOfASecondPicture) {
  WriteInput("other.png", 50, 50, Alpha::kNone, true);
  ExpectSession(
      "set PRM_Shape image\n"
      "set PRM_RadiusPSF1 0.1\n"
      "render\n"
      "save own.png\n"
      "spread other.png\n"
      "render\n"
      "expect different own.png\n");
}

TEST_F(PageProgram, PrintsThePage) {
  const Outcome outcome = RunProgram(Session("set PRM_Shape polygon\nprint page\n"));

  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(0U, outcome.text.find("Shape of the aperture"));
  EXPECT_NE(std::string::npos, outcome.text.find("polygon  circle, ellipse, polygon or image"));
  EXPECT_NE(std::string::npos, outcome.text.find("[Close Colour Box]"));
}

TEST_F(PageProgram, TracesEveryCallOfAStep) {
  const auto calls = TraceOf("set PRM_Sides 5\n", "  ui.parameterChanged");

  EXPECT_EQ(
      (std::vector<std::string>{"  ui.parameterChanged(\"PRM_Sides\")", "    result.dialog()",
                                "    store.getFloat(\"PRM_Sides\", 0) = 5", "    result.update()",
                                "    factory.instanceDestroyed()", "  moduleCleanUp()",
                                "    registrar.removeClass(a constructor)",
                                "    registrar.removeClass(a constructor)"}),
      calls);
}

TEST_F(PageProgram, TracesARender) {
  auto calls = TraceOf("render\n", "  render.setTarget");
  calls.erase(std::remove_if(calls.begin(), calls.end(),
                             [](const std::string& c) { return c.find("store.") == 4; }),
              calls.end());

  EXPECT_EQ(
      (std::vector<std::string>{
          "  render.setTarget(target)", "  render.setInputs(inputs)", "    inputs.mainInput()",
          "    inputs.namedInput(\"PRM_Spread\") = none", "  render.setParams(store)",
          "  render.renderFrame(1, 0, 0)", "    target.format()", "    format.descriptor()",
          "    clip.frame(1, descriptor, 3)", "    target.outputFrame(3)"}),
      std::vector<std::string>(calls.begin(), calls.begin() + 10));
}

TEST_F(PageProgram, StopsAtWhatItDidNotExpect) {
  const auto unexpected = [this](const std::string& line, const std::string& says) {
    const Outcome outcome =
        RunProgram(Session("set PRM_Shape image\n" + line + "\nsave late.png\n"));
    EXPECT_EQ(1, outcome.code);
    EXPECT_EQ(
        "glimmerhost: " + (folder / "a.session").string() + ":3: " + line + ": " + says + "\n",
        outcome.text);
    EXPECT_FALSE(fs::exists(folder / "late.png"));
  };
  unexpected("expect PRM_Center_X 0.4", "it is 0.5");
  unexpected("expect PRM_Center_X 0.4 within 0.09", "it is 0.5");
  unexpected("expect PRM_Shape circle", "it is image");
  unexpected("expect PRM_Match on", "it is off");
  unexpected("expect row PRM_Sides shown", "it is hidden");
  unexpected("expect row PRM_Center_X hidden", "it is shown");
  unexpected("expect row PRM_RadiusY enabled", "it is disabled");
  unexpected("expect row PRM_Sides disabled", "it is enabled");
  unexpected("expect row Nothing shown", "the page has no such row");
  unexpected("expect different in.png", "the picture is the same");
  WriteInput("other.png", 200, 100, Alpha::kNone, true);
  unexpected("expect same other.png", "the picture is another");
}

TEST_F(PageProgram, RefusesAWrongScriptBeforeAnythingIsDone) {
  ExpectRefusal(Session("save x.png\npres 1 2\n"), 2,
                "a.session:3: pres 1 2: unknown step \"pres\"; did you mean \"press\"?");
  ExpectRefusal(Session("render\nsave in.png\n"), 1, "in.png: exists already");
  ExpectRefusal(Session("save x.xyz\n"), 2, "must be a name that ends in");
  ExpectRefusal("session '" + (folder / "none.session").string() + "'", 3, "not found");
  ExpectRefusal(Session("draw\n", "--radius 200%"), 2, "--radius must be ");
  ExpectRefusal("session", 2, "required");
}

TEST_F(PageProgram, SaysWhichStepFailed) {
  std::ofstream(folder / "text.png") << "no picture";
  ExpectRefusal(Session("draw\nspread text.png\n"), 1, "a.session:3: ");
  ExpectProgramRefusal(Session("draw\n", "--module '" BROKEN_MODULE "'"), 1,
                       "a.session:1: " BROKEN_MODULE ": the module has no class for a ui");
}

TEST_F(PageProgram, PlaysTenThousandRandomSteps) {
  std::mt19937 random(11);
  const auto below = [&random](unsigned limit) { return random() % limit; };
  const auto one = [&](const std::vector<std::string>& of) {
    return of[below(static_cast<unsigned>(of.size()))];
  };
  std::string lines;
  for (int step = 0; step < 10000; ++step) {
    switch (below(8)) {
      case 0:
        lines += one({"set PRM_Shape circle", "set PRM_Shape ellipse", "set PRM_Shape polygon",
                      "set PRM_Shape image", "set PRM_Shape image"});
        break;
      case 1:
        lines += one({"set PRM_Match on", "set PRM_Match off", "set PRM_RadiusPSF1 0.1",
                      "set PRM_RadiusPSF2 1", "set PRM_Center_X -1", "set PRM_Center_Y 0.5"});
        break;
      case 2:
        lines += one({"draw", "draw", "draw", "colour", "notify PRM_GlimmerFocus_Page",
                      "notify lxColourButton_PRM", "notify PRM_Other"});
        break;
      case 3:
        lines += below(40) == 0 ? "load in.png" : "show source";
        break;
      default:
        lines += one({"press ", "move ", "move ", "release "}) + std::to_string(below(260)) + " " +
                 std::to_string(below(130));
    }
    lines += '\n';
  }

  const Outcome outcome = RunProgram(Session(lines));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("", outcome.text);
}

TEST_F(PageProgram, TellsEveryStepInItsHelpAndInTheDocumentation) {
  const std::string help = RunProgram("session --help").text;
  std::ifstream in(EXAMPLES "/../docs/sessions.md");
  const std::string page{std::istreambuf_iterator<char>(in), {}};

  std::istringstream lines(help.substr(help.find("Steps of a script")));
  int steps = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  ", 0) == 0 && line.rfind("   ", 0) != 0) {
      const std::string verb = line.substr(2, line.find(' ', 2) - 2);
      EXPECT_NE(std::string::npos, page.find("`" + verb)) << verb;
      ++steps;
    }
  }
  EXPECT_EQ(15, steps);
}

TEST_F(PageProgram, PlaysTheExample) {
  const Outcome outcome =
      RunProgram("session '" EXAMPLES "/handles.session' -o '" + (folder / "").string() + "'");

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ(3, folder.FileCount());
  EXPECT_EQ(kWhite, Sample(Read(folder / "handles.png"), 618, 221 - 15));
}

}  // namespace
