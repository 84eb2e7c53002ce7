// SPDX-License-Identifier: BSD-3-Clause
// FrameWork: one frame on its way through a render.
//
//   Loader  --Put-->  loaded  --Take-->  Renderer  --Put-->  rendered  --Take-->  Writer
//
// Each of the three is the loop of a thread. A frame belongs to one of them at a time: whoever puts
// it into a channel has it no longer, and nothing in it needs a lock.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/module/frame_renderer.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_file.h"
#include "host/pictures/read_report.h"
#include "host/render/shot_report.h"
#include "host/shots/file_hash.h"
#include "host/shots/frame_claim.h"
#include "host/shots/shot_plan.h"
#include "host/support/channel.h"

namespace glimmerhost {

// One of the picture's layers on the same way.
struct LayerWork {
  FrameInput input;
  quantel::cPtr<FrameImage> result;  // of the module
  std::vector<float> floats;         // of the library
};

struct FrameWork {
  // The loader's to fill in. The report is added to by all three.
  FrameFiles files{};
  FrameReport report;
  std::unique_ptr<PictureOutput> output;  // null where the output is a pipe
  Picture picture;
  Alpha alphaBefore = Alpha::kNone;  // of the picture as it was read
  FrameInput input;
  std::vector<LayerWork> layers;        // in the order of the picture's
  double mix = 1.0;                     // how much of the result is seen
  std::shared_ptr<const Picture> mask;  // where it is, besides; null for everywhere
  ReadReport found;
  std::unique_ptr<FrameClaim> claim;  // for as long as it is in work; null where nobody shares
  bool isElsewhere = false;           // in another program's work
  bool isLast = false;                // nothing can be read after it

  // For a manifest's line; empty where none is kept.
  std::map<std::string, FileState> sources;
  std::string digest;
  std::pair<int, int> readSize;  // of the picture as it was read

  // The renderer's: of the module, or of the library where the picture is of floats.
  quantel::cPtr<FrameImage> result;
  std::vector<float> floats;

  // Whoever finds that the command is wrong for all frames puts the UsageError here. The writer
  // throws it, when all frames before are written.
  std::exception_ptr usage;
};

using FrameChannel = Channel<std::unique_ptr<FrameWork>>;

// How many frames wait in a channel. One is enough: none waits long for the effect.
inline constexpr std::size_t kWaitingFrames = 1;

// Does one thread's part of a frame, unless the frame has failed before. What the part throws
// becomes the frame's: its state and fault, or usage.
void DoPart(FrameWork* work, const std::function<void()>& part);

// Whether no frame is wanted behind this one.
bool IsLastFrame(const FrameWork& work, bool keepGoing);

// Whether the frame's picture exists. A folder of that name, or an empty file that somebody made to
// have the name, is no picture; the contents are not looked at.
bool OutputExists(const FrameFiles& files);

// However a thread's loop ends, those beside it must not wait for it: nothing more is taken from
// the one channel, and nothing more is put into the other.
class ClosedAtEnd {
 public:
  // Either may be null.
  ClosedAtEnd(FrameChannel* from, FrameChannel* to) : from_(from), to_(to) {}
  ~ClosedAtEnd();
  ClosedAtEnd(const ClosedAtEnd&) = delete;
  ClosedAtEnd& operator=(const ClosedAtEnd&) = delete;

 private:
  FrameChannel* from_;
  FrameChannel* to_;
};

}  // namespace glimmerhost
