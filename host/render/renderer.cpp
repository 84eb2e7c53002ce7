// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/renderer.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include "host/module/frame_checks.h"

namespace glimmerhost {

Renderer::Renderer(const EffectModule& module, const ShotSettings& settings)
    : settings_(settings),
      engine_(module.Engine()),
      renderer_(module, settings.carryPsf),
      floatRenderer_(settings.centred) {}

void Renderer::Run(FrameChannel* loaded, FrameChannel* rendered) {
  const ClosedAtEnd end(loaded, rendered);
  while (std::optional<std::unique_ptr<FrameWork>> taken = loaded->Take()) {
    FrameWork* const work = taken->get();
    DoPart(work, [&] {
      if (work->report.state == FrameState::kDone) {
        Render(work);
      }
    });
    const bool isLast = IsLastFrame(*work, settings_.keepGoing);
    if (!rendered->Put(std::move(*taken)) || isLast) {
      return;
    }
  }
}

void Renderer::Render(FrameWork* work) {
  const bool isFloat = work->picture.IsFloat();
  // Not earlier: the frame before has given back by now what it took.
  CheckGrid(engine_, work->input.values, work->picture.width, work->picture.height,
            isFloat ? 0 : renderer_.HeldBytes());
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  if (isFloat) {
    work->floats = floatRenderer_.Render(work->input, work->picture);
    for (std::size_t i = 0; i < work->layers.size(); ++i) {
      LayerWork& layer = work->layers[i];
      layer.floats = floatRenderer_.Render(layer.input, work->picture.layers[i].picture);
    }
  } else {
    work->result = renderer_.Render(work->input);
    for (LayerWork& layer : work->layers) {
      layer.result = renderer_.Render(layer.input);
    }
  }
  work->report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
}

}  // namespace glimmerhost
