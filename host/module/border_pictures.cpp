// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/border_pictures.h"

#include <cstddef>
#include <new>

#include "host/looks/keys.h"

namespace glimmerhost {
namespace {

// This host's frames have one form only, so there is nothing to describe.
class Descriptor final : public qplugin::iQpluginDescriptor, public quantel::cRefCount {};

std::uint16_t* ZeroPixels(std::size_t count) {
  auto* const samples = static_cast<std::uint16_t*>(std::calloc(count, 4 * sizeof(std::uint16_t)));
  if (samples == nullptr && count > 0) {
    throw std::bad_alloc();
  }
  return samples;
}

// Between the order of pictures and that of the border, either way.
void ExchangeRedAndBlue(const std::uint16_t* from, std::size_t pixels, std::uint16_t* to) {
  for (std::size_t i = 0; i < pixels * 4; i += 4) {
    to[i] = from[i + 2];
    to[i + 1] = from[i + 1];
    to[i + 2] = from[i];
    to[i + 3] = from[i + 3];
  }
}

}  // namespace

FrameImage::FrameImage(int width, int height)
    : size_{width, height},
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      samples_(ZeroPixels(pixels_)) {}

FrameImage::FrameImage(const Picture& picture) : FrameImage(picture.width, picture.height) {
  ExchangeRedAndBlue(picture.samples.data(), pixels_, samples_.get());
}

void FrameImage::CopyTo(Picture* picture) const {
  picture->samples.resize(pixels_ * 4);
  ExchangeRedAndBlue(samples_.get(), pixels_, picture->samples.data());
}

quantel::cPtr<qplugin::iQpluginDescriptor> FrameFormat::descriptor() {
  return quantel::cPtr<qplugin::iQpluginDescriptor>(new Descriptor);
}

quantel::cPtr<qplugin::iQpluginImage> StillClip::frame(
    int /*frame*/, quantel::cPtr<qplugin::iQpluginDescriptor> descriptor, int /*three*/) {
  descriptor.Reset();
  return frame_;
}

Inputs::Inputs(const quantel::cPtr<FrameImage>& main, const quantel::cPtr<FrameImage>& spread)
    : main_(new StillClip(main)) {
  if (spread) {
    spread_ = quantel::cPtr<qplugin::iQpluginSource>(new StillClip(spread));
  }
}

quantel::cPtr<qplugin::iQpluginSource> Inputs::namedInput(const quantel::wstring& key) {
  if (key == kSpreadInput) {
    return spread_;
  }
  return {};
}

}  // namespace glimmerhost
