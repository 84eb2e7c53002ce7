// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/clip/frame_loader.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

class FilesReading final : public FrameLoader::Reading {
 public:
  std::shared_ptr<const LoadedFrame> Read(const FrameRequest& request, int frame) override {
    return reader_.Read(*request.clip, request.reading, frame);
  }
  std::shared_ptr<const LoadedFrame> Settle(const LoadedFrame& frame,
                                            const FrameRequest& request) override {
    return reader_.Settle(frame, request.reading);
  }
  void Forget() override { reader_ = FrameReader(); }

 private:
  FrameReader reader_;
};

FrameKey KeyOf(const FrameRequest& request, int frame) {
  return {request.clip->File(frame), frame, request.reading.premultiplied};
}

// The frames behind one in the direction of playing, the nearest first.
std::vector<int> FramesAhead(const FrameRequest& request) {
  const std::vector<int>& frames = request.clip->Frames();
  std::vector<int> ahead;
  if (request.direction > 0) {
    ahead.assign(std::upper_bound(frames.begin(), frames.end(), request.frame), frames.end());
  } else if (request.direction < 0) {
    ahead.assign(frames.begin(), std::lower_bound(frames.begin(), frames.end(), request.frame));
    std::reverse(ahead.begin(), ahead.end());
  }
  return ahead;
}

}  // namespace

FrameLoader::FrameLoader(std::uint64_t cacheBytes, std::function<void()> ring)
    : FrameLoader(cacheBytes, std::move(ring), std::make_unique<FilesReading>()) {}

FrameLoader::FrameLoader(std::uint64_t cacheBytes, std::function<void()> ring,
                         std::unique_ptr<Reading> reading)
    : ring_(std::move(ring)),
      reading_(std::move(reading)),
      cache_(cacheBytes),
      worker_([this](Numbered asked) { Work(std::move(asked)); }) {}

std::uint64_t FrameLoader::Ask(const FrameRequest& request) {
  const std::uint64_t serial = newest_ + 1;
  newest_ = serial;
  std::shared_ptr<const LoadedFrame> found;
  {
    const std::lock_guard lock(mutex_);
    const FrameCache::Entry* const entry = cache_.Find(KeyOf(request, request.frame));
    if (entry != nullptr && entry->reading == request.reading) {
      found = entry->frame;
    }
  }
  if (found) {
    Answer({serial, request, std::move(found), {}});
  }
  worker_.Ask({serial, request});
  return serial;
}

std::optional<FrameAnswer> FrameLoader::Fetch() {
  const std::lock_guard lock(mutex_);
  return std::exchange(answer_, std::nullopt);
}

std::string FrameLoader::Stage() const {
  const std::lock_guard lock(mutex_);
  return stage_;
}

std::vector<int> FrameLoader::Held(const ViewedClip& clip) const {
  std::vector<int> frames;
  {
    const std::lock_guard lock(mutex_);
    for (const FrameKey& key : cache_.Keys()) {
      if (key.file == clip.File(key.frame)) {
        frames.push_back(key.frame);
      }
    }
  }
  std::sort(frames.begin(), frames.end());
  frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
  return frames;
}

void FrameLoader::SetCacheLimit(std::uint64_t bytes) {
  const std::lock_guard lock(mutex_);
  cache_.SetLimit(bytes);
}

std::uint64_t FrameLoader::CacheBytes() const {
  const std::lock_guard lock(mutex_);
  return cache_.Bytes();
}

void FrameLoader::Forget() {
  const std::lock_guard lock(mutex_);
  cache_.Clear();
  ++forgotten_;
}

void FrameLoader::Work(Numbered asked) {
  FrameAnswer answer{asked.serial, std::move(asked.request), nullptr, {}};
  std::optional<FrameRequest> ahead;
  try {
    answer.loaded = Obtain(answer.request, answer.request.frame);
    ahead = answer.request;
  } catch (const std::exception& fault) {
    answer.fault = answer.loaded ? "" : FaultText(fault);
  }
  Show({});
  const std::shared_ptr<const LoadedFrame> loaded = answer.loaded;
  Answer(std::move(answer));
  if (ahead) {
    ReadAhead({asked.serial, *std::move(ahead)}, *loaded);
  }
}

// From the cache, or read.
std::shared_ptr<const LoadedFrame> FrameLoader::Obtain(const FrameRequest& request, int frame) {
  const FrameKey key = KeyOf(request, frame);
  std::shared_ptr<const LoadedFrame> found;
  std::uint64_t forgotten = 0;
  {
    const std::lock_guard lock(mutex_);
    forgotten = forgotten_;
    if (const FrameCache::Entry* const entry = cache_.Find(key)) {
      found = entry->frame;
      if (entry->reading == request.reading) {
        return found;
      }
    }
  }
  if (request.frame == frame) {
    Show("Reading " + key.file.filename().string());
  }
  if (std::exchange(readSince_, forgotten) != forgotten) {
    reading_->Forget();
  }
  found = found ? reading_->Settle(*found, request) : reading_->Read(request, frame);
  const std::lock_guard lock(mutex_);
  if (forgotten == forgotten_) {
    cache_.Put({key, request.reading, found});
  }
  return found;
}

// As many as the cache has room for beside the frame itself: more would push out those that are
// wanted first. A frame that cannot be read says so when it is asked for.
void FrameLoader::ReadAhead(const Numbered& asked, const LoadedFrame& frame) {
  std::vector<int> frames;
  try {
    frames = FramesAhead(asked.request);
  } catch (const std::bad_alloc&) {
    return;
  }
  const std::uint64_t bytes = std::max<std::uint64_t>(BytesOf(frame), 1);
  std::vector<std::shared_ptr<const LoadedFrame>> ahead;
  for (const int next : frames) {
    if (!IsNewest(asked.serial)) {
      return;
    }
    {
      const std::lock_guard lock(mutex_);
      if ((ahead.size() + 2) * bytes > cache_.Limit()) {
        return;
      }
    }
    try {
      ahead.push_back(Obtain(asked.request, next));
    } catch (const std::exception&) {
      continue;
    }
  }
}

// An older request may have its answer last, where the newer one's frame was in the cache.
void FrameLoader::Answer(FrameAnswer answer) {
  {
    const std::lock_guard lock(mutex_);
    if (answer.serial <= answered_) {
      return;
    }
    answered_ = answer.serial;
    answer_ = std::move(answer);
  }
  ring_();
}

void FrameLoader::Show(const std::string& stage) {
  {
    const std::lock_guard lock(mutex_);
    if (stage == stage_) {
      return;
    }
    stage_ = stage;
  }
  ring_();
}

}  // namespace glimmerhost
