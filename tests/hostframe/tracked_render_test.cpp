// SPDX-License-Identifier: BSD-3-Clause
// A whole render with every block in the account.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "baselib/threads/module_state.h"
#include "hostframe/render_adapter.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/fake_host.h"
#include "tests/support/tracked_heap.h"

namespace {

using lx_test::cPtr;
using lx_test::FakeImage;
using lx_test::TrackedHeap;

class TrackedRender : public testing::Test {
 public:
  TrackedRender()
      : inputs(new lx_test::FakeInputs(&host.log)),
        target(new lx_test::FakeTarget(&host.log)),
        params(new lx_test::FakeParams(&host.log)) {
    inputs->main = cPtr<lx_test::FakeSource>(new lx_test::FakeSource(&host.log, "source"));
    inputs->spread = cPtr<lx_test::FakeSource>(new lx_test::FakeSource(&host.log, "spread"));
    params->numbers["PRM_RadiusX"] = 0.2;
    params->numbers["PRM_RadiusY"] = 0.3;
    params->numbers["PRM_Sides"] = 5;
    params->numbers["PRM_Center_X"] = 0.5;
    params->numbers["PRM_Center_Y"] = 0.5;
    params->numbers["PRM_RadiusPSF1"] = 0.2;
    params->numbers["PRM_RadiusPSF2"] = 0.4;
  }

  cPtr<FakeImage> Image(const std::string& name, int width, int height) {
    cPtr<FakeImage> image(new FakeImage(&host.log, name, width, height));
    for (std::size_t i = 0; i < image->samples.size(); ++i) {
      image->samples[i] = static_cast<std::uint16_t>(i * 7919 + 13);
    }
    return image;
  }

  void RenderFrames(const cPtr<allplugins::cGlimmerBlurRender>& render, int count) {
    // Their padded grids differ, so that plans and planes come and go.
    constexpr int kSizes[][2] = {{20, 14}, {100, 60}, {31, 47}};
    for (int frame = 0; frame < count; ++frame) {
      const auto& size = kSizes[frame / 7 % 3];
      inputs->main->image = Image("in", size[0], size[1]);
      inputs->spread->image = Image("spreadImage", size[0], size[1]);
      target->image = Image("out", size[0], size[1]);
      params->numbers["PRM_Shape"] = frame % 4;
      params->numbers["PRM_Emphasis"] = frame % 3 == 0 ? 1 : 20;
      params->numbers["PRM_EmphAlpha"] = frame % 5 == 0 ? 1 : 0;
      render->renderFrame(frame, 0, 0);
      host.log.calls.clear();
    }
  }

  lx_test::FakeHost host;
  cPtr<lx_test::FakeInputs> inputs;
  cPtr<lx_test::FakeTarget> target;
  cPtr<lx_test::FakeParams> params;
};

TEST_F(TrackedRender, GivesBackAsManyBlocksAsItTook) {
  const TrackedHeap tracked(1, 1, 0);
  testing::internal::CaptureStderr();

  for (int instance = 0; instance < 3; ++instance) {
    const cPtr<allplugins::cGlimmerBlurRender> render(new allplugins::cGlimmerBlurRender);
    const cPtr<allplugins::cGlimmerBlurUI> page(new allplugins::cGlimmerBlurUI);
    render->setTarget(target);
    render->setInputs(inputs);
    render->setParams(params);
    RenderFrames(render, 100);
    EXPECT_NE(0U, TrackedHeap::Image().currentBytes);
  }
  lx::mp_end_workers();

  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  for (const lx::HeapInfo* heap : {&TrackedHeap::Normal(), &TrackedHeap::Image()}) {
    EXPECT_LT(300U, heap->allocations) << heap->name;
    EXPECT_EQ(heap->allocations, heap->frees) << heap->name;
    EXPECT_EQ(0U, heap->currentBytes) << heap->name;
    EXPECT_EQ(0, heap->outOfNodes) << heap->name;
  }
}

}  // namespace
