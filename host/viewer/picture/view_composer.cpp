// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/view_composer.h"

#include <exception>
#include <utility>

#include "host/viewer/pixels/compose_view.h"

namespace glimmerhost {
namespace {

// Without a copy: the image keeps the pixels until it is gone.
QImage ImageOf(ViewPixels pixels) {
  auto* const kept = new ViewPixels(std::move(pixels));
  return QImage(
      reinterpret_cast<uchar*>(kept->pixels.data()), kept->width, kept->height, kept->width * 4,
      QImage::Format_ARGB32_Premultiplied, [](void* one) { delete static_cast<ViewPixels*>(one); },
      kept);
}

}  // namespace

ViewComposer::ViewComposer(QObject* parent)
    : QObject(parent),
      ring_(bell_.Ringer()),
      worker_([this](const ViewRequest& request) { Make(request); }) {
  connect(&bell_, &Doorbell::Rung, this, &ViewComposer::Made);
}

std::optional<ViewImage> ViewComposer::Fetch() {
  const std::lock_guard lock(mutex_);
  return std::exchange(made_, std::nullopt);
}

void ViewComposer::Make(const ViewRequest& request) {
  ViewImage made;
  made.serial = request.serial;
  made.place = request.place;
  made.after = request.after;
  try {
    made.image =
        ImageOf(ComposeView(*request.before, request.after.get(), request.settings, request.place));
  } catch (const std::exception&) {
    return;  // there is no memory for it: what was shown stays
  }
  {
    const std::lock_guard lock(mutex_);
    made_ = std::move(made);
  }
  ring_();
}

}  // namespace glimmerhost
