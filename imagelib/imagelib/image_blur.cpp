// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "baselib/utils/convert.h"
#include "baselib/utils/heap.h"
#include "imagelib/imagelib.h"
#include "imagelib/imagelib/row_dispatch.h"

namespace lx {
namespace {

constexpr int kIterations = 3;

// Up to this fraction a radius counts as a whole number.
constexpr double kFractionThreshold = 0.01;

// One axis of a blur: the lines along it and how far it blurs.
struct BlurPass {
  ImageRec* image;
  std::int32_t channelMask;
  bool vertical;
  std::int32_t lineLength;
  std::int32_t wholeRadius;
  double fraction;  // of the radius; 0 where it counts as whole
  double limit;     // largest sample value
};

double LargestSample(std::uint32_t sampleType) {
  switch (sampleType) {
    case kSampleU8:
      return 255.0;
    case kSampleU16:
      return 65535.0;
    case kSampleU32:
      return 4294967295.0;
    default:
      return std::numeric_limits<float>::max();
  }
}

// The repeated box. The result of each iteration lands in the line that was not read,
// so after three it stands in second and first holds the state after two.
void RepeatedBox(double* first, double* second, std::int32_t length, std::int32_t radius,
                 double limit) {
  // A radius with a fraction asks for one more than its limit.
  radius = std::min(radius, length / 2);
  const double weight = 1.0 / (2.0 * radius + 1.0);
  const std::int32_t lastIndex = length - 1;
  double* from = first;
  double* to = second;
  for (int iteration = 0; iteration < kIterations; ++iteration) {
    // The line's ends repeat: the box at the first sample holds it radius times more.
    double sum = radius * from[0];
    for (std::int32_t k = 0; k <= radius; ++k) {
      sum += from[std::min(k, lastIndex)];
    }
    to[0] = sum;
    for (std::int32_t k = 1; k < length; ++k) {
      sum -= from[std::clamp(k - 1 - radius, 0, lastIndex)];
      sum += from[std::clamp(k + radius, 0, lastIndex)];
      to[k] = sum;
    }
    for (std::int32_t k = 0; k < length; ++k) {
      to[k] *= weight;
      // Rounding can lift a line of full samples above full.
      if (to[k] > limit) {
        to[k] = limit;
      }
    }
    std::swap(from, to);
  }
}

template <class Sample>
void LoadLine(const unsigned char* sample, std::ptrdiff_t stride, std::int32_t length,
              double* line) {
  for (std::int32_t k = 0; k < length; ++k, sample += stride) {
    Sample value;
    std::memcpy(&value, sample, sizeof value);
    line[k] = static_cast<double>(value);
  }
}

template <class Sample>
void StoreLine(const double* line, unsigned char* sample, std::ptrdiff_t stride,
               std::int32_t length) {
  for (std::int32_t k = 0; k < length; ++k, sample += stride) {
    Sample value;
    if constexpr (std::is_same_v<Sample, float>) {
      value = NarrowToFloat(line[k]);
    } else {
      value = static_cast<Sample>(
          TruncateToUnsigned(line[k] + 0.5, std::numeric_limits<Sample>::max()));
    }
    std::memcpy(sample, &value, sizeof value);
  }
}

// Intended: 8-bit images take the line after all three iterations, with the
// fractional blend; all others take the line after the second one, unblended, even
// where the radius has a fraction.
template <class Sample>
void BlurLine(const BlurPass& pass, unsigned char* start, std::ptrdiff_t stride, double* work) {
  const std::int32_t n = pass.lineLength;
  double* a = work;
  double* b = a + n;
  double* c = b + n;
  double* d = c + n;
  LoadLine<Sample>(start, stride, n, a);
  if constexpr (std::is_same_v<Sample, std::uint8_t>) {
    if (pass.fraction > 0.0) {
      std::copy(a, a + n, c);
      RepeatedBox(c, d, n, pass.wholeRadius + 1, pass.limit);
    }
    RepeatedBox(a, b, n, pass.wholeRadius, pass.limit);
    if (pass.fraction > 0.0) {
      for (std::int32_t k = 0; k < n; ++k) {
        b[k] = pass.fraction * d[k] + (1.0 - pass.fraction) * b[k];
      }
    }
    StoreLine<Sample>(b, start, stride, n);
  } else {
    RepeatedBox(a, b, n, pass.wholeRadius, pass.limit);
    StoreLine<Sample>(a, start, stride, n);
  }
}

// Indexed by sample type.
constexpr void (*kBlurLine[])(const BlurPass&, unsigned char*, std::ptrdiff_t, double*) = {
    BlurLine<std::uint8_t>, BlurLine<std::uint16_t>, BlurLine<std::uint32_t>, BlurLine<float>};

void BlurLines(void* user, std::int32_t first, std::int32_t last) {
  const BlurPass& pass = *static_cast<const BlurPass*>(user);
  const ImageRec& image = *pass.image;
  auto* work = static_cast<double*>(lx_malloc(static_cast<std::uint32_t>(pass.lineLength) *
                                              static_cast<std::uint32_t>(4 * sizeof(double))));
  if (work == nullptr) {
    return;
  }
  const auto alongRow = static_cast<std::ptrdiff_t>(image.channels) * image.elementBytes;
  const auto alongColumn = static_cast<std::ptrdiff_t>(image.width) * alongRow;
  const std::ptrdiff_t stride = pass.vertical ? alongColumn : alongRow;
  const std::ptrdiff_t lineStep = pass.vertical ? alongRow : alongColumn;
  const auto blurLine = kBlurLine[image.sampleType];
  for (std::int32_t c = 0; c < image.channels; ++c) {
    if (((static_cast<std::uint32_t>(pass.channelMask) >> (c & 31)) & 1U) == 0) {
      continue;
    }
    for (std::int32_t line = first; line <= last; ++line) {
      unsigned char* start = static_cast<unsigned char*>(image.data) + line * lineStep +
                             static_cast<std::ptrdiff_t>(c) * image.elementBytes;
      blurLine(pass, start, stride, work);
    }
  }
  lx_free(work);
}

void BlurAxis(ImageRec* image, double radius, std::int32_t channelMask, bool vertical) {
  const std::int32_t length = vertical ? image->height : image->width;
  const std::int32_t lines = vertical ? image->width : image->height;
  const double half = length / 2;  // NOLINT(bugprone-integer-division): half in whole pixels
  const double limited = radius > half ? half : radius;
  const double whole = std::floor(limited);
  const double fraction = limited - whole;
  BlurPass pass{image,
                channelMask,
                vertical,
                length,
                static_cast<std::int32_t>(whole),
                fraction > kFractionThreshold ? fraction : 0.0,
                LargestSample(image->sampleType)};
  DispatchRows(BlurLines, lines, &pass);
}

}  // namespace

bool ImageBlur(ImageRec* image, double radiusX, double radiusY, std::int32_t channelMask) {
  if (!ImageHasSamples(image)) {
    return false;
  }
  if (channelMask == 0) {
    return true;
  }
  // Comparisons in this form leave an axis alone whose radius is not a number.
  if (radiusX > 0.0) {
    BlurAxis(image, radiusX, channelMask, false);
  }
  if (radiusY > 0.0) {
    BlurAxis(image, radiusY, channelMask, true);
  }
  return true;
}

}  // namespace lx
