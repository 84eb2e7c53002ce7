// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/value_bar.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <algorithm>
#include <cstddef>

namespace glimmerhost {
namespace {

QLabel* AddLabel(const QString& name, const QString& help, QHBoxLayout* layout) {
  auto* const label = new QLabel;
  label->setObjectName(name);
  label->setAccessibleName(help);
  label->setToolTip(help);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  layout->addWidget(label);
  return label;
}

// The pixel of a smaller picture that stands for one of the whole picture.
QPoint PixelOfProxy(const Picture& whole, const Picture& proxy, QPoint pixel) {
  return {static_cast<int>((pixel.x() + 0.5) * proxy.width / whole.width),
          static_cast<int>((pixel.y() + 0.5) * proxy.height / whole.height)};
}

}  // namespace

QString ValuesText(const Picture& picture, QPoint pixel) {
  const std::size_t at =
      (static_cast<std::size_t>(pixel.y()) * static_cast<std::size_t>(picture.width) +
       static_cast<std::size_t>(pixel.x())) *
      4;
  QString text;
  for (std::size_t c = at; c < at + 4; ++c) {
    text += picture.IsFloat()
                ? QString::number(static_cast<double>(picture.floats[c]), 'g', 4).rightJustified(11)
                : QString::number(picture.samples[c]).rightJustified(6);
  }
  return text;
}

ValueBar::ValueBar(PictureView* view, QWidget* parent) : QWidget(parent), view_(view) {
  setObjectName("valueBar");
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 2, 8, 2);
  layout->setSpacing(24);
  place_ = AddLabel("pixelPlace", tr("Pixel under the cursor, from the top left"), layout);
  before_ = AddLabel("valuesBefore", tr("Red, green, blue and alpha before the blur"), layout);
  after_ = AddLabel("valuesAfter", tr("Red, green, blue and alpha after the blur"), layout);
  layout->addStretch(1);
  mark_ = AddLabel("frameMark", tr("What is shown"), layout);
  mark_->setFont(font());
  connect(view_, &PictureView::Hovered, this, [this](QPoint pixel) {
    pixel_ = pixel;
    ShowValues();
  });
  connect(view_, &PictureView::HoverEnded, this, [this] {
    pixel_.reset();
    ShowValues();
  });
  connect(view_, &PictureView::FramesShown, this, &ValueBar::ShowValues);
  ShowValues();
}

void ValueBar::SetMark(FrameMark mark) {
  mark_->setText(mark == FrameMark::kRendering   ? tr("rendering…")
                 : mark == FrameMark::kProxy     ? tr("proxy")
                 : mark == FrameMark::kTrueFrame ? tr("true frame")
                                                 : QString());
}

void ValueBar::ShowValues() {
  const auto& before = view_->Before();
  const bool isInside =
      before && pixel_ && QRect(0, 0, before->width, before->height).contains(*pixel_);
  place_->setText(isInside ? tr("x %1  y %2").arg(pixel_->x(), 5).arg(pixel_->y(), 5) : QString());
  before_->setText(isInside ? tr("before %1").arg(ValuesText(*before, *pixel_)) : QString());
  const auto& after = view_->After();
  if (!isInside || !after) {
    after_->clear();
    return;
  }
  const QString values = ValuesText(*after, PixelOfProxy(*before, *after, *pixel_));
  after_->setText(view_->IsProxy() ? tr("after about %1").arg(values) : tr("after %1").arg(values));
}

}  // namespace glimmerhost
