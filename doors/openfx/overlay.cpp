// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/overlay.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <optional>

#include "doors/openfx/actions.h"
#include "doors/openfx/overlay_parts.h"

namespace lx::openfx {
namespace {

// Pixels of the screen between a pen and what it still takes hold of.
constexpr double kReach = 7.0;

// What an overlay remembers from one event to the next.
struct Overlay {
  ofx::Interact* interact = nullptr;
  Part held = Part::kNone;
  Part hovered = Part::kNone;
  ofx::ParameterSet* editing = nullptr;  // set between the begin and the end of one change
};

Registry<Overlay>& Overlays() { return Lasting<Registry<Overlay>>(); }

Overlay& OverlayOf(const void* handle) {
  Overlay* overlay = Overlays().Find(handle);
  if (overlay == nullptr) {
    throw Failure{ofx::kErrBadHandle, {}};
  }
  return *overlay;
}

Instance& EffectOf(const Properties& in) {
  return InstanceOf(in.Pointer(ofx::kPropEffectInstance));
}

ofx::PointD PixelOf(const Properties& in) {
  return {in.DoubleOr(ofx::kInteractPropPixelScale, 0, 1.0),
          in.DoubleOr(ofx::kInteractPropPixelScale, 1, 1.0)};
}

// False where the clip has no picture to stand on.
bool MiddleOf(ofx::ImageClip* clip, ofx::Time time, ofx::PointD* middle) {
  ofx::RectD region{};
  const ofx::Status status = HostSuites().effects->clipGetRegionOfDefinition(clip, time, &region);
  if (status == ofx::kFailed) {
    return false;
  }
  Check(status);
  *middle = {(region.x1 + region.x2) * 0.5, (region.y1 + region.y2) * 0.5};
  return std::isfinite(middle->x) && std::isfinite(middle->y);
}

// Nothing where there is nothing to show.
std::optional<OverlayParts> PartsOf(const Instance& effect, const Properties& in) {
  const ofx::Time time = in.Double(ofx::kPropTime);
  const Settings settings = effect.Values().At(time);
  ofx::PointD middle{};
  if (settings.shape != GLIMMERBLUR_PICTURE) {
    return MiddleOf(effect.Source(), time, &middle) ? std::optional(DrawnParts(settings, middle))
                                                    : std::nullopt;
  }
  ofx::ImageClip* aperture = settings.wholePicture ? nullptr : effect.ConnectedAperture();
  return aperture != nullptr && MiddleOf(aperture, time, &middle)
             ? std::optional(CutParts(settings, middle))
             : std::nullopt;
}

void EndEdit(Overlay* overlay) {
  overlay->held = Part::kNone;
  ofx::ParameterSet* edited = overlay->editing;
  overlay->editing = nullptr;
  if (edited != nullptr) {
    Check(HostSuites().parameters->paramEditEnd(edited));
  }
}

void Redraw(const Overlay& overlay) {
  Check(HostSuites().interacts->interactRedraw(overlay.interact));
}

void Move(const Overlay& overlay, const Properties& in) {
  const Instance& effect = EffectOf(in);
  const std::optional<OverlayParts> parts = PartsOf(effect, in);
  if (!parts) {
    return;
  }
  const ofx::PointD pen = in.Point(ofx::kInteractPropPenPosition);
  for (const NewValue& changed : Dragged(*parts, overlay.held, pen)) {
    ofx::Parameter* parameter = effect.Values().Handle(changed.name);
    const auto set = HostSuites().parameters->paramSetValue;
    Check(changed.isPoint ? set(parameter, changed.value.x, changed.value.y)
                          : set(parameter, changed.value.x));
  }
  Redraw(overlay);
}

Part PartUnderPen(const Properties& in) {
  const std::optional<OverlayParts> parts = PartsOf(EffectOf(in), in);
  const double reach = kReach * PixelOf(in).x;
  return parts ? PartAt(*parts, in.Point(ofx::kInteractPropPenPosition), reach) : Part::kNone;
}

ofx::Status Describe() { return ofx::kOk; }

ofx::Status Create(const void* handle) {
  auto overlay = std::make_unique<Overlay>();
  overlay->interact = static_cast<ofx::Interact*>(const_cast<void*>(handle));
  ofx::PropertySet* set = nullptr;
  Check(HostSuites().interacts->interactGetPropertySet(overlay->interact, &set));
  const Properties properties(set);
  const Instance* effect =
      Instances().Find(properties.PointerOr(ofx::kPropEffectInstance, nullptr));
  // The host redraws it when one of these changes.
  int index = 0;
  for (const char* name : Parameters::OnTheOverlay(effect != nullptr && effect->HasAperture())) {
    properties.Offer(ofx::kInteractPropSlaveToParam, name, index++);
  }
  Overlays().Add(handle, std::move(overlay));
  return ofx::kOk;
}

ofx::Status Destroy(const void* handle) {
  const std::unique_ptr<Overlay> overlay = Overlays().Take(handle);
  if (overlay == nullptr) {
    return ofx::kErrBadHandle;
  }
  EndEdit(overlay.get());
  return ofx::kOk;
}

ofx::Status Press(const void* handle, const Properties& in) {
  Overlay& overlay = OverlayOf(handle);
  EndEdit(&overlay);
  const Part part = PartUnderPen(in);
  if (part == Part::kNone) {
    return ofx::kReplyDefault;
  }
  ofx::ParameterSet* set = EffectOf(in).Values().Set();
  Check(HostSuites().parameters->paramEditBegin(set, "Drag the aperture"));
  overlay.editing = set;
  overlay.held = part;
  return ofx::kOk;
}

ofx::Status Drag(const void* handle, const Properties& in) {
  Overlay& overlay = OverlayOf(handle);
  if (overlay.held != Part::kNone) {
    Move(overlay, in);
    return ofx::kOk;
  }
  const Part part = PartUnderPen(in);
  if (part != overlay.hovered) {
    overlay.hovered = part;
    Redraw(overlay);
  }
  return ofx::kReplyDefault;
}

ofx::Status Release(const void* handle, const Properties& in) {
  Overlay& overlay = OverlayOf(handle);
  if (overlay.held == Part::kNone) {
    return ofx::kReplyDefault;
  }
  try {
    Move(overlay, in);
  } catch (...) {
    HostSuites().parameters->paramEditEnd(overlay.editing);
    overlay.editing = nullptr;
    overlay.held = Part::kNone;
    throw;
  }
  EndEdit(&overlay);
  return ofx::kOk;
}

ofx::Status LoseFocus(const void* handle) {
  Overlay& overlay = OverlayOf(handle);
  overlay.hovered = Part::kNone;
  EndEdit(&overlay);
  return ofx::kOk;
}

ofx::Status Draw(const void* handle, const Properties& in, Canvas* canvas) {
  const Overlay& overlay = OverlayOf(handle);
  const std::optional<OverlayParts> parts =
      canvas != nullptr ? PartsOf(EffectOf(in), in) : std::nullopt;
  if (!parts) {
    return ofx::kReplyDefault;
  }
  const Part lit = overlay.held != Part::kNone ? overlay.held : overlay.hovered;
  DrawParts(*parts, lit, PixelOf(in), canvas);
  return ofx::kOk;
}

// Everything but drawing, which is where the two entries differ.
ofx::Status Run(const char* action, const void* handle, const Properties& in,
                std::unique_ptr<Canvas> (*makeCanvas)(const Properties& in)) {
  const auto is = [action](const char* name) { return std::strcmp(action, name) == 0; };
  if (is(ofx::kActionDescribe)) {
    return Describe();
  }
  if (is(ofx::kActionCreateInstance)) {
    return Create(handle);
  }
  if (is(ofx::kActionDestroyInstance)) {
    return Destroy(handle);
  }
  if (is(ofx::kInteractActionDraw)) {
    return Draw(handle, in, makeCanvas(in).get());
  }
  if (is(ofx::kInteractActionPenDown)) {
    return Press(handle, in);
  }
  if (is(ofx::kInteractActionPenMotion)) {
    return Drag(handle, in);
  }
  if (is(ofx::kInteractActionPenUp)) {
    return Release(handle, in);
  }
  if (is(ofx::kInteractActionLoseFocus)) {
    return LoseFocus(handle);
  }
  return ofx::kReplyDefault;
}

std::unique_ptr<Canvas> MakeCanvasForOpenGl(const Properties& /*in*/) { return MakeGlCanvas(); }

}  // namespace

void DropOverlays() { Overlays().Clear(); }

ofx::Status OverlayOfDrawSuite(const char* action, const void* handle, ofx::PropertySet* in,
                               ofx::PropertySet* /*out*/) {
  return RunAction(handle,
                   [&] { return Run(action, handle, Properties(in), MakeDrawSuiteCanvas); });
}

ofx::Status OverlayOfOpenGl(const char* action, const void* handle, ofx::PropertySet* in,
                            ofx::PropertySet* /*out*/) {
  return RunAction(handle,
                   [&] { return Run(action, handle, Properties(in), MakeCanvasForOpenGl); });
}

}  // namespace lx::openfx
