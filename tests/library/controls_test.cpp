// SPDX-License-Identifier: BSD-3-Clause
#include "library/controls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/fake_host.h"

namespace {

using lx_test::cPtr;
using lx_test::FakeParams;
using Log = std::vector<std::string>;

class Controls : public testing::Test {
 protected:
  Controls() : fake(new FakeParams(&log)), store(fake) {}

  template <class Control>
  Control Joined(const quantel::wstring* name) {
    Control control;
    control.key = name;
    control.host = &store;
    return control;
  }

  lx_test::CallLog log;
  cPtr<FakeParams> fake;
  cPtr<qplugin::iQpluginParams> store;
  const quantel::wstring key = u"PRM_Key";
};

TEST_F(Controls, StartWithTheirInitialValues) {
  EXPECT_EQ(0, lx::IntegerControlLX().value);
  EXPECT_FALSE(lx::CheckboxControlLX().value);
  EXPECT_EQ(1, lx::ListControlLX().value);
  EXPECT_EQ(0.0, lx::FloatControlLX().value);
  EXPECT_EQ(0.0, lx::SizeControlLX().value);
  EXPECT_EQ(0.0, lx::PositionControlLX().x);
  EXPECT_EQ(0.0, lx::PositionControlLX().y);
  const lx::SizeControlLX control;
  EXPECT_EQ(nullptr, control.key);
  EXPECT_EQ(nullptr, control.host);
  EXPECT_FALSE(control.hidden);
  EXPECT_FALSE(control.disabled);
}

TEST_F(Controls, AreSilentWithoutKeyHostOrStore) {
  auto control = Joined<lx::FloatControlLX>(nullptr);
  control.Commit();
  control.key = &key;
  control.host = nullptr;
  control.Commit();
  const cPtr<qplugin::iQpluginParams> empty;
  control.host = &empty;
  control.Commit();

  EXPECT_TRUE(log.calls.empty());
}

TEST_F(Controls, CommitNumbersAsFloats) {
  auto number = Joined<lx::FloatControlLX>(&key);
  number.value = 0.1;
  number.Commit();
  EXPECT_EQ(0.1F, fake->lastFloat);
  auto size = Joined<lx::SizeControlLX>(&key);
  size.value = 1e300;
  size.Commit();
  EXPECT_TRUE(std::isinf(fake->lastFloat));
  size.value = -1e300;
  size.Commit();
  EXPECT_EQ(-std::numeric_limits<float>::infinity(), fake->lastFloat);
  auto whole = Joined<lx::IntegerControlLX>(&key);
  whole.value = 7;
  whole.Commit();
  EXPECT_EQ("setFloat(PRM_Key,7.000000)", log.calls.back());
}

TEST_F(Controls, CommitSwitchesAndEntriesFromZero) {
  auto box = Joined<lx::CheckboxControlLX>(&key);
  box.value = true;
  box.Commit();
  auto list = Joined<lx::ListControlLX>(&key);
  list.value = 3;
  list.Commit();

  EXPECT_EQ((Log{"setBool(PRM_Key,1)", "setList(PRM_Key,2)"}), log.calls);
}

TEST_F(Controls, CommitAPositionAsXThenY) {
  auto position = Joined<lx::PositionControlLX>(&key);
  position.x = 0.25;
  position.y = 0.5;

  position.Commit();

  EXPECT_EQ((Log{"setFloat(PRM_Key_X,0.250000)", "setFloat(PRM_Key_Y,0.500000)"}), log.calls);
}

TEST_F(Controls, StoreTheirFlagsAndGiveThemBack) {
  lx::FloatControlLX control;
  EXPECT_TRUE(control.SetHidden(true));
  EXPECT_TRUE(control.hidden);
  EXPECT_FALSE(control.SetHidden(false));
  EXPECT_TRUE(control.SetDisabled(true));
  EXPECT_TRUE(control.disabled);
  EXPECT_FALSE(control.hidden);
}

TEST_F(Controls, GiveTheirValueAtAnyTime) {
  lx::IntegerControlLX whole;
  whole.value = 9;
  lx::CheckboxControlLX box;
  box.value = true;
  std::int32_t number = 0;
  bool on = false;
  for (const double time : {-1.0, 0.0, std::numeric_limits<double>::quiet_NaN()}) {
    lx::GetIntegerValue(whole, time, &number);
    lx::GetCheckboxValue(box, time, &on);
    EXPECT_EQ(9, number);
    EXPECT_TRUE(on);
  }
}

TEST_F(Controls, HaveNoVirtualDestructor) {
  EXPECT_FALSE(std::has_virtual_destructor_v<lx::ControlLX>);
  EXPECT_FALSE(std::has_virtual_destructor_v<lx::PositionControlLX>);
}

}  // namespace
