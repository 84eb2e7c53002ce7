#include "host/glimmerhost/border_pictures.h"

#include <cstddef>

namespace glimmerhost {
namespace {

// This host's frames have one form only, so there is nothing to describe.
class Descriptor final : public qplugin::iQpluginDescriptor, public quantel::cRefCount {};

std::size_t SampleCount(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
}

}  // namespace

FrameImage::FrameImage(int width, int height)
    : size_{width, height}, samples_(SampleCount(width, height)) {}

FrameImage::FrameImage(const Picture& picture) : FrameImage(picture.width, picture.height) {
  for (std::size_t i = 0; i + 3 < samples_.size(); i += 4) {
    samples_[i] = picture.samples[i + 2];
    samples_[i + 1] = picture.samples[i + 1];
    samples_[i + 2] = picture.samples[i];
    samples_[i + 3] = picture.samples[i + 3];
  }
}

void FrameImage::CopyTo(Picture* picture) const {
  picture->samples.resize(samples_.size());
  for (std::size_t i = 0; i + 3 < samples_.size(); i += 4) {
    picture->samples[i] = samples_[i + 2];
    picture->samples[i + 1] = samples_[i + 1];
    picture->samples[i + 2] = samples_[i];
    picture->samples[i + 3] = samples_[i + 3];
  }
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
  if (key == u"PRM_Spread") {
    return spread_;
  }
  return {};
}

}  // namespace glimmerhost
