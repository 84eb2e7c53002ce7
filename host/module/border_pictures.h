// SPDX-License-Identifier: BSD-3-Clause
// What this host offers of clips and targets: frames over pictures in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "host/pictures/picture.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// A frame that owns its samples, in the border's order: blue, green, red, alpha.
class FrameImage final : public qplugin::iQpluginImage, public quantel::cRefCount {
 public:
  // All samples are 0.
  FrameImage(int width, int height);
  explicit FrameImage(const Picture& picture);

  quantel::cSize2 size() override { return size_; }
  std::uint16_t* buffer() override { return samples_.get(); }

  // Writes the frame's samples into a picture of its size.
  void CopyTo(Picture* picture) const;

 private:
  struct Freer {
    void operator()(std::uint16_t* samples) const { std::free(samples); }
  };

  quantel::cSize2 size_;
  std::size_t pixels_;
  // From calloc: what the system hands out is 0 already, and is not touched before it is used.
  std::unique_ptr<std::uint16_t, Freer> samples_;
};

class FrameFormat final : public qplugin::iQpluginFormat, public quantel::cRefCount {
 public:
  FrameFormat(quantel::cSize2 pixelAspect, quantel::cSize2 pictureSize)
      : pixelAspect_(pixelAspect), pictureSize_(pictureSize) {}

  quantel::cPtr<qplugin::iQpluginDescriptor> descriptor() override;
  quantel::cSize2 pixelAspect() override { return pixelAspect_; }
  quantel::cSize2 pictureSize() override { return pictureSize_; }

 private:
  quantel::cSize2 pixelAspect_;
  quantel::cSize2 pictureSize_;
};

// A clip that has the same picture at every frame number.
class StillClip final : public qplugin::iQpluginSource, public quantel::cRefCount {
 public:
  explicit StillClip(const quantel::cPtr<FrameImage>& frame) : frame_(frame) {}

  quantel::cPtr<qplugin::iQpluginImage> frame(int frame,
                                              quantel::cPtr<qplugin::iQpluginDescriptor> descriptor,
                                              int three) override;

 private:
  quantel::cPtr<FrameImage> frame_;
};

// The main clip, and the second one under its key, each of one frame.
class Inputs final : public qplugin::iQpluginInputs, public quantel::cRefCount {
 public:
  //   spread  null if there is none
  Inputs(const quantel::cPtr<FrameImage>& main, const quantel::cPtr<FrameImage>& spread);

  quantel::cPtr<qplugin::iQpluginSource> mainInput() override { return main_; }
  quantel::cPtr<qplugin::iQpluginSource> namedInput(const quantel::wstring& key) override;

 private:
  quantel::cPtr<qplugin::iQpluginSource> main_;
  quantel::cPtr<qplugin::iQpluginSource> spread_;
};

class Target final : public qplugin::iQpluginTarget, public quantel::cRefCount {
 public:
  Target(const quantel::cPtr<FrameImage>& output, const quantel::cPtr<FrameFormat>& format)
      : output_(output), format_(format) {}

  quantel::cPtr<qplugin::iQpluginImage> outputFrame(int /*three*/) override { return output_; }
  quantel::cPtr<qplugin::iQpluginFormat> format() override { return format_; }

 private:
  quantel::cPtr<FrameImage> output_;
  quantel::cPtr<FrameFormat> format_;
};

}  // namespace glimmerhost
