// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/exact_view.h"

#include <utility>

namespace glimmerhost {

ExactView::ExactView(const Page& page, Viewing* viewing, LookDocument* document,
                     std::filesystem::path program, QObject* parent)
    : QObject(parent), viewing_(viewing), document_(document), render_(page, std::move(program)) {
  connect(viewing_, &Viewing::StateChanged, this, &ExactView::Follow);
  connect(&render_, &ExactRender::Answered, this, [this](const ExactFrame& frame) {
    if (frame.serial != serial_) {
      return;
    }
    picture_ = frame.picture;
    if (!frame.fault.isEmpty()) {
      emit Told(frame.fault);
    }
    emit Changed();
  });
}

void ExactView::SetEngine(const std::string& engine) {
  if (engine == engine_) {
    return;
  }
  engine_ = engine;
  serial_ = 0;
  Follow();
}

void ExactView::Follow() {
  const std::uint64_t shown = viewing_->Rendered().serial;
  const bool isWanted = !engine_.empty() && viewing_->State() == ShownState::kTrueFrame;
  if (isWanted && serial_ == shown) {
    return;
  }
  const bool hadAny = serial_ != 0 || picture_;
  picture_ = nullptr;
  serial_ = isWanted ? shown : 0;
  if (isWanted) {
    const LoadedFrame& frame = *viewing_->Loaded();
    render_.Ask({shown, frame.file.string(), frame.frame, document_->Span(),
                 document_->CurrentLook(), engine_});
  } else {
    render_.Cancel();
  }
  if (hadAny || isWanted) {
    emit Changed();
  }
}

}  // namespace glimmerhost
