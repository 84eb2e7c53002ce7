// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/render_adapter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "hostframe/clip_connections.h"
#include "hostframe/store_reading.h"
#include "library/host_exchange.h"
#include "library/lx_image.h"

namespace allplugins {
namespace {

// What the host's operations ask for.
constexpr int kFrameForm = 3;

quantel::cSize2 SizeOf(const quantel::cPtr<qplugin::iQpluginImage>& frame) {
  return frame ? frame->size() : quantel::cSize2{0, 0};
}

// An output image of the frame's size, black and transparent: whatever keeps a frame from
// being rendered must not hand the host what the heap held before. Null without memory.
lx::LXImage* MakeOutputImage(quantel::cSize2 size) {
  lx::LXImage* image = lx::LXImage::Make(size.first, size.second);
  if (image != nullptr) {
    for (std::int32_t y = 0; y < image->height; ++y) {
      std::fill_n(image->rows[y], static_cast<std::size_t>(image->width) * 4, std::uint16_t{0});
    }
  }
  return image;
}

void DeleteImage(lx::ImagePort* port) {
  delete port->image;
  port->image = nullptr;
}

}  // namespace

cGlimmerBlurRender::cGlimmerBlurRender() { effect.zoom = 1.0F; }

quantel::cPtr<quantel::iFactory::iClassInfo> cGlimmerBlurRender::classInfo() {
  return quantel::cClassInfo<cGlimmerBlurRender>::Make();
}

quantel::cGuid cGlimmerBlurRender::renderGuid() { return renderClassGuid; }

void cGlimmerBlurRender::setTarget(quantel::cPtr<qplugin::iQpluginTarget> newTarget) {
  target = newTarget;
  if (target) {
    effect.sourcePort.targetHandle = &target;
    effect.spreadPort.targetHandle = &target;
  }
  newTarget.Reset();
}

void cGlimmerBlurRender::setInputs(quantel::cPtr<qplugin::iQpluginInputs> inputs) {
  ConnectClips(inputs, &sourceClip, &spreadClip, &effect);
  inputs.Reset();
}

// Parameters are read at each frame, not here.
void cGlimmerBlurRender::setParams(quantel::cPtr<qplugin::iQpluginParams> newParams) {
  params = newParams;
  newParams.Reset();
}

void cGlimmerBlurRender::preRender(std::uintptr_t /*word1*/, std::uintptr_t /*word2*/) {}

quantel::cPtr<qplugin::iQpluginImage> cGlimmerBlurRender::fetchFrame(
    const quantel::cPtr<qplugin::iQpluginSource>& clip, int frame, bool* hasFormat) {
  const quantel::cPtr<qplugin::iQpluginFormat> format = target->format();
  *hasFormat = static_cast<bool>(format);
  if (!format) {
    return {};
  }
  return clip->frame(frame, format->descriptor(), kFrameForm);
}

// Parameters first, then connections; the output image takes the source frame's size; the
// spread image is converted last. Hosts see that order.
// Intended: exceptions of the host pass from anywhere here, and leave in the ports the
// images that the call had made by then.
void cGlimmerBlurRender::renderFrame(int frame, std::uintptr_t /*word1*/,
                                     std::uintptr_t /*word2*/) {
  effect.renderOwner = this;
  readParameters();
  if (!sourceClip || !target || !params) {
    return;
  }
  bool hasFormat = false;
  quantel::cPtr<qplugin::iQpluginImage> sourceFrame = fetchFrame(sourceClip, frame, &hasFormat);
  if (!hasFormat) {
    return;
  }
  quantel::cPtr<qplugin::iQpluginImage> outputFrame = target->outputFrame(kFrameForm);
  effect.frameTime = static_cast<double>(frame) - 1.0;

  effect.sourcePort.clip = &sourceClip;
  effect.sourcePort.image = lx::ConvertFromQTL(sourceFrame, nullptr);
  effect.sourcePort.frame = frame;

  effect.outputPort.image = MakeOutputImage(SizeOf(sourceFrame));
  effect.outputPort.frame = frame;
  setPixelAspect();
  convertSpreadFrame(sourceFrame, frame);

  if (effect.sourcePort.image != nullptr) {
    if (effect.outputPort.image != nullptr) {
      renderTo(outputFrame);
      DeleteImage(&effect.outputPort);
    }
    DeleteImage(&effect.sourcePort);
  }
  // Intended: without a source image the output image stays where it is, and the next
  // frame's takes its place.
  DeleteImage(&effect.spreadPort);
  outputFrame.Reset();
  sourceFrame.Reset();
}

void cGlimmerBlurRender::setPixelAspect() {
  const quantel::cPtr<qplugin::iQpluginFormat> format = target->format();
  const quantel::cSize2 ratio = format ? format->pixelAspect() : quantel::cSize2{1, 1};
  effect.aspectNum = static_cast<float>(ratio.first);
  effect.aspectDen = static_cast<float>(ratio.second);
  if (effect.outputPort.image != nullptr) {
    effect.outputPort.image->aspectX = static_cast<double>(ratio.first) / ratio.second;
    effect.outputPort.image->aspectY = 1.0;
  }
}

// Without a second clip the source frame is converted again, into a copy of its own.
void cGlimmerBlurRender::convertSpreadFrame(
    const quantel::cPtr<qplugin::iQpluginImage>& sourceFrame, int frame) {
  const bool own = static_cast<bool>(spreadClip);
  bool hasFormat = false;
  effect.spreadPort.image =
      lx::ConvertFromQTL(own ? fetchFrame(spreadClip, frame, &hasFormat) : sourceFrame, nullptr);
  effect.spreadPort.frame = frame;
  effect.spreadPort.clip = own ? &spreadClip : &sourceClip;
}

// Renders and writes back, unless the host's frame is of another size: the write-back
// takes its size from the image and would run over a smaller frame.
void cGlimmerBlurRender::renderTo(const quantel::cPtr<qplugin::iQpluginImage>& outputFrame) {
  const lx::LXImage* image = effect.outputPort.image;
  const quantel::cSize2 size = SizeOf(outputFrame);
  if (!outputFrame || size.first != image->width || size.second != image->height) {
    return;
  }
  effect.RenderFrame();
  lx::ConvertToQTL(image, outputFrame);
}

void cGlimmerBlurRender::readParameters() {
  if (params) {
    effect.shape.value = ReadShape(params.Object());
    effect.match.value = ReadMatch(params.Object());
    ReadSingleParameters(params.Object(), &effect);
  }
}

}  // namespace allplugins
