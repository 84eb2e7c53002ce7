// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/ui_adapter.h"

#include <array>
#include <cstddef>

#include "hostframe/clip_connections.h"
#include "hostframe/colour_widgets.h"
#include "hostframe/interfaces/wide_format.h"
#include "hostframe/store_reading.h"
#include "library/overlay_controls.h"

namespace allplugins {
namespace {

// What arrives in parameterChanged when the page is used.
constexpr const char16_t* keyPage = u"PRM_GlimmerFocus_Page";

// Switches of the store that the page's parts depend on; written and never read.
constexpr const char16_t* keyMatchA = u"PRM_Match_A";
constexpr const char16_t* keyMatchB = u"PRM_Match_B";

// The switch of a shape's own part: "PRM_Shape_A" for shape 1. A shape has any value that a
// host's list gives; its low 16 bits count on from the letter.
quantel::wstring ShapePartKey(std::int32_t shape) {
  constexpr std::size_t kLongest = 63;
  const auto letter = static_cast<char16_t>(0x40U + static_cast<std::uint32_t>(shape));
  return quantel::FormatWide(kLongest, u"PRM_Shape_%c", {letter});
}

struct KeyedControl {
  lx::ControlLX* control;
  const quantel::wstring* key;
};

// The order of writing back.
std::array<KeyedControl, 12> KeyedControls(lx::GlimmerBlurInfo* effect) {
  return {{{&effect->shape, &keyShape},
           {&effect->match, &keyMatch},
           {&effect->radiusX, &keyRadiusX},
           {&effect->radiusY, &keyRadiusY},
           {&effect->sides, &keySides},
           {&effect->rotation, &keyRotation},
           {&effect->emphasis, &keyEmphasis},
           {&effect->emphAlpha, &keyEmphAlpha},
           {&effect->precision, &keyPrecision},
           {&effect->center, &keyCenter},
           {&effect->radiusPSF1, &keyRadiusPSF1},
           {&effect->radiusPSF2, &keyRadiusPSF2}}};
}

}  // namespace

cGlimmerBlurUI::cGlimmerBlurUI() {
  joinControls();
  effect.dragging = 0;
  joinOverlays();
  effect.zoom = 1.0F;
}

void cGlimmerBlurUI::joinControls() {
  for (const KeyedControl& keyed : KeyedControls(&effect)) {
    keyed.control->host = &params;
    keyed.control->key = keyed.key;
  }
}

void cGlimmerBlurUI::joinOverlays() {
  effect.data = &overlayData;
  const auto join = [this](lx::OverlayControlLX* overlay, lx::ControlLX* target,
                           lx::ControlLX* target2, std::int32_t blue) {
    overlay->data = &overlayData;
    overlay->target = target;
    overlay->target2 = target2;
    overlay->dragFlag = &effect.dragging;
    overlay->blue = blue;
    overlay->owner = &effect;
  };
  constexpr std::int32_t kWhiteBlue = 65535;
  constexpr std::int32_t kYellowBlue = 0;
  join(&effect.centerOverlay, &effect.center, nullptr, kWhiteBlue);
  join(&effect.innerRingOverlay, &effect.radiusPSF1, &effect.radiusPSF1, kYellowBlue);
  join(&effect.outerRingOverlay, &effect.radiusPSF2, &effect.radiusPSF2, kYellowBlue);
}

quantel::cPtr<quantel::iFactory::iClassInfo> cGlimmerBlurUI::classInfo() {
  return quantel::cClassInfo<cGlimmerBlurUI>::Make();
}

quantel::cGuid cGlimmerBlurUI::uiGuid() { return uiClassGuid; }

quantel::cGuid cGlimmerBlurUI::renderGuid() { return renderClassGuid; }

quantel::wstring cGlimmerBlurUI::moduleText() { return savedModuleText; }

void cGlimmerBlurUI::setInputs(quantel::cPtr<qplugin::iQpluginInputs> inputs) {
  ConnectClips(inputs, &sourceClip, &spreadClip, &effect);
  inputs.Reset();
}

void cGlimmerBlurUI::setParams(quantel::cPtr<qplugin::iQpluginParams> newParams) {
  params = newParams;
  effect.uiOwner = this;
  refreshFromStore();
  newParams.Reset();
}

void cGlimmerBlurUI::setResult(quantel::cPtr<qplugin::iQpluginUIResult> newResult) {
  result = newResult;
  quantel::cPtr<qplugin::iQpluginDialog> dialog;
  if (result) {
    const auto result2 = result.Dynamic<qplugin::iQpluginUIResult2>();
    if (const auto timeline = result2 ? result2->timeline() : nullptr) {
      effect.firstTime = 1.0;
      effect.lastTime = static_cast<double>(timeline->frameCount());
    }
    dialog = result->dialog();
    if (dialog) {
      AddColourWidgets(dialog.Object());
    }
  }
  // Intended: asked for and dropped.
  dialog.Dynamic<qplugin::iQpluginDialog2>();
  newResult.Reset();
}

void cGlimmerBlurUI::refreshFromStore() {
  if (!params) {
    return;
  }
  refreshShape();
  refreshMatch();
  ReadSingleParameters(params.Object(), &effect);
  effect.UpdateControlState();
}

// Intended: an unchanged shape's switch goes off and on again.
void cGlimmerBlurUI::refreshShape() {
  const std::int32_t shape = ReadShape(params.Object());
  params->setBool(ShapePartKey(effect.shape.value), false);
  params->setBool(ShapePartKey(shape), true);
  effect.shape.value = shape;
}

void cGlimmerBlurUI::refreshMatch() {
  const bool match = ReadMatch(params.Object());
  effect.match.value = match;
  params->setBool(keyMatchA, match);
  params->setBool(keyMatchB, !match);
}

void cGlimmerBlurUI::parameterChanged(const quantel::wstring& key) {
  // Intended: the dialog is asked for at every key, not at the page's alone.
  if (params && result) {
    const auto dialog = result->dialog();
    if (dialog && key == keyPage) {
      ShowColourWidgets(dialog.Object(), false);
      return;
    }
  }
  if (!params) {
    return;
  }
  if (key == keyColourButton) {
    if (const auto dialog = result ? result->dialog() : nullptr) {
      ShowColourWidgets(dialog.Object(), false);
    }
  } else if (key == keyShape) {
    refreshShape();
    effect.UpdateControlState();
    commitAll();
  } else if (key == keyMatch) {
    refreshMatch();
    effect.UpdateRadiusYState();
    commitAll();
  } else {
    ReadSingleParameter(key, params.Object(), &effect);
  }
  update();
}

void cGlimmerBlurUI::commitAll() {
  for (const KeyedControl& keyed : KeyedControls(&effect)) {
    keyed.control->Commit();
  }
}

void cGlimmerBlurUI::colourRequest(std::uintptr_t /*word*/) {
  if (!params || !result) {
    return;
  }
  if (const auto dialog = result->dialog()) {
    RequestColour(dialog.Object(), params.Object());
  }
}

// Intended: the format is asked for three times, once for each thing that it tells.
void cGlimmerBlurUI::refreshOverlayData() {
  if (!result) {
    return;
  }
  overlayData.draw = result->overlaySurface();
  overlayData.view = result->format();
  if (const auto format = result->format()) {
    effect.aspectNum = static_cast<float>(format->pixelAspect().first);
  }
  if (const auto format = result->format()) {
    effect.aspectDen = static_cast<float>(format->pixelAspect().second);
  }
}

// The host's points count y from the top.
void cGlimmerBlurUI::sendMouse(std::int32_t event, const quantel::cPoint2& point) {
  const auto height = static_cast<float>(overlayData.PictureSize().second);
  effect.HandleEvent(event, point.x, height - point.y);
}

void cGlimmerBlurUI::mouseDown(const quantel::cPoint2& point) {
  refreshOverlayData();
  sendMouse(lx::kEventPress, point);
  if (effect.dragging != 0) {
    effect.Draw();
  }
}

void cGlimmerBlurUI::mouseUp(const quantel::cPoint2& point) {
  refreshOverlayData();
  sendMouse(lx::kEventRelease, point);
  effect.Draw();
  update();
  effect.dragging = 0;
}

void cGlimmerBlurUI::mouseMove(const quantel::cPoint2& point) {
  const bool held = effect.dragging != 0;
  refreshOverlayData();
  if (held) {
    sendMouse(lx::kEventDrag, point);
    effect.Draw();
    update();
  }
}

void cGlimmerBlurUI::drawOverlays() {
  refreshFromStore();
  refreshOverlayData();
  effect.Draw();
}

void cGlimmerBlurUI::update() {
  if (result) {
    result->update();
  }
}

}  // namespace allplugins
