// SPDX-License-Identifier: BSD-3-Clause
// PluginLX: the frame of an effect. An adapter fills its members and calls its
// operations; it knows nothing of the host's classes.
#pragma once

#include <cstdint>

#include "fftlib/fftlib.h"

namespace lx {

class PluginLX {
 public:
  PluginLX() = default;
  PluginLX(const PluginLX&) = delete;
  PluginLX& operator=(const PluginLX&) = delete;
  virtual ~PluginLX() = default;

  virtual void RenderFrame() {}
  virtual void Hook1(std::intptr_t, std::intptr_t, std::intptr_t, std::intptr_t, std::intptr_t,
                     std::intptr_t, std::intptr_t, std::intptr_t, std::intptr_t, std::intptr_t) {}
  virtual void UpdateControlState() {}
  virtual void Hook2(std::intptr_t, std::intptr_t) {}
  virtual void Hook3(std::intptr_t) {}
  virtual void Hook4() {}
  virtual void Hook5() {}
  virtual void Hook6(std::intptr_t) {}
  virtual void Hook7(std::intptr_t, std::intptr_t) {}

  double frameTime = 0.0;  // frame number - 1
  double firstTime = 0.0;
  double lastTime = 0.0;
  bool alphaEnabled = true;   // alpha is blurred like the picture
  std::int32_t dragging = 0;  // an overlay drag is in progress
  void* uiOwner = nullptr;
  void* renderOwner = nullptr;
  PassFunction parallelFn = nullptr;  // the pass in flight
  DefocusEngine* parallelUser = nullptr;
};

}  // namespace lx
