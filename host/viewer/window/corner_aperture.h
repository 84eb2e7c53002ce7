// SPDX-License-Identifier: BSD-3-Clause
// CornerAperture: in a corner of the picture what one bright pixel becomes, where nothing else
// waits for the processors.
#pragma once

#include <QImage>
#include <QLabel>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/support/newest_worker.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/window/viewing.h"

namespace glimmerhost {

class CornerAperture : public QLabel {
  Q_OBJECT

 public:
  //   over  the widget in whose corner it stands
  // The others must outlive it.
  CornerAperture(std::shared_ptr<const EffectModule> module, Viewing* viewing,
                 LookDocument* document, QWidget* over);
  ~CornerAperture() override;

  // Whether a person wants it.
  void SetShown(bool shown);

  // What is shown; null for nothing.
  const QImage& Image() const { return image_; }

 signals:
  // Another aperture is shown.
  void Drawn();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Request {
    std::map<std::string, Value> values;
    std::shared_ptr<const LoadedFrame> frame;
  };
  struct Box;

  void Follow();
  void TakeImage();
  void Place();

  Viewing* viewing_;
  LookDocument* document_;
  std::map<std::string, Value> asked_;
  std::shared_ptr<const LoadedFrame> askedOf_;
  QImage image_;
  bool isWanted_ = true;
  std::shared_ptr<Box> box_;
  std::unique_ptr<NewestWorker<Request>> worker_;  // the last: it rings this object's bell
};

}  // namespace glimmerhost
