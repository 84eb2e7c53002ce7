// SPDX-License-Identifier: BSD-3-Clause
#include "doors/frei0r/plugin.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace glimmerblur_frei0r {

std::unique_ptr<Instance> Instance::Make(unsigned int width, unsigned int height,
                                         std::span<const Parameter> parameters) {
  constexpr unsigned int kMost = std::numeric_limits<std::int32_t>::max();
  if (width == 0 || height == 0 || width > kMost || height > kMost) {
    return nullptr;
  }
  std::unique_ptr<Instance> instance(new (std::nothrow) Instance);
  glimmerblur* object = nullptr;
  if (instance == nullptr || glimmerblur_create(nullptr, &object) != GLIMMERBLUR_OK) {
    return nullptr;
  }
  instance->object_.reset(object);
  instance->width_ = static_cast<std::int32_t>(width);
  instance->height_ = static_cast<std::int32_t>(height);
  for (const Parameter& parameter : parameters) {
    instance->values_.push_back(parameter.initial);
  }
  return instance;
}

void Instance::Set(int parameter, double value) {
  if (parameter < 0 || static_cast<std::size_t>(parameter) >= values_.size() || std::isnan(value)) {
    return;
  }
  values_[static_cast<std::size_t>(parameter)] = std::clamp(value, 0.0, 1.0);
}

double Instance::Get(int parameter) const {
  if (parameter < 0 || static_cast<std::size_t>(parameter) >= values_.size()) {
    return 0.0;
  }
  return values_[static_cast<std::size_t>(parameter)];
}

std::size_t Instance::PixelCount() const {
  return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
}

glimmerblur_frame Instance::Frame(const std::uint32_t* pixels) const {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect.width = width_;
  frame.rect.height = height_;
  frame.sample = GLIMMERBLUR_U8;
  frame.channels = 4;
  // The library writes into destinations alone.
  frame.data = const_cast<std::uint32_t*>(pixels);
  return frame;
}

bool Instance::SetAperture(const std::uint32_t* frame, double centreX, double centreY, double inner,
                           double outer) {
  if (frame != nullptr && aperture_ != nullptr && aperture_->centreX == centreX &&
      aperture_->centreY == centreY && aperture_->inner == inner && aperture_->outer == outer &&
      std::equal(aperture_->pixels.begin(), aperture_->pixels.end(), frame)) {
    return true;
  }
  // Not remembered before the library has it: what fails is tried again with the next frame.
  aperture_.reset();
  if (frame == nullptr) {
    return glimmerblur_set_aperture(object_.get(), nullptr, 0.0, 0.0, 0.0, 0.0) == GLIMMERBLUR_OK;
  }
  const glimmerblur_frame picture = Frame(frame);
  if (glimmerblur_set_aperture(object_.get(), &picture, centreX, centreY, inner, outer) !=
      GLIMMERBLUR_OK) {
    return false;
  }
  aperture_ = std::make_unique<Aperture>(
      Aperture{centreX, centreY, inner, outer, {frame, frame + PixelCount()}});
  return true;
}

void Instance::Render(const glimmerblur_look& look, bool isPremultiplied, const std::uint32_t* in,
                      std::uint32_t* out) {
  glimmerblur_frame source = Frame(in);
  source.alpha = isPremultiplied ? GLIMMERBLUR_PREMULTIPLIED : GLIMMERBLUR_STRAIGHT;
  glimmerblur_frame destination = source;
  destination.data = out;
  if (glimmerblur_set_look(object_.get(), &look) != GLIMMERBLUR_OK ||
      glimmerblur_render(object_.get(), &source, &destination, nullptr) != GLIMMERBLUR_OK) {
    Leave(in, out);
  }
}

void Instance::Leave(const std::uint32_t* in, std::uint32_t* out) {
  if (!hasComplained_) {
    hasComplained_ = true;
    std::fprintf(stderr, "%s: a frame stays as it is: %s\n", kPlugin.name,
                 glimmerblur_message(object_.get()));
  }
  std::memmove(out, in, PixelCount() * sizeof(std::uint32_t));
}

}  // namespace glimmerblur_frei0r
