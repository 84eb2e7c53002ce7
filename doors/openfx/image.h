// SPDX-License-Identifier: BSD-3-Clause
// An image that the host lends for the length of an action.
#pragma once

#include <cstddef>

#include "doors/library/glimmerblur.h"
#include "doors/openfx/host.h"

namespace lx::openfx {

// What the pixels of a clip or an image are.
struct PixelKind {
  int sample;    // glimmerblur_sample
  int channels;  // 4, or 1 of alpha alone

  std::size_t SampleBytes() const;
  std::size_t PixelBytes() const;
  bool operator==(const PixelKind&) const = default;
};

class Image {
 public:
  // Throws where the host cannot lend it, or where its pixels are of a kind that was not agreed on.
  //   scale  that it must have
  Image(ofx::ImageClip* clip, ofx::Time time, const ofx::PointD& scale);

  // Gives it back, whatever the host says to that.
  ~Image();

  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Gives it back, and throws where the host says that this has failed.
  void Release();

  // False where the clip has none at that time: it counts as black and transparent.
  bool Exists() const { return image_ != nullptr; }

  // Of one that exists.
  const PixelKind& Kind() const { return kind_; }
  const ofx::RectI& Bounds() const { return bounds_; }

  // A part of it, which must be inside its bounds.
  glimmerblur_frame Frame(const ofx::RectI& part) const;

  // Makes a part black and transparent.
  void Clear(const ofx::RectI& part) const;

 private:
  void Read(const ofx::PointD& scale);
  unsigned char* At(int x, int y) const;

  ofx::PropertySet* image_ = nullptr;
  unsigned char* data_ = nullptr;
  PixelKind kind_{};
  ofx::RectI bounds_{};
  int rowBytes_ = 0;
};

// Empty rectangles have no width or no height below 1.
bool IsEmpty(const ofx::RectI& rect);
ofx::RectI Intersection(const ofx::RectI& a, const ofx::RectI& b);

}  // namespace lx::openfx
