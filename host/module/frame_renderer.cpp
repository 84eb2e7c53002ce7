// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/frame_renderer.h"

#include <utility>

#include "host/looks/foresight.h"
#include "host/looks/keys.h"
#include "host/module/frame_checks.h"
#include "host/module/parameter_store.h"

namespace glimmerhost {
namespace {

bool Same(quantel::cSize2 a, quantel::cSize2 b) {
  return a.first == b.first && a.second == b.second;
}

}  // namespace

std::map<std::string, Value> ApertureValues(std::map<std::string, Value> values) {
  std::erase_if(values, [](const auto& value) { return !ShapesAperture(value.first); });
  return values;
}

FrameRenderer::Aperture FrameRenderer::ApertureOf(const FrameInput& input) {
  return {ApertureValues(input.values), input.source->size(), input.pixelAspect};
}

bool FrameRenderer::MayKeep(const Aperture& now) const {
  if (!render_ || carryPsf_) {
    return static_cast<bool>(render_);
  }
  // The image shape is built from pixels, and equal values say nothing of these.
  return ShapeOf(now.values) != Shape::kImage && now.values == before_.values &&
         Same(now.size, before_.size) && Same(now.pixelAspect, before_.pixelAspect);
}

std::uint64_t FrameRenderer::HeldBytes() const {
  return render_
             ? Foresee(module_.Engine(), before_.values, before_.size.first, before_.size.second)
                   .effectBytes
             : 0;
}

quantel::cPtr<FrameImage> FrameRenderer::Render(const FrameInput& input) {
  const quantel::cSize2 size = input.source->size();
  const quantel::cPtr<FrameImage> output(new FrameImage(size.first, size.second));
  const quantel::cPtr<FrameFormat> format(new FrameFormat(input.pixelAspect, size));
  try {
    Trace* trace = module_.GetTrace();
    Aperture now = ApertureOf(input);
    if (!MayKeep(now)) {
      render_.Reset();
      render_ = module_.MakeRender();
    }
    before_ = std::move(now);
    const quantel::cPtr<qplugin::iQpluginTarget> target(new Target(output, format));
    TraceToModule(trace, "render.setTarget(target)");
    render_->setTarget(Traced(target, trace));
    const quantel::cPtr<qplugin::iQpluginInputs> inputs(new Inputs(input.source, input.spread));
    TraceToModule(trace, "render.setInputs(inputs)");
    render_->setInputs(Traced(inputs, trace));
    const quantel::cPtr<qplugin::iQpluginParams> store(new ParameterStore(input.values));
    TraceToModule(trace, "render.setParams(store)");
    render_->setParams(Traced(store, trace));
    TraceToModule(trace, "render.renderFrame(", input.frame, ", 0, 0)");
    render_->renderFrame(input.frame, 0, 0);
    // Without the memory for one frame it may lack something for all that it keeps its aperture
    // for. One that has to carry its aperture on cannot be replaced.
    if (!carryPsf_ && !IsWorkedOn(input, output.Object())) {
      render_.Reset();
    }
  } catch (...) {
    render_.Reset();
    RethrowModuleFault();
  }
  return output;
}

void RenderPicture(const EffectModule& module, const std::map<std::string, Value>& values,
                   const quantel::cPtr<FrameImage>& spread, quantel::cSize2 pixelAspect,
                   Picture* picture) {
  FrameRenderer renderer(module, false);
  const FrameInput input{1, values, quantel::cPtr<FrameImage>(new FrameImage(*picture)), spread,
                         pixelAspect};
  const quantel::cPtr<FrameImage> result = renderer.Render(input);
  // An aperture that holds nothing leaves the picture as it passes the border.
  (void)CheckRendered(input, result.Object());
  result->CopyTo(picture);
}

}  // namespace glimmerhost
