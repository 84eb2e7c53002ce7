// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/preset_pictures.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <mutex>
#include <utility>

#include "host/looks/keyframed_values.h"
#include "host/viewer/live/frame_maker.h"
#include "host/viewer/pixels/compose_view.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {
namespace {

// As large as there is room.
QImage ImageOf(const Picture& picture, QSize room) {
  const QSize size =
      QSize(picture.width, picture.height).scaled(room, Qt::KeepAspectRatio).expandedTo({1, 1});
  const double zoom = static_cast<double>(size.width()) / picture.width;
  const ViewPixels pixels =
      ComposeView(picture, nullptr, {}, {zoom, 0.0, 0.0, size.width(), size.height()});
  QImage image(pixels.width, pixels.height, QImage::Format_RGB32);
  for (int y = 0; y < pixels.height; ++y) {
    std::memcpy(image.scanLine(y), pixels.pixels.data() + std::ptrdiff_t{y} * pixels.width,
                static_cast<std::size_t>(pixels.width) * sizeof(std::uint32_t));
  }
  return image;
}

}  // namespace

struct PresetPictures::Box {
  std::atomic<std::uint64_t> newest{0};
  std::mutex mutex;
  std::vector<std::pair<std::string, QImage>> made;
};

PresetPictures::PresetPictures(const Page& page, std::shared_ptr<const EffectModule> module,
                               QObject* parent)
    : QObject(parent), box_(std::make_shared<Box>()) {
  auto* const bell = new Doorbell(this);
  connect(bell, &Doorbell::Rung, this, &PresetPictures::TakePictures);
  worker_ = std::make_unique<NewestWorker<Request>>(
      [&page, module = std::move(module), box = box_, ring = bell->Ringer()](
          const Request& request) { Make(request, page, *module, box.get(), ring); });
}

PresetPictures::~PresetPictures() { box_->newest = 0; }

void PresetPictures::Ask(std::shared_ptr<const LoadedFrame> frame, const ShotSpan& span,
                         std::vector<Preset> presets, QSize size) {
  box_->newest = ++serial_;
  worker_->Ask({serial_, std::move(frame), span, std::move(presets), size});
}

void PresetPictures::Make(const Request& request, const Page& page, const EffectModule& module,
                          Box* box, const std::function<void()>& ring) {
  try {
    const Picture& whole = *request.frame->picture;
    FrameMaker maker(module);
    for (const Preset& preset : request.presets) {
      if (box->newest != request.serial) {
        return;
      }
      const KeyframedValues values(page, {{"", preset.look}}, whole.width, whole.height,
                                   request.span);
      // The true frame made smaller: lights of a smaller one would be too dim to open.
      const auto picture = maker.Make(*request.frame, values.At(request.frame->frame), 1.0);
      const QImage image = ImageOf(*picture, request.size);
      const std::lock_guard lock(box->mutex);
      box->made.emplace_back(preset.name, image);
      ring();
    }
  } catch (const std::exception&) {
    // A little picture less: its place stays empty, and the preset can be used all the same.
  }
}

void PresetPictures::TakePictures() {
  std::vector<std::pair<std::string, QImage>> made;
  {
    const std::lock_guard lock(box_->mutex);
    made.swap(box_->made);
  }
  for (const auto& [name, image] : made) {
    emit Made(name, image);
  }
}

}  // namespace glimmerhost
