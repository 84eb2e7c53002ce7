// SPDX-License-Identifier: BSD-3-Clause
// Viewing: what is looked at: a clip, one of its frames, and what the effect makes of it now.
//
//   Open --> ClipOpener --> ViewedClip
//   SetFrame --> FrameLoader --> LoadedFrame --> LivePage      the module's page and handles
//                                    |
//   look, hand --------------------> LiveRender --> RenderedFrame      the picture
//
// While a hand moves, frames may be proxies; the true one is asked for when it rests. Nothing here
// waits: each arrow ends in a box and a bell.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/viewer/clip/clip_opener.h"
#include "host/viewer/clip/frame_loader.h"
#include "host/viewer/live/live_render.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/window/live_page.h"

namespace glimmerhost {

// What the picture on the screen is.
enum class ShownState {
  kNothing,    // no frame yet, or it has failed
  kWorking,    // the frame is of earlier values, and a newer one is in work
  kProxy,      // of these values, smaller
  kTrueFrame,  // what a render would write
};

class Viewing : public QObject {
  Q_OBJECT

 public:
  // All must outlive it. A page of frame 1 and a shot of one frame until something is open.
  Viewing(const Page& page, std::shared_ptr<const EffectModule> module, LookDocument* document,
          QObject* parent = nullptr);
  ~Viewing() override;

  // Opens a file or a sequence. What was open stays until the new one is there.
  void Open(const QString& name);

  // The frames that there are, ascending: those of a sequence's files, and of a still those of the
  // shot that the look names, or 1 alone. None before a clip is open.
  const std::vector<int>& Frames() const { return frames_; }

  // Shows another of the frames; the nearest where that is not among them.
  void SetFrame(int frame);

  // A frame that has no end, and is not waited for any longer.
  void GiveUp();

  // How many bytes of decoded frames are kept.
  void SetCacheLimit(std::uint64_t bytes);

  // How long a render may go on before it is said to hang.
  void SetPatience(std::chrono::milliseconds patience);

  const std::shared_ptr<const ViewedClip>& Clip() const { return clip_; }
  int Frame() const { return frame_; }
  LivePage* PageOfModule() { return livePage_; }

  // The frame that is looked at; null for none, or one that cannot be read.
  const std::shared_ptr<const LoadedFrame>& Loaded() const { return loaded_; }

  // What the effect made of it; null for none yet. It may be of a frame before.
  const std::shared_ptr<const Picture>& Result() const { return rendered_.picture; }
  const RenderedFrame& Rendered() const { return rendered_; }
  ShownState State() const;

  // Whether nothing is being opened, loaded or rendered, and the true frame is shown.
  bool IsSettled() const;

  // Renders that were given up and are still going on.
  int Hanging() const { return live_.Hanging(); }

 signals:
  // A clip is open.
  void Opened();
  // A numbered file is open, and this sequence is what it belongs to.
  void BelongsTo(const QString& sequence);
  void FramesChanged();
  void FrameChanged(int frame);
  // Loading goes on: for a person; empty when it has ended.
  void Loading(const QString& what);
  // Another LoadedFrame, or another result, is there.
  void Shown();
  void StateChanged();
  // A line for a person; empty where the last does not hold any longer.
  void Told(const QString& line);
  // A render goes on for longer than anybody should wait.
  void Hangs();

 private:
  void TakeClip();
  void TakeFrame();
  void TakeRendered();
  void Look();
  void SettleFrames();
  int FileFrame() const;
  void AskForFrame();
  void DropFrame();
  void TellFault(const std::string& fault);
  void TakeFaultBack();
  void AskForRender(bool mayBeProxy);
  void Watch();

  const Page& page_;
  LookDocument* document_;
  LivePage* livePage_;
  std::shared_ptr<const ViewedClip> clip_;
  std::vector<int> frames_;
  int frame_ = 1;
  int direction_ = 1;
  FrameReading reading_;
  std::shared_ptr<const LoadedFrame> loaded_;
  RenderedFrame rendered_;
  std::uint64_t asked_ = 0;  // the serial of the newest request
  std::uint64_t opening_ = 0;
  bool isLoading_ = false;
  bool isHangTold_ = false;
  bool isFaultTold_ = false;
  QTimer rest_;
  QTimer watch_;
  std::chrono::milliseconds patience_;
  // The last: their threads ring the bells of this object.
  LiveRender live_;
  ClipOpener opener_;
  std::unique_ptr<FrameLoader> loader_;
};

}  // namespace glimmerhost
