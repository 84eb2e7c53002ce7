// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/module_entry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "hostframe/module_statics.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/fake_host.h"

namespace {

using lx_test::cPtr;
using lx_test::FakeModule;
using Log = std::vector<std::string>;

class ModuleEntry : public testing::Test {
 protected:
  // What the module's statics do at unload.
  ~ModuleEntry() override { allplugins::registrations.clear(); }

  lx_test::FakeHost host;
};

TEST_F(ModuleEntry, TakesTheTextsThenRegistersPageAndRender) {
  const cPtr<FakeModule> module(new FakeModule(&host.log));

  moduleInit(module);

  EXPECT_EQ((Log{"module.moduleText", "module.moduleText2", "registerClass", "registerClass"}),
            host.log.calls);
  EXPECT_EQ(1, module->Count());
  ASSERT_EQ(2U, host.factory->classes.size());
  EXPECT_EQ(0x2FD3AFECU, host.factory->classes[0]->classInfo()->guid().group1);
  EXPECT_EQ(0x1FD3AFECU, host.factory->classes[1]->classInfo()->guid().group1);
  EXPECT_EQ(2U, allplugins::registrations.size());
}

// The argument lives to the end of the whole expression, so the log is copied inside of it.
TEST_F(ModuleEntry, LetsGoOfTheModuleBeforeItReturns) {
  const Log atReturn =
      (moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log))), host.log.calls);

  EXPECT_EQ(
      (Log{"module.moduleText", "module.moduleText2", "registerClass", "registerClass", "~module"}),
      atReturn);
}

TEST_F(ModuleEntry, HandsOverConstructorsThatTheFactoryAndItsRegistrationHold) {
  moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));

  EXPECT_EQ((std::vector<int>{1, 1}), host.factory->countsAtRegistration);
  for (const auto& ctor : host.factory->classes) {
    EXPECT_EQ(2, ctor.RefCount()->Count());
  }
}

TEST_F(ModuleEntry, GivesTheHostsTextBackThroughThePage) {
  moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));

  const auto ui = host.factory->classes[0]->create().Dynamic<qplugin::iQpluginUI>();

  EXPECT_EQ(u"first text", ui->moduleText());
  EXPECT_EQ(u"second text", allplugins::savedModuleText2);
}

TEST_F(ModuleEntry, RegistersAgainAtASecondCall) {
  moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));
  moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));

  EXPECT_EQ(4U, allplugins::registrations.size());
}

TEST_F(ModuleEntry, KeepsTheFirstClassWhereTheHostThrows) {
  host.log.throwAt = "module.moduleText2";
  EXPECT_THROW(moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log))),
               lx_test::HostFault);
  EXPECT_TRUE(allplugins::registrations.empty());

  host.log.throwAt.clear();
  moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));
  host.log.throwAt = "registerClass";
  EXPECT_THROW(moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log))),
               lx_test::HostFault);
  EXPECT_EQ(2U, allplugins::registrations.size());
}

TEST_F(ModuleEntry, LeavesTheClassesAtCleanUp) {
  moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));
  host.log.calls.clear();

  moduleCleanUp();

  EXPECT_TRUE(host.log.calls.empty());
  EXPECT_EQ(2U, host.factory->classes.size());
}

TEST_F(ModuleEntry, TakesThePageOutBeforeTheRender) {
  std::vector<std::uint32_t> removed;
  host.factory->onRemove = [&](const auto& ctor) {
    removed.push_back(ctor->classInfo()->guid().group1);
  };
  {
    allplugins::Registrations own;
    moduleInit(cPtr<qplugin::iQpluginModule>(new FakeModule(&host.log)));
    own.swap(allplugins::registrations);
  }

  EXPECT_EQ((std::vector<std::uint32_t>{0x2FD3AFEC, 0x1FD3AFEC}), removed);
}

TEST(ModuleStatics, HoldTheTextsAndKeys) {
  EXPECT_EQ(u"LXTorvane Q-S", allplugins::developerName);
  EXPECT_EQ(u"GlimmerBlur", allplugins::effectName);
  EXPECT_EQ(u" //DeveloperName:<LXTorvane Q-S> EffectName:<GlimmerBlur>", allplugins::classTail);
  const quantel::wstring* keys[] = {
      &allplugins::keyShape,      &allplugins::keyMatch,     &allplugins::keyRadiusX,
      &allplugins::keyRadiusY,    &allplugins::keySides,     &allplugins::keyRotation,
      &allplugins::keyEmphasis,   &allplugins::keyEmphAlpha, &allplugins::keyPrecision,
      &allplugins::keyCenter,     &allplugins::keyCenterX,   &allplugins::keyCenterY,
      &allplugins::keyRadiusPSF1, &allplugins::keyRadiusPSF2};
  const char16_t* texts[] = {u"PRM_Shape",      u"PRM_Match",     u"PRM_RadiusX",  u"PRM_RadiusY",
                             u"PRM_Sides",      u"PRM_Rotation",  u"PRM_Emphasis", u"PRM_EmphAlpha",
                             u"PRM_Precision",  u"PRM_Center",    u"PRM_Center_X", u"PRM_Center_Y",
                             u"PRM_RadiusPSF1", u"PRM_RadiusPSF2"};
  for (int i = 0; i < 14; ++i) {
    EXPECT_EQ(texts[i], *keys[i]);
  }
}

}  // namespace
