// SPDX-License-Identifier: BSD-3-Clause
// cGlimmerBlurUI: the class that a host makes for the effect's page and on-screen work.
//
// It keeps the controls of its own effect object equal to the host's store, tells the page
// which of its parts belong to the shape, and turns the mouse into drags of the handles on
// the picture. It never renders. The store reaches the render instance; this one does not.
#pragma once

#include <cstdint>
#include <string_view>

#include "effect/glimmer_blur.h"
#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/plugin_ui.h"
#include "hostframe/module_statics.h"

namespace allplugins {

class cGlimmerBlurUI final : public qplugin::iQpluginUI,
                             public qplugin::iQpluginUI4,
                             public quantel::cRefCount {
 public:
  cGlimmerBlurUI();
  ~cGlimmerBlurUI() override = default;

  quantel::cPtr<quantel::iFactory::iClassInfo> classInfo() override;
  quantel::cGuid uiGuid() override;
  quantel::cGuid renderGuid() override;
  quantel::wstring moduleText() override;
  void setInputs(quantel::cPtr<qplugin::iQpluginInputs> inputs) override;
  void setParams(quantel::cPtr<qplugin::iQpluginParams> newParams) override;
  void setResult(quantel::cPtr<qplugin::iQpluginUIResult> newResult) override;
  void empty1() override {}
  void empty2() override {}
  void parameterChanged(const quantel::wstring& key) override;
  void mouseDown(const quantel::cPoint2& point) override;
  void mouseUp(const quantel::cPoint2& point) override;
  void mouseMove(const quantel::cPoint2& point) override;
  void empty3() override {}
  void drawOverlays() override;
  void empty4() override {}

  void colourRequest(std::uintptr_t word) override;
  void empty1(std::uintptr_t /*word*/) override {}
  void empty2(std::uintptr_t /*word*/) override {}
  void empty3(std::uintptr_t /*word*/) override {}
  void empty5() override {}

  // In this order: destruction lets go of result, params, spreadClip and sourceClip, of what
  // is drawn with, and then of the effect.
  lx::GlimmerBlur effect;
  lx::OverlayData overlayData;
  quantel::cPtr<qplugin::iQpluginSource> sourceClip;
  quantel::cPtr<qplugin::iQpluginSource> spreadClip;
  quantel::cPtr<qplugin::iQpluginParams> params;
  quantel::cPtr<qplugin::iQpluginUIResult> result;

 private:
  void joinControls();
  void joinOverlays();
  void refreshFromStore();
  void refreshShape();
  void refreshMatch();
  void commitAll();
  void refreshOverlayData();
  void sendMouse(std::int32_t event, const quantel::cPoint2& point);
  void update();
};

}  // namespace allplugins

template <>
struct quantel::ClassDescription<allplugins::cGlimmerBlurUI> {
  using Base = qplugin::iQpluginUI;
  static constexpr std::string_view kName = "cGlimmerBlurUI";
  static constexpr std::uint32_t kCreateWithLine = 41;
  static cGuid Guid() { return allplugins::uiClassGuid; }
};
