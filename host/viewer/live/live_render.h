// SPDX-License-Identifier: BSD-3-Clause
// LiveRender: the thread that renders what a window shows. The newest request wins; there is no
// queue.
//
//   window  --Ask-->  [one waits]  -->  FrameMaker  -->  [one waits]  --Take-->  window
//
// A request that may be shown as a proxy becomes one where the true frame would take longer than a
// hand waits. Who asks for the true frame then, does so when the hand rests.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/viewer/clip/loaded_frame.h"

namespace glimmerhost {

struct RenderRequest {
  std::uint64_t serial = 0;  // counts up; comes back with the frame
  std::shared_ptr<const LoadedFrame> frame;
  std::map<std::string, Value> values;  // of the store
  double mix = 1.0;
  bool mayBeProxy = false;
};

struct RenderedFrame {
  std::uint64_t serial = 0;
  std::shared_ptr<const LoadedFrame> frame;
  std::shared_ptr<const Picture> picture;  // null where it failed
  bool isProxy = false;
  double seconds = 0.0;  // of the render
  std::string fault;     // why it failed
};

// Of the 60 ms from a hand's move to the picture, what a render may take.
inline constexpr double kHandSeconds = 0.040;

class LiveRender {
 public:
  //   module  its render instances are made and called on the thread alone
  //   ring    called on the thread when there is something to take
  //   handSeconds  a render that may be a proxy is one where the true frame would take longer
  // Throws std::system_error where no thread can be had.
  LiveRender(std::shared_ptr<const EffectModule> module, std::function<void()> ring,
             double handSeconds = kHandSeconds);

  // Waits for the render in hand, unless it was abandoned.
  ~LiveRender();
  LiveRender(const LiveRender&) = delete;
  LiveRender& operator=(const LiveRender&) = delete;

  // All of these belong to the window's thread.
  void Ask(RenderRequest request);

  // The newest frame that has not been taken; those before it are gone.
  std::optional<RenderedFrame> Take();

  // For how long the render in hand has been going on; none while there is none.
  std::optional<std::chrono::duration<double>> Busy() const;

  // Leaves a render that hangs to itself, with its thread and its instances. The next request gets
  // new ones. Throws std::system_error as the constructor does, and nothing is left alone then.
  void Abandon();

  // How many were abandoned and have not come back. While there are any, the module cannot be
  // unloaded.
  int Hanging() const;

 private:
  struct Stage;
  class Thread;

  void Start();
  void LeaveAlone();

  std::shared_ptr<const EffectModule> module_;
  std::function<void()> ring_;
  double handSeconds_;
  std::shared_ptr<std::atomic<int>> hanging_;
  std::shared_ptr<Stage> stage_;
  std::unique_ptr<Thread> thread_;
};

}  // namespace glimmerhost
