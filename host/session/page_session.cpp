// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/page_session.h"

#include <sstream>
#include <utility>

#include "host/module/border_pictures.h"
#include "host/module/frame_checks.h"
#include "host/module/frame_renderer.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// A still has one frame.
constexpr int kFrames = 1;

std::string Text(quantel::cPoint2 point) {
  std::ostringstream out;
  out << point.x << ", " << point.y;
  return out.str();
}

}  // namespace

PageSession::PageSession(const EffectModule& module, std::map<std::string, Value> values,
                         const Picture& picture, const quantel::cPtr<FrameImage>& spread,
                         quantel::cSize2 pixelAspect)
    : module_(module),
      trace_(module.GetTrace()),
      picture_(picture),
      spread_(spread),
      pixelAspect_(pixelAspect),
      store_(new ParameterStore(std::move(values))),
      surface_(new OverlaySurface),
      dialog_(new Dialog),
      result_(new PageResult(surface_, dialog_,
                             quantel::cPtr<qplugin::iQpluginTimeline>(new Timeline(kFrames)))) {
  OnModule([&] {
    ui_ = module_.MakeUi();
    HandOverInputs();
    TraceToModule(trace_, "ui.setParams(store)");
    ui_->setParams(Traced(quantel::cPtr<qplugin::iQpluginParams>(store_), trace_));
    TraceToModule(trace_, "ui.setResult(result)");
    ui_->setResult(Traced(quantel::cPtr<qplugin::iQpluginUIResult2>(result_), trace_));
  });
}

template <class Call>
void PageSession::OnModule(const Call& call) const {
  try {
    call();
  } catch (...) {
    RethrowModuleFault();
  }
}

void PageSession::HandOverInputs() const {
  result_->Show(quantel::cPtr<qplugin::iQpluginFormat>(
      new FrameFormat(pixelAspect_, {picture_.width, picture_.height})));
  const quantel::cPtr<FrameImage> main(new FrameImage(picture_));
  TraceToModule(trace_, "ui.setInputs(inputs)");
  ui_->setInputs(Traced(quantel::cPtr<qplugin::iQpluginInputs>(new Inputs(main, spread_)), trace_));
}

void PageSession::Connect(const Picture& picture, const quantel::cPtr<FrameImage>& spread,
                          quantel::cSize2 pixelAspect) {
  picture_ = picture;
  spread_ = spread;
  pixelAspect_ = pixelAspect;
  OnModule([this] { HandOverInputs(); });
}

void PageSession::Set(const std::string& key, const Value& value) {
  store_->Set(key, value);
  Notify(key);
}

void PageSession::Notify(const std::string& key) {
  TraceToModule(trace_, "ui.parameterChanged(\"", key, "\")");
  OnModule([&] { ui_->parameterChanged(ToWide(key)); });
}

void PageSession::Press(quantel::cPoint2 point) {
  TraceToModule(trace_, "ui.mouseDown(", Text(point), ")");
  OnModule([&] { ui_->mouseDown(point); });
}

void PageSession::Move(quantel::cPoint2 point) {
  TraceToModule(trace_, "ui.mouseMove(", Text(point), ")");
  OnModule([&] { ui_->mouseMove(point); });
}

void PageSession::Release(quantel::cPoint2 point) {
  TraceToModule(trace_, "ui.mouseUp(", Text(point), ")");
  OnModule([&] { ui_->mouseUp(point); });
}

void PageSession::Draw() {
  TraceToModule(trace_, "ui.drawOverlays()");
  OnModule([this] { ui_->drawOverlays(); });
}

void PageSession::RequestColour() {
  const auto ui4 = ui_.Dynamic<qplugin::iQpluginUI4>();
  if (!ui4) {
    throw Failure("the module has no colour requests");
  }
  TraceToModule(trace_, "ui4.colourRequest(0)");
  OnModule([&] { ui4->colourRequest(0); });
}

Picture PageSession::Render() const {
  CheckGrid(module_.Engine(), store_->Values(), picture_.width, picture_.height);
  Picture picture = picture_;
  RenderPicture(module_, store_->Values(), spread_, pixelAspect_, &picture);
  return picture;
}

}  // namespace glimmerhost
