// SPDX-License-Identifier: BSD-3-Clause
// Frames and objects of the library for tests, and what a frame becomes by plain sums.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace library_test {

struct Destroy {
  void operator()(glimmerblur* object) const { glimmerblur_destroy(object); }
};
using Object = std::unique_ptr<glimmerblur, Destroy>;

inline glimmerblur_options Options(int threads = 2) {
  glimmerblur_options options;
  glimmerblur_options_init(&options);
  options.threads = threads;
  return options;
}

inline Object Make(const glimmerblur_options& options = Options()) {
  glimmerblur* made = nullptr;
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_create(&options, &made));
  return Object(made);
}

inline glimmerblur_look Look(double radius, double emphasis = 1.0) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.radius_x = look.radius_y = radius;
  look.emphasis = emphasis;
  return look;
}

// An object with this look.
inline Object Make(const glimmerblur_look& look, const glimmerblur_options& options = Options()) {
  Object object = Make(options);
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_set_look(object.get(), &look))
      << glimmerblur_message(object.get());
  return object;
}

// Packed samples, and the frame that tells of them.
template <class Sample>
struct Pixels {
  int width;
  int height;
  int channels;
  std::vector<Sample> samples;

  Pixels(int w, int h, int c = 4)
      : width(w),
        height(h),
        channels(c),
        samples(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) *
                static_cast<std::size_t>(c)) {}

  Sample& At(int x, int y, int c) {
    return samples[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                    static_cast<std::size_t>(x)) *
                       static_cast<std::size_t>(channels) +
                   static_cast<std::size_t>(c)];
  }
  Sample At(int x, int y, int c) const { return const_cast<Pixels*>(this)->At(x, y, c); }

  glimmerblur_frame Frame() {
    glimmerblur_frame frame;
    glimmerblur_frame_init(&frame);
    frame.rect = {0, 0, width, height};
    frame.sample = sizeof(Sample) == 1   ? GLIMMERBLUR_U8
                   : sizeof(Sample) == 2 ? GLIMMERBLUR_U16
                                         : GLIMMERBLUR_FLOAT;
    frame.channels = channels;
    frame.layout = channels == 3 || channels == 4 ? GLIMMERBLUR_RGBA : GLIMMERBLUR_PLANES;
    frame.data = samples.data();
    return frame;
  }

  bool operator==(const Pixels&) const = default;
};
using Floats = Pixels<float>;

inline Floats Noise(int width, int height, unsigned seed, double low = 0.0, double high = 1.0,
                    int channels = 4) {
  Floats noise(width, height, channels);
  std::mt19937 random(seed);
  for (float& sample : noise.samples) {
    sample = static_cast<float>(low + (high - low) * (random() / 4294967296.0));
  }
  return noise;
}

template <class Sample>
glimmerblur_status Render(const Object& object, const Pixels<Sample>& source,
                          Pixels<Sample>* destination) {
  Pixels<Sample> from = source;
  const glimmerblur_frame in = from.Frame();
  const glimmerblur_frame out = destination->Frame();
  return glimmerblur_render(object.get(), &in, &out, nullptr);
}

// The same, into pixels of its own.
template <class Sample>
Pixels<Sample> Blurred(const Object& object, const Pixels<Sample>& source) {
  Pixels<Sample> destination(source.width, source.height, source.channels);
  EXPECT_EQ(GLIMMERBLUR_OK, Render(object, source, &destination))
      << glimmerblur_message(object.get());
  return destination;
}

template <class Sample>
Pixels<Sample> Blurred(const glimmerblur_look& look, const Pixels<Sample>& source) {
  return Blurred(Make(look), source);
}

inline double SumOf(const Floats& pixels, int channel) {
  double sum = 0.0;
  for (int y = 0; y < pixels.height; ++y) {
    for (int x = 0; x < pixels.width; ++x) {
      sum += static_cast<double>(pixels.At(x, y, channel));
    }
  }
  return sum;
}

inline void ExpectNear(const Floats& expected, const Floats& got, double tolerance) {
  ASSERT_EQ(expected.samples.size(), got.samples.size());
  for (std::size_t i = 0; i < expected.samples.size(); ++i) {
    ASSERT_NEAR(expected.samples[i], got.samples[i], tolerance) << i;
  }
}

}  // namespace library_test
