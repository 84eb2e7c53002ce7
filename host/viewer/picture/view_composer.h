// SPDX-License-Identifier: BSD-3-Clause
// ViewComposer: makes images of what a viewport shows, on a thread of its own.
#pragma once

#include <QImage>
#include <QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "host/pictures/picture.h"
#include "host/support/newest_worker.h"
#include "host/viewer/pixels/view_settings.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {

struct ViewRequest {
  std::uint64_t serial;
  std::shared_ptr<const Picture> before;
  std::shared_ptr<const Picture> after;  // null for none
  ViewSettings settings;
  ViewPlace place;
};

struct ViewImage {
  std::uint64_t serial = 0;  // of the request
  QImage image;              // as large as the viewport, in pixels of the device
  ViewPlace place;
  std::shared_ptr<const Picture> after;  // what it was made of
};

// One request waits at most: a newer one takes its place.
class ViewComposer : public QObject {
  Q_OBJECT

 public:
  explicit ViewComposer(QObject* parent);

  void Ask(ViewRequest request) { worker_.Ask(std::move(request)); }

  // What was made last, once.
  std::optional<ViewImage> Fetch();

 signals:
  // There is an image to fetch.
  void Made();

 private:
  void Make(const ViewRequest& request);

  Doorbell bell_;
  std::function<void()> ring_;
  std::mutex mutex_;
  std::optional<ViewImage> made_;     // under the lock
  NewestWorker<ViewRequest> worker_;  // the last: it uses all others
};

}  // namespace glimmerhost
