// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/image.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace lx::openfx {
namespace {

constexpr double kSameScale = 1e-6;

int SampleOf(const std::string& depth) {
  if (depth == ofx::kBitDepthByte) {
    return GLIMMERBLUR_U8;
  }
  if (depth == ofx::kBitDepthShort) {
    return GLIMMERBLUR_U16;
  }
  if (depth == ofx::kBitDepthFloat) {
    return GLIMMERBLUR_FLOAT;
  }
  throw Failure{ofx::kErrImageFormat, "An image has samples of an unknown depth: " + depth + "."};
}

int ChannelsOf(const std::string& components) {
  if (components == ofx::kImageComponentRgba) {
    return 4;
  }
  if (components == ofx::kImageComponentAlpha) {
    return 1;
  }
  throw Failure{ofx::kErrImageFormat, "An image has unknown components: " + components + "."};
}

}  // namespace

std::size_t PixelKind::SampleBytes() const {
  switch (sample) {
    case GLIMMERBLUR_U8:
      return 1;
    case GLIMMERBLUR_U16:
      return 2;
    default:
      return 4;
  }
}

std::size_t PixelKind::PixelBytes() const {
  return SampleBytes() * static_cast<std::size_t>(channels);
}

Image::Image(ofx::ImageClip* clip, ofx::Time time, const ofx::PointD& scale) {
  const ofx::Status status = HostSuites().effects->clipGetImage(clip, time, nullptr, &image_);
  if (status == ofx::kFailed) {
    image_ = nullptr;
    return;
  }
  if (status != ofx::kOk) {
    image_ = nullptr;
    Check(status);
  }
  if (image_ == nullptr) {
    return;
  }
  try {
    Read(scale);
  } catch (...) {
    HostSuites().effects->clipReleaseImage(image_);
    throw;
  }
}

Image::~Image() {
  if (image_ != nullptr) {
    HostSuites().effects->clipReleaseImage(image_);
  }
}

void Image::Release() {
  if (image_ != nullptr) {
    ofx::PropertySet* image = image_;
    image_ = nullptr;
    Check(HostSuites().effects->clipReleaseImage(image));
  }
}

void Image::Read(const ofx::PointD& scale) {
  const Properties properties(image_);
  for (int i = 0; i < 2; ++i) {
    const double wanted = i == 0 ? scale.x : scale.y;
    const double given = properties.DoubleOr(ofx::kImageEffectPropRenderScale, i, wanted);
    if (!(std::abs(given - wanted) <= kSameScale)) {
      throw Failure{ofx::kFailed, "The host gave an image of another scale than it asked for."};
    }
  }
  kind_.sample = SampleOf(properties.String(ofx::kImageEffectPropPixelDepth));
  kind_.channels = ChannelsOf(properties.String(ofx::kImageEffectPropComponents));
  bounds_ = properties.RectI(ofx::kImagePropBounds);
  rowBytes_ = properties.Int(ofx::kImagePropRowBytes);
  data_ = static_cast<unsigned char*>(properties.Pointer(ofx::kImagePropData));
  if (data_ == nullptr || IsEmpty(bounds_)) {
    throw Failure{ofx::kFailed, "The host gave an image without pixels."};
  }
}

unsigned char* Image::At(int x, int y) const {
  const auto column = static_cast<std::ptrdiff_t>(x) - bounds_.x1;
  const auto row = static_cast<std::ptrdiff_t>(y) - bounds_.y1;
  return data_ + row * rowBytes_ + column * static_cast<std::ptrdiff_t>(kind_.PixelBytes());
}

glimmerblur_frame Image::Frame(const ofx::RectI& part) const {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {part.x1, part.y1, part.x2 - part.x1, part.y2 - part.y1};
  frame.sample = kind_.sample;
  frame.layout = kind_.channels == 1 ? GLIMMERBLUR_PLANES : GLIMMERBLUR_RGBA;
  frame.channels = kind_.channels;
  frame.first_row = GLIMMERBLUR_BOTTOM;
  frame.data = At(part.x1, part.y1);
  frame.row_stride = rowBytes_;
  return frame;
}

void Image::Clear(const ofx::RectI& part) const {
  if (IsEmpty(part)) {
    return;
  }
  const std::size_t bytes = static_cast<std::size_t>(part.x2 - part.x1) * kind_.PixelBytes();
  for (int y = part.y1; y < part.y2; ++y) {
    std::memset(At(part.x1, y), 0, bytes);
  }
}

bool IsEmpty(const ofx::RectI& rect) { return rect.x1 >= rect.x2 || rect.y1 >= rect.y2; }

ofx::RectI Intersection(const ofx::RectI& a, const ofx::RectI& b) {
  return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

}  // namespace lx::openfx
