// SPDX-License-Identifier: BSD-3-Clause
// A UI instance among recorded host objects, which go on with it as a host would.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "hostframe/class_ctor.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/fake_page.h"

namespace lx_test {

using Log = std::vector<std::string>;

inline Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

struct PageStage {
  PageStage()
      : inputs(new FakeInputs(&host.log)),
        params(new FakeParams(&host.log)),
        result(new FakeResult(&host.log)),
        instance(allplugins::cClassCtor<allplugins::cGlimmerBlurUI>().create()),
        ui(instance.Dynamic<qplugin::iQpluginUI>()),
        ui4(instance.Dynamic<qplugin::iQpluginUI4>()),
        adapter(dynamic_cast<allplugins::cGlimmerBlurUI*>(instance.Object())) {
    inputs->main = cPtr<FakeSource>(new FakeSource(&host.log, "source"));
    inputs->spread = cPtr<FakeSource>(new FakeSource(&host.log, "spread"));
  }

  // Hands everything over, and forgets the calls of that.
  void Open() {
    ui->setInputs(inputs);
    ui->setParams(params);
    ui->setResult(result);
    host.log.calls.clear();
  }

  // Lets go of the instance, which dies of it.
  void Close() {
    instance.Reset();
    ui.Reset();
    ui4.Reset();
    adapter = nullptr;
  }

  // The calls since the last look.
  Log Calls() { return std::exchange(host.log.calls, {}); }

  FakeHost host;
  cPtr<FakeInputs> inputs;
  cPtr<FakeParams> params;
  cPtr<FakeResult> result;
  cPtr<quantel::iFactory::iInstance> instance;
  cPtr<qplugin::iQpluginUI> ui;
  cPtr<qplugin::iQpluginUI4> ui4;
  allplugins::cGlimmerBlurUI* adapter;
};

// At the end of every test the instance is gone, and each of the host's objects is held by
// the host alone.
class PageTest : public PageStage, public testing::Test {
 public:
  void TearDown() override {
    Close();
    ExpectOwn(inputs);
    ExpectOwn(params);
    ExpectOwn(result);
    if (inputs) {
      ExpectOwn(inputs->main);
      ExpectOwn(inputs->spread);
    }
    if (result) {
      ExpectOwn(result->surfaceObject);
      ExpectOwn(result->dialogObject);
      ExpectOwn(result->formatObject);
      ExpectOwn(result->timelineObject);
    }
  }

 private:
  template <class Object>
  static void ExpectOwn(const cPtr<Object>& object) {
    EXPECT_TRUE(!object || object->Count() == 1) << object->Count();
  }
};

}  // namespace lx_test
