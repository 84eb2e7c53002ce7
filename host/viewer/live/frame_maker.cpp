// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/live/frame_maker.h"

#include <vector>

#include "host/looks/keys.h"
#include "host/module/frame_checks.h"
#include "host/module/second_clip.h"
#include "host/render/frame_result.h"

namespace glimmerhost {
namespace {

// A picture of the same size and kind, whose samples are only there where some of them are seen.
Picture CanvasOf(const Picture& picture, bool needsSamples) {
  Picture canvas;
  canvas.width = picture.width;
  canvas.height = picture.height;
  canvas.alpha = picture.alpha;
  canvas.grey = picture.grey;
  canvas.bits = picture.bits;
  canvas.pixelAspect = picture.pixelAspect;
  if (needsSamples) {
    canvas.samples = picture.samples;
    canvas.floats = picture.floats;
  }
  return canvas;
}

}  // namespace

std::shared_ptr<const Picture> FrameMaker::Make(const LoadedFrame& frame,
                                                const std::map<std::string, Value>& values,
                                                double mix) {
  const Picture& picture = *frame.picture;
  CheckGrid(engine_, values, picture.width, picture.height,
            picture.IsFloat() ? 0 : renderer_.HeldBytes());
  FrameInput input{frame.frame, values, frame.source, frame.spread, frame.pixelAspect};
  const SeenPart seen{mix, nullptr};
  if (!picture.IsFloat()) {
    const quantel::cPtr<FrameImage> result = renderer_.Render(input);
    auto made = std::make_shared<Picture>(CanvasOf(picture, mix < 1.0));
    return TakeWords(input, result.Object(), seen, made.get()) ? made : frame.picture;
  }
  if (!input.spread && ShapeOf(values) == Shape::kImage) {
    input.spread = SpreadOfItself(picture);
  }
  std::vector<float> result = floatRenderer_.Render(input, picture);
  if (StayedAsItWas(input, picture, result)) {
    return frame.picture;
  }
  auto made = std::make_shared<Picture>(CanvasOf(picture, mix < 1.0));
  TakeSeenFloats(&result, seen, made.get());
  return made;
}

}  // namespace glimmerhost
