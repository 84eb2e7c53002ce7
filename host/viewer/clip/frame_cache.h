// SPDX-License-Identifier: BSD-3-Clause
// FrameCache: frames that were read, as many as a limit of bytes lets stay.
#pragma once

#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <vector>

#include "host/viewer/clip/loaded_frame.h"

namespace glimmerhost {

// What of a request decides the samples of the picture.
struct FrameKey {
  std::filesystem::path file;
  int frame = 1;
  bool premultiplied = true;

  bool operator==(const FrameKey&) const = default;
};

// The frame that was asked for longest ago goes first. One that anybody else holds stays, whatever
// the limit: to let go of it would free nothing. One thread at a time.
class FrameCache {
 public:
  struct Entry {
    FrameKey key;
    FrameReading reading;  // how second clip and aspect of the frame were read
    std::shared_ptr<const LoadedFrame> frame;
  };

  explicit FrameCache(std::uint64_t limit) : limit_(limit) {}

  // Null where it is not there. Counts as a use. Good until the cache changes.
  const Entry* Find(const FrameKey& key);
  bool Holds(const FrameKey& key) const;

  // Replaces a frame of the same key.
  void Put(Entry entry);

  void SetLimit(std::uint64_t bytes);
  std::uint64_t Limit() const { return limit_; }
  void Clear() { entries_.clear(); }

  // Of all frames. A still of the second clip that several of them have counts once.
  std::uint64_t Bytes() const;

  // What is held, the last used first.
  std::vector<FrameKey> Keys() const;

 private:
  void Shrink();

  std::uint64_t limit_;
  std::list<Entry> entries_;  // the last used first
};

// What a frame takes in memory, without its second clip.
std::uint64_t BytesOf(const LoadedFrame& frame);

}  // namespace glimmerhost
