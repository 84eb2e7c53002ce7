// SPDX-License-Identifier: BSD-3-Clause
#include "tests/doors/openfx/ofx_picture.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <stdexcept>

namespace lx_test {
namespace {

// Behind each row, so that a stride is not a row's length.
constexpr int kGap = 12;

void CheckLibrary(glimmerblur* object, glimmerblur_status status) {
  if (status != GLIMMERBLUR_OK) {
    const std::string text =
        object != nullptr ? glimmerblur_message(object) : glimmerblur_status_text(status);
    glimmerblur_destroy(object);
    throw std::runtime_error(text);
  }
}

glimmerblur_frame FrameOf(const OfxPicture& picture, std::vector<unsigned char>* samples) {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {0, 0, picture.Bounds().x2 - picture.Bounds().x1,
                picture.Bounds().y2 - picture.Bounds().y1};
  frame.sample = picture.SampleDepth() == Depth::kByte    ? GLIMMERBLUR_U8
                 : picture.SampleDepth() == Depth::kShort ? GLIMMERBLUR_U16
                                                          : GLIMMERBLUR_FLOAT;
  frame.layout = picture.Channels() == 4 ? GLIMMERBLUR_RGBA : GLIMMERBLUR_PLANES;
  frame.channels = picture.Channels();
  frame.data = samples->data();
  return frame;
}

}  // namespace

OfxPicture::OfxPicture(const ofx::RectI& bounds, Depth depth, int channels, Rows rows)
    : bounds_(bounds), depth_(depth), channels_(channels) {
  const int width = bounds.x2 - bounds.x1;
  const int height = bounds.y2 - bounds.y1;
  const int stride = width * channels * SampleBytes() + kGap;
  bytes_.assign(static_cast<std::size_t>(stride) * height, 0xA5);
  const bool upwards = rows == Rows::kUpwards;
  rowBytes_ = upwards ? stride : -stride;
  lowerLeft_ = upwards ? 0 : static_cast<std::ptrdiff_t>(stride) * (height - 1);
}

int OfxPicture::SampleBytes() const {
  return depth_ == Depth::kByte ? 1 : depth_ == Depth::kShort ? 2 : 4;
}

void* OfxPicture::LowerLeft() { return bytes_.data() + lowerLeft_; }

const unsigned char* OfxPicture::At(int x, int y, int channel) const {
  return bytes_.data() + lowerLeft_ + std::ptrdiff_t{rowBytes_} * (y - bounds_.y1) +
         std::ptrdiff_t{SampleBytes()} * (channels_ * (x - bounds_.x1) + channel);
}

double OfxPicture::Get(int x, int y, int channel) const {
  const unsigned char* at = At(x, y, channel);
  if (depth_ == Depth::kByte) {
    return *at / 255.0;
  }
  if (depth_ == Depth::kShort) {
    std::uint16_t sample = 0;
    std::memcpy(&sample, at, sizeof(sample));
    return sample / 65535.0;
  }
  float sample = 0.0F;
  std::memcpy(&sample, at, sizeof(sample));
  return sample;
}

void OfxPicture::Set(int x, int y, int channel, double value) {
  auto* at = const_cast<unsigned char*>(At(x, y, channel));
  if (depth_ == Depth::kByte) {
    *at = static_cast<unsigned char>(std::lround(value * 255.0));
  } else if (depth_ == Depth::kShort) {
    const auto sample = static_cast<std::uint16_t>(std::lround(value * 65535.0));
    std::memcpy(at, &sample, sizeof(sample));
  } else {
    const auto sample = static_cast<float>(value);
    std::memcpy(at, &sample, sizeof(sample));
  }
}

void OfxPicture::FillWithNoise(unsigned int seed) {
  std::mt19937 random(seed);
  const auto upTo1 = [&random] { return static_cast<double>(random()) / 4294967296.0; };
  for (int y = bounds_.y1; y < bounds_.y2; ++y) {
    for (int x = bounds_.x1; x < bounds_.x2; ++x) {
      const double alpha = 0.5 + 0.5 * upTo1();
      const bool bright = random() % 97 == 0;
      for (int c = 0; c < channels_; ++c) {
        const bool isAlpha = c == 3 || channels_ == 1;
        Set(x, y, c, isAlpha ? alpha : alpha * (bright ? 1.0 : 0.25 * upTo1()));
      }
    }
  }
}

void OfxPicture::Fill(double value) {
  for (int y = bounds_.y1; y < bounds_.y2; ++y) {
    for (int x = bounds_.x1; x < bounds_.x2; ++x) {
      for (int c = 0; c < channels_; ++c) {
        Set(x, y, c, value);
      }
    }
  }
}

const char* OfxPicture::DepthName() const {
  return depth_ == Depth::kByte    ? "OfxBitDepthByte"
         : depth_ == Depth::kShort ? "OfxBitDepthShort"
                                   : "OfxBitDepthFloat";
}

const char* OfxPicture::ComponentsName() const {
  return channels_ == 4 ? "OfxImageComponentRGBA" : "OfxImageComponentAlpha";
}

std::vector<unsigned char> OfxPicture::TopRowFirst() const {
  const std::ptrdiff_t length = std::ptrdiff_t{bounds_.x2 - bounds_.x1} * channels_ * SampleBytes();
  std::vector<unsigned char> samples;
  for (int y = bounds_.y2 - 1; y >= bounds_.y1; --y) {
    const unsigned char* row = At(bounds_.x1, y, 0);
    samples.insert(samples.end(), row, row + length);
  }
  return samples;
}

std::vector<unsigned char> BlurredByLibrary(const OfxPicture& picture, const glimmerblur_look& look,
                                            glimmerblur_alpha alpha, const OfxPicture* aperture) {
  std::vector<unsigned char> samples = picture.TopRowFirst();
  glimmerblur_frame frame = FrameOf(picture, &samples);
  frame.alpha = alpha;
  glimmerblur* object = nullptr;
  CheckLibrary(object, glimmerblur_create(nullptr, &object));
  CheckLibrary(object, glimmerblur_set_look(object, &look));
  if (aperture != nullptr) {
    std::vector<unsigned char> apertureSamples = aperture->TopRowFirst();
    const glimmerblur_frame apertureFrame = FrameOf(*aperture, &apertureSamples);
    CheckLibrary(object, glimmerblur_set_aperture(object, &apertureFrame, 0.0, 0.0, -1.0, -1.0));
  }
  CheckLibrary(object, glimmerblur_render(object, &frame, &frame, nullptr));
  glimmerblur_destroy(object);
  return samples;
}

}  // namespace lx_test
