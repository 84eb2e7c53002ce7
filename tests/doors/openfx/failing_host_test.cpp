// SPDX-License-Identifier: BSD-3-Clause
// A host whose calls fail, one after the other.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/doors/openfx/overlay_stage.h"
#include "tests/doors/openfx/plugin_session.h"

namespace {

using lx_test::Connect;
using lx_test::Depth;
using lx_test::LiveInstance;
using lx_test::MapHost;
using lx_test::OfxPicture;
using lx_test::OverlayStage;
using lx_test::PluginSession;

constexpr char kFilter[] = "OfxImageEffectContextFilter";
constexpr char kGeneral[] = "OfxImageEffectContextGeneral";

// What a host may answer where a call fails; as the first, "there is no image" of a clip is one.
constexpr ofx::Status kFailures[] = {ofx::kErrBadHandle, ofx::kErrMemory, ofx::kErrValue,
                                     ofx::kFailed};

// Runs an action again and again while its first, second, ... call fails, until none does.
//   forgiven  functions after whose failure the action may end well
// Gives the functions whose failure was met.
std::set<std::string> FailEachCall(MapHost* host, const std::set<std::string>& forgiven,
                                   const std::function<ofx::Status()>& action,
                                   const std::function<void(const std::string&)>& checkAfter) {
  std::set<std::string> met;
  for (const ofx::Status failure : kFailures) {
    for (int n = 1;; ++n) {
      host->FailCall(n, failure);
      const ofx::Status status = action();
      const std::string failed = host->FailedCall();
      host->FailCall(0, ofx::kOk);
      if (failed.empty()) {
        EXPECT_LT(1, n) << "the action calls nothing";
        break;
      }
      met.insert(failed);
      const std::string where = failed + ", call " + std::to_string(n) + ", status " +
                                std::to_string(failure) + " gave " + std::to_string(status);
      if (!forgiven.contains(failed)) {
        const ofx::Status expected = failure == ofx::kErrMemory ? ofx::kErrMemory : ofx::kFailed;
        EXPECT_EQ(expected, status) << where;
      }
      checkAfter(where);
    }
  }
  return met;
}

void CheckNothing(const std::string& /*where*/) {}

class OpenFxFailingHost : public testing::Test {
 protected:
  OpenFxFailingHost()
      : session(&host),
        source({0, 0, 20, 14}, Depth::kFloat, 4),
        output(source),
        aperture({0, 0, 5, 5}, Depth::kFloat, 4) {
    EXPECT_EQ(ofx::kOk, session.Load());
    source.FillWithNoise(1);
    aperture.Fill(1.0);
  }

  MapHost host;
  PluginSession session;
  OfxPicture source;
  OfxPicture output;
  OfxPicture aperture;
};

TEST_F(OpenFxFailingHost, EndsDescriptions) {
  const std::set<std::string> met = FailEachCall(
      &host, {},
      [&] {
        ofx::ImageEffect described(&host, "descriptor");
        return session.Act(ofx::kActionDescribe, &described);
      },
      CheckNothing);
  EXPECT_EQ((std::set<std::string>{"getPropertySet", "propSet"}), met);
}

TEST_F(OpenFxFailingHost, EndsDescriptionsInEitherContext) {
  for (const char* context : {kFilter, kGeneral}) {
    const std::set<std::string> met = FailEachCall(
        &host, {},
        [&] {
          ofx::ImageEffect described(&host, context);
          return session.DescribeInContext(context, &described);
        },
        CheckNothing);
    EXPECT_EQ(
        (std::set<std::string>{"clipDefine", "getParamSet", "paramDefine", "propGet", "propSet"}),
        met);
  }
}

TEST_F(OpenFxFailingHost, EndsCreationAndLeavesNoInstance) {
  const auto effect = lx_test::MakeInstance(session, kGeneral);
  bool created = false;
  const std::set<std::string> met = FailEachCall(
      &host, {},
      [&] {
        if (created) {
          EXPECT_EQ(ofx::kOk, session.Act(ofx::kActionDestroyInstance, effect.get()));
        }
        const ofx::Status status = session.Act(ofx::kActionCreateInstance, effect.get());
        created = status == ofx::kOk;
        return status;
      },
      [&](const std::string& where) {
        EXPECT_EQ(ofx::kErrBadHandle, session.Act(ofx::kActionDestroyInstance, effect.get()))
            << where;
      });
  EXPECT_EQ(
      (std::set<std::string>{"clipGetHandle", "getParamSet", "getPropertySet", "paramGetHandle",
                             "paramGetPropertySet", "paramGetValueAtTime", "propGet", "propSet"}),
      met);
  EXPECT_TRUE(created);
  EXPECT_EQ(ofx::kOk, session.Act(ofx::kActionDestroyInstance, effect.get()));
}

TEST_F(OpenFxFailingHost, EndsFramesGivesImagesBackAndRendersTheNext) {
  LiveInstance instance(session, kGeneral, &source, &output);
  Connect(&instance.Effect(), "Aperture", &aperture);
  instance.Effect().SetValue("shape", 3);
  ASSERT_EQ(ofx::kOk, instance.Render());
  const auto expected = output.TopRowFirst();
  // A frame that the host gives up ends well; a source that there is not counts as black; what is
  // told beside the effect is told in vain.
  const std::set<std::string> met = FailEachCall(
      &host, {"abort", "clipGetImage", "clearPersistentMessage"},
      [&] {
        output.Fill(3.0);
        return instance.Render();
      },
      [&](const std::string& where) {
        EXPECT_TRUE(instance.Effect().lent.empty()) << where;
        EXPECT_EQ(ofx::kOk, instance.Render()) << where;
        EXPECT_EQ(expected, output.TopRowFirst()) << where;
        host.TakeLog();
      });
  EXPECT_EQ(
      (std::set<std::string>{"abort", "clipGetImage", "clipGetPropertySet", "clipReleaseImage",
                             "paramGetHandle", "paramGetValueAtTime", "propGet"}),
      met);
}

TEST_F(OpenFxFailingHost, EndsFramesWithoutImages) {
  LiveInstance instance(session, kGeneral, &source, &output);
  Connect(&instance.Effect(), "Aperture", &aperture);
  instance.Effect().SetValue("shape", 3);
  for (const ofx::Status failure : kFailures) {
    // The output's, the source's and the aperture's.
    int image = 0;
    for (int n = 1; image < 3; ++n) {
      output.Fill(3.0);
      host.FailCall(n, failure);
      const ofx::Status status = instance.Render();
      if (host.FailedCall() != "clipGetImage") {
        continue;
      }
      ++image;
      const bool isBlack = image == 2 && failure == ofx::kFailed;
      EXPECT_EQ(isBlack                      ? ofx::kOk
                : failure == ofx::kErrMemory ? ofx::kErrMemory
                                             : ofx::kFailed,
                status);
      EXPECT_EQ(isBlack ? 0.0 : 3.0, output.Get(4, 4, 0)) << image << ' ' << failure;
      EXPECT_TRUE(instance.Effect().lent.empty());
    }
  }
}

// The message itself may fail, too. What has failed first is what the frame ends with.
TEST_F(OpenFxFailingHost, EndsFramesThatCannotBeToldOf) {
  LiveInstance instance(session, kGeneral, &source, &output);
  instance.Effect().SetValue("shape", 3);
  const std::set<std::string> met = FailEachCall(
      &host, {"clipGetImage", "clipReleaseImage", "setPersistentMessage"},
      [&] { return instance.Render(); },
      [&](const std::string& where) { EXPECT_TRUE(instance.Effect().lent.empty()) << where; });
  EXPECT_TRUE(met.contains("setPersistentMessage"));
}

TEST_F(OpenFxFailingHost, EndsQuestions) {
  LiveInstance instance(session, kGeneral, &source, &output);
  Connect(&instance.Effect(), "Aperture", &aperture);
  instance.Effect().SetValue("radiusX", 0.0);
  for (const char* action :
       {ofx::kImageEffectActionIsIdentity, ofx::kImageEffectActionGetRegionOfDefinition,
        ofx::kImageEffectActionGetRegionsOfInterest, ofx::kImageEffectActionGetClipPreferences}) {
    ofx::PropertySet out = lx_test::MakeProperties(&host, "out");
    // kFailed of a region says that there is none.
    const std::set<std::string> met = FailEachCall(
        &host, {"clipGetRegionOfDefinition"}, [&] { return instance.Ask(action, &out); },
        CheckNothing);
    EXPECT_TRUE(met.contains("propSet")) << action;
  }
}

TEST_F(OpenFxFailingHost, EndsChanges) {
  LiveInstance instance(session, kGeneral, &source, &output);
  ofx::PropertySet in = lx_test::MakeProperties(&host, "in");
  in.Set("OfxPropName", {std::string("shape")});
  in.Set("OfxPropTime", {0.0});
  const std::set<std::string> met = FailEachCall(
      &host, {}, [&] { return session.Act(ofx::kActionInstanceChanged, &instance.Effect(), &in); },
      CheckNothing);
  EXPECT_TRUE(met.contains("paramGetPropertySet"));
}

TEST_F(OpenFxFailingHost, EndsDrawings) {
  LiveInstance instance(session, kGeneral, &source, &output);
  OverlayStage stage(session, &instance.Effect());
  instance.Effect().SetValue("shape", 1);
  const std::set<std::string> met = FailEachCall(
      &host, {"clipGetRegionOfDefinition"}, [&] { return stage.Draw(); }, CheckNothing);
  EXPECT_TRUE(met.contains("setColour"));
  EXPECT_TRUE(met.contains("setLineWidth"));
  EXPECT_TRUE(met.contains("setLineStipple"));
  EXPECT_TRUE(met.contains("draw"));
  EXPECT_EQ(ofx::kOk, stage.Draw());
}

TEST_F(OpenFxFailingHost, EndsDragsAndLeavesNoChangeOpen) {
  LiveInstance instance(session, kGeneral, &source, &output);
  OverlayStage stage(session, &instance.Effect());
  ofx::Status last = ofx::kOk;
  const std::set<std::string> met = FailEachCall(
      &host, {"clipGetRegionOfDefinition"},
      [&] {
        instance.Effect().SetValue("radiusX", 5.0);
        ofx::Status status = ofx::kOk;
        const auto act = [&](const char* action, double x) {
          last = stage.Pen(action, {x, 7.0});
          status = status == ofx::kOk || status == ofx::kReplyDefault ? last : status;
        };
        act(ofx::kInteractActionPenDown, 15.0);
        act(ofx::kInteractActionPenMotion, 17.0);
        act(ofx::kInteractActionPenUp, 18.0);
        return status;
      },
      [&](const std::string& where) { EXPECT_EQ(0, host.leftOpen) << where; });
  EXPECT_TRUE(met.contains("paramEditBegin"));
  EXPECT_TRUE(met.contains("paramEditEnd"));
  EXPECT_TRUE(met.contains("paramSetValue"));
  EXPECT_TRUE(met.contains("interactRedraw"));
}

TEST_F(OpenFxFailingHost, EndsOverlaysThatCannotBeMade) {
  LiveInstance instance(session, kGeneral, &source, &output);
  OverlayStage stage(session, &instance.Effect());
  ofx::Interact second{&host, lx_test::MakeProperties(&host, "interact")};
  bool created = false;
  const std::set<std::string> met = FailEachCall(
      &host, {},
      [&] {
        if (created) {
          EXPECT_EQ(ofx::kOk, stage.Act(ofx::kActionDestroyInstance, &second));
        }
        const ofx::Status status = stage.Act(ofx::kActionCreateInstance, &second);
        created = status == ofx::kOk;
        return status;
      },
      [&](const std::string& where) {
        EXPECT_EQ(ofx::kErrBadHandle, stage.Act(ofx::kActionDestroyInstance, &second)) << where;
      });
  EXPECT_TRUE(met.contains("interactGetPropertySet"));
  EXPECT_EQ(ofx::kOk, stage.Act(ofx::kActionDestroyInstance, &second));
}

}  // namespace
