// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <exception>

#include "hostframe/class_ctor.h"
#include "hostframe/render_adapter.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/fake_host.h"

namespace {

using allplugins::cClassCtor;
using allplugins::cGlimmerBlurRender;
using allplugins::cGlimmerBlurUI;
using lx_test::cPtr;
using quantel::cClassInfo;

constexpr const char16_t* kEffectText = u"DeveloperName:<LXTorvane Q-S> EffectName:<GlimmerBlur>";

TEST(ClassInfo, NamesEachClassByItsText) {
  EXPECT_EQ(u"Qplugin GUI Interface", cClassInfo<qplugin::iQpluginUI>().name());
  EXPECT_EQ(u"Qplugin Render Interface", cClassInfo<qplugin::iQpluginRender>().name());
  EXPECT_EQ(u"iQplugin", cClassInfo<qplugin::iQplugin>().name());
  EXPECT_EQ(u"iInstance", cClassInfo<quantel::iFactory::iInstance>().name());
  EXPECT_EQ(kEffectText, cClassInfo<cGlimmerBlurUI>().name());
  EXPECT_EQ(kEffectText, cClassInfo<cGlimmerBlurRender>().name());
}

template <class Described>
void ExpectBase(const quantel::wstring& name) {
  const auto bases = cClassInfo<Described>().bases();
  ASSERT_EQ(1U, bases.size());
  EXPECT_EQ(name, bases[0]->name());
  EXPECT_EQ(1, bases[0].RefCount()->Count());
}

TEST(ClassInfo, KnowsItsDirectBase) {
  ExpectBase<cGlimmerBlurUI>(u"Qplugin GUI Interface");
  ExpectBase<cGlimmerBlurRender>(u"Qplugin Render Interface");
  ExpectBase<qplugin::iQpluginUI>(u"iInstance");
  ExpectBase<qplugin::iQpluginRender>(u"iInstance");
  ExpectBase<qplugin::iQplugin>(u"iInstance");
  EXPECT_TRUE(cClassInfo<quantel::iFactory::iInstance>().bases().empty());
}

TEST(ClassInfo, IsANewObjectOfTheSameIdentityEachTime) {
  const auto first = cClassInfo<cGlimmerBlurUI>::Make();
  const auto second = first->classInfo();

  EXPECT_NE(first.Object(), second.Object());
  EXPECT_EQ(first->guid().group1, second->guid().group1);
  EXPECT_EQ(first->guid().tail, second->guid().tail);
}

TEST(ClassCtor, MakesInstancesThatReportTheirEnd) {
  lx_test::FakeHost host;
  cClassCtor<cGlimmerBlurRender> ctor;

  cPtr<quantel::iFactory::iInstance> instance = ctor.create();
  EXPECT_EQ(1, instance.RefCount()->Count());
  const void* address = instance.Object();
  EXPECT_TRUE(instance.Dynamic<qplugin::iQpluginRender>());
  instance.Reset();

  EXPECT_EQ(std::vector<std::string>{"instanceDestroyed"}, host.log.calls);
  EXPECT_EQ(address, host.factory->lastDestroyed);
}

TEST(ClassCtor, LetsAnInstanceEndThroughItsSecondInterface) {
  lx_test::FakeHost host;
  cClassCtor<cGlimmerBlurUI> ctor;
  auto instance = ctor.create();
  const void* address = instance.Object();
  auto second = instance.Dynamic<qplugin::iQpluginUI4>();
  instance.Reset();
  EXPECT_TRUE(host.log.calls.empty());

  second.Reset();

  EXPECT_EQ(address, host.factory->lastDestroyed);
}

template <class Adapter>
void ExpectRefusal(std::uint32_t line, const quantel::wstring& message) {
  cClassCtor<Adapter> ctor;
  try {
    ctor.createWith();
    FAIL();
  } catch (const quantel::cNotSupported& fault) {
    EXPECT_EQ(line, fault.line());
    EXPECT_EQ(u"_QTLGlimmerBlur", fault.file());
    EXPECT_EQ(message, fault.message());
  }
  EXPECT_EQ(0, std::uncaught_exceptions());
}

TEST(ClassCtor, RefusesParametersWithTheNamesBytesInPairs) {
  ExpectRefusal<cGlimmerBlurUI>(
      41, u"No parameterised \"\x4763\x696C\x6D6D\x7265\x6C42\x7275\x4955\" ctor");
  ExpectRefusal<cGlimmerBlurRender>(
      100, u"No parameterised \"\x4763\x696C\x6D6D\x7265\x6C42\x7275\x6552\x646E\x7265\" ctor");
}

TEST(ClassCtor, TellsTheClassOfItsInstances) {
  cClassCtor<cGlimmerBlurUI> ui;
  cClassCtor<cGlimmerBlurRender> render;

  EXPECT_EQ(0x2FD3AFECU, ui.classInfo()->guid().group1);
  EXPECT_EQ(0x1FD3AFECU, render.classInfo()->guid().group1);
}

}  // namespace
