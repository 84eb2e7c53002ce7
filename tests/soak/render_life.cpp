// SPDX-License-Identifier: BSD-3-Clause
#include <cmath>
#include <cstddef>
#include <limits>

#include "tests/border/connections.h"
#include "tests/mutations/mutator.h"
#include "tests/soak/hash.h"
#include "tests/soak/life.h"

namespace soak {
namespace {

using lx_test::Connections;
using lx_test::FakeImage;
using lx_test::FakeSource;
using mutations::Mutator;

// Small ones: what grows, grows with the number of frames and not with their size.
int Side(Mutator* dice) { return 1 + static_cast<int>(dice->Below(dice->OneIn(12) ? 260 : 72)); }

double Value(Mutator* dice, const std::string& key) {
  const double part = static_cast<double>(dice->Below(1000)) / 1000.0;
  if (dice->OneIn(40)) {
    return std::vector<double>{std::numeric_limits<double>::quiet_NaN(), -7.5, 1e30,
                               -std::numeric_limits<double>::infinity()}[dice->Below(4)];
  }
  if (key == "PRM_Sides") {
    return static_cast<double>(dice->Below(60));
  }
  if (key == "PRM_Rotation") {
    return part * 720.0 - 360.0;
  }
  if (key == "PRM_Emphasis") {
    return dice->AnyOf<double>({0.0, 1.0, 12.0, 50.0, 75.0, 90.0, 150.0, 500.0});
  }
  return key.starts_with("PRM_Center") ? part * 1.5 - 0.25 : part * 0.3;
}

void ChangeLook(Mutator* dice, lx_test::FakeParams* params) {
  for (const char* key : {"PRM_RadiusX", "PRM_RadiusY", "PRM_Sides", "PRM_Rotation", "PRM_Emphasis",
                          "PRM_Center_X", "PRM_Center_Y", "PRM_RadiusPSF1", "PRM_RadiusPSF2"}) {
    if (dice->OneIn(3)) {
      params->numbers[key] = Value(dice, key);
    }
  }
  if (dice->OneIn(3)) {
    params->numbers["PRM_Shape"] = static_cast<double>(dice->Below(4));
  }
  params->numbers["PRM_Match"] = dice->OneIn(2) ? 1.0 : 0.0;
  params->numbers["PRM_EmphAlpha"] = dice->OneIn(2) ? 1.0 : 0.0;
}

// Noise, or a dark picture with a few lights.
void Fill(Mutator* dice, std::vector<std::uint16_t>* samples) {
  const bool isDark = dice->OneIn(2);
  for (std::uint16_t& sample : *samples) {
    sample = isDark && !dice->OneIn(50) ? std::uint16_t{500}
                                        : static_cast<std::uint16_t>(dice->Below(65536));
  }
}

void ChangeSize(Mutator* dice, lx_test::CallLog* log, const Connections& connections) {
  const int width = Side(dice);
  const int height = Side(dice);
  connections.inputs->main->image =
      quantel::cPtr<FakeImage>(new FakeImage(log, "in", width, height));
  connections.target->image = quantel::cPtr<FakeImage>(new FakeImage(log, "out", width, height));
  connections.target->aspect = dice->AnyOf<quantel::cSize2>({{1, 1}, {2, 1}, {59, 54}, {0, 0}});
}

void ChangeSpread(Mutator* dice, lx_test::CallLog* log, const Connections& connections) {
  connections.inputs->spread.Reset();
  if (dice->OneIn(2)) {
    connections.inputs->spread = quantel::cPtr<FakeSource>(new FakeSource(log, "spread"));
    auto& image = connections.inputs->spread->image;
    image = quantel::cPtr<FakeImage>(new FakeImage(log, "spread", Side(dice), Side(dice)));
    Fill(dice, &image->samples);
  }
}

// What the target holds afterwards; where the host throws, nothing of the frame counts. It throws
// before the module has made an image: those that are made by then stay in the module, as they are
// meant to.
std::uint64_t RenderOne(Mutator* dice, const quantel::cPtr<qplugin::iQpluginRender>& render,
                        lx_test::CallLog* log, const Connections& connections) {
  if (dice->OneIn(25)) {
    log->throwAt =
        dice->AnyOf<std::string>({"getFloat(PRM_Sides,0)", "getList(PRM_Shape)", "target.format",
                                  "format.descriptor", "target.outputFrame(3)", "in.size"});
  }
  std::uint64_t hash = 0;
  try {
    render->renderFrame(static_cast<int>(dice->Below(100)), 0, 0);
    hash = HashOf(connections.Out());
  } catch (const lx_test::HostFault& fault) {
    hash = HashOf(fault.call);
  }
  log->throwAt.clear();
  log->calls.clear();
  return hash;
}

}  // namespace

Hashes LiveRender(const Modules& modules, const LifeKey& key) {
  Mutator dice(key.seed);
  lx_test::CallLog log;
  Hashes hashes;
  {
    const Connections connections(&log, 1, 1);
    const auto render = modules.MakeRender(key.engine).Dynamic<qplugin::iQpluginRender>();
    for (std::size_t left = 1 + dice.Below(12); left > 0; --left) {
      if (hashes.empty() || dice.OneIn(3)) {
        ChangeSize(&dice, &log, connections);
        ChangeSpread(&dice, &log, connections);
        connections.Connect(render);
      }
      if (hashes.empty() || dice.OneIn(2)) {
        ChangeLook(&dice, connections.params.Object());
      }
      Fill(&dice, &connections.In());
      hashes.push_back(RenderOne(&dice, render, &log, connections));
    }
  }
  return hashes;
}

}  // namespace soak
