// SPDX-License-Identifier: BSD-3-Clause
// An overlay of an instance, drawn and dragged as a host does.
#pragma once

#include <string>

#include "tests/doors/openfx/plugin_session.h"

namespace lx_test {

class OverlayStage {
 public:
  // By the entry that the descriptor has: of the draw suite, or of OpenGL.
  OverlayStage(PluginSession& session, ofx::ImageEffect* effect)
      : host_(session.Host()), effect_(effect), context_{session.Host()} {
    auto& values = session.Descriptor().properties.values;
    const char* later = "OfxImageEffectPluginPropOverlayInteractV2";
    const char* earlier = "OfxImageEffectPluginPropOverlayInteractV1";
    entry_ = reinterpret_cast<ofx::EntryPoint*>(
        std::get<void*>(values.at(values.contains(later) ? later : earlier)[0]));
    interact_ = {host_, MakeProperties(host_, "interact")};
    interact_.properties.Set("OfxPropEffectInstance", {static_cast<void*>(effect)});
    Act(ofx::kActionDescribe, &interact_);
    Act(ofx::kActionCreateInstance, &interact_);
    host_->TakeLog();
  }
  ~OverlayStage() { Act(ofx::kActionDestroyInstance, &interact_); }
  OverlayStage(const OverlayStage&) = delete;
  OverlayStage& operator=(const OverlayStage&) = delete;

  ofx::Interact& Interact() { return interact_; }

  ofx::Status Act(const char* action, const void* handle, ofx::PropertySet* in = nullptr) const {
    return entry_(action, handle, in, nullptr);
  }

  // pixel  the size of one on the screen
  ofx::Status Draw(const ofx::PointD& pixel = {1.0, 1.0}) {
    ofx::PropertySet in = Arguments(pixel);
    in.Set("OfxInteractPropDrawContext", {static_cast<void*>(&context_)});
    return Act(ofx::kInteractActionDraw, &interact_, &in);
  }

  ofx::Status Pen(const char* action, const ofx::PointD& place,
                  const ofx::PointD& pixel = {1.0, 1.0}) {
    ofx::PropertySet in = Arguments(pixel);
    in.Set("OfxInteractPropPenPosition", {place.x, place.y});
    return Act(action, &interact_, &in);
  }

  ofx::Status LoseFocus() {
    ofx::PropertySet in = Arguments({1.0, 1.0});
    return Act(ofx::kInteractActionLoseFocus, &interact_, &in);
  }

 private:
  ofx::PropertySet Arguments(const ofx::PointD& pixel) {
    ofx::PropertySet in = MakeProperties(host_, "in");
    in.Set("OfxPropEffectInstance", {static_cast<void*>(effect_)});
    in.Set("OfxPropTime", {0.0});
    in.Set("OfxInteractPropPixelScale", {pixel.x, pixel.y});
    return in;
  }

  MapHost* host_;
  ofx::ImageEffect* effect_;
  ofx::EntryPoint* entry_ = nullptr;
  ofx::Interact interact_{};
  ofx::DrawContext context_;
};

}  // namespace lx_test
