// SPDX-License-Identifier: BSD-3-Clause
// cGlimmerBlurRender: the class that a host makes to render pictures.
#pragma once

#include <cstdint>
#include <string_view>

#include "effect/glimmer_blur.h"
#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/module_statics.h"

namespace allplugins {

class cGlimmerBlurRender final : public qplugin::iQpluginRender,
                                 public qplugin::iQpluginPreRender,
                                 public quantel::cRefCount {
 public:
  cGlimmerBlurRender();
  ~cGlimmerBlurRender() override = default;

  quantel::cPtr<quantel::iFactory::iClassInfo> classInfo() override;
  quantel::cGuid renderGuid() override;
  void setTarget(quantel::cPtr<qplugin::iQpluginTarget> newTarget) override;
  void setInputs(quantel::cPtr<qplugin::iQpluginInputs> inputs) override;
  void setParams(quantel::cPtr<qplugin::iQpluginParams> newParams) override;
  void renderFrame(int frame, std::uintptr_t word1, std::uintptr_t word2) override;

  void preRender(std::uintptr_t word1, std::uintptr_t word2) override;

  // In this order: destruction lets go of target, params, spreadClip and sourceClip, then
  // of the effect.
  lx::GlimmerBlur effect;
  quantel::cPtr<qplugin::iQpluginSource> sourceClip;
  quantel::cPtr<qplugin::iQpluginSource> spreadClip;
  quantel::cPtr<qplugin::iQpluginParams> params;
  quantel::cPtr<qplugin::iQpluginTarget> target;

 private:
  void readParameters();
  quantel::cPtr<qplugin::iQpluginImage> fetchFrame(
      const quantel::cPtr<qplugin::iQpluginSource>& clip, int frame, bool* hasFormat);
  void setPixelAspect();
  void convertSpreadFrame(const quantel::cPtr<qplugin::iQpluginImage>& sourceFrame, int frame);
  void renderTo(const quantel::cPtr<qplugin::iQpluginImage>& outputFrame);
};

}  // namespace allplugins

template <>
struct quantel::ClassDescription<allplugins::cGlimmerBlurRender> {
  using Base = qplugin::iQpluginRender;
  static constexpr std::string_view kName = "cGlimmerBlurRender";
  static constexpr std::uint32_t kCreateWithLine = 100;
  static cGuid Guid() { return allplugins::renderClassGuid; }
};
