// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "hostframe/interfaces/plugin_ui.h"
#include "tests/border/connections.h"
#include "tests/border/loaded_module.h"
#include "tests/support/process_threads.h"

namespace {

using lx_test::Connections;
using lx_test::FakeHost;
using lx_test::LoadedModule;
using lx_test::MakeRender;

TEST(RenderThroughBorder, GoesThroughAWholeLifeInOrder) {
  FakeHost host;
  LoadedModule module(&host);
  {
    Connections connections(&host.log, 16, 12);
    connections.params->numbers["PRM_RadiusX"] = 0.25;
    auto ui = host.factory->classes[0]->create().Dynamic<qplugin::iQpluginUI>();
    EXPECT_EQ(u"first text", ui->moduleText());
    auto render = MakeRender(host);
    EXPECT_EQ(render->renderGuid().group1, ui->renderGuid().group1);
    connections.Connect(render);
    render->renderFrame(1, 0, 0);
    render.Reset();
    ui.Reset();
  }
  module.CleanUp();
  module.Unload();

  const std::vector<std::string> expected{"module.moduleText",
                                          "module.moduleText2",
                                          "registerClass",
                                          "registerClass",
                                          "~module",
                                          "inputs.mainInput",
                                          "inputs.namedInput(PRM_Spread)",
                                          "getList(PRM_Shape)",
                                          "getBool(PRM_Match,0)",
                                          "getFloat(PRM_RadiusX,0)",
                                          "getFloat(PRM_RadiusY,0)",
                                          "getFloat(PRM_Sides,0)",
                                          "getFloat(PRM_Rotation,0)",
                                          "getFloat(PRM_Emphasis,0)",
                                          "getBool(PRM_EmphAlpha,0)",
                                          "getBool(PRM_Precision,0)",
                                          "getFloat(PRM_Center_X,0)",
                                          "getFloat(PRM_Center_Y,0)",
                                          "getFloat(PRM_RadiusPSF1,0)",
                                          "getFloat(PRM_RadiusPSF2,0)",
                                          "target.format",
                                          "format.descriptor",
                                          "source.frame(1,d,3)",
                                          "~descriptor",
                                          "target.outputFrame(3)",
                                          "in.size",
                                          "in.buffer",
                                          "in.size",
                                          "target.format",
                                          "format.pixelAspect",
                                          "in.size",
                                          "in.buffer",
                                          "out.size",
                                          "out.buffer",
                                          "instanceDestroyed",
                                          "instanceDestroyed",
                                          "~params",
                                          "~target",
                                          "~out",
                                          "~source",
                                          "~in",
                                          "removeClass",
                                          "removeClass"};
  EXPECT_EQ(expected, host.log.calls);
}

// One bright pixel of a colour of its own per sample spreads over the aperture: the sums
// over a window tell where the light went and how much of it.
TEST(RenderThroughBorder, SpreadsALightOverTheAperture) {
  FakeHost host;
  const LoadedModule module(&host);
  constexpr int kWidth = 64;
  constexpr int kHeight = 48;
  Connections connections(&host.log, kWidth, kHeight);
  connections.params->numbers = {{"PRM_Shape", 0}, {"PRM_RadiusX", 0.25}};  // 8 pixels
  std::fill(connections.In().begin(), connections.In().end(), std::uint16_t{0});
  constexpr int kX = 40;
  constexpr int kY = 15;
  const std::uint16_t light[] = {10000, 60000, 30000, 50000};
  std::copy(light, light + 4, connections.In().begin() + (kY * kWidth + kX) * 4);
  const auto render = MakeRender(host);
  connections.Connect(render);

  render->renderFrame(1, 0, 0);

  // A 50-gon of 8 pixels, its centre half a pixel towards smaller x and towards the top
  // of the effect's picture, which is the bottom of the host's.
  const double area = 25 * std::sin(2 * std::acos(-1.0) / 50) * 64;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const double distance = std::hypot(x - (kX - 0.5), y - (kY + 0.5));
      for (int c = 0; c < 4; ++c) {
        const int got = connections.Out()[(y * kWidth + x) * 4 + c];
        if (distance < 7.0) {
          // 15-bit steps on both borders, and the mask's own 8 bits.
          ASSERT_NEAR(light[c] / area, got, 5) << x << "," << y << " " << c;
        } else if (distance > 9.0) {
          ASSERT_LE(got, 2) << x << "," << y << " " << c;
        }
      }
    }
  }
}

TEST(RenderThroughBorder, KeepsAConstantFrame) {
  FakeHost host;
  const LoadedModule module(&host);
  for (const double shape : {0.0, 1.0, 2.0}) {
    Connections connections(&host.log, 33, 21);
    connections.params->numbers = {
        {"PRM_Shape", shape}, {"PRM_RadiusX", 0.3}, {"PRM_RadiusY", 0.2}, {"PRM_Sides", 5}};
    const std::uint16_t pixel[] = {12000, 40000, 65535, 65535};
    for (std::size_t i = 0; i < connections.In().size(); ++i) {
      connections.In()[i] = pixel[i % 4];
    }
    const auto render = MakeRender(host);
    connections.Connect(render);

    render->renderFrame(1, 0, 0);

    for (std::size_t i = 0; i < connections.Out().size(); ++i) {
      ASSERT_NEAR(pixel[i % 4], connections.Out()[i], 4) << shape << " " << i;
    }
  }
}

TEST(RenderThroughBorder, LetsTheHostsExceptionsThrough) {
  FakeHost host;
  const LoadedModule module(&host);
  Connections connections(&host.log, 16, 12);
  const auto render = MakeRender(host);
  host.log.throwAt = "inputs.mainInput";
  EXPECT_THROW(render->setInputs(connections.inputs), lx_test::HostFault);
  host.log.throwAt.clear();
  connections.Connect(render);

  host.log.throwAt = "getFloat(PRM_Sides,0)";
  EXPECT_THROW(render->renderFrame(1, 0, 0), lx_test::HostFault);

  host.log.throwAt.clear();
  render->renderFrame(1, 0, 0);
  EXPECT_EQ("out.buffer", host.log.calls.back());
}

TEST(RenderThroughBorder, RendersOnAfterAPageHasGone) {
  FakeHost host;
  const LoadedModule module(&host);
  Connections connections(&host.log, 40, 30);
  connections.params->numbers["PRM_RadiusX"] = 0.2;
  for (std::size_t i = 0; i < connections.In().size(); ++i) {
    connections.In()[i] = static_cast<std::uint16_t>(i * 31);
  }
  const auto render = MakeRender(host);
  connections.Connect(render);
  auto page = host.factory->classes[0]->create();
  render->renderFrame(1, 0, 0);
  const auto before = connections.Out();

  page.Reset();
  render->renderFrame(1, 0, 0);

  EXPECT_EQ(before, connections.Out());
}

// Waits until the system lists no more threads than that, or for a long time.
int SettledThreads(int expected) {
  for (int i = 0; i < 100000 && lx_test::ThreadCount() > expected; ++i) {
    std::this_thread::yield();
  }
  return lx_test::ThreadCount();
}

// A thread that stayed would run on in code that is gone: those of the transforms end with the
// last instance, the pool's when the module goes.
TEST(RenderThroughBorder, TakesItsWorkersWithIt) {
  const int workers = lx_test::ToldProcessors() - 1;
  if (workers == 0) {
    GTEST_SKIP() << "there are no workers on one processor";
  }
  // The first thread of a process may bring along one that stays, the thread sanitizer's own: it
  // is started before any are counted.
  const std::jthread first([](const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  const int before = lx_test::ThreadCount();
  FakeHost host;
  LoadedModule module(&host);
  {
    Connections connections(&host.log, 16, 12);
    const auto render = MakeRender(host);
    connections.Connect(render);
    render->renderFrame(1, 0, 0);
  }
  EXPECT_EQ(before + workers, SettledThreads(before + workers));

  module.Unload();

  EXPECT_EQ(before, SettledThreads(before));
}

TEST(RenderThroughBorder, RendersOnSeveralThreadsAtOnce) {
  FakeHost host;
  const LoadedModule module(&host);
  const auto renderOne = [&host](std::vector<std::uint16_t>* result) {
    lx_test::CallLog log;
    Connections connections(&log, 45, 31);
    connections.params->numbers = {
        {"PRM_Shape", 2}, {"PRM_RadiusX", 0.3}, {"PRM_Sides", 5}, {"PRM_Emphasis", 120}};
    for (std::size_t i = 0; i < connections.In().size(); ++i) {
      connections.In()[i] = static_cast<std::uint16_t>(i * 7919);
    }
    const auto render = MakeRender(host);
    connections.Connect(render);
    render->renderFrame(1, 0, 0);
    *result = connections.Out();
  };
  std::vector<std::uint16_t> expected;
  renderOne(&expected);
  std::vector<std::vector<std::uint16_t>> results(4);
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&renderOne, &result] {
      for (int i = 0; i < 5; ++i) {
        renderOne(&result);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& result : results) {
    EXPECT_EQ(expected, result);
  }
}

// No key of the store, and no picture, is what it should be.
TEST(RenderThroughBorder, TakesNumbersThatAreNone) {
  FakeHost host;
  const LoadedModule module(&host);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const char* key : {"PRM_RadiusX", "PRM_RadiusY", "PRM_Sides", "PRM_Rotation", "PRM_Emphasis",
                          "PRM_Center_X", "PRM_Center_Y", "PRM_RadiusPSF1", "PRM_RadiusPSF2"}) {
    for (const double shape : {0.0, 1.0, 2.0, 3.0}) {
      const auto once = [&] {
        Connections connections(&host.log, 20, 14);
        connections.params->numbers = {{"PRM_Shape", shape}, {"PRM_RadiusX", 0.2}};
        connections.params->numbers[key] = nan;
        std::fill(connections.In().begin(), connections.In().end(), std::uint16_t{30000});
        const auto render = MakeRender(host);
        connections.Connect(render);
        render->renderFrame(1, 0, 0);
        return connections.Out();
      };
      EXPECT_EQ(once(), once()) << key << " " << shape;
    }
  }
}

TEST(RenderThroughBorder, LoadsRendersAndUnloadsAgainAndAgain) {
  for (int i = 0; i < 20; ++i) {
    FakeHost host;
    LoadedModule module(&host);
    {
      Connections connections(&host.log, 16, 12);
      connections.params->numbers["PRM_RadiusX"] = 0.2;
      const auto render = MakeRender(host);
      connections.Connect(render);
      render->renderFrame(1, 0, 0);
    }
    module.Unload();
    ASSERT_FALSE(LoadedModule::IsResident()) << i;
  }
}

}  // namespace
