// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/live/live_render.h"

#include <atomic>
#include <exception>
#include <list>
#include <mutex>
#include <utility>

#include "host/support/failure.h"
#include "host/support/newest_worker.h"
#include "host/viewer/live/frame_maker.h"
#include "host/viewer/live/proxy.h"

namespace glimmerhost {
namespace {

using Clock = std::chrono::steady_clock;

// How long a render takes for each point of its grid, on one of the two roads: as measured lately.
class Pace {
 public:
  void Note(double points, double seconds) {
    const double now = seconds / points;
    secondsPerPoint_ = secondsPerPoint_ == 0.0 ? now : 0.5 * (secondsPerPoint_ + now);
  }

  // The part of so many points that is done in that time; 1 and above while nothing is known.
  double PartIn(double seconds, double points) const {
    return secondsPerPoint_ == 0.0 ? 1.0 : seconds / (secondsPerPoint_ * points);
  }

 private:
  double secondsPerPoint_ = 0.0;
};

// Pictures that nobody looks at any more. The last who looked is mostly the window's thread, and
// giving back so much memory would keep that from its events: the render's thread does it.
class Graveyard {
 public:
  // The same picture; it is buried where it would have been freed.
  static std::shared_ptr<const Picture> Watch(const std::shared_ptr<Graveyard>& graveyard,
                                              std::shared_ptr<const Picture> picture) {
    const Picture* const seen = picture.get();
    // Its place in the list, from the start: to bury must take no memory.
    Pictures held;
    held.push_back(std::move(picture));
    return {seen, [graveyard, held = std::move(held)](const Picture*) mutable {
              const std::lock_guard lock(graveyard->mutex_);
              graveyard->buried_.splice(graveyard->buried_.end(), held);
            }};
  }

  void Clear() {
    // Freed behind the lock: declared before it.
    Pictures buried;
    const std::lock_guard lock(mutex_);
    buried.swap(buried_);
  }

 private:
  using Pictures = std::list<std::shared_ptr<const Picture>>;

  std::mutex mutex_;
  Pictures buried_;
};

// The renders of one thread.
class Studio {
 public:
  Studio(std::shared_ptr<const EffectModule> module, double handSeconds)
      : module_(std::move(module)), handSeconds_(handSeconds), maker_(*module_) {}

  RenderedFrame Render(const RenderRequest& request) {
    RenderedFrame rendered;
    rendered.serial = request.serial;
    rendered.frame = request.frame;
    graveyard_->Clear();
    try {
      const std::shared_ptr<const LoadedFrame> frame = Chosen(request);
      rendered.isProxy = frame != request.frame;
      const Clock::time_point start = Clock::now();
      rendered.picture =
          Graveyard::Watch(graveyard_, maker_.Make(*frame, request.values, request.mix));
      rendered.seconds = std::chrono::duration<double>(Clock::now() - start).count();
      PaceOf(*frame).Note(PointsOf(request, *frame), rendered.seconds);
    } catch (const std::exception& fault) {
      rendered.fault = FaultText(fault);
    }
    return rendered;
  }

 private:
  Pace& PaceOf(const LoadedFrame& frame) { return paces_[frame.picture->IsFloat() ? 1 : 0]; }

  double PointsOf(const RenderRequest& request, const LoadedFrame& frame) const {
    return GridPoints(module_->Engine(), request.values, frame.picture->width,
                      frame.picture->height);
  }

  // The request's own frame, or a smaller one where that may be and is needed.
  std::shared_ptr<const LoadedFrame> Chosen(const RenderRequest& request) {
    const Picture& picture = *request.frame->picture;
    const double part =
        PaceOf(*request.frame).PartIn(handSeconds_, PointsOf(request, *request.frame));
    if (!request.mayBeProxy || part >= 1.0) {
      return request.frame;
    }
    const ProxySize size = FindProxySize(module_->Engine(), request.values, picture.width,
                                         picture.height, Settled(part));
    if (!proxy_ || proxyOf_ != request.frame || size != proxySize_) {
      proxy_ = MakeProxy(*request.frame, size);
      proxyOf_ = request.frame;
      proxySize_ = size;
    }
    return proxy_;
  }

  // In steps, so that a pace that wavers does not make another proxy each time.
  static double Settled(double part) {
    double step = 1.0;
    while (step > part) {
      step *= 0.7;
    }
    return step;
  }

  std::shared_ptr<const EffectModule> module_;
  double handSeconds_;
  FrameMaker maker_;
  Pace paces_[2];
  std::shared_ptr<Graveyard> graveyard_ = std::make_shared<Graveyard>();
  std::shared_ptr<const LoadedFrame> proxy_;
  std::shared_ptr<const LoadedFrame> proxyOf_;
  ProxySize proxySize_;
};

}  // namespace

// What the window and the thread share.
struct LiveRender::Stage {
  std::mutex mutex;
  std::optional<RenderedFrame> ready;
  std::optional<Clock::time_point> begun;  // of the render in hand
  bool isAbandoned = false;
};

class LiveRender::Thread : public NewestWorker<RenderRequest> {
 public:
  using NewestWorker::NewestWorker;
};

LiveRender::LiveRender(std::shared_ptr<const EffectModule> module, std::function<void()> ring,
                       double handSeconds)
    : module_(std::move(module)),
      ring_(std::move(ring)),
      handSeconds_(handSeconds),
      hanging_(std::make_shared<std::atomic<int>>(0)) {
  Start();
}

LiveRender::~LiveRender() = default;

// What is there stays where there is no memory or no thread for another.
void LiveRender::Start() {
  auto fresh = std::make_shared<Stage>();
  // Owned by the thread, so that instances end with it, also where it was abandoned.
  auto studio = std::make_shared<Studio>(module_, handSeconds_);
  auto thread = std::make_unique<Thread>([stage = fresh, studio, ring = ring_, hanging = hanging_](
                                             const RenderRequest& request) mutable {
    {
      const std::lock_guard lock(stage->mutex);
      stage->begun = Clock::now();
    }
    RenderedFrame rendered = studio->Render(request);
    std::optional<RenderedFrame> replaced;
    bool isAbandoned = false;
    {
      const std::lock_guard lock(stage->mutex);
      stage->begun.reset();
      replaced.swap(stage->ready);
      stage->ready = std::move(rendered);
      isAbandoned = stage->isAbandoned;
    }
    // Its instances go before anybody may think that it has come back.
    if (isAbandoned) {
      studio.reset();
      --*hanging;
    }
    ring();
  });
  if (thread_) {
    LeaveAlone();
  }
  stage_ = std::move(fresh);
  thread_ = std::move(thread);
}

void LiveRender::Ask(RenderRequest request) { thread_->Ask(std::move(request)); }

std::optional<RenderedFrame> LiveRender::Take() {
  const std::lock_guard lock(stage_->mutex);
  std::optional<RenderedFrame> taken;
  taken.swap(stage_->ready);
  return taken;
}

std::optional<std::chrono::duration<double>> LiveRender::Busy() const {
  const std::lock_guard lock(stage_->mutex);
  if (!stage_->begun) {
    return std::nullopt;
  }
  return Clock::now() - *stage_->begun;
}

void LiveRender::Abandon() { Start(); }

void LiveRender::LeaveAlone() {
  {
    const std::lock_guard lock(stage_->mutex);
    if (stage_->begun && !stage_->isAbandoned) {
      stage_->isAbandoned = true;
      ++*hanging_;
    }
  }
  thread_->Abandon();
}

int LiveRender::Hanging() const { return *hanging_; }

}  // namespace glimmerhost
