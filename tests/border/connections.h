// SPDX-License-Identifier: BSD-3-Clause
// What a host connects to a render instance: one clip, one target, the parameters.
#pragma once

#include <cstdint>
#include <vector>

#include "hostframe/interfaces/plugin_render.h"
#include "tests/support/fake_host.h"

namespace lx_test {

struct Connections {
  Connections(CallLog* log, int width, int height)
      : inputs(new FakeInputs(log)), target(new FakeTarget(log)), params(new FakeParams(log)) {
    inputs->main = cPtr<FakeSource>(new FakeSource(log, "source"));
    inputs->main->image = cPtr<FakeImage>(new FakeImage(log, "in", width, height));
    target->image = cPtr<FakeImage>(new FakeImage(log, "out", width, height));
  }

  void Connect(const cPtr<qplugin::iQpluginRender>& render) const {
    render->setTarget(target);
    render->setInputs(inputs);
    render->setParams(params);
  }

  std::vector<std::uint16_t>& In() const { return inputs->main->image->samples; }
  std::vector<std::uint16_t>& Out() const { return target->image->samples; }

  cPtr<FakeInputs> inputs;
  cPtr<FakeTarget> target;
  cPtr<FakeParams> params;
};

// An instance of the module's second class.
inline cPtr<qplugin::iQpluginRender> MakeRender(const FakeHost& host) {
  return host.factory->classes[1]->create().Dynamic<qplugin::iQpluginRender>();
}

}  // namespace lx_test
