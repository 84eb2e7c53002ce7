// SPDX-License-Identifier: BSD-3-Clause
// Loader: reads the frames of a shot, one after another, and settles what the effect is given.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/page.h"
#include "host/module/border_pictures.h"
#include "host/pictures/pam_stream.h"
#include "host/pictures/picture.h"
#include "host/render/earlier_frames.h"
#include "host/render/frame_work.h"
#include "host/render/shot_settings.h"
#include "host/shots/file_hash.h"
#include "host/shots/manifest.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

// The values of the store and the frame of the second clip are its own: it keeps both for as long
// as pictures have one size.
//
// Where existing frames are skipped, programs share a shot: each claims a frame before it reads it.
// A frame that another program has in work is put aside, and comes after all others.
//
// What can be refused before there is a picture is refused here, so
// that the effect does not work for an output that cannot be written.
class Loader {
 public:
  // All must outlive it.
  //   engine  of the module that will render
  //   manifest  null where none is kept
  //   pipe    pictures of frames whose input is kPipe
  Loader(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
         const lx::Footprint& engine, Manifest* manifest, PamReader* pipe);

  // Puts the plan's frames, until one is the last or nobody takes them, and closes the channel.
  // The loop of a thread, called once.
  void Run(FrameChannel* loaded);

  // Whether the pipe holds more than the plan asked for. Waits until that is known, so call it when
  // all is written: whoever fills the pipe may keep it open, and wait for the last picture. Any
  // thread may, after Run has returned.
  bool LeavesPictures();

 private:
  std::optional<FrameFiles> FilesAt(std::size_t place) const;
  // What becomes of a frame that another program has in work.
  enum class Elsewhere { kPutAside, kWaitFor };

  bool RunList(FrameChannel* loaded);
  void RunAside(FrameChannel* loaded);
  std::unique_ptr<FrameWork> WorkOf(const FrameFiles& files) const;
  bool Load(FrameWork* work, Elsewhere elsewhere, FrameChannel* loaded);
  bool IsToRender(FrameWork* work, Elsewhere elsewhere, FrameChannel* loaded);
  bool IsThere(const FrameWork& work, EarlierFrame* found) const;
  bool TakeFromPipe(FrameWork* work);
  void TakePicture(FrameWork* work);
  void SettleInput(FrameWork* work);
  static void SettleLayers(FrameWork* work, int by);
  int Grow(FrameWork* work);
  void WarnOfNoise(FrameWork* work);
  void CheckRoom(const FrameWork& work);
  void WarnOfRange(FrameWork* work);
  void WarnOfArithmetic(FrameWork* work);
  const KeyframedValues& ValuesFor(int width, int height);
  // With those that the store does not have.
  std::map<std::string, Value> DecidingValues(int frame, int width, int height);
  quantel::cPtr<FrameImage> SpreadOf(FrameWork* work);
  std::shared_ptr<const Picture> MaskOf(FrameWork* work);
  void NoteSources(FrameWork* work);

  const Page& page_;
  const ShotSettings& settings_;
  const ShotPlan& plan_;
  const lx::Footprint& engine_;
  Manifest* manifest_;
  EarlierFrames earlier_;
  PamReader* pipe_;
  std::size_t taken_ = 0;          // pictures of the pipe
  std::vector<FrameFiles> aside_;  // in the order of the plan

  // Values for pictures of one size, and a still for all frames.
  std::unique_ptr<KeyframedValues> values_;
  std::pair<int, int> valuesSize_;
  int growth_ = 0;  // of pictures of that size
  std::filesystem::path spreadFile_;
  std::pair<int, int> spreadSize_;
  quantel::cPtr<FrameImage> spread_;
  FileState spreadState_;
  std::filesystem::path maskFile_;
  std::shared_ptr<const Picture> mask_;
  FileState maskState_;
  bool warnedOfNoise_ = false;
  bool warnedOfRange_ = false;
  bool warnedOfArithmetic_ = false;
  std::uint64_t held_ = 0;  // bytes that the effect may hold already, of frames before
};

}  // namespace glimmerhost
