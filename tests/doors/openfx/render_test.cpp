// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include "tests/doors/openfx/plugin_session.h"

namespace {

using lx_test::BlurredByLibrary;
using lx_test::Connect;
using lx_test::Depth;
using lx_test::LiveInstance;
using lx_test::Log;
using lx_test::MapHost;
using lx_test::OfxPicture;
using lx_test::PluginSession;

constexpr char kFilter[] = "OfxImageEffectContextFilter";
constexpr char kGeneral[] = "OfxImageEffectContextGeneral";
constexpr ofx::RectI kBounds{0, 0, 45, 32};

// The look that the parameters have from the beginning.
glimmerblur_look FirstLook() {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.radius_x = 10.0;
  look.radius_y = 10.0;
  look.sides = 6;
  return look;
}

class OpenFxRender : public testing::Test {
 protected:
  OpenFxRender() : session(&host) { EXPECT_EQ(ofx::kOk, session.Load()); }

  // An output of the same kind as a source.
  static OfxPicture OutputFor(const OfxPicture& source) {
    return OfxPicture(source.Bounds(), source.SampleDepth(), source.Channels());
  }

  MapHost host;
  PluginSession session;
};

TEST_F(OpenFxRender, IsTheLibrarysFrameInEveryDepthAndComponents) {
  for (const Depth depth : {Depth::kByte, Depth::kShort, Depth::kFloat}) {
    for (const int channels : {4, 1}) {
      OfxPicture source({-7, 5, 38, 36}, depth, channels);
      source.FillWithNoise(1);
      OfxPicture output = OutputFor(source);
      LiveInstance instance(session, kFilter, &source, &output);

      EXPECT_EQ(ofx::kOk, instance.Render());

      EXPECT_TRUE(BlurredByLibrary(source, FirstLook()) == output.TopRowFirst())
          << source.DepthName() << ' ' << source.ComponentsName();
      EXPECT_FALSE(source.TopRowFirst() == output.TopRowFirst());
      EXPECT_TRUE(instance.Effect().lent.empty());
    }
  }
}

TEST_F(OpenFxRender, FollowsRowsThatGoDownInMemory) {
  OfxPicture source(kBounds, Depth::kFloat, 4, OfxPicture::Rows::kDownwards);
  source.FillWithNoise(2);
  OfxPicture output(kBounds, Depth::kFloat, 4, OfxPicture::Rows::kDownwards);
  LiveInstance instance(session, kFilter, &source, &output);

  EXPECT_EQ(ofx::kOk, instance.Render());

  EXPECT_TRUE(BlurredByLibrary(source, FirstLook()) == output.TopRowFirst());
}

TEST_F(OpenFxRender, LeavesTheGapsBetweenRowsAlone) {
  OfxPicture source({0, 0, 3, 2}, Depth::kByte, 1);
  source.Fill(0.2);
  OfxPicture output({0, 0, 3, 2}, Depth::kByte, 1);
  LiveInstance instance(session, kFilter, &source, &output);

  EXPECT_EQ(ofx::kOk, instance.Render());

  EXPECT_EQ(source.Bytes(), output.Bytes());
}

struct ParameterCase {
  const char* name;
  double value;
  void (*apply)(glimmerblur_look* look);
};

TEST_F(OpenFxRender, HasEveryParameterInTheLook) {
  const ParameterCase cases[] = {
      {"shape", 1, [](glimmerblur_look* look) { look->shape = GLIMMERBLUR_ELLIPSE; }},
      {"shape", 2, [](glimmerblur_look* look) { look->shape = GLIMMERBLUR_POLYGON; }},
      {"radiusX", 3.5, [](glimmerblur_look* look) { look->radius_x = 3.5; }},
      {"radiusY", 4.5, [](glimmerblur_look* look) { look->radius_y = 4.5; }},
      {"sides", 5, [](glimmerblur_look* look) { look->sides = 5; }},
      {"rotation", 25, [](glimmerblur_look* look) { look->rotation = 25.0; }},
      {"emphasis", 20, [](glimmerblur_look* look) { look->emphasis = 20.0; }},
      {"emphasisAlpha", 1, [](glimmerblur_look* look) { look->emphasis_alpha = 1; }},
      {"edge", 1, [](glimmerblur_look* look) { look->edge = GLIMMERBLUR_ZERO; }},
      {"centred", 0, [](glimmerblur_look* look) { look->centred = 0; }},
      {"blurAlpha", 0, [](glimmerblur_look* look) { look->blur_alpha = 0; }},
  };
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(3);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect().SetValue("matchRadii", 0);
  glimmerblur_look look = FirstLook();
  EXPECT_EQ(ofx::kOk, instance.Render());
  std::vector<unsigned char> before = output.TopRowFirst();
  for (const ParameterCase& set : cases) {
    instance.Effect().SetValue(set.name, set.value);
    set.apply(&look);

    EXPECT_EQ(ofx::kOk, instance.Render());

    EXPECT_TRUE(BlurredByLibrary(source, look) == output.TopRowFirst()) << set.name;
    // The ellipse begins as the circle that was there.
    const bool isSame = std::string(set.name) == "shape" && set.value == 1;
    EXPECT_EQ(isSame, before == output.TopRowFirst()) << set.name;
    before = output.TopRowFirst();
  }
}

TEST_F(OpenFxRender, LetsThePolygonsYRadiusFollow) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(4);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect().SetValue("shape", 2);
  instance.Effect().SetValue("radiusX", 7.0);
  instance.Effect().SetValue("radiusY", 3.0);
  glimmerblur_look look = FirstLook();
  look.shape = GLIMMERBLUR_POLYGON;
  look.radius_x = 7.0;
  look.radius_y = 7.0;

  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_TRUE(BlurredByLibrary(source, look) == output.TopRowFirst());

  instance.Effect().SetValue("matchRadii", 0);
  look.radius_y = 3.0;
  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_TRUE(BlurredByLibrary(source, look) == output.TopRowFirst());
}

TEST_F(OpenFxRender, EmphasisesMattesOnlyWhereAlphaIs) {
  OfxPicture source(kBounds, Depth::kFloat, 1);
  source.FillWithNoise(5);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect().SetValue("emphasis", 30.0);
  glimmerblur_look look = FirstLook();

  EXPECT_EQ(ofx::kOk, instance.Render());
  const auto plain = BlurredByLibrary(source, look);
  EXPECT_TRUE(plain == output.TopRowFirst());

  instance.Effect().SetValue("emphasisAlpha", 1);
  look.emphasis = 30.0;
  look.emphasis_alpha = 1;
  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_TRUE(BlurredByLibrary(source, look) == output.TopRowFirst());
  EXPECT_FALSE(plain == output.TopRowFirst());
}

// How far the light of a point in the middle goes, to the right and upwards.
struct Reach {
  int right, up;
  bool operator==(const Reach&) const = default;
};

struct ReachCase {
  double aspect;
  ofx::PointD scale;
  Reach expected;
};

// The radius is 12 in canonical pixels: so many heights of a pixel at full size.
TEST_F(OpenFxRender, SpreadsByCanonicalPixelsAtEveryScaleAndAspect) {
  const ReachCase cases[] = {
      {1.0, {1.0, 1.0}, {12, 12}}, {1.0, {0.5, 0.5}, {6, 6}}, {1.0, {0.5, 1.0}, {6, 12}},
      {2.0, {1.0, 1.0}, {6, 12}},  {2.0, {0.5, 0.5}, {3, 6}}, {0.5, {1.0, 1.0}, {24, 12}},
  };
  for (const ReachCase& at : cases) {
    OfxPicture source({-30, -20, 31, 21}, Depth::kFloat, 4);
    source.Fill(0.0);
    source.Set(0, 0, 0, 1000.0);
    OfxPicture output = OutputFor(source);
    LiveInstance instance(session, kFilter, &source, &output);
    instance.Effect().renderScale = at.scale;
    Connect(&instance.Effect(), "Source", &source, at.aspect);
    instance.Effect().SetValue("radiusX", 12.0);

    EXPECT_EQ(ofx::kOk, instance.Render());

    Reach reach{};
    double sum = 0.0;
    for (int y = -20; y < 21; ++y) {
      for (int x = -30; x < 31; ++x) {
        const double value = output.Get(x, y, 0);
        sum += value;
        // A tenth of what a pixel in the middle gets.
        if (value > 0.1 * output.Get(0, 0, 0)) {
          reach = {std::max(reach.right, x), std::max(reach.up, y)};
        }
      }
    }
    EXPECT_EQ(at.expected, reach) << at.aspect << ' ' << at.scale.x << ' ' << at.scale.y << ": "
                                  << reach.right << ' ' << reach.up;
    EXPECT_NEAR(1000.0, sum, 0.01);
  }
}

// As the eye has it: rows go upwards.
TEST_F(OpenFxRender, TurnsAnticlockwise) {
  OfxPicture source({-20, -20, 21, 21}, Depth::kFloat, 4);
  source.Fill(0.0);
  source.Set(0, 0, 0, 1000.0);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect().SetValue("shape", 1);
  instance.Effect().SetValue("radiusX", 12.0);
  instance.Effect().SetValue("radiusY", 3.0);
  instance.Effect().SetValue("rotation", 30.0);

  EXPECT_EQ(ofx::kOk, instance.Render());

  // 8.7 and 5 are a length of 10 at 30 degrees.
  EXPECT_LT(1.0, output.Get(9, 5, 0));
  EXPECT_LT(1.0, output.Get(-9, -5, 0));
  EXPECT_NEAR(0.0, output.Get(9, -5, 0), 0.01);
  EXPECT_NEAR(0.0, output.Get(-9, 5, 0), 0.01);
}

TEST_F(OpenFxRender, IsTheLibrarysFrameAtHalfTheScale) {
  OfxPicture source(kBounds, Depth::kShort, 4);
  source.FillWithNoise(6);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect().renderScale = {0.5, 0.5};
  instance.Effect().SetValue("shape", 1);
  instance.Effect().SetValue("radiusY", 7.0);
  glimmerblur_look look = FirstLook();
  look.shape = GLIMMERBLUR_ELLIPSE;
  look.radius_x = 5.0;
  look.radius_y = 3.5;

  EXPECT_EQ(ofx::kOk, instance.Render());

  EXPECT_TRUE(BlurredByLibrary(source, look) == output.TopRowFirst());
}

TEST_F(OpenFxRender, ReadsParametersAtItsTime) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(7);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect()["radiusX"].keys = {{0.0, {4.0, 0.0}}, {8.0, {12.0, 0.0}}};
  for (const auto& [time, radius] :
       std::vector<std::pair<double, double>>{{0.0, 4.0}, {3.0, 7.0}, {8.0, 12.0}, {20.0, 12.0}}) {
    glimmerblur_look look = FirstLook();
    look.radius_x = radius;

    EXPECT_EQ(ofx::kOk, instance.Render(time));

    EXPECT_TRUE(BlurredByLibrary(source, look) == output.TopRowFirst()) << time;
  }
}

TEST_F(OpenFxRender, TakesTheSourcesWordOnPremultiplication) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(8);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  const auto premultiplied = BlurredByLibrary(source, FirstLook());
  const auto straight = BlurredByLibrary(source, FirstLook(), GLIMMERBLUR_STRAIGHT);
  ASSERT_FALSE(straight == premultiplied);
  const std::vector<std::pair<std::string, const std::vector<unsigned char>*>> cases{
      {"OfxImageAlphaUnPremultiplied", &straight},
      {"OfxImageAlphaPremultiplied", &premultiplied},
      {"OfxImageOpaque", &premultiplied}};
  for (const auto& [word, expected] : cases) {
    instance.Effect().Find("Source")->properties.Set("OfxImageEffectPropPreMultiplication", {word});
    EXPECT_EQ(ofx::kOk, instance.Render());
    EXPECT_TRUE(*expected == output.TopRowFirst()) << word;
  }
}

TEST_F(OpenFxRender, WritesTheWindowAlone) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(9);
  OfxPicture whole = OutputFor(source);
  OfxPicture part = OutputFor(source);
  part.Fill(77.0);
  const ofx::RectI window{11, 3, 30, 20};
  LiveInstance instance(session, kFilter, &source, &whole);
  EXPECT_EQ(ofx::kOk, instance.Render());
  Connect(&instance.Effect(), "Output", &part);

  EXPECT_EQ(ofx::kOk, instance.Render(0.0, window));

  for (int y = kBounds.y1; y < kBounds.y2; ++y) {
    for (int x = kBounds.x1; x < kBounds.x2; ++x) {
      const bool isInside = x >= 11 && x < 30 && y >= 3 && y < 20;
      for (int c = 0; c < 4; ++c) {
        // Another grid of the transforms rounds otherwise.
        ASSERT_NEAR(isInside ? whole.Get(x, y, c) : 77.0, part.Get(x, y, c), 1e-6) << x << ' ' << y;
      }
    }
  }
}

TEST_F(OpenFxRender, IsBlackAndTransparentBesideTheSource) {
  OfxPicture source({5, 4, 20, 18}, Depth::kByte, 4);
  source.Fill(1.0);
  OfxPicture output({0, 0, 30, 25}, Depth::kByte, 4);
  LiveInstance instance(session, kFilter, &source, &output);

  EXPECT_EQ(ofx::kOk, instance.Render());

  for (int y = 0; y < 25; ++y) {
    for (int x = 0; x < 30; ++x) {
      const bool isInside = x >= 5 && x < 20 && y >= 4 && y < 18;
      ASSERT_EQ(isInside ? 1.0 : 0.0, output.Get(x, y, 3)) << x << ' ' << y;
    }
  }
}

TEST_F(OpenFxRender, IsBlackAndTransparentWithoutASource) {
  OfxPicture output(kBounds, Depth::kFloat, 4);
  output.Fill(5.0);
  OfxPicture black = OutputFor(output);
  black.Fill(0.0);
  LiveInstance instance(session, kFilter, nullptr, &output);

  EXPECT_EQ(ofx::kOk, instance.Render());

  EXPECT_EQ(black.TopRowFirst(), output.TopRowFirst());
}

TEST_F(OpenFxRender, AsksForImagesAndGivesThemBack) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(10);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kGeneral, &source, &output);
  OfxPicture aperture({0, 0, 5, 5}, Depth::kFloat, 4);
  aperture.Fill(1.0);
  Connect(&instance.Effect(), "Aperture", &aperture);
  host.TakeLog();

  EXPECT_EQ(ofx::kOk, instance.Render(3.0));
  EXPECT_EQ((Log{"get Output at 3", "get Source at 3", "release Source", "release Output"}),
            host.TakeLog());

  instance.Effect().SetValue("shape", 3);
  EXPECT_EQ(ofx::kOk, instance.Render(4.0));
  EXPECT_EQ((Log{"get Output at 4", "get Source at 4", "get Aperture at 4", "release Aperture",
                 "release Source", "release Output"}),
            host.TakeLog());
}

TEST_F(OpenFxRender, SpreadsOverTheConnectedPicture) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(11);
  OfxPicture output = OutputFor(source);
  for (const int channels : {4, 1}) {
    OfxPicture aperture({3, 3, 12, 10}, Depth::kFloat, channels);
    aperture.FillWithNoise(12);
    LiveInstance instance(session, kGeneral, &source, &output);
    Connect(&instance.Effect(), "Aperture", &aperture);
    instance.Effect().SetValue("shape", 3);
    glimmerblur_look look = FirstLook();
    look.shape = GLIMMERBLUR_PICTURE;

    EXPECT_EQ(ofx::kOk, instance.Render());

    EXPECT_TRUE(BlurredByLibrary(source, look, GLIMMERBLUR_PREMULTIPLIED, &aperture) ==
                output.TopRowFirst());
    EXPECT_FALSE(source.TopRowFirst() == output.TopRowFirst());
  }
}

// Two pairs of bright pixels: one beside the other from the middle of the picture on, and one above
// the other from six pixels to its right and seven above it on.
TEST_F(OpenFxRender, CutsADiscOutOfTheConnectedPicture) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.Fill(0.0);
  source.Set(20, 15, 0, 1000.0);
  OfxPicture output = OutputFor(source);
  OfxPicture aperture({0, 0, 21, 21}, Depth::kFloat, 4);
  aperture.Fill(0.0);
  aperture.Set(10, 10, 0, 1.0);
  aperture.Set(12, 10, 0, 1.0);
  aperture.Set(16, 17, 0, 1.0);
  aperture.Set(16, 19, 0, 1.0);
  LiveInstance instance(session, kGeneral, &source, &output);
  Connect(&instance.Effect(), "Aperture", &aperture);
  instance.Effect().SetValue("shape", 3);
  instance.Effect().SetValue("apertureWhole", 0);
  instance.Effect().SetValue("apertureInner", 3.0);
  instance.Effect().SetValue("apertureOuter", 4.0);
  // What of the light goes there, on either side.
  const auto split = [&](int x, int y) {
    return output.Get(20 + x, 15 + y, 0) + output.Get(20 - x, 15 - y, 0);
  };

  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_NEAR(500.0, output.Get(20, 15, 0), 0.01);
  EXPECT_NEAR(500.0, split(2, 0), 0.01);

  instance.Effect().SetValue("apertureCentre", 6.0, 7.0);
  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_NEAR(500.0, output.Get(20, 15, 0), 0.01);
  EXPECT_NEAR(500.0, split(0, 2), 0.01);

  instance.Effect().SetValue("apertureCentre", 6.0, -7.0);
  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_NEAR(1000.0, output.Get(20, 15, 0), 0.01) << "an empty aperture is a point";
}

TEST_F(OpenFxRender, SaysWhatIsMissingUntilItIsThere) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(13);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kGeneral, &source, &output);
  instance.Effect().SetValue("shape", 3);
  host.TakeLog();

  EXPECT_EQ(ofx::kFailed, instance.Render());
  EXPECT_EQ("The shape is a picture, but none is connected to Aperture.",
            instance.Effect().message);
  EXPECT_TRUE(instance.Effect().lent.empty());

  instance.Effect().SetValue("shape", 0);
  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_EQ("", instance.Effect().message);
  const Log log = host.TakeLog();
  EXPECT_EQ(1, std::count(log.begin(), log.end(), "clear message"));

  EXPECT_EQ(ofx::kOk, instance.Render());
  const Log later = host.TakeLog();
  EXPECT_EQ(0, std::count(later.begin(), later.end(), "clear message"));
}

TEST_F(OpenFxRender, SaysWhatTheLibrarySays) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.Fill(0.5);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  instance.Effect().SetValue("emphasis", 501.0);

  EXPECT_EQ(ofx::kFailed, instance.Render());

  EXPECT_NE(std::string::npos, instance.Effect().message.find("mphasis"))
      << instance.Effect().message;
}

TEST_F(OpenFxRender, KeepsTheOutputOfAFrameThatIsGivenUp) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(14);
  OfxPicture output = OutputFor(source);
  output.Fill(3.0);
  const auto before = output.Bytes();
  LiveInstance instance(session, kFilter, &source, &output);
  host.abortAt = 1;

  EXPECT_EQ(ofx::kOk, instance.Render());

  EXPECT_EQ(1, instance.Effect().polls);
  EXPECT_EQ(before, output.Bytes());
  EXPECT_TRUE(instance.Effect().lent.empty());
  host.abortAt = 0;
  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_TRUE(BlurredByLibrary(source, FirstLook()) == output.TopRowFirst());
}

TEST_F(OpenFxRender, RefusesAnOutputOfAnotherKind) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.Fill(0.5);
  OfxPicture bytes(kBounds, Depth::kByte, 4);
  bytes.Fill(0.25);
  const auto before = bytes.Bytes();
  LiveInstance instance(session, kFilter, &source, &bytes);

  EXPECT_EQ(ofx::kErrImageFormat, instance.Render());

  EXPECT_EQ(before, bytes.Bytes());
  EXPECT_TRUE(instance.Effect().lent.empty());
}

TEST_F(OpenFxRender, RefusesImagesOfAnotherScale) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.Fill(0.5);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  ofx::PropertySet in = lx_test::MakeProperties(&host, "in");
  in.Set("OfxPropTime", {0.0});
  in.Set("OfxImageEffectPropRenderWindow", {0, 0, 45, 32});
  in.Set("OfxImageEffectPropRenderScale", {0.5, 0.5});

  EXPECT_EQ(ofx::kFailed, session.Act(ofx::kImageEffectActionRender, &instance.Effect(), &in));

  EXPECT_EQ("The host gave an image of another scale than it asked for.",
            instance.Effect().message);
  EXPECT_TRUE(instance.Effect().lent.empty());
}

TEST_F(OpenFxRender, PurgesAndRendersAgain) {
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(15);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  EXPECT_EQ(ofx::kOk, instance.Render());
  const auto first = output.TopRowFirst();
  output.Fill(0.0);

  EXPECT_EQ(ofx::kOk, session.Act(ofx::kActionPurgeCaches, &instance.Effect()));

  EXPECT_EQ(ofx::kOk, instance.Render());
  EXPECT_EQ(first, output.TopRowFirst());
}

TEST_F(OpenFxRender, ServesInstancesOnManyThreadsAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kFrames = 6;
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(16);
  std::vector<std::vector<unsigned char>> expected;
  for (int i = 0; i < kFrames; ++i) {
    glimmerblur_look look = FirstLook();
    look.radius_x = 3.0 + i;
    expected.push_back(BlurredByLibrary(source, look));
  }
  std::vector<int> wrong(kThreads, -1);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      OfxPicture output = OutputFor(source);
      LiveInstance instance(session, kFilter, &source, &output);
      instance.Effect()["radiusX"].keys = {{0.0, {3.0, 0.0}}, {10.0, {13.0, 0.0}}};
      int differing = 0;
      for (int i = 0; i < kFrames; ++i) {
        const int frame = (i + t) % kFrames;
        const bool isSame = instance.Render(frame) == ofx::kOk &&
                            output.TopRowFirst() == expected[static_cast<std::size_t>(frame)];
        differing += isSame ? 0 : 1;
      }
      wrong[static_cast<std::size_t>(t)] = differing;
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(std::vector<int>(kThreads, 0), wrong);
}

// A host that promises one frame at a time and does not keep it.
TEST_F(OpenFxRender, TakesTurnsOnOneInstance) {
  constexpr int kThreads = 4;
  constexpr int kFrames = 20;
  OfxPicture source(kBounds, Depth::kFloat, 4);
  source.FillWithNoise(17);
  OfxPicture output = OutputFor(source);
  LiveInstance instance(session, kFilter, &source, &output);
  host.TakeLog();
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < kFrames; ++i) {
        instance.Render();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  Log expected;
  for (int i = 0; i < kThreads * kFrames; ++i) {
    const Log frame{"get Output at 0", "get Source at 0", "release Source", "release Output"};
    expected.insert(expected.end(), frame.begin(), frame.end());
  }
  EXPECT_EQ(expected, host.TakeLog());
  EXPECT_TRUE(BlurredByLibrary(source, FirstLook()) == output.TopRowFirst());
}

}  // namespace
