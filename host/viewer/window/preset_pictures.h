// SPDX-License-Identifier: BSD-3-Clause
// PresetPictures: what each preset makes of the frame that is open, in little.
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "host/looks/look.h"
#include "host/looks/page.h"
#include "host/looks/shot_span.h"
#include "host/module/effect_module.h"
#include "host/support/newest_worker.h"
#include "host/viewer/clip/loaded_frame.h"

namespace glimmerhost {

class PresetPictures : public QObject {
  Q_OBJECT

 public:
  struct Preset {
    std::string name;
    Look look;
  };

  //   page  must outlive it
  PresetPictures(const Page& page, std::shared_ptr<const EffectModule> module,
                 QObject* parent = nullptr);
  ~PresetPictures() override;

  // Makes them on a thread of its own, one after the other; what was asked for before is left.
  //   size  in pixels of the device, at most
  void Ask(std::shared_ptr<const LoadedFrame> frame, const ShotSpan& span,
           std::vector<Preset> presets, QSize size);

 signals:
  void Made(const std::string& name, const QImage& picture);

 private:
  struct Box;
  struct Request {
    std::uint64_t serial;
    std::shared_ptr<const LoadedFrame> frame;
    ShotSpan span;
    std::vector<Preset> presets;
    QSize size;
  };

  static void Make(const Request& request, const Page& page, const EffectModule& module, Box* box,
                   const std::function<void()>& ring);
  void TakePictures();

  std::uint64_t serial_ = 0;
  std::shared_ptr<Box> box_;
  std::unique_ptr<NewestWorker<Request>> worker_;  // the last: it rings this object's bell
};

}  // namespace glimmerhost
