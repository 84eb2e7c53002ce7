// SPDX-License-Identifier: BSD-3-Clause
// What a host asks an instance before it renders.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "tests/doors/openfx/plugin_session.h"

namespace {

using lx_test::Connect;
using lx_test::Depth;
using lx_test::LiveInstance;
using lx_test::MapHost;
using lx_test::OfxPicture;
using lx_test::PluginSession;

constexpr char kFilter[] = "OfxImageEffectContextFilter";
constexpr char kGeneral[] = "OfxImageEffectContextGeneral";

class OpenFxQuestions : public testing::Test {
 protected:
  OpenFxQuestions() : session(&host), source({2, 3, 42, 33}, Depth::kFloat, 4), output(source) {
    EXPECT_EQ(ofx::kOk, session.Load());
    out = lx_test::MakeProperties(&host, "out");
  }

  MapHost host;
  PluginSession session;
  OfxPicture source;
  OfxPicture output;
  ofx::PropertySet out;
};

double LargestDifference(const OfxPicture& a, const OfxPicture& b) {
  double largest = 0.0;
  for (int y = a.Bounds().y1; y < a.Bounds().y2; ++y) {
    for (int x = a.Bounds().x1; x < a.Bounds().x2; ++x) {
      for (int c = 0; c < a.Channels(); ++c) {
        largest = std::max(largest, std::abs(a.Get(x, y, c) - b.Get(x, y, c)));
      }
    }
  }
  return largest;
}

struct IdentityCase {
  const char* text;
  int shape;
  double radiusX, radiusY;
  double scale;
  double aspect;
  bool centred;
  bool expected;
};

TEST_F(OpenFxQuestions, IsItselfUpToHalfAPixel) {
  const IdentityCase cases[] = {
      {"no radius", 0, 0.0, 9.0, 1.0, 1.0, true, true},
      {"half a pixel", 0, 0.5, 9.0, 1.0, 1.0, true, true},
      {"more", 0, 0.75, 9.0, 1.0, 1.0, true, false},
      {"half a pixel at half the scale", 0, 1.0, 9.0, 0.5, 1.0, true, true},
      {"more at half the scale", 0, 1.5, 9.0, 0.5, 1.0, true, false},
      {"an ellipse that is high", 1, 0.5, 2.0, 1.0, 1.0, true, false},
      {"an ellipse that is wide", 1, 2.0, 0.5, 1.0, 1.0, true, false},
      {"a point of an ellipse", 1, 0.5, 0.5, 1.0, 1.0, true, true},
      {"a polygon whose Y radius follows", 2, 0.5, 9.0, 1.0, 1.0, true, true},
      {"narrow pixels", 0, 0.5, 9.0, 1.0, 0.5, true, false},
      {"wide pixels", 0, 0.5, 9.0, 1.0, 2.0, true, true},
      {"off its pixel", 0, 0.0, 9.0, 1.0, 1.0, false, false},
  };
  LiveInstance instance(session, kFilter, &source, &output);
  ofx::ImageEffect& effect = instance.Effect();
  for (const IdentityCase& asked : cases) {
    effect.renderScale = {asked.scale, asked.scale};
    Connect(&effect, "Source", &source, asked.aspect);
    effect.SetValue("shape", asked.shape);
    effect.SetValue("radiusX", asked.radiusX);
    effect.SetValue("radiusY", asked.radiusY);
    effect.SetValue("centred", asked.centred ? 1.0 : 0.0);
    out.values.clear();

    EXPECT_EQ(asked.expected ? ofx::kOk : ofx::kReplyDefault,
              instance.Ask(ofx::kImageEffectActionIsIdentity, &out, 7.0))
        << asked.text;

    EXPECT_EQ(asked.expected ? "OfxPropName: \"Source\"\nOfxPropTime: 7\n" : "", out.Text())
        << asked.text;
    // What it says is true, but for what colours lose on the way to the transforms and back.
    source.FillWithNoise(1);
    EXPECT_EQ(ofx::kOk, instance.Render());
    EXPECT_EQ(asked.expected, LargestDifference(source, output) < 1e-5)
        << asked.text << ": " << LargestDifference(source, output);
  }
}

TEST_F(OpenFxQuestions, IsNotItselfOverAPicture) {
  LiveInstance instance(session, kGeneral, &source, &output);
  instance.Effect().SetValue("shape", 3);
  instance.Effect().SetValue("radiusX", 0.0);
  instance.Effect().SetValue("radiusY", 0.0);
  EXPECT_EQ(ofx::kReplyDefault, instance.Ask(ofx::kImageEffectActionIsIdentity, &out));
}

TEST_F(OpenFxQuestions, FillsWhatTheSourceFills) {
  LiveInstance instance(session, kFilter, &source, &output);
  EXPECT_EQ(ofx::kOk, instance.Ask(ofx::kImageEffectActionGetRegionOfDefinition, &out));
  EXPECT_EQ("OfxImageEffectPropRegionOfDefinition: 2 3 42 33\n", out.Text());
}

TEST_F(OpenFxQuestions, LeavesRegionsToTheHostWithoutASource) {
  LiveInstance instance(session, kFilter, nullptr, &output);
  EXPECT_EQ(ofx::kReplyDefault, instance.Ask(ofx::kImageEffectActionGetRegionOfDefinition, &out));
  EXPECT_EQ(ofx::kReplyDefault, instance.Ask(ofx::kImageEffectActionGetRegionsOfInterest, &out));
  EXPECT_EQ("", out.Text());
}

TEST_F(OpenFxQuestions, NeedsTheWholeOfWhatIsConnected) {
  LiveInstance instance(session, kGeneral, &source, &output);
  EXPECT_EQ(ofx::kOk, instance.Ask(ofx::kImageEffectActionGetRegionsOfInterest, &out));
  EXPECT_EQ("OfxImageClipPropRoI_Source: 2 3 42 33\n", out.Text());

  OfxPicture aperture({0, 0, 5, 6}, Depth::kFloat, 4);
  Connect(&instance.Effect(), "Aperture", &aperture);
  EXPECT_EQ(ofx::kOk, instance.Ask(ofx::kImageEffectActionGetRegionsOfInterest, &out));
  EXPECT_EQ("OfxImageClipPropRoI_Aperture: 0 0 5 6\nOfxImageClipPropRoI_Source: 2 3 42 33\n",
            out.Text());
}

TEST_F(OpenFxQuestions, LeavesEndlessSourcesToTheHost) {
  LiveInstance instance(session, kFilter, &source, &output);
  constexpr double kEndless = std::numeric_limits<int>::max();
  instance.Effect().Find("Source")->region = {-kEndless, 0.0, kEndless, 10.0};
  EXPECT_EQ(ofx::kReplyDefault, instance.Ask(ofx::kImageEffectActionGetRegionsOfInterest, &out));
}

TEST_F(OpenFxQuestions, PrefersTheSourcesComponentsAndAlpha) {
  OfxPicture matte({0, 0, 9, 9}, Depth::kFloat, 1);
  LiveInstance instance(session, kGeneral, &matte, &output);
  instance.Effect().Find("Source")->properties.Set("OfxImageEffectPropPreMultiplication",
                                                   {std::string("OfxImageAlphaUnPremultiplied")});
  EXPECT_EQ(ofx::kOk, instance.Ask(ofx::kImageEffectActionGetClipPreferences, &out));
  EXPECT_EQ(
      "OfxImageClipPropComponents_Output: \"OfxImageComponentAlpha\"\n"
      "OfxImageEffectPropPreMultiplication: \"OfxImageAlphaUnPremultiplied\"\n",
      out.Text());
}

// A filter's output has the source's components anyway, and may not be given others.
TEST_F(OpenFxQuestions, PrefersAlphaAloneAsAFilter) {
  LiveInstance instance(session, kFilter, &source, &output);
  EXPECT_EQ(ofx::kOk, instance.Ask(ofx::kImageEffectActionGetClipPreferences, &out));
  EXPECT_EQ("OfxImageEffectPropPreMultiplication: \"OfxImageAlphaPremultiplied\"\n", out.Text());
}

}  // namespace
