// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/float_renderer.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <variant>

#include "host/looks/keys.h"
#include "host/support/failure.h"
#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {
namespace {

double Number(const FrameInput& input, const char* key) {
  return std::get<double>(input.values.at(key));
}

// A radius of the store is a diameter as a part of the picture's width.
double Pixels(const FrameInput& input, const char* key, int width) {
  return Number(input, key) * width * 0.5;
}

// The library's range is narrower than the module's, and a file may say anything.
double PixelAspect(const quantel::cSize2& ratio) {
  constexpr double kMost = 100.0;
  const double aspect = static_cast<double>(ratio.first) / ratio.second;
  if (!(aspect >= 1.0 / kMost && aspect <= kMost)) {
    throw Failure("a pixel aspect of " + std::to_string(ratio.first) + ":" +
                  std::to_string(ratio.second) +
                  " cannot be rendered in floats, where 1:100 to 100:1 can: --pixel-aspect gives "
                  "another, and --precision 16 takes any");
  }
  return aspect;
}

glimmerblur_look LookOf(const FrameInput& input, const Picture& picture, bool centred) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  const Shape shape = ShapeOf(input.values);
  const bool ownY = shape == Shape::kEllipse ||
                    (shape == Shape::kPolygon && !std::get<bool>(input.values.at(kMatchKey)));
  look.shape = shape == Shape::kCircle    ? GLIMMERBLUR_CIRCLE
               : shape == Shape::kEllipse ? GLIMMERBLUR_ELLIPSE
               : shape == Shape::kPolygon ? GLIMMERBLUR_POLYGON
                                          : GLIMMERBLUR_PICTURE;
  look.radius_x = Pixels(input, kRadiusXKey, picture.width);
  look.radius_y = ownY ? Pixels(input, kRadiusYKey, picture.width) : look.radius_x;
  look.rotation = Number(input, kRotationKey);
  look.sides = static_cast<std::int32_t>(Number(input, kSidesKey));
  look.pixel_aspect = PixelAspect(input.pixelAspect);
  look.emphasis = Number(input, kEmphasisKey);
  look.emphasis_alpha = std::get<bool>(input.values.at(kEmphAlphaKey)) ? 1 : 0;
  look.centred = centred ? 1 : 0;
  return look;
}

glimmerblur_frame FrameOf(int width, int height, void* samples) {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {0, 0, width, height};
  frame.data = samples;
  return frame;
}

}  // namespace

void FloatRenderer::Make() {
  if (object_ == nullptr) {
    glimmerblur* made = nullptr;
    const glimmerblur_status status = glimmerblur_create(nullptr, &made);
    if (status != GLIMMERBLUR_OK) {
      throw Failure(std::string("the effect in floats cannot be had: ") +
                    glimmerblur_status_text(status));
    }
    object_.reset(made);
  }
}

void FloatRenderer::Check(glimmerblur_status status) const {
  if (status != GLIMMERBLUR_OK) {
    throw Failure(std::string("the effect in floats: ") + glimmerblur_message(object_.get()));
  }
}

// The spread as the border has it: its red is the third sample of a pixel.
void FloatRenderer::SetAperture(const FrameInput& input) {
  const auto [width, height] = input.spread->size();
  glimmerblur_frame frame = FrameOf(width, height, input.spread->buffer() + 2);
  frame.sample = GLIMMERBLUR_U16;
  frame.layout = GLIMMERBLUR_PLANES;
  frame.channels = 1;
  frame.pixel_stride = 4 * sizeof(std::uint16_t);
  // The module takes the pixel that the centre, as a number of it, is nearest to.
  const double x = std::floor(Number(input, kCenterXKey) * width + 0.5) + 0.5;
  const double y = std::floor(Number(input, kCenterYKey) * height + 0.5) + 0.5;
  Check(glimmerblur_set_aperture(object_.get(), &frame, x, height - y,
                                 Pixels(input, kRadiusPsf1Key, width),
                                 Pixels(input, kRadiusPsf2Key, width)));
}

std::vector<float> FloatRenderer::Render(const FrameInput& input, const Picture& picture) {
  Make();
  const glimmerblur_look look = LookOf(input, picture, centred_);
  Check(glimmerblur_set_look(object_.get(), &look));
  if (look.shape == GLIMMERBLUR_PICTURE) {
    SetAperture(input);
  }
  std::vector<float> result(picture.floats.size());
  // The library only reads the one of the two.
  const glimmerblur_frame from =
      FrameOf(picture.width, picture.height, const_cast<float*>(picture.floats.data()));
  const glimmerblur_frame to = FrameOf(picture.width, picture.height, result.data());
  Check(glimmerblur_render(object_.get(), &from, &to, nullptr));
  return result;
}

}  // namespace glimmerhost
