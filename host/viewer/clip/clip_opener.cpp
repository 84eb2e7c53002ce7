// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/clip/clip_opener.h"

#include <exception>
#include <utility>

#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {

ClipOpener::ClipOpener(std::function<void()> ring)
    : ring_(std::move(ring)), worker_([this](Request request) { Open(std::move(request)); }) {}

std::uint64_t ClipOpener::Ask(const std::string& name) {
  worker_.Ask({++serial_, name});
  return serial_;
}

std::optional<OpenedClip> ClipOpener::Fetch() {
  const std::lock_guard lock(mutex_);
  return std::exchange(opened_, std::nullopt);
}

void ClipOpener::Open(Request request) {
  OpenedClip opened{request.serial, std::move(request.name), nullptr, {}, {}};
  try {
    auto clip = std::make_shared<const ViewedClip>(opened.name);
    if (!clip->IsSequence()) {
      opened.sequence = SequenceOf(Utf8Path(opened.name));
    }
    opened.clip = std::move(clip);
  } catch (const std::exception& fault) {
    opened.fault = FaultText(fault);
  }
  {
    const std::lock_guard lock(mutex_);
    opened_ = std::move(opened);
  }
  ring_();
}

}  // namespace glimmerhost
