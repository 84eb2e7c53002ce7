// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/live_page.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <variant>

namespace glimmerhost {
namespace {

bool SameForModule(const Value& a, const Value& b) {
  const double* one = std::get_if<double>(&a);
  const double* other = std::get_if<double>(&b);
  if (one == nullptr || other == nullptr) {
    return a == b;
  }
  return *one == *other || static_cast<float>(*one) == static_cast<float>(*other);
}

// Floats go past the module: it is shown a frame of their size, whose samples nobody looks at.
quantel::cPtr<FrameImage> MainOf(const LoadedFrame& frame) {
  return frame.source ? frame.source
                      : quantel::cPtr<FrameImage>(
                            new FrameImage(frame.picture->width, frame.picture->height));
}

}  // namespace

LivePage::LivePage(const EffectModule& module, const Page& page, LookDocument* document,
                   QObject* parent)
    : QObject(parent), module_(module), page_(page), document_(document) {
  connect(document_, &LookDocument::Changed, this, [this] {
    if (!isTaking_) {
      TellModule();
    }
  });
}

// What the module throws must not reach the event loop.
void LivePage::Call(const std::function<void()>& call) {
  try {
    call();
  } catch (const std::exception& fault) {
    emit Failed(QString::fromUtf8(fault.what()));
  }
}

void LivePage::Show(const std::shared_ptr<const LoadedFrame>& frame, int frames) {
  frame_ = frame->frame;
  if (screenSize_.first == 0) {
    screenSize_ = {frame->picture->width, frame->picture->height};
  }
  const PageClips clips{MainOf(*frame), frame->spread, frame->pixelAspect, screenSize_};
  Call([&] {
    if (effect_) {
      effect_->Connect(clips);
    } else {
      effect_ = std::make_unique<EffectPage>(module_, document_->ValuesAt(frame_), clips, frames);
    }
  });
  TellModule();
}

void LivePage::SetScreenSize(QSize size) {
  const quantel::cSize2 wanted{std::max(size.width(), 1), std::max(size.height(), 1)};
  if (wanted.first == screenSize_.first && wanted.second == screenSize_.second) {
    return;
  }
  screenSize_ = wanted;
  if (effect_) {
    effect_->ShowIn(screenSize_);
    DrawAgain();
  }
}

// In the page's order. What the module answers to one key may change others, which are not told
// back to it.
void LivePage::TellModule() {
  if (!effect_) {
    return;
  }
  Call([this] {
    const std::map<std::string, Value> wanted = document_->ValuesAt(frame_);
    for (const Parameter& parameter : page_.Parameters()) {
      const Value& value = wanted.at(parameter.key);
      if (!SameForModule(effect_->Values().at(parameter.key), value)) {
        effect_->Set(parameter.key, value);
      }
    }
  });
  DrawAgain();
}

void LivePage::TakeFromModule() {
  std::map<std::string, Value> changed;
  const std::map<std::string, Value> before = document_->ValuesAt(frame_);
  for (const Parameter& parameter : page_.Parameters()) {
    const Value& value = effect_->Values().at(parameter.key);
    if (!SameForModule(value, before.at(parameter.key))) {
      changed[parameter.key] = value;
    }
  }
  if (!changed.empty()) {
    isTaking_ = true;
    Call([&] { document_->SetValues(changed, frame_, tr("Move on the picture"), gesture_); });
    isTaking_ = false;
  }
}

void LivePage::Mouse(void (EffectPage::*call)(quantel::cPoint2), QPointF point) {
  if (!effect_) {
    return;
  }
  Call([&] {
    (effect_.get()->*call)({static_cast<float>(point.x()), static_cast<float>(point.y())});
    TakeFromModule();
  });
  DrawAgain();
}

void LivePage::Press(QPointF point) {
  isDragging_ = true;
  gesture_ = LookDocument::NewGesture();
  Mouse(&EffectPage::Press, point);
}

void LivePage::Move(QPointF point) { Mouse(&EffectPage::Move, point); }

void LivePage::Release(QPointF point) {
  isDragging_ = false;
  Mouse(&EffectPage::Release, point);
}

void LivePage::PressWidget(const QString& key) {
  if (!effect_) {
    return;
  }
  Call([&] {
    effect_->Notify(key.toStdString());
    TakeFromModule();
  });
  DrawAgain();
}

void LivePage::DrawAgain() {
  Call([this] { effect_->Draw(); });
  emit Updated();
}

std::vector<PageRow> LivePage::Rows() const {
  return effect_ ? PageRows(page_, effect_->Values(), effect_->PageDialog())
                 : std::vector<PageRow>();
}

}  // namespace glimmerhost
