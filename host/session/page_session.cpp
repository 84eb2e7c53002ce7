// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/page_session.h"

#include <utility>

#include "host/module/border_pictures.h"
#include "host/module/frame_checks.h"
#include "host/module/frame_renderer.h"

namespace glimmerhost {
namespace {

// A still has one frame.
constexpr int kFrames = 1;

PageClips ClipsOf(const Picture& picture, const quantel::cPtr<FrameImage>& spread,
                  quantel::cSize2 pixelAspect) {
  return {quantel::cPtr<FrameImage>(new FrameImage(picture)),
          spread,
          pixelAspect,
          {picture.width, picture.height}};
}

}  // namespace

PageSession::PageSession(const EffectModule& module, std::map<std::string, Value> values,
                         const Picture& picture, const quantel::cPtr<FrameImage>& spread,
                         quantel::cSize2 pixelAspect)
    : EffectPage(module, std::move(values), ClipsOf(picture, spread, pixelAspect), kFrames),
      module_(module),
      picture_(picture),
      spread_(spread),
      pixelAspect_(pixelAspect) {}

void PageSession::Connect(const Picture& picture, const quantel::cPtr<FrameImage>& spread,
                          quantel::cSize2 pixelAspect) {
  picture_ = picture;
  spread_ = spread;
  pixelAspect_ = pixelAspect;
  EffectPage::Connect(ClipsOf(picture, spread, pixelAspect));
}

Picture PageSession::Render() const {
  CheckGrid(module_.Engine(), Values(), picture_.width, picture_.height);
  Picture picture = picture_;
  RenderPicture(module_, Values(), spread_, pixelAspect_, &picture);
  return picture;
}

}  // namespace glimmerhost
