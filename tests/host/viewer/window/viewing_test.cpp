// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/viewing.h"

#include <gtest/gtest.h>

#include <QUndoStack>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include "host/looks/keyframed_values.h"
#include "host/looks/keys.h"
#include "host/module/frame_renderer.h"
#include "host/pictures/alpha.h"
#include "tests/host/viewer/shut_stream.h"
#include "tests/host/viewer/window/viewing_stage.h"
#include "tests/support/child_program.h"

namespace glimmerhost {
namespace {

using viewer_test::Ramp;
using viewer_test::WaitUntil;
using viewer_test::Write;
namespace fs = std::filesystem;

class ViewingOfFiles : public testing::Test, public viewer_test::ViewingStage {
 public:
  // What `render` writes of the file with the look of the window.
  Picture Rendered(const std::string& input, const std::string& output,
                   const std::string& options = "") {
    document.Save(folder / "look.toml");
    const auto outcome = lx_test::RunChild(
        PROGRAM,
        lx_test::SplitArguments("render '" + input + "' -o '" + (folder / output).string() +
                                "' --params '" + (folder / "look.toml").string() + "' " + options));
    EXPECT_EQ(outcome.code, 0) << outcome.text;
    ReadReport report;
    ReadOptions read;
    read.precision = Precision::kByFile;
    return ReadPicture(folder / output, read, &report);
  }
};

TEST_F(ViewingOfFiles, ShowsTheSamplesThatARenderWrites) {
  Picture picture = Ramp(96, 64, 1);
  picture.alpha = Alpha::kStraight;
  for (std::size_t i = 3; i < picture.samples.size(); i += 4) {
    picture.samples[i] = static_cast<std::uint16_t>(i * 37);
  }
  Write(folder / "in.png", picture);
  document.SetText("shape", "polygon", "");
  document.SetText("radius-x", "7.5px", "");
  document.SetText("rotation", "11", "");
  document.SetText("emphasis", "20", "");
  document.SetText("mix", "0.8", "");
  Open((folder / "in.png").string());
  ASSERT_TRUE(Settle());

  Picture shown = *viewing.Result();
  SettleAlpha(OutputFormatOf("out.png"), Alpha::kStraight, &shown);
  EXPECT_EQ(shown.samples, Rendered((folder / "in.png").string(), "out.png").samples);
}

TEST_F(ViewingOfFiles, ShowsTheFloatsThatARenderWrites) {
  Picture picture;
  picture.width = 40;
  picture.height = 30;
  picture.floats.assign(picture.PixelCount() * 4, 0.25F);
  for (std::size_t i = 3; i < picture.floats.size(); i += 4) {
    picture.floats[i] = 1.0F;
  }
  picture.floats[(12 * 40 + 17) * 4] = 300.0F;
  Coding coding;
  coding.bits = 32;
  coding.floats = true;
  PictureOutput(folder / "in.tif", true).Write(picture, coding);
  document.SetText("radius-x", "5px", "");
  document.SetText("emphasis", "3", "");
  Open((folder / "in.tif").string());
  ASSERT_TRUE(Settle());

  ASSERT_TRUE(viewing.Result()->IsFloat());
  EXPECT_EQ(viewing.Result()->floats,
            Rendered((folder / "in.tif").string(), "out.tif", "--bits float").floats);
}

TEST_F(ViewingOfFiles, TakesTheApertureOutOfTheSecondClip) {
  Write(folder / "in.png", Ramp(96, 64, 1));
  Write(folder / "spread.png", Ramp(96, 64, 5));
  document.SetText("shape", "image", "");
  document.SetText("radius-psf2", "12px", "");
  Open((folder / "in.png").string());
  ASSERT_TRUE(Settle());
  const std::vector<std::uint16_t> own = viewing.Result()->samples;

  document.SetText("spread", (folder / "spread.png").string(), "");
  ASSERT_TRUE(Settle());
  EXPECT_NE(viewing.Result()->samples, own);
  EXPECT_EQ(viewing.Result()->samples, Rendered((folder / "in.png").string(), "out.png").samples);
}

TEST_F(ViewingOfFiles, ShowsEachFrameOfAShotWithItsOwnValues) {
  Open(WriteShot(5));
  document.SetText("radius-x", "first=2px; last=10px", "");
  ASSERT_TRUE(Settle());
  viewing.SetFrame(4);
  ASSERT_TRUE(WaitUntil(&viewing, &Viewing::StateChanged, [this] {
    return viewing.IsSettled() && viewing.Rendered().frame->frame == 4;
  }));
  // Three quarters of the way from 2 to 10 pixels of 96: a diameter of 16 / 96.
  Picture expected = Ramp(96, 64, 4);
  std::map<std::string, Value> values = page.Defaults();
  values[kRadiusXKey] = 16.0 / 96.0;
  RenderPicture(*module, values, {}, {1, 1}, &expected);
  EXPECT_EQ(viewing.Result()->samples, expected.samples);
}

TEST_F(ViewingOfFiles, ShowsAStillInAsManyFramesAsItsLookSays) {
  Write(folder / "still.png", Ramp(96, 64, 1));
  Open((folder / "still.png").string());
  ASSERT_TRUE(Settle());
  EXPECT_EQ(viewing.Frames(), std::vector<int>{1});

  document.SetText("shot", "11-15", "");
  document.SetText("radius-x", "first=2px; last=10px", "");
  EXPECT_EQ(viewing.Frames(), (std::vector<int>{11, 12, 13, 14, 15}));
  EXPECT_EQ(viewing.Frame(), 11);
  viewing.SetFrame(14);
  ASSERT_TRUE(WaitUntil(&viewing, &Viewing::StateChanged, [this] {
    return viewing.IsSettled() && viewing.Rendered().frame->frame == 14;
  }));
  // Three quarters of the way from 2 to 10 pixels of 96: a diameter of 16 / 96.
  Picture expected = Ramp(96, 64, 1);
  std::map<std::string, Value> values = page.Defaults();
  values[kRadiusXKey] = 16.0 / 96.0;
  RenderPicture(*module, values, {}, {1, 1}, &expected);
  EXPECT_EQ(viewing.Result()->samples, expected.samples);

  document.UndoStack()->undo();
  document.UndoStack()->undo();
  EXPECT_EQ(viewing.Frames(), std::vector<int>{1});
  EXPECT_EQ(viewing.Frame(), 1);
}

TEST_F(ViewingOfFiles, GoesToTheNearestFrameThatIsThere) {
  const std::string shot = WriteShot(5);
  fs::remove(folder / "shot.0003.png");
  fs::remove(folder / "shot.0004.png");
  Open(shot);
  ASSERT_TRUE(Settle());
  viewing.SetFrame(4);
  EXPECT_EQ(viewing.Frame(), 5);
  viewing.SetFrame(-80);
  EXPECT_EQ(viewing.Frame(), 1);
}

TEST_F(ViewingOfFiles, TellsOfABrokenFileAndShowsTheNextOne) {
  const std::string shot = WriteShot(3);
  std::ofstream(folder / "shot.0002.png", std::ios::trunc) << "no picture";
  Open(shot);
  ASSERT_TRUE(Settle());
  QSignalSpy told(&viewing, &Viewing::Told);
  viewing.SetFrame(2);
  ASSERT_TRUE(told.count() > 0 || told.wait());
  EXPECT_TRUE(told.front().front().toString().contains("shot.0002.png"));
  viewing.SetFrame(3);
  ASSERT_TRUE(WaitUntil(&viewing, &Viewing::StateChanged, [this] {
    return viewing.IsSettled() && viewing.Rendered().frame->frame == 3;
  }));
}

TEST_F(ViewingOfFiles, KeepsWhatIsOpenWhereAnotherCannotBe) {
  Open(WriteShot(1));
  ASSERT_TRUE(Settle());
  QSignalSpy told(&viewing, &Viewing::Told);
  Open((folder / "nowhere.png").string());
  ASSERT_TRUE(told.wait());
  EXPECT_TRUE(told.front().front().toString().contains("nowhere.png"));
  EXPECT_EQ(viewing.Clip()->Title(), "shot.####.png");
}

TEST_F(ViewingOfFiles, EndsWithTheLastOfManyChanges) {
  Open(WriteShot(1));
  ASSERT_TRUE(Settle());
  const int gesture = LookDocument::NewGesture();
  for (int i = 1; i <= 50; ++i) {
    document.SetValues({{kRadiusXKey, 0.002 * i}}, 1, "", gesture);
  }
  ASSERT_TRUE(Settle());
  Picture expected = Ramp(96, 64, 1);
  std::map<std::string, Value> values = page.Defaults();
  values[kRadiusXKey] = 0.002 * 50;
  RenderPicture(*module, values, {}, {1, 1}, &expected);
  EXPECT_EQ(viewing.Result()->samples, expected.samples);
}

TEST(Viewing, SaysThatARenderHangsAndGoesOnWhenItIsGivenUp) {
  viewer_test::ShutStream stream;
  std::ostream out(&stream);
  Trace trace(out);
  viewer_test::ViewingStage stage(&trace);
  stage.Open(stage.WriteShot(1));
  ASSERT_TRUE(stage.Settle());
  // The page is the module's, too: from here on only the render says anything.
  stage.viewing.SetPatience(std::chrono::milliseconds(20));
  QSignalSpy hangs(&stage.viewing, &Viewing::Hangs);
  stream.ShutForOthers();
  stage.document.SetText("radius-x", "9px", "");
  ASSERT_TRUE(hangs.wait(60000));
  EXPECT_EQ(stage.viewing.State(), ShownState::kWorking);

  stage.viewing.GiveUp();
  EXPECT_EQ(stage.viewing.Hanging(), 1);
  EXPECT_EQ(stage.viewing.State(), ShownState::kNothing);
  stream.Open();
  while (stage.viewing.Hanging() > 0) {
    std::this_thread::yield();
  }
  stage.document.SetText("radius-x", "8px", "");
  ASSERT_TRUE(stage.Settle());
  EXPECT_TRUE(stage.viewing.Result());
}

}  // namespace
}  // namespace glimmerhost
