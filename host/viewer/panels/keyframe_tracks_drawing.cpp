// SPDX-License-Identifier: BSD-3-Clause
// How the tracks look.
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <cmath>

#include "host/viewer/panels/keyframe_tracks.h"
#include "host/viewer/panels/signs.h"
#include "host/viewer/panels/track_layout.h"

namespace glimmerhost {
namespace {

QColor Faint(const QPalette& palette, float strength) {
  QColor colour = palette.color(QPalette::Text);
  colour.setAlphaF(strength);
  return colour;
}

// Of a curve. It is drawn anew while a value is dragged; with one for every pixel of a wide window
// that took longer than all rows of the page.
constexpr int kMostSamples = 400;

// On the middle of a pixel, so that a thin line is one pixel wide.
double Sharp(double x) { return std::floor(x) + 0.5; }

}  // namespace

void KeyframeTracks::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(viewport()->rect(), palette().color(QPalette::Base));
  painter.save();
  painter.setClipRect(0, kRulerHeight, viewport()->width(), viewport()->height() - kRulerHeight);
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    DrawTrack(&painter, i);
  }
  if (tracks_.empty()) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(kNameWidth, kRulerHeight, -8, 0),
                     Qt::AlignCenter | Qt::TextWordWrap,
                     tr("No keyframes yet. The diamond beside a value sets one at this frame."));
  }
  painter.restore();
  DrawRuler(&painter);
  DrawPlayhead(&painter);
}

void KeyframeTracks::DrawRuler(QPainter* painter) const {
  const QRect ruler(0, 0, viewport()->width(), kRulerHeight);
  painter->fillRect(ruler, palette().color(QPalette::Window));
  painter->setPen(Faint(palette(), 0.3F));
  painter->drawLine(QPointF(0, kRulerHeight - 0.5), QPointF(ruler.width(), kRulerHeight - 0.5));
  if (shot_.IsEmpty()) {
    return;
  }
  const FrameScale scale = Scale();
  const QFontMetrics metrics(font());
  const std::vector<int> labels = scale.Labels(
      [&](int frame) { return metrics.horizontalAdvance(QString::number(frame)) + 14.0; });
  const int step = labels.size() > 1 ? labels[1] - labels[0] : 1;
  const int tick = scale.TickStep(step);
  const int first = labels.empty() ? shot_.First() : labels.front();
  for (int frame = first - step; frame <= shot_.Last(); frame += tick) {
    if (frame >= shot_.First()) {
      const double x = Sharp(scale.XOf(frame));
      painter->drawLine(QPointF(x, kRulerHeight - 5), QPointF(x, kRulerHeight - 1));
    }
  }
  for (const int frame : labels) {
    const double x = Sharp(scale.XOf(frame));
    painter->setPen(Faint(palette(), 0.4F));
    painter->drawLine(QPointF(x, kRulerHeight - 9), QPointF(x, kRulerHeight - 1));
    painter->setPen(palette().color(QPalette::WindowText));
    painter->drawText(QRectF(x - kEndRoom, 1, 2.0 * kEndRoom, kRulerHeight - 10), Qt::AlignCenter,
                      QString::number(frame));
  }
}

void KeyframeTracks::DrawTrack(QPainter* painter, std::size_t index) const {
  const Track& track = tracks_[index];
  const bool isSelected = static_cast<int>(index) == selectedTrack_;
  const QRect row(0, TopOf(index), viewport()->width(), kRowHeight);
  const QRect name(0, row.top(), kNameWidth, HeightOf(index));
  painter->fillRect(name, palette().color(QPalette::Window));
  if (isSelected) {
    QColor back = palette().color(QPalette::Highlight);
    back.setAlphaF(hasFocus() ? 0.3F : 0.18F);
    painter->fillRect(QRect(row.left(), row.top(), row.width(), HeightOf(index)), back);
    DrawCurves(painter, QRect(0, row.bottom() + 1, row.width(), kLaneHeight));
  }
  painter->setPen(Faint(palette(), 0.15F));
  painter->drawLine(QPointF(0, row.top() + HeightOf(index) - 0.5),
                    QPointF(row.width(), row.top() + HeightOf(index) - 0.5));
  painter->setPen(palette().color(QPalette::WindowText));
  const QRect text(8, row.top(), kNameWidth - 12, kRowHeight);
  painter->drawText(
      text, Qt::AlignVCenter | Qt::AlignLeft,
      fontMetrics().elidedText(QString::fromStdString(track.name), Qt::ElideMiddle, text.width()));
  const FrameScale scale = Scale();
  const double middle = row.top() + kRowHeight / 2.0;
  painter->setClipRect(QRect(kNameWidth, kRulerHeight, row.width(), viewport()->height()));
  if (track.keys.size() > 1) {
    painter->setPen(QPen(Faint(palette(), 0.25F), 2));
    painter->drawLine(QPointF(scale.XOf(track.keys.front().frame), middle),
                      QPointF(scale.XOf(track.keys.back().frame), middle));
  }
  for (const PlacedKeyframe& key : track.keys) {
    const QPointF at(scale.XOf(key.frame), middle);
    const QRectF place(at - QPointF(kKeyframe, kKeyframe), at + QPointF(kKeyframe, kKeyframe));
    const bool isMarked = IsSelected(track.name, key.frame);
    DrawKeyframe(painter, place, KeyState::kHere,
                 palette().color(isMarked ? QPalette::Highlight : QPalette::WindowText));
    if (isMarked) {
      DrawKeyframe(painter, place, KeyState::kNone, palette().color(QPalette::WindowText));
    }
  }
  painter->setClipRect(0, kRulerHeight, viewport()->width(), viewport()->height() - kRulerHeight);
}

void KeyframeTracks::DrawCurves(QPainter* painter, const QRect& lane) const {
  if (!hasCurves_) {
    curves_ = CurvesOf(*document_, SelectedName(), shot_, unit_, kMostSamples);
    hasCurves_ = true;
  }
  const QFontMetrics metrics(font());
  painter->setPen(palette().color(QPalette::PlaceholderText));
  const QRect texts = lane.adjusted(8, 2, -lane.width() + kNameWidth - 6, -3);
  const bool isFlat = curves_.highest == curves_.lowest;
  painter->drawText(texts, Qt::AlignRight | (isFlat ? Qt::AlignVCenter : Qt::AlignTop),
                    curves_.highestText);
  if (!isFlat) {
    painter->drawText(texts, Qt::AlignRight | Qt::AlignBottom, curves_.lowestText);
  }
  const FrameScale scale = Scale();
  const double top = lane.top() + metrics.height() / 2.0;
  const double height = lane.height() - metrics.height();
  const auto placeOf = [&](const QPointF& point) {
    const double part =
        isFlat ? 0.5 : (point.y() - curves_.lowest) / (curves_.highest - curves_.lowest);
    return QPointF(scale.XOf(point.x()), top + height * (1.0 - part));
  };
  Qt::PenStyle style = Qt::SolidLine;
  for (const std::vector<QPointF>& line : curves_.lines) {
    QPainterPath path(placeOf(line.front()));
    for (const QPointF& point : line) {
      const QPointF next = placeOf(point);
      if (curves_.areSteps) {
        path.lineTo(next.x(), path.currentPosition().y());
      }
      path.lineTo(next);
    }
    painter->setPen(QPen(palette().color(QPalette::Text), 1.5, style));
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(path);
    style = Qt::DashLine;
  }
}

void KeyframeTracks::DrawPlayhead(QPainter* painter) const {
  if (shot_.IsEmpty()) {
    return;
  }
  const QString text = QString::number(frame_);
  const QFontMetrics metrics(font());
  const double x = Sharp(Scale().XOf(frame_));
  const double half = metrics.horizontalAdvance(text) / 2.0 + 5.0;
  const QColor colour = palette().color(QPalette::Highlight);
  painter->setPen(QPen(colour, 1.0));
  painter->drawLine(QPointF(x, kRulerHeight - 9), QPointF(x, viewport()->height()));
  painter->setPen(Qt::NoPen);
  painter->setBrush(colour);
  painter->drawRoundedRect(QRectF(x - half, 1, 2.0 * half, kRulerHeight - 10), 3, 3);
  painter->setPen(palette().color(QPalette::HighlightedText));
  painter->drawText(QRectF(x - half, 1, 2.0 * half, kRulerHeight - 10), Qt::AlignCenter, text);
}

}  // namespace glimmerhost
