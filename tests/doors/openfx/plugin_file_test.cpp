// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/border/exported_names.h"
#include "tests/doors/openfx/needed_libraries.h"
#include "tests/doors/openfx/plugin_session.h"
#include "tests/support/process_threads.h"
#include "tests/support/sanitizer.h"
#include "tests/support/shared_library.h"

namespace {

using lx_test::Depth;
using lx_test::LiveInstance;
using lx_test::Log;
using lx_test::MapHost;
using lx_test::OfxPicture;
using lx_test::PluginSession;

constexpr char kFilter[] = "OfxImageEffectContextFilter";

// In bytes where an address has eight: hosts were compiled with these.
static_assert(sizeof(ofx::Host) == 16 && offsetof(ofx::Host, fetchSuite) == 8);
static_assert(sizeof(ofx::Plugin) == 48 && offsetof(ofx::Plugin, identifier) == 16 &&
              offsetof(ofx::Plugin, minorVersion) == 28 && offsetof(ofx::Plugin, mainEntry) == 40);
static_assert(sizeof(ofx::PropertySuite) == 144 && offsetof(ofx::PropertySuite, getPointer) == 64 &&
              offsetof(ofx::PropertySuite, getInt) == 88);
static_assert(sizeof(ofx::ImageEffectSuite) == 104 &&
              offsetof(ofx::ImageEffectSuite, clipGetImage) == 40 &&
              offsetof(ofx::ImageEffectSuite, abort) == 64);
static_assert(sizeof(ofx::ParameterSuite) == 144 &&
              offsetof(ofx::ParameterSuite, paramGetValueAtTime) == 40 &&
              offsetof(ofx::ParameterSuite, paramSetValue) == 64 &&
              offsetof(ofx::ParameterSuite, paramEditEnd) == 136);
static_assert(sizeof(ofx::InteractSuite) == 24 &&
              offsetof(ofx::InteractSuite, interactGetPropertySet) == 16);
static_assert(sizeof(ofx::DrawSuite) == 48 && offsetof(ofx::DrawSuite, draw) == 32);
static_assert(sizeof(ofx::MessageSuite) == 24);
static_assert(sizeof(ofx::RectI) == 16 && sizeof(ofx::RectD) == 32 && sizeof(ofx::Colour) == 16);

TEST(OpenFxFile, LiesInABundle) {
  const std::filesystem::path file(lx_test::PluginFile());
  const auto bundle = file.parent_path().parent_path().parent_path();

  EXPECT_EQ("GlimmerBlur.ofx", file.filename());
  EXPECT_EQ(OPENFX_MACHINE, file.parent_path().filename());
  EXPECT_EQ("Contents", file.parent_path().parent_path().filename());
  EXPECT_EQ("GlimmerBlur.ofx.bundle", bundle.filename());
}

TEST(OpenFxFile, ExportsThreeNames) {
  EXPECT_EQ((Log{"OfxGetNumberOfPlugins", "OfxGetPlugin", "OfxSetHost"}),
            lx_test::ExportedNames(lx_test::PluginFile()));
}

// A C++ runtime among them would be that of the program, which may be an older one.
TEST(OpenFxFile, NeedsTheSystemAlone) {
  if (lx_test::kSanitized) {
    GTEST_SKIP() << "a sanitizer comes with libraries of its own";
  }
  EXPECT_EQ(Log{}, lx_test::ForeignLibraries(lx_test::PluginFile()));
}

TEST(OpenFxFile, HoldsOneEffect) {
  void* library = lx_test::OpenLibrary(lx_test::PluginFile());
  ASSERT_NE(nullptr, library) << lx_test::LibraryError();
  const auto count =
      reinterpret_cast<int (*)()>(lx_test::FunctionOf(library, "OfxGetNumberOfPlugins"));
  const auto get =
      reinterpret_cast<ofx::Plugin* (*)(int)>(lx_test::FunctionOf(library, "OfxGetPlugin"));

  EXPECT_EQ(1, count());
  EXPECT_EQ(nullptr, get(1));
  EXPECT_EQ(nullptr, get(-1));
  const ofx::Plugin* plugin = get(0);
  EXPECT_STREQ("OfxImageEffectPluginAPI", plugin->api);
  EXPECT_EQ(1, plugin->apiVersion);
  EXPECT_STREQ("example.vantrell.glimmerblur", plugin->identifier);
  EXPECT_EQ(1U, plugin->majorVersion);
  EXPECT_EQ(0U, plugin->minorVersion);
  lx_test::CloseLibrary(library);
}

TEST(OpenFxFile, TakesTheHostFromEitherFunction) {
  MapHost host;
  void* library = lx_test::OpenLibrary(lx_test::PluginFile());
  ASSERT_NE(nullptr, library);
  const auto setHost = reinterpret_cast<ofx::Status (*)(const ofx::Host*)>(
      lx_test::FunctionOf(library, "OfxSetHost"));
  const ofx::Plugin* plugin =
      reinterpret_cast<ofx::Plugin* (*)(int)>(lx_test::FunctionOf(library, "OfxGetPlugin"))(0);

  EXPECT_EQ(ofx::kErrMissingHostFeature,
            plugin->mainEntry(ofx::kActionLoad, nullptr, nullptr, nullptr));
  EXPECT_EQ(ofx::kFailed, setHost(nullptr));
  EXPECT_EQ(ofx::kOk, setHost(host.Table()));
  EXPECT_EQ(ofx::kOk, plugin->mainEntry(ofx::kActionLoad, nullptr, nullptr, nullptr));
  EXPECT_EQ(ofx::kOk, plugin->mainEntry(ofx::kActionUnload, nullptr, nullptr, nullptr));
  setHost(nullptr);
  plugin->setHost(const_cast<ofx::Host*>(host.Table()));
  EXPECT_EQ(ofx::kOk, plugin->mainEntry(ofx::kActionLoad, nullptr, nullptr, nullptr));
  EXPECT_EQ(ofx::kOk, plugin->mainEntry(ofx::kActionUnload, nullptr, nullptr, nullptr));
  lx_test::CloseLibrary(library);
}

TEST(OpenFxFile, RefusesHostsWithoutItsSuites) {
  for (const char* suite : {"OfxPropertySuite 1", "OfxImageEffectSuite 1", "OfxParameterSuite 1"}) {
    MapHost host;
    host.missingSuites = {suite};
    PluginSession session(&host);
    EXPECT_EQ(ofx::kErrMissingHostFeature, session.Load()) << suite;
  }
}

TEST(OpenFxFile, DoesWithoutTheOtherSuites) {
  const std::set<std::string> cases[] = {{"OfxInteractSuite 1"},
                                         {"OfxDrawSuite 1"},
                                         {"OfxMessageSuite 2"},
                                         {"OfxMessageSuite 1", "OfxMessageSuite 2"}};
  for (const std::set<std::string>& missing : cases) {
    const std::string& suite = *missing.begin();
    MapHost host;
    host.missingSuites = missing;
    PluginSession session(&host);
    EXPECT_EQ(ofx::kOk, session.Load()) << suite;
    OfxPicture source({0, 0, 16, 16}, Depth::kFloat, 4);
    source.FillWithNoise(1);
    OfxPicture output({0, 0, 16, 16}, Depth::kFloat, 4);
    LiveInstance instance(session, kFilter, &source, &output);
    EXPECT_EQ(ofx::kOk, instance.Render()) << suite;
    instance.Effect().SetValue("emphasis", -1.0);
    EXPECT_EQ(ofx::kFailed, instance.Render()) << suite;
  }
}

TEST(OpenFxFile, ShowsAPassingMessageWhereNoneStays) {
  MapHost host;
  host.missingSuites = {"OfxMessageSuite 2"};
  PluginSession session(&host);
  ASSERT_EQ(ofx::kOk, session.Load());
  OfxPicture picture({0, 0, 16, 16}, Depth::kFloat, 4);
  picture.Fill(0.5);
  LiveInstance instance(session, "OfxImageEffectContextGeneral", &picture, &picture);
  instance.Effect().SetValue("shape", 3);
  host.TakeLog();

  EXPECT_EQ(ofx::kFailed, instance.Render());

  EXPECT_EQ("message OfxMessageError: The shape is a picture, but none is connected to Aperture.",
            host.TakeLog().back());
}

TEST(OpenFxFile, LeavesOtherActionsToTheHost) {
  MapHost host;
  PluginSession session(&host);
  ASSERT_EQ(ofx::kOk, session.Load());
  EXPECT_EQ(ofx::kReplyDefault, session.Act("OfxActionSyncPrivateData"));
  EXPECT_EQ(ofx::kReplyDefault, session.Act("OfxImageEffectActionGetTimeDomain"));
  EXPECT_EQ(ofx::kReplyDefault, session.Act("OfxActionBeginInstanceChanged"));
}

TEST(OpenFxFile, RefusesHandlesThatItWasNotGiven) {
  MapHost host;
  PluginSession session(&host);
  ASSERT_EQ(ofx::kOk, session.Load());
  ofx::ImageEffect stranger(&host, "stranger");
  for (const char* action :
       {ofx::kImageEffectActionRender, ofx::kActionPurgeCaches, ofx::kActionDestroyInstance,
        ofx::kActionInstanceChanged, ofx::kImageEffectActionIsIdentity}) {
    EXPECT_EQ(ofx::kErrBadHandle, session.Act(action, &stranger)) << action;
  }
}

TEST(OpenFxFile, GoesAndComesBack) {
  OfxPicture source({0, 0, 40, 30}, Depth::kFloat, 4);
  source.FillWithNoise(1);
  std::vector<unsigned char> first;
  for (int i = 0; i < 3; ++i) {
    MapHost host;
    PluginSession session(&host);
    ASSERT_EQ(ofx::kOk, session.Load());
    OfxPicture output({0, 0, 40, 30}, Depth::kFloat, 4);
    {
      LiveInstance instance(session, kFilter, &source, &output);
      EXPECT_EQ(ofx::kOk, instance.Render());
    }
    EXPECT_TRUE(lx_test::IsPluginResident());

    session.Unload();

    EXPECT_FALSE(lx_test::IsPluginResident());
    first = i == 0 ? output.TopRowFirst() : first;
    EXPECT_EQ(first, output.TopRowFirst());
  }
}

// Waits until the system lists no more threads than that, or for a long time.
int SettledThreads(int expected) {
  for (int i = 0; i < 100000 && lx_test::ThreadCount() > expected; ++i) {
    std::this_thread::yield();
  }
  return lx_test::ThreadCount();
}

// A host that ends without destroying what it has made. Threads that stayed would run on in code
// that is gone.
TEST(OpenFxFile, GoesWithInstancesThatWereForgotten) {
  // The first thread of a process may bring along one that stays, the thread sanitizer's own.
  std::thread([] {}).join();
  const int before = lx_test::ThreadCount();
  MapHost host;
  PluginSession session(&host);
  ASSERT_EQ(ofx::kOk, session.Load());
  OfxPicture picture({0, 0, 40, 30}, Depth::kFloat, 4);
  picture.Fill(0.5);
  std::vector<std::unique_ptr<LiveInstance>> forgotten;
  for (int i = 0; i < 3; ++i) {
    forgotten.push_back(std::make_unique<LiveInstance>(session, kFilter, &picture, &picture));
    EXPECT_EQ(ofx::kOk, forgotten.back()->Render());
    forgotten.back()->Forget();
  }

  session.Unload();

  EXPECT_FALSE(lx_test::IsPluginResident());
  EXPECT_GE(before, SettledThreads(before));
}

}  // namespace
