// SPDX-License-Identifier: BSD-3-Clause
// Shots as a person renders them.
#include "tests/host/glimmerhost/shot_program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/looks/keyframed_values.h"
#include "host/looks/presets.h"
#include "host/shots/manifest.h"
#include "tests/support/sanitizer.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Page;
using glimmerhost::TypedLook;
using host_test::Bytes;
using host_test::kAnimated;
using host_test::Outcome;
using host_test::RunProgram;
using host_test::ShotProgram;

TEST_F(ShotProgram, RendersEveryFrameOfTheFolder) {
  WriteShot(8, 11);
  const Outcome outcome = RunProgram(Shot("out.####.png", "--radius 4px"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  for (const char* name : {"out.0008.png", "out.0009.png", "out.0010.png", "out.0011.png"}) {
    EXPECT_TRUE(fs::exists(folder / name)) << name;
  }
  EXPECT_EQ(8, folder.FileCount());
  EXPECT_NE(std::string::npos, outcome.text.find("frame 9 (2 of 4): ")) << outcome.text;
}

// As a shell hands them over, and as the folder has them.
TEST_F(ShotProgram, NamesFilesInAnyScript) {
  const fs::path place = folder.Path() / u8"Wei\u00df \u65e5";
  fs::create_directory(place);
  for (const char8_t* name : {u8"\u00f6.1.png", u8"\u00f6.2.png"}) {
    fs::copy_file(WriteInput("in.png", 20, 10), place / name);
  }
  std::ofstream(place / u8"\u00e4.toml") << "radius = \"2px\"\n";
  const auto named = [&place](const char8_t* name) { return "'" + (place / name).string() + "'"; };

  const Outcome outcome =
      RunProgram("render " + named(u8"\u00f6.@.png") + " -o " + named(u8"\u00fc.@.png") +
                 " --params " + named(u8"\u00e4.toml") + " --save-params " +
                 named(u8"\u00e5.toml") + " --manifest " + named(u8"\u0416.jsonl"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  for (const char8_t* name :
       {u8"\u00fc.1.png", u8"\u00fc.2.png", u8"\u00e5.toml", u8"\u0416.jsonl"}) {
    EXPECT_TRUE(fs::exists(place / name)) << (place / name).string();
  }
  EXPECT_EQ(0, RunProgram("check " + named(u8"\u0416.jsonl") + " --frames 1-2").code);
}

// Nothing of a frame may come from those that the process rendered before it.
TEST_F(ShotProgram, GivesTheSameBytesHoweverTheWorkIsCut) {
  WriteShot(1, 7);
  const std::string options = kAnimated;
  ASSERT_EQ(0, RunProgram(Shot("whole.@.png", options + "--frames 1-7")).code);
  ASSERT_EQ(0, RunProgram(Shot("back.@.png", options + "--frames 7-1")).code);
  for (const int parts : {2, 7}) {
    for (int k = 1; k <= parts; ++k) {
      ASSERT_EQ(0, RunProgram(Shot("parts" + std::to_string(parts) + ".@.png",
                                   options + "--frames 1-7 --chunk " + std::to_string(k) + "/" +
                                       std::to_string(parts)))
                       .code);
    }
  }
  for (int frame = 1; frame <= 7; ++frame) {
    const std::string end = "." + std::to_string(frame) + ".png";
    const std::string whole = Bytes(folder / ("whole" + end));
    EXPECT_EQ(whole, Bytes(folder / ("back" + end))) << frame;
    EXPECT_EQ(whole, Bytes(folder / ("parts2" + end))) << frame;
    EXPECT_EQ(whole, Bytes(folder / ("parts7" + end))) << frame;
  }
  EXPECT_NE(Bytes(folder / "whole.1.png"), Bytes(folder / "whole.7.png"));
}

// Times belong to the shot, whichever of its frames are rendered.
TEST_F(ShotProgram, GivesAnyFrameAloneTheBytesOfTheWholeShot) {
  WriteShot(1001, 1009);
  const std::vector<std::string> looks = {
      "--radius '1001=2px; 1009=12px'",
      "--radius 'first=2px; last=12px' --emphasis 30",
      "--radius 'first+2=2px; last-2=12px'",
      "--radius '10%=2px; 66.6%=12px'",
      "--radius 'first~=2px; 1004~=12px; 90%~=3px; last=4px'",
      "--radius '1003|=2px; 1005|=12px' --shape 'first=circle; 50%=polygon'",
      "--radius 6px --shape polygon --sides '1001=3; last=9' --rotation 'last=90; first=0'",
      "--radius 6px --set 'PRM_Emphasis=1002=0; last=60'",
  };
  std::vector<std::string> all = looks;
  for (const glimmerhost::Preset& preset : glimmerhost::Presets()) {
    all.push_back("--preset " + preset.name);
  }
  for (const std::string& look : all) {
    ASSERT_EQ(0, RunProgram(Shot("whole.@.png", look + " --overwrite")).code) << look;
    for (const char* part : {"--frames 1006", "--frames 1009,1003-1001", "--chunk 2/3",
                             "--frames 1002-1008x3 --chunk 2/2"}) {
      const Outcome outcome =
          RunProgram(Shot("part.@.png", look + " --progress json --overwrite " + part));
      ASSERT_EQ(0, outcome.code) << look << " " << part << "\n" << outcome.text;
    }
    for (const int frame : {1001, 1002, 1003, 1004, 1005, 1006, 1008, 1009}) {
      const std::string end = "." + std::to_string(frame) + ".png";
      const fs::path alone = folder / ("part" + end);
      EXPECT_EQ(Bytes(folder / ("whole" + end)), Bytes(alone)) << look << " " << frame;
      fs::remove(alone);
    }
  }
}

TEST_F(ShotProgram, PullsTheFocusHoweverShortTheShotIs) {
  const Page page = Page::Load(PAGE);
  TypedLook look;
  look.preset = "focus-pull";
  for (const int length : {1, 2, 3, 24, 25, 26, 100}) {
    const glimmerhost::KeyframedValues values(page, ReadLayers(page, look), 1000, 500,
                                              {1001, 1000 + length});
    double before = 0.04;
    for (int frame = 1001; frame <= 1000 + length; ++frame) {
      const double radius = std::get<double>(values.At(frame).at("PRM_RadiusX"));
      EXPECT_LE(radius, before) << frame << " of " << length;
      // In a hundred frames no step is more than twice a straight line's.
      EXPECT_GE(radius, length < 100 ? 0.0 : before - 2.0 * 0.04 / length) << frame;
      before = radius;
    }
    EXPECT_EQ(0.0, before) << length;
  }
}

// As other machines of a farm may have made them; a version of the arithmetic that there never was.
TEST_F(ShotProgram, LeavesFramesOfAnotherArithmeticAndSaysSoOnce) {
  WriteShot(1, 3);
  const fs::path file = folder / "m.jsonl";
  const std::string render = "--radius 2px --skip-existing --manifest '" + file.string() + "' ";
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", render + "--frames 1-2")).code);
  std::string lines = Bytes(file);
  const std::string own = R"("arithmetic":"fast 1")";
  for (std::size_t at = lines.find(own); at != std::string::npos; at = lines.find(own)) {
    lines.replace(at, own.size(), R"("arithmetic":"fast 0")");
  }
  std::ofstream(file, std::ios::binary) << lines;
  const std::string before = Bytes(folder / "out.1.png") + Bytes(folder / "out.2.png");

  const Outcome outcome = RunProgram(Shot("out.@.png", render));
  const Outcome check = RunProgram("check '" + file.string() + "'");

  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(before, Bytes(folder / "out.1.png") + Bytes(folder / "out.2.png"));
  const std::string remark =
      "glimmerhost: frame 1: is left as another arithmetic has made it, whose samples may differ "
      "from those of this run in their last bits: fast 0; check counts such frames\n";
  EXPECT_EQ(0U, outcome.text.find(remark)) << outcome.text;
  EXPECT_EQ(std::string::npos, outcome.text.find("arithmetic", remark.size())) << outcome.text;
  EXPECT_EQ(0, check.code);
  EXPECT_EQ(
      "glimmerhost: frames of 2 arithmetics, whose samples may differ in their last bits:\n"
      "glimmerhost:   2 frames, 1-2: fast 0\n"
      "glimmerhost:   1 frame, 3: fast 1\n"
      "3 frames are as they were written\n",
      check.text);
}

TEST_F(ShotProgram, RefusesAFrameThatTheShotHasNot) {
  WriteShot(1, 3);
  const std::string moves = "--radius 'first=2px; last=4px' ";
  const std::string says = "frame 4 is not in the shot 1-3 (";
  ExpectRefusal(Shot("out.@.png", "--radius 2px --frames 2-4 --shot 1-3"), 2, says + "--shot)");
  ExpectRefusal(Render(folder / "in.1-3@.png", "out.@.png", moves + "--frames 4"), 2,
                says + "INPUT)");
  std::ofstream(folder / "film.toml") << "shot = \"1-3\"\n";
  const std::string film = "--params '" + (folder / "film.toml").string() + "' ";
  ExpectRefusal(Shot("out.@.png", film + moves + "--frames 4"), 2, "film.toml: shot)");
  // Without a time nothing counts in it; and what is typed counts over it.
  EXPECT_EQ(3, RunProgram(Shot("out.@.png", film + "--radius 2px --frames 4")).code);
  EXPECT_EQ(3, RunProgram(Shot("out.@.png", film + moves + "--frames 4 --shot 1-9")).code);

  const Outcome outcome = RunProgram(Shot("out.@.png", moves + "--frames 4"));
  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("frame 4: frame 4 is not in the shot 1-3"))
      << outcome.text;
  ExpectRefusal(Shot("out.@.png", "--shot 3-1"), 2, "--shot must be the first and the last frame");
}

TEST_F(ShotProgram, NamesTheNewTimesWhereOldOnesAreTyped) {
  WriteShot(1001, 1003);
  ExpectRefusal(Shot("out.@.png", "--radius '0=2px; -1=4px'"), 2,
                "--radius 0=2px; -1=4px: the time 0 is not in the shot 1001-1003; a time is a "
                "frame (1001), first, last, first+12, last-12 or a part (25%)");
}

TEST_F(ShotProgram, SaysOnceThatKeyframesAreOutsideOfTheShot) {
  WriteShot(1001, 1003);
  const std::string look = "--radius '1001=2px; 1010=4px' --emphasis '5=1; 1002=9' ";
  const std::string line =
      "glimmerhost: keyframes are at frames 5,1010, which are not in the shot 1001-1003\n";
  EXPECT_EQ(line, RunProgram(Shot("out.@.png", look + "--quiet")).text);
  EXPECT_EQ(line, RunProgram(Shot("a.@.png", look + "--quiet --chunk 1/3")).text);
  EXPECT_EQ("", RunProgram(Shot("a.@.png", look + "--quiet --chunk 2/3")).text);
  EXPECT_EQ("", RunProgram(Shot("b.@.png", look + "--quiet --shot 1-1010")).text);
}

TEST_F(ShotProgram, SavesTheShotWithALookThatHasTimes) {
  WriteShot(1, 4);
  const std::string save = "--overwrite --save-params '" + (folder / "film.toml").string() + "' ";
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", save + "--radius 'first=1px; last=4px'")).code);
  EXPECT_NE(std::string::npos, Bytes(folder / "film.toml").find("shot = \"1-4\"\n"));
  const std::string film = "--params '" + (folder / "film.toml").string() + "'";
  ASSERT_EQ(0, RunProgram(Shot("again.@.png", film + " --frames 3")).code);
  EXPECT_EQ(Bytes(folder / "out.3.png"), Bytes(folder / "again.3.png"));

  ASSERT_EQ(0, RunProgram(Shot("out.@.png", save + "--radius 3px")).code);
  EXPECT_EQ(std::string::npos, Bytes(folder / "film.toml").find("shot"));
}

// Radii so near to each other that one instance would keep its aperture for all.
TEST_F(ShotProgram, BuildsEveryFramesOwnApertureUnlessToldToCarryIt) {
  WriteShot(1, 4);
  const std::string options = "--radius 'first=0.2; last=0.200002' ";
  ASSERT_EQ(0, RunProgram(Shot("fresh.@.png", options)).code);
  ASSERT_EQ(0, RunProgram(Shot("alone.@.png", options + "--frames 1-4 --chunk 4/4")).code);
  EXPECT_EQ(Bytes(folder / "fresh.4.png"), Bytes(folder / "alone.4.png"));
  EXPECT_EQ(0, RunProgram(Shot("kept.@.png", options + "--carry-psf")).code);
}

TEST_F(ShotProgram, StopsAtAFrameThatIsMissingWithACodeOfItsOwn) {
  WriteShot(1, 2);
  WriteShot(4, 5);
  const Outcome outcome = RunProgram(Shot("out.@.png", "--radius 3px --frames 1-5"));

  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("glimmerhost: frame 3: ")) << outcome.text;
  EXPECT_NE(std::string::npos,
            outcome.text.find("1 of 5 frames failed (3), 2 done; --skip-existing"))
      << outcome.text;
  EXPECT_FALSE(fs::exists(folder / "out.4.png"));
}

TEST_F(ShotProgram, GoesOnBehindAFailureIfToldAndFailsAllTheSame) {
  WriteShot(1, 5);
  std::ofstream(folder / "in.2.png") << "no picture";
  const Outcome outcome = RunProgram(Shot("out.@.png", "--radius 3px --keep-going --frames 1-6"));

  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("2 of 6 frames failed (2,6), 4 done\n"))
      << outcome.text;
  EXPECT_TRUE(fs::exists(folder / "out.5.png"));
  EXPECT_FALSE(fs::exists(folder / "out.2.png"));
}

TEST_F(ShotProgram, ResumesWhereItEnded) {
  WriteShot(1, 4);
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", "--radius 3px --frames 2-3")).code);
  const auto before = fs::last_write_time(folder / "out.2.png");

  EXPECT_EQ(1, RunProgram(Shot("out.@.png", "--radius 3px --frames 2-3")).code);
  const Outcome outcome = RunProgram(Shot("out.@.png", "--radius 3px --skip-existing"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ(before, fs::last_write_time(folder / "out.2.png"));
  EXPECT_TRUE(fs::exists(folder / "out.4.png"));
}

TEST_F(ShotProgram, KeepsAFrameAwayThatCameBackAsItWas) {
  WriteShot(1, 2);
  const std::string copying = "--module '" COPYING_MODULE "' ";
  const Outcome outcome = RunProgram(Shot("out.@.png", copying + "--radius 3px"));

  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("frame 1: the effect gave the frame back"))
      << outcome.text;
  EXPECT_EQ(2, folder.FileCount());
}

TEST_F(ShotProgram, LetsAFramePassThatMayComeBackAsItWas) {
  WriteShot(1, 1);
  const std::string copying = "--module '" COPYING_MODULE "' ";
  // An aperture of a pixel, and a flat frame.
  EXPECT_EQ(0, RunProgram(Shot("out.@.png", copying + "--radius 0.5px")).code);
  const fs::path flat = WriteInput("flat.png", 30, 20, Alpha::kNone, true);
  EXPECT_EQ(0, RunProgram(Render(flat, "flat_out.png", copying + "--radius 5px")).code);
  EXPECT_EQ(0, RunProgram(Render(flat, "real_out.png", "--radius 5px")).code);
}

TEST_F(ShotProgram, TakesASequenceOrAStillForTheAperture) {
  WriteShot(1, 2);
  const std::string shape = "--shape image --radius-psf1 6px --radius-psf2 8px --spread '";
  EXPECT_EQ(0, RunProgram(Shot("a.@.png", shape + (folder / "in.@.png").string() + "'")).code);
  EXPECT_EQ(0, RunProgram(Shot("b.@.png", shape + (folder / "in.1.png").string() + "'")).code);
  EXPECT_EQ(Bytes(folder / "a.1.png"), Bytes(folder / "b.1.png"));
  EXPECT_NE(Bytes(folder / "a.2.png"), Bytes(folder / "b.2.png"));
}

TEST_F(ShotProgram, ExplainsWithoutRendering) {
  WriteShot(1, 3);
  const Outcome outcome =
      RunProgram(Shot("out.@.png", "--radius 'first=2px; last=12px' --explain"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  // Frame by frame, as radii of 2, 7 and 12 have margins of 3, 8 and 13: 66 x 46 at least, 76 x 56,
  // and 86 x 66.
  EXPECT_NE(std::string::npos,
            outcome.text.find("Frames              1-3, 3 of 60 x 40\nShot                1-3\n"))
      << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("Grid                70 x 48 for frames 1\n"));
  EXPECT_NE(std::string::npos, outcome.text.find("Grid                80 x 56 for frames 2\n"));
  EXPECT_NE(std::string::npos, outcome.text.find("Grid                90 x 72 for frames 3\n"));
  EXPECT_NE(std::string::npos, outcome.text.find("built 3 times for 3 frames"));
  EXPECT_NE(std::string::npos, outcome.text.find("above a radius of 14 pixels a grid of 96 x 72"));
  EXPECT_EQ(3, folder.FileCount());
}

TEST_F(ShotProgram, ExplainsAGridThatAllFramesShare) {
  WriteShot(1, 3);
  const Outcome outcome =
      RunProgram(Shot("out.@.png", "--radius 'first=2px; last=12px' --explain --engine exact"));

  EXPECT_EQ(0, outcome.code) << outcome.text;
  // 60 and twice 3 is above 64 already; twice 13 is 86.
  EXPECT_NE(std::string::npos, outcome.text.find("Grid                128 x 128\n"));
  EXPECT_NE(std::string::npos, outcome.text.find("above a radius of 33 pixels a grid of 256"));
}

TEST_F(ShotProgram, ListsWhatItWouldReadAndWrite) {
  WriteShot(1, 1);
  const Outcome outcome = RunProgram(Shot("out.####.png", "--frames 1-2 --dry-run"));

  EXPECT_EQ(0, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("in.2.png (missing)  ->  "));
  EXPECT_NE(std::string::npos, outcome.text.find("out.0002.png\n"));
  EXPECT_EQ(1, folder.FileCount());
}

TEST_F(ShotProgram, ReportsToMachinesInJson) {
  WriteShot(1, 2);
  const Outcome outcome =
      RunProgram(Shot("out.@.png", "--radius 2px --frames 1-3 --progress json"));

  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find(R"({"frame":1,"state":"done",)"));
  EXPECT_NE(std::string::npos, outcome.text.find(R"("index":2,"count":3,)"));
  EXPECT_NE(std::string::npos,
            outcome.text.find(R"({"done":2,"skipped":0,"failed":0,"missing":1,)"));
}

TEST_F(ShotProgram, WritesAManifestThatCanBeChecked) {
  WriteShot(1, 3);
  const std::string manifest = "--manifest '" + (folder / "m.jsonl").string() + "' ";
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", manifest + "--radius 2px --frames 1-2")).code);
  const std::string check = "check '" + (folder / "m.jsonl").string() + "' --frames 1-3";
  Outcome outcome = RunProgram(check);
  EXPECT_EQ(1, outcome.code);
  EXPECT_EQ("glimmerhost: no line for frames 3\n", outcome.text);

  ASSERT_EQ(0, RunProgram(Shot("out.@.png", manifest + "--radius 2px --skip-existing")).code);
  outcome = RunProgram(check);
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ("3 frames are as they were written\n", outcome.text);

  fs::resize_file(folder / "out.2.png", 100);
  EXPECT_EQ(1, RunProgram(check).code);
}

TEST_F(ShotProgram, RefusesAFrameThatStoodThereWithoutALine) {
  WriteShot(1, 2);
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", "--radius 2px --frames 1")).code);
  const std::string file = "'" + (folder / "m.jsonl").string() + "' ";
  const std::string resume = "--radius 2px --skip-existing --manifest " + file;
  Outcome outcome = RunProgram(Shot("out.@.png", resume + "--keep-going"));
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos,
            outcome.text.find("glimmerhost: frame 1: " + (folder / "out.1.png").string() +
                              ": exists already, and no line of "))
      << outcome.text;
  EXPECT_TRUE(fs::exists(folder / "out.2.png"));

  outcome = RunProgram(Shot("out.@.png", resume + "--overwrite"));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("2 frames are as they were written\n",
            RunProgram("check " + file + "--frames 1-2").text);
}

TEST_F(ShotProgram, NotesTheShotThatItsTimesCountIn) {
  WriteShot(1, 3);
  const std::string file = (folder / "m.jsonl").string();
  ASSERT_EQ(0, RunProgram(Shot("out.@.png",
                               "--radius 'first=1px; last=3px' --frames 2 "
                               "--manifest '" +
                                   file + "'"))
                   .code);
  EXPECT_EQ("1-3", glimmerhost::ReadManifest(file).at(2).shot);
}

TEST_F(ShotProgram, ChecksEachFrameByTheManifestThatIsRightAboutIt) {
  WriteShot(1, 2);
  const std::string old = "'" + (folder / "old.jsonl").string() + "' ";
  const std::string young = "'" + (folder / "young.jsonl").string() + "' ";
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", "--radius 2px --manifest " + old)).code);
  fs::remove(folder / "out.1.png");
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", "--radius 5px --frames 1 --manifest " + young)).code);

  EXPECT_EQ(1, RunProgram("check " + old).code);
  EXPECT_EQ(0, RunProgram("check " + old + young).code);
  EXPECT_EQ(0, RunProgram("check " + young + old).code);
  fs::resize_file(folder / "out.2.png", 10);
  EXPECT_EQ(1, RunProgram("check " + old + young).code);
}

TEST_F(ShotProgram, NamesTheFramesOfAManifestThatIsMissing) {
  const std::string none = (folder / "none.jsonl").string();
  const Outcome outcome = RunProgram("check '" + none + "' --frames 3-5");

  EXPECT_EQ(3, outcome.code);
  EXPECT_EQ("glimmerhost: " + none + ": not found\nglimmerhost: no line for frames 3-5\n",
            outcome.text);
}

#ifndef _WIN32
// The number of a closed stream goes to the next file that is opened.
TEST_F(ShotProgram, SaysNothingIntoItsFilesWhereItHasNoErrorStream) {
  WriteShot(1, 2);
  const std::string manifest = "'" + (folder / "m.jsonl").string() + "'";
  const Outcome outcome = lx_test::RunChild(
      "/bin/sh",
      {"-c", "exec " PROGRAM " " + Shot("out.@.png", "--manifest " + manifest) + " <&- >&- 2>&-"});
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ("2 frames are as they were written\n", RunProgram("check " + manifest).text);
}

// Lines that begin otherwise would be lost on those who look for the program's name.
TEST_F(ShotProgram, SaysOfAFileWithAStrangeNameWhatItIsInOneLine) {
  const std::string name = (folder / "in\nout\x1b.@.png").string();
  const Outcome outcome = RunProgram("render '" + name + "' -o '" + (folder / "o.@.png").string() +
                                     "' --frames 1 --quiet");
  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("in out .1.png: not found\n")) << outcome.text;
}
#endif

// Who reads the objects has no use for silence, and would wait for frames that are done.
TEST_F(ShotProgram, PrintsProgressInJsonWhereQuietIsAskedFor) {
  WriteShot(1, 2);

  const Outcome outcome = RunProgram(Shot("out.@.png", "--radius 2px --progress json --quiet"));

  EXPECT_EQ(0, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("{\"frame\":2,")) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("{\"done\":2,")) << outcome.text;
}

TEST_F(ShotProgram, DoesNotTakeAFolderOrAnEmptyFileForAFrame) {
  WriteShot(1, 2);
  fs::create_directory(folder / "a.1.png");
  std::ofstream(folder / "b.1.png").close();
  for (const char* output : {"a.@.png", "b.@.png"}) {
    const Outcome outcome =
        RunProgram(Shot(output, "--radius 3px --skip-existing --keep-going --quiet"));
    EXPECT_EQ(1, outcome.code);
    EXPECT_NE(std::string::npos, outcome.text.find("1 of 2 frames failed (1), 1 done"))
        << outcome.text;
  }
  EXPECT_EQ(0, RunProgram(Shot("b.@.png", "--radius 3px --skip-existing --overwrite")).code);
  EXPECT_LT(0U, fs::file_size(folder / "b.1.png"));
}

TEST_F(ShotProgram, RefusesToLoseAFileToAnother) {
  WriteShot(1, 2);
  const std::string in = (folder / "in.1.png").string();
  ExpectRefusal(Shot("in.@.png", "--skip-existing"), 2,
                "--skip-existing cannot be used where -o is INPUT");
  ExpectRefusal(Shot("out.@.png", "--overwrite --manifest '" + in + "'"), 2,
                "a picture that frame 1 reads");
  ExpectRefusal(
      "render '" + in + "' -o '" + (folder / "in.@.png").string() + "' --frames 1-3 --overwrite", 2,
      "this one is of frame 1, and frame 2 reads it");
}

// Lines of frames that are left alone are no line of theirs any more otherwise.
TEST_F(ShotProgram, KeepsTheLinesOfOtherFramesWhereSomeAreRenderedAnew) {
  WriteShot(1, 3);
  const std::string manifest = "--manifest '" + (folder / "m.jsonl").string() + "' ";
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", manifest + "--radius 2px")).code);
  ASSERT_EQ(0,
            RunProgram(Shot("out.@.png", manifest + "--radius 3px --overwrite --frames 2")).code);
  EXPECT_EQ(0, RunProgram("check --frames 1-3 '" + (folder / "m.jsonl").string() + "'").code);
  const Outcome resumed =
      RunProgram(Shot("out.@.png", manifest + "--radius 2px --skip-existing --progress lines"));
  EXPECT_EQ(0, resumed.code) << resumed.text;
  EXPECT_NE(std::string::npos, resumed.text.find("frame 1 (1 of 3): ")) << resumed.text;
  EXPECT_NE(std::string::npos, resumed.text.find("out.1.png is there already")) << resumed.text;
  EXPECT_EQ(std::string::npos, resumed.text.find("out.2.png is there already")) << resumed.text;
  EXPECT_NE(std::string::npos, resumed.text.find("out.3.png is there already")) << resumed.text;
}

// The run that is stopped replaces outputs of the one before, and its own message says how to go
// on.
TEST_F(ShotProgram, GoesOnWhereAReplacingRunWasStopped) {
  WriteShot(1, 3);
  const std::string manifest = "--manifest '" + (folder / "m.jsonl").string() + "' ";
  ASSERT_EQ(0, RunProgram(Shot("out.@.png", manifest + "--radius 2px")).code);
  std::ofstream(folder / "in.2.png") << "no picture";
  ASSERT_EQ(1, RunProgram(Shot("out.@.png", manifest + "--radius 3px --overwrite")).code);
  WriteShot(1, 3);
  const Outcome resumed = RunProgram(Shot("out.@.png", manifest + "--radius 3px --skip-existing"));
  EXPECT_EQ(0, resumed.code) << resumed.text;
  ASSERT_EQ(0, RunProgram(Shot("once.@.png", "--radius 3px")).code);
  for (const std::string end : {".1.png", ".2.png", ".3.png"}) {
    EXPECT_EQ(Bytes(folder / ("once" + end)), Bytes(folder / ("out" + end))) << end;
  }
}

TEST_F(ShotProgram, IsDoneWithAnEmptyChunkAtOnce) {
  WriteShot(1, 2);
  const std::string manifest = "'" + (folder / "third.jsonl").string() + "'";
  const Outcome outcome =
      RunProgram(Shot("out.@.png", "--radius 2px --chunk 3/3 --manifest " + manifest));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_FALSE(fs::exists(folder / "out.1.png"));
  EXPECT_EQ(1, RunProgram("check " + manifest).code);
  const Outcome explained = RunProgram(Shot("out.@.png", "--chunk 3/3 --explain"));
  EXPECT_EQ(0, explained.code);
  EXPECT_EQ("Frames              none: the chunk is empty\n", explained.text);
}

TEST_F(ShotProgram, RefusesWhatDoesNotGoTogether) {
  WriteShot(1, 2);
  ExpectRefusal(Shot("out.png", ""), 2,
                "-o must be a name with a place for the numbers of 2 frames");
  ExpectRefusal(Shot("out.@.png", "--frames 1-"), 2, "--frames must be ");
  ExpectRefusal(Shot("out.@.png", "--chunk 3/2"), 2, "--chunk must be ");
  ExpectRefusal(Shot("out.@.png", "--emphasis '1=900'"), 2, "--emphasis must be ");
  ExpectRefusal(Shot("out.@.png", "--progress loud"), 2, "--progress must be ");
  ExpectRefusal(Render(folder / "none.@.png", "out.@.png"), 3, "no such files");
}

// A frame's picture has 24 KiB, its grid 0.6 MiB: either would be seen if it stayed.
TEST_F(ShotProgram, HoldsItsMemoryFlatOverFiveHundredFrames) {
  if (lx_test::kSanitized) {
    GTEST_SKIP() << "a sanitizer keeps what was freed";
  }
  WriteInput("still.png", 64, 48);
  const auto render = [this](const std::string& frames) {
    return RunProgram(Render(folder / "still.png", "out.####.png",
                             "--overwrite --shot 1-500 --frames " + frames + " " + kAnimated));
  };
  const Outcome ten = render("1-10");
  if (ten.peak == 0) {
    GTEST_SKIP() << "the system does not tell";
  }
  const Outcome many = render("1-500");

  EXPECT_EQ(0, many.code) << many.text;
  constexpr long kSlack = 4096;
  EXPECT_LT(many.peak, ten.peak + kSlack);
}

}  // namespace
