// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/effect_page.h"

#include <sstream>
#include <utility>

#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

std::string Text(quantel::cPoint2 point) {
  std::ostringstream out;
  out << point.x << ", " << point.y;
  return out.str();
}

}  // namespace

EffectPage::EffectPage(const EffectModule& module, std::map<std::string, Value> values,
                       const PageClips& clips, int frames)
    : trace_(module.GetTrace()),
      store_(new ParameterStore(std::move(values))),
      surface_(new OverlaySurface),
      dialog_(new Dialog),
      result_(new PageResult(surface_, dialog_,
                             quantel::cPtr<qplugin::iQpluginTimeline>(new Timeline(frames)))) {
  OnModule([&] {
    ui_ = module.MakeUi();
    HandOver(clips);
    TraceToModule(trace_, "ui.setParams(store)");
    ui_->setParams(Traced(quantel::cPtr<qplugin::iQpluginParams>(store_), trace_));
    TraceToModule(trace_, "ui.setResult(result)");
    ui_->setResult(Traced(quantel::cPtr<qplugin::iQpluginUIResult2>(result_), trace_));
  });
}

template <class Call>
void EffectPage::OnModule(const Call& call) const {
  try {
    call();
  } catch (...) {
    RethrowModuleFault();
  }
}

void EffectPage::HandOver(const PageClips& clips) {
  pixelAspect_ = clips.pixelAspect;
  ShowIn(clips.size);
  TraceToModule(trace_, "ui.setInputs(inputs)");
  ui_->setInputs(
      Traced(quantel::cPtr<qplugin::iQpluginInputs>(new Inputs(clips.main, clips.spread)), trace_));
}

void EffectPage::Connect(const PageClips& clips) {
  OnModule([&] { HandOver(clips); });
}

void EffectPage::ShowIn(quantel::cSize2 size) {
  result_->Show(quantel::cPtr<qplugin::iQpluginFormat>(new FrameFormat(pixelAspect_, size)));
}

void EffectPage::Set(const std::string& key, const Value& value) {
  store_->Set(key, value);
  Notify(key);
}

void EffectPage::Notify(const std::string& key) {
  TraceToModule(trace_, "ui.parameterChanged(\"", key, "\")");
  OnModule([&] { ui_->parameterChanged(ToWide(key)); });
}

void EffectPage::Press(quantel::cPoint2 point) {
  TraceToModule(trace_, "ui.mouseDown(", Text(point), ")");
  OnModule([&] { ui_->mouseDown(point); });
}

void EffectPage::Move(quantel::cPoint2 point) {
  TraceToModule(trace_, "ui.mouseMove(", Text(point), ")");
  OnModule([&] { ui_->mouseMove(point); });
}

void EffectPage::Release(quantel::cPoint2 point) {
  TraceToModule(trace_, "ui.mouseUp(", Text(point), ")");
  OnModule([&] { ui_->mouseUp(point); });
}

void EffectPage::Draw() {
  TraceToModule(trace_, "ui.drawOverlays()");
  OnModule([this] { ui_->drawOverlays(); });
}

void EffectPage::RequestColour() {
  const auto ui4 = ui_.Dynamic<qplugin::iQpluginUI4>();
  if (!ui4) {
    throw Failure("the module has no colour requests");
  }
  TraceToModule(trace_, "ui4.colourRequest(0)");
  OnModule([&] { ui4->colourRequest(0); });
}

}  // namespace glimmerhost
