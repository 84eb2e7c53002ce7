// SPDX-License-Identifier: BSD-3-Clause
// What the module does where an object cannot be allocated. The program's operator new is
// replaced here, in the form that answers null.
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>
#include <vector>

#include "hostframe/class_ctor.h"
#include "hostframe/module_entry.h"
#include "hostframe/module_statics.h"
#include "hostframe/render_adapter.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/fake_host.h"

namespace {

// The n-th request from now that is refused, counted from 1; 0 refuses none.
int refuseAt = 0;

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  if (refuseAt > 0 && --refuseAt == 0) {
    return nullptr;
  }
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

namespace {

using allplugins::cClassCtor;
using allplugins::cGlimmerBlurRender;

TEST(NoMemory, GivesANullInstance) {
  lx_test::FakeHost host;
  cClassCtor<cGlimmerBlurRender> ctor;
  refuseAt = 1;

  EXPECT_EQ(nullptr, ctor.create().RefCount());

  EXPECT_TRUE(host.log.calls.empty());
}

TEST(NoMemory, GivesNullClassInformation) {
  cClassCtor<cGlimmerBlurRender> ctor;
  refuseAt = 1;
  EXPECT_FALSE(ctor.classInfo());
}

TEST(NoMemory, RegistersANullConstructor) {
  lx_test::FakeHost host;
  refuseAt = 1;

  moduleInit(lx_test::cPtr<qplugin::iQpluginModule>(new lx_test::FakeModule(&host.log)));

  EXPECT_EQ((std::vector<std::string>{"module.moduleText", "module.moduleText2",
                                      "registerClass(null)", "registerClass", "~module"}),
            host.log.calls);
  EXPECT_EQ(2U, allplugins::registrations.size());
  allplugins::registrations.clear();
}

TEST(NoMemory, LeavesAnEffectWithoutAnEngineThatCanStillBeAsked) {
  lx_test::FakeHost host;
  refuseAt = 2;  // the adapter, then its engine
  auto render = cClassCtor<cGlimmerBlurRender>().create().Dynamic<qplugin::iQpluginRender>();

  ASSERT_TRUE(render);
  EXPECT_EQ(nullptr, dynamic_cast<cGlimmerBlurRender*>(render.Object())->effect.engine);
  render->renderFrame(1, 0, 0);
  render.Reset();
  EXPECT_EQ(std::vector<std::string>{"instanceDestroyed"}, host.log.calls);
}

}  // namespace
