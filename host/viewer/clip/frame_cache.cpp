// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/clip/frame_cache.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace glimmerhost {
namespace {

std::uint64_t BytesOf(const quantel::cPtr<FrameImage>& image) {
  if (!image) {
    return 0;
  }
  const quantel::cSize2 size = image->size();
  return std::uint64_t{8} * static_cast<std::uint64_t>(size.first) *
         static_cast<std::uint64_t>(size.second);
}

}  // namespace

std::uint64_t BytesOf(const LoadedFrame& frame) {
  const Picture& picture = *frame.picture;
  return picture.samples.size() * sizeof(picture.samples[0]) +
         picture.floats.size() * sizeof(picture.floats[0]) + BytesOf(frame.source);
}

const FrameCache::Entry* FrameCache::Find(const FrameKey& key) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.key == key; });
  if (found == entries_.end()) {
    return nullptr;
  }
  entries_.splice(entries_.begin(), entries_, found);
  return &entries_.front();
}

bool FrameCache::Holds(const FrameKey& key) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& entry) { return entry.key == key; });
}

void FrameCache::Put(Entry entry) {
  entries_.remove_if([&](const Entry& old) { return old.key == entry.key; });
  entries_.push_front(std::move(entry));
  Shrink();
}

void FrameCache::SetLimit(std::uint64_t bytes) {
  limit_ = bytes;
  Shrink();
}

std::uint64_t FrameCache::Bytes() const {
  std::uint64_t bytes = 0;
  std::set<const FrameImage*> spreads;
  for (const Entry& entry : entries_) {
    bytes += BytesOf(*entry.frame);
    if (spreads.insert(entry.frame->spread.Object()).second) {
      bytes += BytesOf(entry.frame->spread);
    }
  }
  return bytes;
}

std::vector<FrameKey> FrameCache::Keys() const {
  std::vector<FrameKey> keys;
  std::transform(entries_.begin(), entries_.end(), std::back_inserter(keys),
                 [](const Entry& entry) { return entry.key; });
  return keys;
}

void FrameCache::Shrink() {
  for (auto entry = entries_.end(); entry != entries_.begin() && Bytes() > limit_;) {
    --entry;
    if (entry->frame.use_count() == 1) {
      entry = entries_.erase(entry);
    }
  }
}

}  // namespace glimmerhost
