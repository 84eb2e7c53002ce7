// SPDX-License-Identifier: BSD-3-Clause
// FrameLoader: frames for the window, read on a thread of their own.
//
//   window  --Ask-->  newest request  -->  frame  --box, ring-->  window
//                                    \-->  the frames behind it, into the cache
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/support/newest_worker.h"
#include "host/viewer/clip/frame_cache.h"
#include "host/viewer/clip/frame_reader.h"
#include "host/viewer/clip/loaded_frame.h"
#include "host/viewer/clip/viewed_clip.h"

namespace glimmerhost {

struct FrameRequest {
  std::shared_ptr<const ViewedClip> clip;
  FrameReading reading;
  int frame = 1;
  int direction = 0;  // of playing: 1 or -1, and 0 where no frames are to be read ahead
};

struct FrameAnswer {
  std::uint64_t serial = 0;  // of the request
  FrameRequest request;
  std::shared_ptr<const LoadedFrame> loaded;  // null for a fault
  std::string fault;                          // for a person; empty for none
};

// Its operations belong to one thread, which never waits in them.
class FrameLoader {
 public:
  // Whatever reads a frame; as FrameReader does.
  class Reading {
   public:
    virtual ~Reading() = default;
    virtual std::shared_ptr<const LoadedFrame> Read(const FrameRequest& request, int frame) = 0;
    virtual std::shared_ptr<const LoadedFrame> Settle(const LoadedFrame& frame,
                                                      const FrameRequest& request) = 0;
    // Files may be others now.
    virtual void Forget() = 0;
  };

  //   cacheBytes  what frames may take in memory that nobody looks at
  //   ring        is called, on either thread, when there is something to fetch or the stage is
  //               another
  FrameLoader(std::uint64_t cacheBytes, std::function<void()> ring);
  // For tests, which say when a frame has been read.
  FrameLoader(std::uint64_t cacheBytes, std::function<void()> ring,
              std::unique_ptr<Reading> reading);

  // Asks for a frame, and forgets what was asked before: a request that waits, and frames ahead. A
  // frame that is being read is read to its end, as no format's reader can be stopped, and is kept.
  // What the cache has is there to fetch at once. Returns the request's number.
  std::uint64_t Ask(const FrameRequest& request);

  // The answer to the newest request that has one, once.
  std::optional<FrameAnswer> Fetch();

  // What is waited for: "Reading shot.1001.exr". Empty for nothing.
  std::string Stage() const;

  // The frames of a clip that are in the cache, ascending.
  std::vector<int> Held(const ViewedClip& clip) const;

  void SetCacheLimit(std::uint64_t bytes);
  std::uint64_t CacheBytes() const;

  // Whether nothing is asked for, and nothing read.
  bool IsIdle() const { return worker_.IsIdle(); }

  // Forgets what was read, as files may be others now.
  void Forget();

 private:
  struct Numbered {
    std::uint64_t serial;
    FrameRequest request;
  };

  void Work(Numbered asked);
  std::shared_ptr<const LoadedFrame> Obtain(const FrameRequest& request, int frame);
  void ReadAhead(const Numbered& asked, const LoadedFrame& frame);
  void Answer(FrameAnswer answer);
  void Show(const std::string& stage);
  bool IsNewest(std::uint64_t serial) const { return newest_ == serial; }

  std::function<void()> ring_;
  std::unique_ptr<Reading> reading_;  // the worker's
  std::uint64_t readSince_ = 0;       // likewise: how often all was forgotten before
  std::atomic<std::uint64_t> newest_{0};
  mutable std::mutex mutex_;
  // Under the lock:
  FrameCache cache_;
  std::uint64_t forgotten_ = 0;  // how often
  std::optional<FrameAnswer> answer_;
  std::uint64_t answered_ = 0;  // the newest request that has an answer
  std::string stage_;
  NewestWorker<Numbered> worker_;  // the last: it uses all others
};

}  // namespace glimmerhost
