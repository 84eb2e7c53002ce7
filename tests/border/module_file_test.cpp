// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "hostframe/interfaces/plugin_ui.h"
#include "tests/border/exported_names.h"
#include "tests/border/loaded_module.h"
#include "tests/border/module_path.h"
#include "tests/support/sanitizer.h"

namespace {

using lx_test::FakeHost;
using lx_test::LoadedModule;
using Log = std::vector<std::string>;

TEST(ModuleFile, HasItsName) {
  EXPECT_EQ("LXTorvane_GlimmerBlur" MODULE_SUFFIX,
            std::filesystem::path(lx_test::ModuleFile()).filename());
}

TEST(ModuleFile, ExportsTwoNames) {
  EXPECT_EQ((Log{"moduleCleanUp", "moduleInit"}), lx_test::ExportedNames(lx_test::ModuleFile()));
}

// Without loading it: two names leave a module, and its engine is not for the border to tell.
TEST(ModuleFile, HoldsTheNameOfItsEngineAlone) {
  std::ifstream file(lx_test::ModuleFile(), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});

  for (const std::string engine : {"exact", "double", "single"}) {
    const std::string marker = "GlimmerBlur engine: " + engine + std::string(1, '\0');
    EXPECT_EQ(engine == lx_test::ModuleEngine(), bytes.find(marker) != std::string::npos) << engine;
  }
}

TEST(ModuleFile, CallsNothingOnTheHostUntilItIsAsked) {
  FakeHost host;
  void* library = lx_test::OpenLibrary(lx_test::ModuleFile());
  ASSERT_NE(nullptr, library);
  EXPECT_TRUE(host.log.calls.empty());
  lx_test::CloseLibrary(library);
  EXPECT_TRUE(host.log.calls.empty());
}

TEST(ModuleFile, TakesItsClassesOutAtUnloadAndGoes) {
  FakeHost host;
  LoadedModule module(&host);
  module.CleanUp();
  EXPECT_EQ(2U, host.factory->classes.size());
  host.log.calls.clear();
  std::vector<std::uint32_t> removed;
  // The factory may still ask what it is losing, while statics are being destroyed.
  host.factory->onRemove = [&](const auto& ctor) {
    removed.push_back(ctor->classInfo()->guid().group1);
    EXPECT_EQ(u"DeveloperName:<LXTorvane Q-S> EffectName:<GlimmerBlur>", ctor->classInfo()->name());
    EXPECT_EQ(u"iInstance", ctor->classInfo()->bases()[0]->bases()[0]->name());
  };

  module.Unload();

  EXPECT_EQ((Log{"removeClass", "removeClass"}), host.log.calls);
  EXPECT_EQ((std::vector<std::uint32_t>{0x2FD3AFEC, 0x1FD3AFEC}), removed);
  EXPECT_FALSE(LoadedModule::IsResident());
}

TEST(ModuleFile, LoadsAndUnloadsAgainAndAgainWithInstancesBetween) {
  constexpr int kTimes = lx_test::kSanitized ? 100 : 1000;
  for (int i = 0; i < kTimes; ++i) {
    FakeHost host;
    LoadedModule module(&host);
    for (const auto& ctor : host.factory->classes) {
      const auto instance = ctor->create();
      ASSERT_TRUE(instance);
    }
    host.log.calls.clear();
    module.Unload();
    ASSERT_EQ(2U, host.log.calls.size()) << i;
    ASSERT_FALSE(LoadedModule::IsResident());
  }
}

TEST(ModuleFile, ThrowsWhatTheHostCanCatch) {
  FakeHost host;
  const LoadedModule module(&host);
  try {
    host.factory->classes[0]->createWith();
    FAIL();
  } catch (const quantel::cNotSupported& fault) {
    EXPECT_EQ(41U, fault.line());
  }
  try {
    host.factory->classes[1]->createWith();
    FAIL();
  } catch (const quantel::cRecoverable& fault) {
    EXPECT_EQ(100U, fault.line());
    EXPECT_EQ(quantel::cRecoverable::kMagic, fault.magic());
  }
  EXPECT_EQ(0, std::uncaught_exceptions());
}

TEST(ModuleFile, OffersItsInterfacesByDynamicCast) {
  FakeHost host;
  const LoadedModule module(&host);
  const auto ui = host.factory->classes[0]->create();
  const auto render = host.factory->classes[1]->create();

  EXPECT_TRUE(ui.Dynamic<qplugin::iQpluginUI>());
  EXPECT_TRUE(ui.Dynamic<qplugin::iQpluginUI4>());
  EXPECT_FALSE(ui.Dynamic<qplugin::iQpluginRender>());
  EXPECT_TRUE(render.Dynamic<qplugin::iQpluginRender>());
  EXPECT_TRUE(render.Dynamic<qplugin::iQpluginPreRender>());
}

TEST(ModuleFile, NeverCountsTheFactoryItself) {
  FakeHost host;
  const int before = host.factory->Count();
  LoadedModule module(&host);
  { const auto instance = host.factory->classes[1]->create(); }
  EXPECT_EQ(before, host.factory->Count());
}

}  // namespace
