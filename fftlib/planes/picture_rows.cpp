// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/picture_rows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "fftlib/planes/colour_transform.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

double Luma(double r, double g, double b) { return kLumaB * b + kLumaG * g + kLumaR * r; }
double Cr(double r, double g, double b) { return kCrR * r + kCrG * g + kCrB * b + 0.5; }
double Cb(double r, double g, double b) { return kCbR * r + kCbG * g + kCbB * b + 0.5; }

template <class Sample, class Formula>
void FillFromColour(const Sample* pixels, std::int32_t width, std::int32_t channels,
                    Formula formula, double* row) {
  constexpr double kScale = SampleScale<Sample>::toUnit;
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    row[x] =
        formula(static_cast<double>(pixels[0]) * kScale, static_cast<double>(pixels[1]) * kScale,
                static_cast<double>(pixels[2]) * kScale);
  }
}

template <class Sample>
void FillLuma(const Sample* pixels, std::int32_t width, std::int32_t channels, double* row) {
  FillFromColour(pixels, width, channels, Luma, row);
}

// Intended: luma of 32-bit pixels comes from the three low bytes of the first sample, at
// the 32-bit scale, while the other planes read whole samples.
template <>
void FillLuma(const std::uint32_t* pixels, std::int32_t width, std::int32_t channels, double* row) {
  constexpr double kScale = SampleScale<std::uint32_t>::toUnit;
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    row[x] = Luma((pixels[0] & 0xFFU) * kScale, ((pixels[0] >> 8U) & 0xFFU) * kScale,
                  ((pixels[0] >> 16U) & 0xFFU) * kScale);
  }
}

template <class Sample>
void FillAlpha(const Sample* pixels, std::int32_t width, std::int32_t channels, double* row) {
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    row[x] = static_cast<double>(pixels[3]) * SampleScale<Sample>::toUnit;
  }
}

// What fills a plane.
RowOperations::Fill FrameFill(std::uint32_t channelBit) {
  const RowOperations& operations = GetRowOperations();
  return channelBit == kBitLuma ? operations.luma
         : channelBit == kBitCr ? operations.cr
         : channelBit == kBitCb ? operations.cb
                                : operations.alpha;
}

template <class Sample>
void FillPlane(const Sample* pixels, std::uint32_t channelBit, std::int32_t width,
               std::int32_t channels, double* row) {
  if constexpr (std::is_same_v<Sample, std::uint16_t>) {
    if (channels == 4) {
      FrameFill(channelBit)(pixels, width, row);
      return;
    }
  }
  switch (channelBit) {
    case kBitLuma:
      FillLuma(pixels, width, channels, row);
      break;
    case kBitCr:
      FillFromColour(pixels, width, channels, Cr, row);
      break;
    case kBitCb:
      FillFromColour(pixels, width, channels, Cb, row);
      break;
    default:
      FillAlpha(pixels, width, channels, row);
      break;
  }
}

// What 1 becomes in samples of that type.
template <class Sample>
double FullScale(double full32) {
  return sizeof(Sample) == 4 ? full32 : SampleScale<Sample>::full;
}

template <class Sample>
Sample StoreUnit(double value, double full) {
  // Narrow samples go through the 32-bit conversion, which works on several at once. A number
  // that 32 bits cannot hold wraps around.
  using Whole = std::conditional_t<sizeof(Sample) < 4, std::int32_t, std::uint64_t>;
  return static_cast<Sample>(static_cast<Whole>(ClampToUnit(value) * full + 0.5));
}

// Intended: alpha of 32-bit pixels keeps its low 16 bits only.
template <class Sample>
Sample StoreAlpha(double value, double full) {
  constexpr Sample kKept =
      sizeof(Sample) == 4 ? static_cast<Sample>(0xFFFF) : static_cast<Sample>(-1);
  return StoreUnit<Sample>(value, full) & kKept;
}

template <class Sample>
void StoreRow(const PlaneRow& planes, const PlaneScale& scale, std::int32_t width,
              std::int32_t channels, double full32, Sample* pixels) {
  if constexpr (std::is_same_v<Sample, std::uint16_t>) {
    if (channels == 4) {
      GetRowOperations().store(planes, scale, width, pixels);
      return;
    }
  }
  const double full = FullScale<Sample>(full32);
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    const double y = scale.luma * planes.luma[x];
    const double cr = scale.chroma * planes.cr[x] - 0.5;
    const double cb = scale.chroma * planes.cb[x] - 0.5;
    pixels[0] = StoreUnit<Sample>(y + kRCr * cr, full);
    pixels[1] = StoreUnit<Sample>(kGY * y - kGCr * cr - kGCb * cb, full);
    pixels[2] = StoreUnit<Sample>(kBY * y + kBCb * cb, full);
    if (planes.alpha != nullptr) {
      pixels[3] = StoreAlpha<Sample>(scale.alpha * planes.alpha[x], full);
    }
  }
}

}  // namespace

bool HasCurve(std::uint32_t channelBit, const Look& look) {
  return channelBit == kBitLuma || (channelBit == kBitAlpha && look.emphasisAlpha);
}

void FillFromPicture(const ImageRec& source, std::uint32_t channelBit, RowPiece piece,
                     double* row) {
  const auto fill = [&](const auto* line) {
    FillPlane(line + std::ptrdiff_t{piece.x} * source.channels, channelBit, piece.width,
              source.channels, row);
  };
  switch (source.sampleType) {
    case kSampleU8:
      fill(SampleRow<std::uint8_t>(source, piece.y));
      break;
    case kSampleU16:
      fill(SampleRow<std::uint16_t>(source, piece.y));
      break;
    case kSampleU32:
      fill(SampleRow<std::uint32_t>(source, piece.y));
      break;
    default:
      std::fill_n(row, piece.width, 0.0);
      break;
  }
}

void StoreToPicture(const PlaneRow& planes, const PlaneScale& scale, RowPiece piece, double full32,
                    ImageRec* dest) {
  const auto store = [&](auto* line) {
    StoreRow(planes, scale, piece.width, dest->channels, full32,
             line + std::ptrdiff_t{piece.x} * dest->channels);
  };
  switch (dest->sampleType) {
    case kSampleU8:
      store(SampleRow<std::uint8_t>(dest, piece.y));
      break;
    case kSampleU16:
      store(SampleRow<std::uint16_t>(dest, piece.y));
      break;
    case kSampleU32:
      store(SampleRow<std::uint32_t>(dest, piece.y));
      break;
    default:
      break;
  }
}

}  // namespace lx
