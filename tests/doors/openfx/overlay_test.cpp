// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/doors/openfx/overlay_stage.h"
#include "tests/doors/openfx/plugin_session.h"
#include "tests/support/shared_library.h"

namespace {

using lx_test::Connect;
using lx_test::Depth;
using lx_test::LiveInstance;
using lx_test::Log;
using lx_test::MapHost;
using lx_test::OfxPicture;
using lx_test::OverlayStage;
using lx_test::PluginSession;

constexpr char kGeneral[] = "OfxImageEffectContextGeneral";

// A picture of 200 x 100, with its middle at (100, 50).
class OpenFxOverlay : public testing::Test {
 protected:
  OpenFxOverlay()
      : session(&host),
        picture({0, 0, 200, 100}, Depth::kByte, 4),
        aperture({0, 0, 60, 40}, Depth::kByte, 4) {
    EXPECT_EQ(ofx::kOk, session.Load());
    picture.Fill(0.5);
    instance.emplace(session, kGeneral, &picture, &picture);
    stage.emplace(session, &Effect());
  }

  ofx::ImageEffect& Effect() { return instance->Effect(); }
  double Value(const char* name) { return Effect()[name].keys.begin()->second.x; }

  void ShowCut() {
    Connect(&Effect(), "Aperture", &aperture);
    Effect().SetValue("shape", 3);
    Effect().SetValue("apertureWhole", 0);
    Effect().SetValue("apertureInner", 10.0);
    Effect().SetValue("apertureOuter", 18.0);
  }

  MapHost host;
  PluginSession session;
  OfxPicture picture;
  OfxPicture aperture;
  std::optional<LiveInstance> instance;
  std::optional<OverlayStage> stage;
};

// White, yellow and green.
constexpr char kCrosshair[] = "colour 1 1 1 1";
constexpr char kRing[] = "colour 1 0.85 0.1 1";
constexpr char kLit[] = "colour 0.2 1 0.4 1";

TEST_F(OpenFxOverlay, DrawsASquareAsACrosshairItsOutlineAndAHandle) {
  Effect().SetValue("shape", 2);
  Effect().SetValue("sides", 4);
  Effect().SetValue("radiusX", 30.0);
  Effect().SetValue("rotation", 90.0);

  EXPECT_EQ(ofx::kOk, stage->Draw());

  EXPECT_EQ((Log{"width 1.5", "solid", kCrosshair, "lines of 4 (90 50) (110 50) (100 40) (100 60)",
                 kRing, "loop of 4 (100 80) (70 50) (100 20) (130 50)", kRing,
                 "loop of 4 (96 76) (104 76) (104 84) (96 84)"}),
            host.TakeLog());
}

TEST_F(OpenFxOverlay, GivesAnEllipseTwoHandlesOfTheScreensSize) {
  Effect().SetValue("shape", 1);
  Effect().SetValue("radiusX", 40.0);
  Effect().SetValue("radiusY", 20.0);

  EXPECT_EQ(ofx::kOk, stage->Draw({0.5, 0.5}));

  const Log log = host.TakeLog();
  ASSERT_EQ(10U, log.size());
  EXPECT_EQ("lines of 4 (95 50) (105 50) (100 45) (100 55)", log[3]);
  EXPECT_EQ("loop of 72 (140 50)", log[5].substr(0, 19));
  EXPECT_EQ("loop of 4 (138 48) (142 48) (142 52) (138 52)", log[7]);
  EXPECT_EQ("loop of 4 (98 68) (102 68) (102 72) (98 72)", log[9]);
}

TEST_F(OpenFxOverlay, DrawsTwoRingsWhereADiscIsCutOut) {
  ShowCut();
  Effect().SetValue("apertureCentre", 5.0, -6.0);

  EXPECT_EQ(ofx::kOk, stage->Draw());

  const Log log = host.TakeLog();
  ASSERT_EQ(9U, log.size());
  EXPECT_EQ((Log{"width 1.5", "solid", kCrosshair, "lines of 4 (25 14) (45 14) (35 4) (35 24)"}),
            Log(log.begin(), log.begin() + 4));
  EXPECT_EQ(kRing, log[4]);
  EXPECT_EQ("loop of 72 (45 14)", log[5].substr(0, 18));
  EXPECT_EQ("dashed", log[6]);
  EXPECT_EQ("loop of 72 (53 14)", log[8].substr(0, 18));
}

TEST_F(OpenFxOverlay, DrawsNothingForAWholePictureOrNone) {
  Effect().SetValue("shape", 3);
  EXPECT_EQ(ofx::kReplyDefault, stage->Draw());
  Connect(&Effect(), "Aperture", &aperture);
  EXPECT_EQ(ofx::kReplyDefault, stage->Draw());
  EXPECT_EQ(Log{"width 1.5"}, Log(1, host.TakeLog().front()));
  Effect().SetValue("shape", 0);
  Connect(&Effect(), "Source", nullptr);
  EXPECT_EQ(ofx::kReplyDefault, stage->Draw());
}

TEST_F(OpenFxOverlay, LeavesTheMouseAloneBesideItsParts) {
  Effect().SetValue("radiusX", 40.0);
  for (const ofx::PointD place :
       {ofx::PointD{100.0, 50.0}, {120.0, 65.0}, {148.0, 50.0}, {0.0, 0.0}}) {
    EXPECT_EQ(ofx::kReplyDefault, stage->Pen(ofx::kInteractActionPenDown, place));
    EXPECT_EQ(ofx::kReplyDefault, stage->Pen(ofx::kInteractActionPenUp, place));
  }
  EXPECT_EQ(Log{}, host.TakeLog());
}

TEST_F(OpenFxOverlay, ChangesTheRadiusByItsRing) {
  // Down on the ring of radius 10, at an angle; up 50 away from the middle.
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {106.0, 58.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenMotion, {100.0, 75.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {130.0, 90.0}));

  EXPECT_EQ((Log{"begin Drag the aperture", "set radiusX 25", "redraw", "set radiusX 50", "redraw",
                 "end"}),
            host.TakeLog());
  EXPECT_EQ(ofx::kReplyDefault, stage->Pen(ofx::kInteractActionPenMotion, {190.0, 90.0}));
  EXPECT_DOUBLE_EQ(50.0, Value("radiusX"));
}

TEST_F(OpenFxOverlay, KeepsTheProportionOfAnEllipseOnItsOutline) {
  Effect().SetValue("shape", 1);
  Effect().SetValue("radiusX", 40.0);
  Effect().SetValue("radiusY", 20.0);
  Effect().SetValue("rotation", 90.0);
  // (100 + 12, 50 + 32) is on the turned ellipse: 32 of 40 along X, 12 of 20 along Y.
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {112.0, 82.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {106.0, 66.0}));

  EXPECT_EQ((Log{"begin Drag the aperture", "set radiusX 20", "set radiusY 10", "redraw", "end"}),
            host.TakeLog());
}

TEST_F(OpenFxOverlay, ChangesOneRadiusByItsHandle) {
  Effect().SetValue("shape", 1);
  Effect().SetValue("radiusX", 40.0);
  Effect().SetValue("radiusY", 20.0);
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {143.0, 53.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {160.0, 70.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {101.0, 69.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {120.0, 20.0}));

  EXPECT_EQ((Log{"begin Drag the aperture", "set radiusX 60", "redraw", "end",
                 "begin Drag the aperture", "set radiusY 30", "redraw", "end"}),
            host.TakeLog());
}

TEST_F(OpenFxOverlay, MovesAndResizesTheDisc) {
  ShowCut();
  Effect().SetValue("apertureCentre", 2.0, 3.0);  // from (30, 20)
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {33.0, 23.0}, {0.25, 0.25}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {37.0, 12.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {37.0, 22.0}, {0.25, 0.25}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {40.0, 16.0}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenDown, {55.0, 12.0}, {0.25, 0.25}));
  EXPECT_EQ(ofx::kOk, stage->Pen(ofx::kInteractActionPenUp, {37.0, 40.0}));

  EXPECT_EQ((Log{"begin Drag the aperture", "set apertureCentre 7 -8", "redraw", "end",
                 "begin Drag the aperture", "set apertureInner 5", "redraw", "end",
                 "begin Drag the aperture", "set apertureOuter 28", "redraw", "end"}),
            host.TakeLog());
}

TEST_F(OpenFxOverlay, TakesHoldWithinSevenPixelsOfTheScreen) {
  Effect().SetValue("radiusX", 40.0);
  const auto holds = [&](double x, double pixel) {
    const ofx::Status status = stage->Pen(ofx::kInteractActionPenDown, {x, 50.0}, {pixel, pixel});
    stage->Pen(ofx::kInteractActionPenUp, {60.0, 50.0});
    Effect().SetValue("radiusX", 40.0);
    return status == ofx::kOk;
  };
  // The ring's left side, where no handle is, is at 60.
  EXPECT_TRUE(holds(53.5, 1.0));
  EXPECT_FALSE(holds(52.5, 1.0));
  EXPECT_TRUE(holds(46.5, 2.0));
  EXPECT_FALSE(holds(45.5, 2.0));
}

TEST_F(OpenFxOverlay, LightsWhatIsUnderThePen) {
  EXPECT_EQ(ofx::kReplyDefault, stage->Pen(ofx::kInteractActionPenMotion, {100.0, 60.0}));
  EXPECT_EQ(ofx::kReplyDefault, stage->Pen(ofx::kInteractActionPenMotion, {100.0, 61.0}));
  EXPECT_EQ(Log{"redraw"}, host.TakeLog());

  EXPECT_EQ(ofx::kOk, stage->Draw());

  const Log log = host.TakeLog();
  EXPECT_EQ(kLit, log[4]);
  EXPECT_EQ(kRing, log[6]);
}

TEST_F(OpenFxOverlay, EndsAChangeWhoseMouseButtonIsNeverReleased) {
  stage->Pen(ofx::kInteractActionPenDown, {100.0, 60.0});
  EXPECT_EQ(1, host.leftOpen);
  EXPECT_EQ(ofx::kOk, stage->LoseFocus());
  EXPECT_EQ(0, host.leftOpen);

  stage->Pen(ofx::kInteractActionPenDown, {100.0, 60.0});
  EXPECT_EQ(1, host.leftOpen);
  stage.reset();
  EXPECT_EQ(0, host.leftOpen);
}

TEST_F(OpenFxOverlay, IsRedrawnWhenWhatItShowsChanges) {
  EXPECT_EQ(
      "OfxInteractPropSlaveToParam: \"shape\" \"radiusX\" \"radiusY\" \"matchRadii\" \"sides\" "
      "\"rotation\" \"apertureWhole\" \"apertureCentre\" \"apertureInner\" \"apertureOuter\"\n"
      "OfxPropEffectInstance: address\n",
      stage->Interact().properties.Text());
}

// An OpenGL that records what it is asked for, under the name by which the real one is loaded.
class RecordedGl {
 public:
  RecordedGl() : library_(lx_test::OpenLibrary(GL_RECORDER_FILE)) {
    EXPECT_NE(nullptr, library_) << lx_test::LibraryError();
  }
  ~RecordedGl() { lx_test::CloseLibrary(library_); }
  RecordedGl(const RecordedGl&) = delete;
  RecordedGl& operator=(const RecordedGl&) = delete;

  // Says so where it is another one that was loaded.
  std::string Text() const {
    const auto text =
        reinterpret_cast<const char* (*)()>(lx_test::FunctionOf(library_, "RecordedText"));
    return text != nullptr ? text() : "not recorded";
  }

 private:
  void* library_;
};

TEST(OpenFxOverlayByOpenGl, DrawsOnTheHostsAndSetsItBack) {
  MapHost host;
  host.missingSuites = {"OfxDrawSuite 1"};
  PluginSession session(&host);
  ASSERT_EQ(ofx::kOk, session.Load());
  OfxPicture picture({0, 0, 200, 100}, Depth::kByte, 4);
  OfxPicture aperture({0, 0, 60, 40}, Depth::kByte, 4);
  LiveInstance instance(session, kGeneral, &picture, &picture);
  OverlayStage stage(session, &instance.Effect());
  EXPECT_EQ(ofx::kReplyDefault, stage.Draw()) << "there is no OpenGL yet";
  Connect(&instance.Effect(), "Aperture", &aperture);
  instance.Effect().SetValue("shape", 3);
  instance.Effect().SetValue("apertureWhole", 0);
  const RecordedGl gl;

  EXPECT_EQ(ofx::kOk, stage.Draw());

  const std::string text = gl.Text();
  constexpr char kBegin[] =
      "push 8197, width 1.5, stipple 2 255, disable 2852, colour 1 1 1 1, begin 1, vertex 20 20, "
      "vertex 40 20, vertex 30 10, vertex 30 30, end, colour 1 0.85 0.1 1, begin 2, vertex 50 20, ";
  EXPECT_EQ(kBegin, text.substr(0, sizeof(kBegin) - 1));
  constexpr char kMiddle[] = "end, enable 2852, colour 1 0.85 0.1 1, begin 2, vertex 60 20, ";
  EXPECT_NE(std::string::npos, text.find(kMiddle)) << text;
  EXPECT_EQ("end, pop", text.substr(text.size() - 8));
}

}  // namespace
