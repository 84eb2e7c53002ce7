// SPDX-License-Identifier: BSD-3-Clause
// FrameReader: reads a frame with its second clip, so that the effect is given what a render would
// give it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/viewer/clip/loaded_frame.h"
#include "host/viewer/clip/viewed_clip.h"

namespace glimmerhost {

// Keeps a still of the second clip for the frames to come. One thread at a time.
//
// An aperture that a picture of floats has to be cut from itself is not in the frame: whether there
// is one, only the look's values say.
class FrameReader {
 public:
  // Throws as reading a picture does: MissingInput, Failure, UsageError, std::bad_alloc.
  std::shared_ptr<const LoadedFrame> Read(const ViewedClip& clip, const FrameReading& reading,
                                          int frame);

  // The same picture with what another reading says of aspect and second clip. The alpha of both
  // readings must be the same.
  std::shared_ptr<const LoadedFrame> Settle(const LoadedFrame& frame, const FrameReading& reading);

 private:
  void SettleIn(const FrameReading& reading, LoadedFrame* frame);
  void TakeSpread(const FrameReading& reading, LoadedFrame* frame);

  std::filesystem::path spreadFile_;
  std::pair<int, int> spreadSize_;
  bool spreadPremultiplied_ = true;
  quantel::cPtr<FrameImage> spread_;
  std::vector<std::string> spreadRemarks_;
};

}  // namespace glimmerhost
