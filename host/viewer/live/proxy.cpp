// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/live/proxy.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/looks/foresight.h"

namespace glimmerhost {
namespace {

// How much of each source pixel along one side goes into a smaller one.
struct Span {
  std::size_t first;
  std::vector<float> weights;  // they add up to 1
};

std::vector<Span> SpansOf(int from, int to) {
  std::vector<Span> spans;
  const double step = static_cast<double>(from) / to;
  for (int i = 0; i < to; ++i) {
    const double begin = i * step;
    const double end = std::min((i + 1) * step, static_cast<double>(from));
    Span span{static_cast<std::size_t>(begin), {}};
    for (auto pixel = static_cast<int>(begin); pixel < end; ++pixel) {
      const double covered = std::min(pixel + 1.0, end) - std::max<double>(pixel, begin);
      span.weights.push_back(static_cast<float>(covered / (end - begin)));
    }
    spans.push_back(std::move(span));
  }
  return spans;
}

template <class Sample>
Sample Stored(float value) {
  if constexpr (std::is_same_v<Sample, float>) {
    return value;
  } else {
    return static_cast<Sample>(std::clamp(value + 0.5F, 0.0F, 65535.0F));
  }
}

// Four samples a pixel.
template <class Sample>
void Shrink(const Sample* from, int width, int height, ProxySize size, Sample* to) {
  const std::vector<Span> columns = SpansOf(width, size.width);
  const std::vector<Span> rows = SpansOf(height, size.height);
  const auto stride = static_cast<std::size_t>(width) * 4;
  std::vector<float> row(stride);
  for (const Span& span : rows) {
    std::fill(row.begin(), row.end(), 0.0F);
    for (std::size_t k = 0; k < span.weights.size(); ++k) {
      const Sample* source = from + (span.first + k) * stride;
      const float weight = span.weights[k];
      for (std::size_t i = 0; i < stride; ++i) {
        row[i] += weight * static_cast<float>(source[i]);
      }
    }
    for (const Span& column : columns) {
      float sums[4] = {};
      for (std::size_t k = 0; k < column.weights.size(); ++k) {
        for (std::size_t c = 0; c < 4; ++c) {
          sums[c] += column.weights[k] * row[(column.first + k) * 4 + c];
        }
      }
      for (const float sum : sums) {
        *to++ = Stored<Sample>(sum);
      }
    }
  }
}

// As new.
FrameImage* ShrinkFrame(FrameImage* frame, ProxySize size) {
  auto* const smaller = new FrameImage(size.width, size.height);
  const auto [width, height] = frame->size();
  Shrink(frame->buffer(), width, height, size, smaller->buffer());
  return smaller;
}

}  // namespace

double GridPoints(const lx::Footprint& engine, const std::map<std::string, Value>& values,
                  int width, int height) {
  const lx::GridSides grid = Foresee(engine, values, width, height).grid;
  return static_cast<double>(grid.width) * static_cast<double>(grid.height);
}

ProxySize FindProxySize(const lx::Footprint& engine, const std::map<std::string, Value>& values,
                        int width, int height, double part) {
  const double most = GridPoints(engine, values, width, height) * part;
  const auto sizeOf = [&](int w) {
    const auto h = std::llround(static_cast<double>(height) * w / width);
    return ProxySize{w, std::max(static_cast<int>(h), 1)};
  };
  if (part >= 1.0) {
    return {width, height};
  }
  int fits = std::min(width, 8);
  for (int above = width; above - fits > 1;) {
    const int middle = (fits + above) / 2;
    const ProxySize size = sizeOf(middle);
    const bool isEnough = GridPoints(engine, values, size.width, size.height) > most;
    (isEnough ? above : fits) = middle;
  }
  return sizeOf(fits);
}

std::shared_ptr<const LoadedFrame> MakeProxy(const LoadedFrame& frame, ProxySize size) {
  auto proxy = std::make_shared<LoadedFrame>(frame);
  const Picture& whole = *frame.picture;
  auto picture = std::make_shared<Picture>();
  picture->width = size.width;
  picture->height = size.height;
  picture->alpha = whole.alpha;
  picture->grey = whole.grey;
  picture->bits = whole.bits;
  picture->pixelAspect = whole.pixelAspect;
  const std::size_t samples = picture->PixelCount() * 4;
  if (whole.IsFloat()) {
    picture->floats.resize(samples);
    Shrink(whole.floats.data(), whole.width, whole.height, size, picture->floats.data());
  } else {
    picture->samples.resize(samples);
    Shrink(whole.samples.data(), whole.width, whole.height, size, picture->samples.data());
    proxy->source = quantel::cPtr<FrameImage>(new FrameImage(*picture));
  }
  proxy->picture = std::move(picture);
  if (frame.spread) {
    proxy->spread = quantel::cPtr<FrameImage>(ShrinkFrame(frame.spread.Object(), size));
  }
  return proxy;
}

}  // namespace glimmerhost
