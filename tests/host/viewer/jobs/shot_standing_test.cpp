// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/shot_standing.h"

#include <gtest/gtest.h>

#include "host/viewer/jobs/output_choices.h"
#include "tests/host/viewer/jobs/shot_folder.h"
#include "tests/support/child_program.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using Frames = std::map<int, FrameStanding>;

constexpr FrameStanding kToDo = FrameStanding::kToDo;
constexpr FrameStanding kCurrent = FrameStanding::kCurrent;
constexpr FrameStanding kStale = FrameStanding::kStale;

void Render(const std::vector<std::string>& words) {
  const lx_test::Outcome outcome = lx_test::RunChild(PROGRAM, words);
  ASSERT_EQ(0, outcome.code) << outcome.text;
}

Frames Of(const ShotFolder& shot) { return StandingOf(ThePage(), shot.input, shot.target); }

TEST(StandingOf, KnowsWhatTheProgramHasRendered) {
  ShotFolder shot(1, 3);
  EXPECT_EQ((Frames{{1, kToDo}, {2, kToDo}, {3, kToDo}}), Of(shot));
  Render(shot.Words());
  EXPECT_EQ((Frames{{1, kCurrent}, {2, kCurrent}, {3, kCurrent}}), Of(shot));
  fs::remove(shot.Out(2));
  EXPECT_EQ((Frames{{1, kCurrent}, {2, kToDo}, {3, kCurrent}}), Of(shot));
}

TEST(StandingOf, FindsFramesThatWouldComeOutOtherwiseNow) {
  ShotFolder shot(1, 3);
  Render(shot.Words());
  // At the first frame nothing has changed.
  shot.input.look["radius"] = "first=3px; last=12px";
  EXPECT_EQ((Frames{{1, kCurrent}, {2, kStale}, {3, kStale}}), Of(shot));
  shot.input.look["radius"] = "first=3px; last=9px";
  shot.input.look["mix"] = "first=1; 2=0.5; last=1";
  EXPECT_EQ((Frames{{1, kCurrent}, {2, kStale}, {3, kCurrent}}), Of(shot));
}

TEST(StandingOf, FindsFramesWhoseInputOrCodingIsAnother) {
  ShotFolder shot(1, 2);
  Render(shot.Words());
  PictureOutput(shot.In(2), true).Write(ReadBack(shot.In(1)), 16);
  EXPECT_EQ((Frames{{1, kCurrent}, {2, kStale}}), Of(shot));
  shot.target.bits = "8";
  EXPECT_EQ((Frames{{1, kStale}, {2, kStale}}), Of(shot));
}

// Whatever was chosen, the program and the window must settle it alike.
TEST(StandingOf, SettlesChoicesAsTheProgramDoes) {
  ShotFolder shot(1, 1);
  shot.target.output = (shot.folder / "out" / "out.@.tif").string();
  shot.target.manifest = ManifestBeside(shot.target.output);
  shot.target.bits = "8";
  shot.target.compression = "deflate";
  shot.target.engine = "single";
  shot.input.look["alpha"] = "as-is";
  shot.input.look["pixel-aspect"] = "2:1";
  shot.input.look["shape"] = "image";
  shot.input.look["spread"] = shot.In(1).string();
  Render(shot.Words());
  EXPECT_EQ((Frames{{1, kCurrent}}), Of(shot));
  shot.target.engine = "double";
  EXPECT_EQ((Frames{{1, kStale}}), Of(shot));
  shot.target.engine = "single";
  shot.input.look["pixel-aspect"] = "1:1";
  EXPECT_EQ((Frames{{1, kStale}}), Of(shot));
}

TEST(StandingOf, ReadsTheManifestsOfChunks) {
  ShotFolder shot(1, 4);
  FarmTarget farm;
  farm.processes = 2;
  Render(SubmitWords(ThePage(), shot.input, shot.target, farm));
  EXPECT_EQ((Frames{{1, kCurrent}, {2, kCurrent}, {3, kCurrent}, {4, kCurrent}}), Of(shot));
}

TEST(StandingOf, DoesNotVouchForFilesOfOthers) {
  const ShotFolder shot(1, 2);
  fs::copy(shot.In(1), shot.Out(1));
  std::ofstream(shot.Out(2));
  EXPECT_EQ((Frames{{1, FrameStanding::kUnknown}, {2, kToDo}}), Of(shot));
}

TEST(StandingOf, HasAllToDoWhereTheLookIsNone) {
  ShotFolder shot(1, 1);
  shot.input.look["alpha"] = "sometimes";
  EXPECT_EQ((Frames{{1, kToDo}}), Of(shot));
}

TEST(ChoicesFor, AreThoseOfTheFormatThatTheNameEndsIn) {
  const OutputChoices png = ChoicesFor("a.####.png");
  EXPECT_EQ("PNG", png.format);
  EXPECT_EQ((std::vector<std::string>{"8", "16"}), png.bits);
  EXPECT_EQ((std::vector<std::string>{"none", "fast", "small"}), png.compressions);
  EXPECT_FALSE(png.hasQuality);
  const OutputChoices tiff = ChoicesFor("a.tif");
  EXPECT_EQ((std::vector<std::string>{"8", "16", "float"}), tiff.bits);
  EXPECT_TRUE(tiff.qualityOf.empty());
  EXPECT_EQ("", ChoicesFor("a.doc").format);
  EXPECT_EQ("", ChoicesFor("").format);
}

TEST(ChoicesFor, HaveQualitiesOfSomeCompressionsOrOfTheFormat) {
  const OutputChoices exr = ChoicesFor("a.exr");
  if (exr.format.empty()) {
    GTEST_SKIP() << "no plug-in for pictures";
  }
  EXPECT_EQ((std::vector<std::string>{"half", "float"}), exr.bits);
  EXPECT_EQ((std::vector<std::string>{"dwaa", "dwab"}), exr.qualityOf);
  EXPECT_FALSE(exr.hasQuality);
  EXPECT_TRUE(ChoicesFor("a.jpg").hasQuality);
}

}  // namespace
}  // namespace glimmerhost
