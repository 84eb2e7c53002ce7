// SPDX-License-Identifier: BSD-3-Clause
// Frames, the clips that they come from, and the target that they go to.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/geometry.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace qplugin {

// One frame buffer: width x height pixels of four 16-bit samples, no padding, the top
// row of the picture first. Samples of a pixel: blue, green, red, alpha.
class QTL_BORDER iQpluginImage {
 public:
  virtual ~iQpluginImage() = default;
  virtual quantel::cSize2 size() = 0;
  virtual void reserved1() {}
  virtual std::uint16_t* buffer() = 0;  // lives as long as the image
};

// An opaque object that a format gives and a clip takes.
class QTL_BORDER iQpluginDescriptor {
 public:
  virtual ~iQpluginDescriptor() = default;
};

// The picture format of a job.
class QTL_BORDER iQpluginFormat {
 public:
  virtual ~iQpluginFormat() = default;
  virtual quantel::cPtr<iQpluginDescriptor> descriptor() = 0;
  virtual quantel::cSize2 pixelAspect() = 0;  // a ratio: first over second
  virtual quantel::cSize2 pictureSize() = 0;  // in pixels
};

// A clip.
class QTL_BORDER iQpluginSource {
 public:
  virtual ~iQpluginSource() = default;
  virtual void reserved1() {}

  // One frame, in the form that the descriptor gives.
  //   three  always 3
  virtual quantel::cPtr<iQpluginImage> frame(int frame,
                                             quantel::cPtr<iQpluginDescriptor> descriptor,
                                             int three) = 0;
};

// The input connections of one instance.
class QTL_BORDER iQpluginInputs {
 public:
  virtual ~iQpluginInputs() = default;
  virtual quantel::cPtr<iQpluginSource> mainInput() = 0;

  // The clip connected under the key, or null. The only key asked for is "PRM_Spread".
  virtual quantel::cPtr<iQpluginSource> namedInput(const quantel::wstring& key) = 0;
};

// A render's output.
class QTL_BORDER iQpluginTarget {
 public:
  virtual ~iQpluginTarget() = default;
  virtual void reserved1() {}

  // The frame to be written.
  //   three  always 3
  virtual quantel::cPtr<iQpluginImage> outputFrame(int three) = 0;
  virtual quantel::cPtr<iQpluginFormat> format() = 0;
};

}  // namespace qplugin
