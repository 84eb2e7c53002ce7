// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <string>

#include "tests/doors/openfx/plugin_session.h"

namespace {

using lx_test::Depth;
using lx_test::LiveInstance;
using lx_test::MapHost;
using lx_test::OfxPicture;
using lx_test::PluginSession;

constexpr char kFilter[] = "OfxImageEffectContextFilter";
constexpr char kGeneral[] = "OfxImageEffectContextGeneral";

class OpenFxDescription : public testing::Test {
 protected:
  OpenFxDescription() : session(&host) {}

  MapHost host;
  PluginSession session;
};

TEST_F(OpenFxDescription, SaysWhatTheEffectIs) {
  ASSERT_EQ(ofx::kOk, session.Load());
  EXPECT_EQ(R"(OfxImageEffectPluginPropFieldRenderTwiceAlways: 0
OfxImageEffectPluginPropGrouping: "Filter"
OfxImageEffectPluginPropHostFrameThreading: 0
OfxImageEffectPluginPropOverlayInteractV2: address
OfxImageEffectPluginPropSingleInstance: 0
OfxImageEffectPluginRenderThreadSafety: "OfxImageEffectRenderInstanceSafe"
OfxImageEffectPropMultipleClipDepths: 0
OfxImageEffectPropSupportedContexts: "OfxImageEffectContextFilter" "OfxImageEffectContextGeneral"
OfxImageEffectPropSupportedPixelDepths: "OfxBitDepthByte" "OfxBitDepthShort" "OfxBitDepthFloat"
OfxImageEffectPropSupportsMultiResolution: 1
OfxImageEffectPropSupportsMultipleClipPARs: 0
OfxImageEffectPropSupportsTiles: 0
OfxImageEffectPropTemporalClipAccess: 0
OfxPropLabel: "GlimmerBlur"
OfxPropLongLabel: "GlimmerBlur"
OfxPropPluginDescription: "Lens defocus. Every point of the picture spreads over an aperture: a circle, an ellipse, a polygon or a picture. Highlights can outweigh the rest: bright points open into images of the aperture."
OfxPropShortLabel: "GlimmerBlur"
)",
            session.Descriptor().properties.Text());
}

TEST_F(OpenFxDescription, OffersOverlaysAsTheHostDrawsThem) {
  host.missingSuites = {"OfxDrawSuite 1"};
  ASSERT_EQ(ofx::kOk, session.Load());
  const auto& values = session.Descriptor().properties.values;
  EXPECT_TRUE(values.contains("OfxImageEffectPluginPropOverlayInteractV1"));
  EXPECT_FALSE(values.contains("OfxImageEffectPluginPropOverlayInteractV2"));
}

TEST_F(OpenFxDescription, OffersNoOverlayWhereThereIsNone) {
  host.missingSuites = {"OfxInteractSuite 1"};
  ASSERT_EQ(ofx::kOk, session.Load());
  EXPECT_EQ(std::string::npos, session.Descriptor().properties.Text().find("Overlay"));
}

TEST_F(OpenFxDescription, DoesWithoutPropertiesThatTheHostDoesNotKnow) {
  host.unknownProperties = {"OfxPropShortLabel",
                            "OfxPropLongLabel",
                            "OfxPropPluginDescription",
                            "OfxImageEffectPluginPropOverlayInteractV2",
                            "OfxImageEffectPluginPropOverlayInteractV1",
                            "OfxImageClipPropFieldExtraction",
                            "OfxImageEffectPluginPropGrouping",
                            "OfxImageEffectPluginPropSingleInstance",
                            "OfxImageEffectPluginPropHostFrameThreading",
                            "OfxImageEffectPluginPropFieldRenderTwiceAlways",
                            "OfxImageEffectPropTemporalClipAccess",
                            "OfxImageEffectPropMultipleClipDepths",
                            "OfxImageEffectPropSupportsMultipleClipPARs",
                            "OfxImageEffectPropSupportsMultiResolution",
                            "OfxImageEffectPropRenderScale",
                            "OfxImageEffectPropPreMultiplication",
                            "OfxImagePropPixelAspectRatio",
                            "OfxImageClipPropConnected",
                            "OfxParamPropHint",
                            "OfxParamPropScriptName",
                            "OfxParamPropParent",
                            "OfxParamPropPageChild",
                            "OfxParamPropDisplayMin",
                            "OfxParamPropDisplayMax",
                            "OfxParamPropIncrement",
                            "OfxParamPropDigits",
                            "OfxParamPropDoubleType",
                            "OfxParamPropEnabled"};
  ASSERT_EQ(ofx::kOk, session.Load());
  OfxPicture picture({0, 0, 9, 9}, Depth::kFloat, 4);
  picture.Fill(0.5);
  LiveInstance instance(session, kGeneral, &picture, &picture);
  EXPECT_EQ(ofx::kOk, instance.Created());
  EXPECT_EQ(ofx::kOk, instance.Render());
  ofx::PropertySet out = lx_test::MakeProperties(&host, "out");
  EXPECT_EQ(ofx::kOk, instance.Ask(ofx::kImageEffectActionGetClipPreferences, &out));
  EXPECT_EQ("OfxImageClipPropComponents_Output: \"OfxImageComponentRGBA\"\n", out.Text());
}

std::string ClipsOf(const ofx::ImageEffect& described) {
  std::string text;
  for (const auto& clip : described.clips) {
    text += "- " + clip->name + '\n' + clip->properties.Text();
  }
  return text;
}

TEST_F(OpenFxDescription, HasAnOptionalApertureInTheGeneralContext) {
  ASSERT_EQ(ofx::kOk, session.Load());
  ofx::ImageEffect described(&host, "general");
  ASSERT_EQ(ofx::kOk, session.DescribeInContext(kGeneral, &described));
  EXPECT_EQ(R"(- Source
OfxImageClipPropFieldExtraction: "OfxFieldBoth"
OfxImageEffectPropSupportedComponents: "OfxImageComponentRGBA" "OfxImageComponentAlpha"
OfxImageEffectPropSupportsTiles: 0
OfxImageEffectPropTemporalClipAccess: 0
OfxPropLabel: "Source"
- Aperture
OfxImageClipPropFieldExtraction: "OfxFieldBoth"
OfxImageClipPropOptional: 1
OfxImageEffectPropSupportedComponents: "OfxImageComponentRGBA" "OfxImageComponentAlpha"
OfxImageEffectPropSupportsTiles: 0
OfxImageEffectPropTemporalClipAccess: 0
OfxPropLabel: "Aperture"
- Output
OfxImageEffectPropSupportedComponents: "OfxImageComponentRGBA" "OfxImageComponentAlpha"
OfxImageEffectPropSupportsTiles: 0
OfxImageEffectPropTemporalClipAccess: 0
OfxPropLabel: "Output"
)",
            ClipsOf(described));
}

TEST_F(OpenFxDescription, HasSourceAndOutputAloneAsAFilter) {
  ASSERT_EQ(ofx::kOk, session.Load());
  ofx::ImageEffect described(&host, "filter");
  ASSERT_EQ(ofx::kOk, session.DescribeInContext(kFilter, &described));
  ASSERT_EQ(2U, described.clips.size());
  EXPECT_EQ("Source", described.clips[0]->name);
  EXPECT_EQ("Output", described.clips[1]->name);
  EXPECT_EQ(nullptr, described.parameters.Find("apertureWhole"));
  EXPECT_EQ(
      3U,
      described.parameters.Find("shape")->properties.values.at("OfxParamPropChoiceOption").size());
}

TEST_F(OpenFxDescription, KnowsNoOtherContext) {
  ASSERT_EQ(ofx::kOk, session.Load());
  ofx::ImageEffect described(&host, "transition");
  EXPECT_EQ(ofx::kErrUnsupported,
            session.DescribeInContext("OfxImageEffectContextTransition", &described));
  EXPECT_TRUE(described.clips.empty());
}

// One line a parameter: what it is, what it starts with, what it may be and what is shown of that.
std::string ParametersOf(const ofx::ImageEffect& described) {
  std::string text;
  for (const auto& parameter : described.parameters.parameters) {
    auto& values = parameter->properties.values;
    text += parameter->name + ' ' + parameter->type.substr(std::string("OfxParamType").size());
    const auto add = [&](const char* before, const char* property) {
      if (values.contains(property)) {
        text += before;
        for (const lx_test::OfxValue& value : values.at(property)) {
          const auto* words = std::get_if<std::string>(&value);
          const auto* whole = std::get_if<int>(&value);
          text += words != nullptr   ? " \"" + *words + '"'
                  : whole != nullptr ? ' ' + std::to_string(*whole)
                                     : ' ' + lx_test::Text(std::get<double>(value));
        }
      }
    };
    add(", label", "OfxPropLabel");
    add(", default", "OfxParamPropDefault");
    add(", from", "OfxParamPropMin");
    add(" to", "OfxParamPropMax");
    add(", shown from", "OfxParamPropDisplayMin");
    add(" to", "OfxParamPropDisplayMax");
    add(", is", "OfxParamPropDoubleType");
    add(", one of", "OfxParamPropChoiceOption");
    add(", in", "OfxParamPropParent");
    add(", holds", "OfxParamPropPageChild");
    text += '\n';
  }
  return text;
}

TEST_F(OpenFxDescription, HasParametersWithLabelsAndRanges) {
  ASSERT_EQ(ofx::kOk, session.Load());
  ofx::ImageEffect described(&host, "general");
  ASSERT_EQ(ofx::kOk, session.DescribeInContext(kGeneral, &described));
  EXPECT_EQ(
      R"(controls Page, label "Controls", holds "shape" "radiusX" "radiusY" "matchRadii" "sides" "rotation" "emphasis" "blurAlpha" "emphasisAlpha" "edge" "centred" "aperture"
shape Choice, label "Shape", default 0, one of "Circle" "Ellipse" "Polygon" "Picture"
radiusX Double, label "Radius X", default 10, from 0 to 16000, shown from 0 to 200, is "OfxParamDoubleTypeX"
radiusY Double, label "Radius Y", default 10, from 0 to 16000, shown from 0 to 200, is "OfxParamDoubleTypeY"
matchRadii Boolean, label "Match radii", default 1
sides Integer, label "Sides", default 6, from 3 to 50, shown from 3 to 12
rotation Double, label "Rotation", default 0, from -36000 to 36000, shown from -180 to 180, is "OfxParamDoubleTypeAngle"
emphasis Double, label "Emphasis", default 1, from 0 to 500, shown from 1 to 50, is "OfxParamDoubleTypePlain"
blurAlpha Boolean, label "Blur alpha", default 1
emphasisAlpha Boolean, label "Emphasise alpha", default 0
edge Choice, label "Edge", default 0, one of "Repeat the edge" "Black and transparent"
centred Boolean, label "Centred", default 1
aperture Group, label "Aperture picture"
apertureWhole Boolean, label "Whole picture", default 1, in "aperture"
apertureCentre Double2D, label "Centre", default 0 0, from -16000 -16000 to 16000 16000, shown from -1000 -1000 to 1000 1000, is "OfxParamDoubleTypeXY", in "aperture"
apertureInner Double, label "Inner radius", default 20, from 0 to 16000, shown from 0 to 200, is "OfxParamDoubleTypeX", in "aperture"
apertureOuter Double, label "Outer radius", default 30, from 0 to 16000, shown from 0 to 200, is "OfxParamDoubleTypeX", in "aperture"
)",
      ParametersOf(described));
}

TEST_F(OpenFxDescription, HintsAtEveryParameterAndNamesItForScripts) {
  ASSERT_EQ(ofx::kOk, session.Load());
  ofx::ImageEffect described(&host, "general");
  ASSERT_EQ(ofx::kOk, session.DescribeInContext(kGeneral, &described));
  for (const auto& parameter : described.parameters.parameters) {
    if (parameter->type == "OfxParamTypePage") {
      continue;
    }
    const auto& values = parameter->properties.values;
    const auto text = [&values](const char* property) {
      return values.contains(property) ? std::get<std::string>(values.at(property)[0]) : "";
    };
    EXPECT_LT(20U, text("OfxParamPropHint").size()) << parameter->name;
    EXPECT_EQ('.', text("OfxParamPropHint").back()) << parameter->name;
    if (parameter->type != "OfxParamTypeGroup") {
      EXPECT_EQ(parameter->name, text("OfxParamPropScriptName"));
    }
  }
}

// Those that can be changed, of an instance.
std::string EnabledOf(const ofx::ImageEffect& effect) {
  std::string names;
  for (const auto& parameter : effect.parameters.parameters) {
    const auto found = parameter->properties.values.find("OfxParamPropEnabled");
    if (found != parameter->properties.values.end() && std::get<int>(found->second[0]) == 1) {
      names += parameter->name + ' ';
    }
  }
  return names;
}

TEST_F(OpenFxDescription, EnablesWhatTheShapeHas) {
  ASSERT_EQ(ofx::kOk, session.Load());
  OfxPicture picture({0, 0, 9, 9}, Depth::kFloat, 4);
  LiveInstance instance(session, kGeneral, &picture, &picture);
  ofx::ImageEffect& effect = instance.Effect();
  const auto change = [&](const char* name, double value) {
    effect.SetValue(name, value);
    ofx::PropertySet in = lx_test::MakeProperties(&host, "in");
    in.Set("OfxPropType", {std::string("OfxTypeParameter")});
    in.Set("OfxPropName", {std::string(name)});
    in.Set("OfxPropTime", {0.0});
    EXPECT_EQ(ofx::kOk, session.Act(ofx::kActionInstanceChanged, &effect, &in));
    return EnabledOf(effect);
  };

  EXPECT_EQ("radiusX emphasisAlpha centred ", EnabledOf(effect));
  EXPECT_EQ("radiusX radiusY rotation emphasisAlpha centred ", change("shape", 1));
  EXPECT_EQ("radiusX matchRadii sides rotation emphasisAlpha centred ", change("shape", 2));
  EXPECT_EQ("radiusX radiusY matchRadii sides rotation emphasisAlpha centred ",
            change("matchRadii", 0));
  EXPECT_EQ("radiusX radiusY matchRadii sides rotation centred ", change("blurAlpha", 0));
  EXPECT_EQ("apertureWhole ", change("shape", 3));
  EXPECT_EQ("apertureWhole apertureCentre apertureInner apertureOuter ",
            change("apertureWhole", 0));
  // Nothing hangs on it.
  effect["radiusX"].properties.values.clear();
  change("radiusX", 5.0);
  EXPECT_TRUE(effect["radiusX"].properties.values.empty());
}

}  // namespace
