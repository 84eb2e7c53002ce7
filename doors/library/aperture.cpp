// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/aperture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <string>

#include "baselib/utils/convert.h"
#include "doors/library/refusal.h"
#include "doors/library/work_samples.h"
#include "fftlib/core/grid.h"
#include "fftlib/psf/image_mask.h"
#include "fftlib/psf/polygon_fill.h"
#include "fftlib/psf/psf_outlines.h"

namespace lx {
namespace {

using ImagePointer = std::unique_ptr<ImageRec, ImageDeleter>;

// The pixel of a side that an aperture's middle is, as in the host module.
std::int32_t MiddleOf(std::int32_t side) { return (side + 1) / 2; }

// A transform holds an aperture twice: as it is, and as what it reads around a pixel.
constexpr std::int32_t kLargestMask = kLargestGridSide / 2;

ImagePointer MakeMask(std::int32_t width, std::int32_t height) {
  if (width > kLargestMask || height > kLargestMask) {
    throw Refusal(GLIMMERBLUR_TOO_LARGE, "The aperture is " + std::to_string(width) + " x " +
                                             std::to_string(height) + " pixels; sides must be " +
                                             "up to " + std::to_string(kLargestMask) + '.');
  }
  ImagePointer mask(ImageCreate(width, height, 1, kSampleU8, 1));
  if (mask == nullptr) {
    throw std::bad_alloc();
  }
  std::fill_n(static_cast<std::uint8_t*>(mask->data), std::ptrdiff_t{width} * height,
              std::uint8_t{0});
  return mask;
}

// Ends the mask where its weights do; without any it is a single point.
//   left, bottom  of the mask's first pixel
ApertureMask Trim(const ImageRec& mask, std::int32_t left, std::int32_t bottom) {
  const auto* weights = static_cast<const std::uint8_t*>(mask.data);
  std::int32_t minX = mask.width;
  std::int32_t maxX = -1;
  std::int32_t minY = mask.height;
  std::int32_t maxY = -1;
  for (std::int32_t y = 0; y < mask.height; ++y) {
    const std::uint8_t* row = weights + std::ptrdiff_t{y} * mask.width;
    const std::uint8_t* end = row + mask.width;
    const auto isSet = [](std::uint8_t weight) { return weight != 0; };
    const std::uint8_t* first = std::find_if(row, end, isSet);
    if (first == end) {
      continue;
    }
    const std::uint8_t* last = end - 1;
    while (*last == 0) {
      --last;
    }
    minX = std::min(minX, static_cast<std::int32_t>(first - row));
    maxX = std::max(maxX, static_cast<std::int32_t>(last - row));
    minY = std::min(minY, y);
    maxY = y;
  }
  if (maxX < 0) {
    return {};
  }
  ApertureMask trimmed{left + minX, bottom + minY, maxX - minX + 1, maxY - minY + 1, {}};
  trimmed.weights.reserve(static_cast<std::size_t>(trimmed.width) *
                          static_cast<std::size_t>(trimmed.height));
  for (std::int32_t y = minY; y <= maxY; ++y) {
    const std::uint8_t* row = weights + std::ptrdiff_t{y} * mask.width;
    trimmed.weights.insert(trimmed.weights.end(), row + minX, row + maxX + 1);
  }
  return trimmed;
}

// The pixels that a polygon may touch.
Box BoundsOf(const PsfPolygon& polygon) {
  const auto [left, right] =
      std::minmax_element(polygon.vertices, polygon.vertices + polygon.count,
                          [](const PolygonVertex& a, const PolygonVertex& b) { return a.x < b.x; });
  const auto [bottom, top] =
      std::minmax_element(polygon.vertices, polygon.vertices + polygon.count,
                          [](const PolygonVertex& a, const PolygonVertex& b) { return a.y < b.y; });
  const auto below = [](float value) {
    return TruncateToInt32(std::floor(static_cast<double>(value))) - 1;
  };
  const Box box{below(left->x), below(bottom->y), 0, 0};
  return {box.x, box.y, below(right->x) + 3 - box.x, below(top->y) + 3 - box.y};
}

ApertureMask DrawOutline(const glimmerblur_look& look, std::int32_t width, std::int32_t height) {
  const bool isCentred = look.centred != 0;
  OutlineFrame frame{};
  // The middle of a pixel's area; or the middle of the picture, as the host module has it.
  frame.centreX = isCentred ? 0.5F : static_cast<float>(width * 0.5);
  frame.centreY = isCentred ? 0.5F : static_cast<float>(height * 0.5);
  frame.radiusX = NarrowToFloat(look.radius_x);
  frame.radiusY = NarrowToFloat(look.shape == GLIMMERBLUR_CIRCLE ? look.radius_x : look.radius_y);
  frame.rotation = NarrowToFloat(look.rotation);
  frame.aspectX = NarrowToFloat(look.pixel_aspect);
  frame.aspectY = 1.0F;
  frame.smallestRadius = isCentred ? 0.0F : 1.0F;
  const PsfPolygon polygon = look.shape == GLIMMERBLUR_POLYGON
                                 ? MakeRegularPolygon(frame, look.sides)
                                 : MakeEllipse(frame);
  Box box = BoundsOf(polygon);
  if (!isCentred) {
    box = Intersect(box, {0, 0, width, height});
    if (box.width < 1 || box.height < 1) {
      return {};
    }
  }
  const ImagePointer mask = MakeMask(box.width, box.height);
  FillConvexPolygon(mask.get(), polygon, PixelCoverage, {box.x, box.y});
  const std::int32_t middleX = isCentred ? 0 : MiddleOf(width);
  const std::int32_t middleY = isCentred ? 0 : MiddleOf(height);
  return Trim(*mask, box.x - middleX, box.y - middleY);
}

ApertureMask CutPicture(const AperturePicture& picture, bool isCentred, std::int32_t width,
                        std::int32_t height) {
  const ImagePointer mask = MakeMask(picture.width, picture.height);
  auto* weights = static_cast<std::uint8_t*>(mask->data);
  if (picture.isWhole) {
    std::transform(picture.samples.begin(), picture.samples.end(), weights,
                   [](std::uint16_t sample) { return static_cast<std::uint8_t>(sample >> 8U); });
  } else {
    const ImagePointer record(ImageCreate(picture.width, picture.height, 1, kSampleU16, 1));
    if (record == nullptr) {
      throw std::bad_alloc();
    }
    std::copy(picture.samples.begin(), picture.samples.end(),
              static_cast<std::uint16_t*>(record->data));
    const float inner = std::min(picture.inner, picture.outer);
    const float falloff =
        NarrowToFloat(static_cast<double>(std::max(picture.inner, picture.outer)) - inner);
    CutImageMask(*record, {picture.centreX, picture.centreY, inner, std::max(falloff, 1.0F)},
                 mask.get());
  }
  // The middle of the picture comes to the middle of the frame, which is beside the aperture's
  // along an odd side of the host module's.
  std::int32_t left = -(picture.width / 2);
  std::int32_t bottom = -(picture.height / 2);
  if (!isCentred) {
    left += width / 2 - MiddleOf(width);
    bottom += height / 2 - MiddleOf(height);
    // And what does not fit into the frame is lost.
    const Box inside = Intersect({left, bottom, picture.width, picture.height},
                                 {-MiddleOf(width), -MiddleOf(height), width, height});
    for (std::int32_t y = 0; y < picture.height; ++y) {
      for (std::int32_t x = 0; x < picture.width; ++x) {
        if (!inside.Contains({left + x, bottom + y, 1, 1})) {
          weights[std::ptrdiff_t{y} * picture.width + x] = 0;
        }
      }
    }
  }
  return Trim(*mask, left, bottom);
}

}  // namespace

Reach4 ApertureMask::Reach() const {
  return {std::max(left + width - 1, 0), std::max(-left, 0), std::max(bottom + height - 1, 0),
          std::max(-bottom, 0)};
}

AperturePicture TakePicture(const FrameView& picture, double centreX, double centreY, double inner,
                            double outer) {
  AperturePicture kept;
  kept.width = picture.box.width;
  kept.height = picture.box.height;
  kept.isWhole = inner < 0.0 && outer < 0.0;
  // The pixel that holds the point; on an edge the one to the right, or above.
  kept.centreX = TruncateToInt32(std::floor(centreX));
  kept.centreY = TruncateToInt32(std::floor(picture.box.height - centreY));
  kept.inner = NarrowToFloat(inner);
  kept.outer = NarrowToFloat(outer);
  kept.samples.resize(static_cast<std::size_t>(picture.box.Pixels()));
  const ImagePointer row(ImageCreate(kept.width, 1, 1, kSampleU16, 1));
  if (row == nullptr) {
    throw std::bad_alloc();
  }
  FrameView first = picture;
  first.isRgba = false;
  first.isStraight = false;
  const auto* samples = static_cast<const std::uint16_t*>(row->data);
  for (std::int32_t y = 0; y < kept.height; ++y) {
    ReadRow(first, {{0, 0, kept.width, kept.height}, true, 0}, 0, y, *row, 0);
    std::copy_n(samples, kept.width,
                kept.samples.begin() + static_cast<std::ptrdiff_t>(y) * kept.width);
  }
  return kept;
}

ApertureMask DrawAperture(const glimmerblur_look& look, const AperturePicture* picture,
                          std::int32_t width, std::int32_t height) {
  if (look.shape != GLIMMERBLUR_PICTURE) {
    return DrawOutline(look, width, height);
  }
  if (picture == nullptr) {
    throw Refusal(GLIMMERBLUR_NO_APERTURE,
                  "The shape is a picture, and glimmerblur_set_aperture has been given none.");
  }
  return CutPicture(*picture, look.centred != 0, width, height);
}

}  // namespace lx
