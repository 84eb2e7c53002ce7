// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/corner_aperture.h"

#include <QEvent>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cstddef>
#include <exception>
#include <mutex>
#include <utility>

#include "host/looks/keys.h"
#include "host/module/frame_renderer.h"
#include "host/module/second_clip.h"
#include "host/render/aperture_picture.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {
namespace {

constexpr int kSide = 120;    // logical pixels
constexpr int kMargin = 12;   // from the edges of the picture's widget
constexpr int kMostZoom = 8;  // a pixel of a small aperture is a square that can be seen

// Grey: a pixel's brightness is its share of the light.
QImage ImageOf(const ApertureSpread& spread) {
  QImage image(spread.side, spread.side, QImage::Format_Grayscale8);
  for (int y = 0; y < spread.side; ++y) {
    uchar* const row = image.scanLine(y);
    for (int x = 0; x < spread.side; ++x) {
      const double share =
          spread.shares[static_cast<std::size_t>(y) * static_cast<std::size_t>(spread.side) +
                        static_cast<std::size_t>(x)];
      row[x] = static_cast<uchar>(std::clamp(share, 0.0, 1.0) * 255.0 + 0.5);
    }
  }
  return image;
}

// The second clip, or the frame itself, which the shape image is cut from.
quantel::cPtr<FrameImage> CutFrom(const LoadedFrame& frame) {
  if (frame.spread) {
    return frame.spread;
  }
  return frame.source ? frame.source : SpreadOfItself(*frame.picture);
}

}  // namespace

struct CornerAperture::Box {
  std::mutex mutex;
  QImage image;
};

CornerAperture::CornerAperture(std::shared_ptr<const EffectModule> module, Viewing* viewing,
                               LookDocument* document, QWidget* over)
    : QLabel(over), viewing_(viewing), document_(document), box_(std::make_shared<Box>()) {
  setObjectName("cornerAperture");
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setToolTip(tr("What one bright pixel becomes"));
  setAccessibleName(toolTip());
  resize(kSide, kSide);
  hide();
  over->installEventFilter(this);
  auto* const bell = new Doorbell(this);
  connect(bell, &Doorbell::Rung, this, &CornerAperture::TakeImage);
  connect(viewing_, &Viewing::StateChanged, this, &CornerAperture::Follow);
  worker_ = std::make_unique<NewestWorker<Request>>(
      [module = std::move(module), box = box_, ring = bell->Ringer()](const Request& request) {
        QImage image;
        try {
          const LoadedFrame& frame = *request.frame;
          const bool isCut = ShapeOf(request.values) == glimmerhost::Shape::kImage;
          image =
              ImageOf(SpreadOneLight(*module, {request.values, frame.pixelAspect,
                                               isCut ? CutFrom(frame) : quantel::cPtr<FrameImage>(),
                                               frame.picture->width, frame.picture->height}));
        } catch (const std::exception&) {
          // No aperture, no picture of it: the frame's own render has said why.
        }
        {
          const std::lock_guard lock(box->mutex);
          box->image = image;
        }
        ring();
      });
}

CornerAperture::~CornerAperture() = default;

void CornerAperture::SetShown(bool shown) {
  isWanted_ = shown;
  setVisible(shown && !image_.isNull());
  Follow();
}

void CornerAperture::Follow() {
  if (!isWanted_ || viewing_->State() != ShownState::kTrueFrame) {
    return;
  }
  const std::shared_ptr<const LoadedFrame>& frame = viewing_->Loaded();
  std::map<std::string, Value> values = ApertureValues(document_->ValuesAt(frame->frame));
  if (values == asked_ && frame == askedOf_) {
    return;
  }
  asked_ = values;
  askedOf_ = frame;
  // The emphasis is asked for, and not looked at.
  worker_->Ask({document_->ValuesAt(frame->frame), frame});
}

void CornerAperture::TakeImage() {
  {
    const std::lock_guard lock(box_->mutex);
    image_ = box_->image;
  }
  if (!image_.isNull()) {
    const double scale = devicePixelRatioF();
    const int room = static_cast<int>((kSide - 2) * scale);
    const int zoom = std::clamp(room / image_.width(), 1, kMostZoom);
    const int side = std::min(image_.width() * zoom, room);
    QImage drawn(room, room, QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QPainter painter(&drawn);
    const Qt::TransformationMode mode =
        side < image_.width() ? Qt::SmoothTransformation : Qt::FastTransformation;
    painter.drawImage((room - side) / 2, (room - side) / 2,
                      image_.scaled(side, side, Qt::KeepAspectRatio, mode));
    painter.setPen(QColor(128, 128, 128));
    painter.drawRect(0, 0, room - 1, room - 1);
    painter.end();
    drawn.setDevicePixelRatio(scale);
    setPixmap(QPixmap::fromImage(drawn));
  }
  setVisible(isWanted_ && !image_.isNull());
  Place();
  emit Drawn();
}

void CornerAperture::Place() { move(kMargin, parentWidget()->height() - height() - kMargin); }

bool CornerAperture::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) {
    Place();
  }
  return QLabel::eventFilter(watched, event);
}

}  // namespace glimmerhost
