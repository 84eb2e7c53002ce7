// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/render_words.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/glimmerhost/option_set.h"
#include "host/glimmerhost/render_options.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/parameter_file.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/viewer/jobs/host_program.h"
#include "tests/host/viewer/jobs/shot_folder.h"
#include "tests/support/child_program.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using lx_test::ScratchFolder;
using Words = std::vector<std::string>;

// What the program makes of its words.
RenderOptions Parsed(const Words& words) {
  RenderOptions render;
  CLI::App parser;
  OptionSet options(&parser);
  AddRenderOptions(&options, ThePage(), &render);
  AddEngine(&options, &render.engine);
  parser.parse(Words(words.rbegin(), words.rend() - 1));
  return render;
}

RenderTarget Somewhere() {
  RenderTarget target;
  target.output = "out.####.png";
  return target;
}

bool Has(const Words& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// A look with something of everything: keyframes, a point, keys over options, texts like options.
JobInput Everything() {
  JobInput input;
  input.input = "shot.####.png";
  input.span = {1001, 1020};
  input.frames = {1001, 1002, 1003};
  input.look["shape"] = "polygon";
  input.look["sides"] = "7";
  input.look["radius"] = "first=2%; 1010~=4%; last|=1%";
  input.look["radius-x"] = "30px";
  input.look["rotation"] = "25%=-10; 75%=10";
  input.look["emphasis"] = "20";
  input.look["match"] = "off";
  input.look["mix"] = "first=0; last=1";
  input.look.set = {"PRM_Emphasis=first=20; last=60"};
  return input;
}

// Both give the store the same values over the shot.
void ExpectSameValues(const Look& look, const TypedLook& typed, const ShotSpan& span) {
  const KeyframedValues wanted(ThePage(), {{"", look}}, 800, 600, span);
  const KeyframedValues got(ThePage(), ReadLayers(ThePage(), typed), 800, 600, span);
  for (int frame = 1001; frame <= 1020; ++frame) {
    EXPECT_EQ(wanted.At(frame), got.At(frame)) << frame;
    EXPECT_EQ(wanted.MixAt(frame), got.MixAt(frame)) << frame;
  }
}

TEST(RenderWords, GiveTheProgramTheLookThatTheWindowHas) {
  const JobInput input = Everything();
  const RenderOptions options = Parsed(RenderWords(ThePage(), input, Somewhere()));
  ExpectSameValues(input.look, options.look, input.span);
  EXPECT_EQ("1001-1020", options.look.At(kShot));
}

TEST(RenderWords, GiveTheSameLookWhereEveryDefaultIsWritten) {
  JobInput input = Everything();
  input.look = UsedLook(ThePage(), {{"", input.look}});
  ASSERT_LT(10U, input.look.texts.size());
  const Words words = RenderWords(ThePage(), input, Somewhere());
  ExpectSameValues(input.look, Parsed(words).look, input.span);
  // And say what was chosen alone.
  EXPECT_FALSE(Has(words, "--mix=1"));
  EXPECT_FALSE(std::any_of(words.begin(), words.end(),
                           [](const std::string& word) { return word.starts_with("--alpha"); }));
}

// Both radii are 5%, but for one that is what it would be anyhow.
TEST(RenderWords, KeepADefaultThatStandsOverAnotherOption) {
  const Look usual = UsedLook(ThePage(), {});
  JobInput input;
  input.look["radius"] = "5%";
  input.look["radius-x"] = usual.At("radius-x");
  ASSERT_FALSE(input.look.At("radius-x").empty());
  ExpectSameValues(input.look, Parsed(RenderWords(ThePage(), input, Somewhere())).look, {});
}

TEST(RenderWords, NameTheShotWhereTimesCountInItAlone) {
  JobInput input = Everything();
  input.look = {};
  input.look["radius"] = "3%";
  input.look[kShot] = "1-5";
  EXPECT_EQ("", Parsed(RenderWords(ThePage(), input, Somewhere())).look.At(kShot));
  input.look["radius"] = "first=3%; last=4%";
  EXPECT_EQ("1-5", Parsed(RenderWords(ThePage(), input, Somewhere())).look.At(kShot));
  input.look[kShot] = "";
  EXPECT_EQ("1001-1020", Parsed(RenderWords(ThePage(), input, Somewhere())).look.At(kShot));
}

TEST(RenderWords, SayWhatIsWrittenAndWhere) {
  RenderTarget target;
  target.output = "out.####.exr";
  target.bits = "half";
  target.compression = "dwaa";
  target.quality = "60";
  target.precision = "float";
  target.engine = "fast";
  target.manifest = "out.jsonl";
  target.frames = {1001, 1002, 1003, 1010};
  target.keepsGoing = true;
  const RenderOptions options = Parsed(RenderWords(ThePage(), Everything(), target));
  EXPECT_EQ((fs::current_path() / "out.####.exr").string(), options.output);
  EXPECT_EQ((fs::current_path() / "shot.####.png").string(), options.input);
  EXPECT_EQ((fs::current_path() / "out.jsonl").string(), options.manifest);
  EXPECT_EQ("half", BitsWord(options.coding));
  EXPECT_EQ("dwaa", options.coding.compression);
  EXPECT_EQ(60, options.coding.quality);
  EXPECT_EQ("float", options.precision);
  EXPECT_EQ("fast", options.engine);
  EXPECT_EQ("1001-1003,1010", options.frames);
  EXPECT_TRUE(options.keepGoing);
  EXPECT_TRUE(options.skipExisting);
  EXPECT_FALSE(options.overwrite);
}

TEST(RenderWords, NameNoFrameOfAPictureAlone) {
  JobInput input = Everything();
  input.input = "night.png";
  RenderTarget target = Somewhere();
  target.frames = {1};
  EXPECT_EQ("", Parsed(RenderWords(ThePage(), input, target)).frames);
  target.frames = {7};
  EXPECT_EQ("7", Parsed(RenderWords(ThePage(), input, target)).frames);
  input.input = "night.####.png";
  target.frames = {1};
  EXPECT_EQ("1", Parsed(RenderWords(ThePage(), input, target)).frames);
}

TEST(RenderWords, NameTheSecondClipFromTheRootOn) {
  JobInput input = Everything();
  input.look[kSpread] = "../stars.####.png";
  EXPECT_EQ((fs::current_path().parent_path() / "stars.####.png").string(),
            Parsed(RenderWords(ThePage(), input, Somewhere())).look.At(kSpread));
}

TEST(RenderWords, ReplaceOrGoOnButNeverBoth) {
  RenderTarget target = Somewhere();
  target.replaces = true;
  const RenderOptions options = Parsed(RenderWords(ThePage(), Everything(), target));
  EXPECT_FALSE(options.skipExisting);
  EXPECT_TRUE(options.overwrite);
}

TEST(RenderWords, TakeAnInputThatLooksLikeAnOption) {
  JobInput input = Everything();
  input.input = "--overwrite";
  const Words words = RenderWords(ThePage(), input, Somewhere());
  EXPECT_EQ((fs::current_path() / "--overwrite").string(), Parsed(words).input);
}

TEST(SubmitWords, SayWhereChunksAreRendered) {
  RenderTarget target;
  target.engine = "single";
  FarmTarget farm;
  farm.processes = 3;
  farm.threads = 2;
  farm.chunk = 5;
  const Words local = SubmitWords(ThePage(), Everything(), target, farm);
  EXPECT_EQ("submit", local.front());
  for (const char* word :
       {"--engine=local", "--engine=single", "--jobs=3", "--threads=2", "--chunk=5"}) {
    EXPECT_TRUE(Has(local, word)) << word;
  }
  farm.isSlurm = true;
  farm.sbatch = {"--partition=long"};
  const Words slurm = SubmitWords(ThePage(), Everything(), target, farm);
  EXPECT_TRUE(Has(slurm, "--engine=slurm"));
  EXPECT_TRUE(Has(slurm, "--sbatch=--partition=long"));
  EXPECT_FALSE(Has(slurm, "--jobs=3"));
}

TEST(CommandText, ComesThroughAShellAsItWas) {
  const Words words = {"printf", "%s|", "a b", "it's", "$HOME", "", "first=2%; last=3%"};
  if (kShellQuote != '\'') {
    GTEST_SKIP() << "another shell";
  }
  const lx_test::Outcome outcome = lx_test::RunChild("/bin/bash", {"-c", CommandText(words)});
  EXPECT_EQ("a b|it's|$HOME||first=2%; last=3%|", outcome.text);
}

TEST(ProposedOutput, LiesBesideTheInputUnderANameOfItsOwn) {
  EXPECT_EQ(fs::path("a/shot_blur.####.exr"), fs::path(ProposedOutput("a/shot.####.exr", true)));
  EXPECT_EQ(fs::path("night_blur.png"), fs::path(ProposedOutput("night.png", false)));
  EXPECT_EQ(fs::path("a/frames_blur.%04d.tif"), fs::path(ProposedOutput("a/%04d.tif", true)));
}

TEST(ProposedOutput, HasAPlaceForTheFramesOfAPictureThatIsAShot) {
  EXPECT_EQ(fs::path("a/night_blur.####.png"), fs::path(ProposedOutput("a/night.png", true)));
}

TEST(ManifestBeside, IsCalledAfterWhatTheOutputsHaveInCommon) {
  EXPECT_EQ(fs::path("a/out.manifest.jsonl"), fs::path(ManifestBeside("a/out.####.exr")));
}

std::string Bytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(RenderWords, RenderTheSameFilesAsTheSavedLook) {
  const ScratchFolder folder;
  Picture picture;
  picture.width = 60;
  picture.height = 40;
  picture.samples.resize(picture.PixelCount() * 4);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = i % 4 == 3 ? std::uint16_t{65535} : static_cast<std::uint16_t>(i * 7919);
  }
  for (const char* name : {"shot.1001.png", "shot.1002.png"}) {
    PictureOutput(folder / name, false).Write(picture, 16);
  }
  JobInput input = Everything();
  input.input = (folder / "shot.####.png").string();
  input.frames = {1001, 1002};
  RenderTarget target;
  target.output = (folder / "a.####.png").string();
  Look look = UsedLook(ThePage(), {{"", input.look}});
  look[kShot] = "1001-1020";
  SaveParameters(ThePage(), folder / "look.toml", look, false);

  const std::string program = HostProgram().string();
  const lx_test::Outcome byWords =
      lx_test::RunChild(program, RenderWords(ThePage(), input, target));
  const lx_test::Outcome byLook =
      lx_test::RunChild(program, {"render", input.input, "-o", (folder / "b.####.png").string(),
                                  "--params", (folder / "look.toml").string()});

  ASSERT_EQ(0, byWords.code) << byWords.text;
  ASSERT_EQ(0, byLook.code) << byLook.text;
  ASSERT_FALSE(Bytes(folder / "a.1002.png").empty());
  EXPECT_EQ(Bytes(folder / "a.1001.png"), Bytes(folder / "b.1001.png"));
  EXPECT_EQ(Bytes(folder / "a.1002.png"), Bytes(folder / "b.1002.png"));
  EXPECT_NE(Bytes(folder / "a.1001.png"), Bytes(folder / "a.1002.png"));
}

TEST(HostProgram, LiesBesideThisOne) { EXPECT_EQ(fs::path(PROGRAM), HostProgram()); }

TEST(HostProgram, SaysWhereItWasLookedFor) {
  const ScratchFolder folder;
  try {
    HostProgram(folder.Path());
    FAIL() << "no error";
  } catch (const MissingInput& fault) {
    EXPECT_NE(std::string::npos, std::string(fault.what()).find((folder / "glimmerhost").string()))
        << fault.what();
  }
}

}  // namespace
}  // namespace glimmerhost
