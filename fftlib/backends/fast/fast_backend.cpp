// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/fast_backend.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <new>

#include "fftlib/backends/fast/bands.h"
#include "fftlib/backends/fast/even_alpha.h"
#include "fftlib/backends/fast/fast_columns.h"
#include "fftlib/backends/fast/fast_load.h"
#include "fftlib/planes/float_rows.h"

namespace lx {
namespace {

std::int32_t ChannelsOf(const RunImages& run) {
  return std::min<std::int32_t>(run.source->channels, run.dest->channels);
}

Aperture MakeAperture(const ImageRec& mask, const BitWord* bits) {
  return {FindExtent(mask), MaskMiddle(mask.width), MaskMiddle(mask.height), bits};
}

MaskReach Across(const Aperture& aperture) {
  return ReachOf(aperture.extent.left, aperture.extent.right, aperture.middleX);
}

MaskReach Down(const Aperture& aperture) {
  return ReachOf(aperture.extent.top, aperture.extent.bottom, aperture.middleY);
}

// Planes of a picture: luma, two of chroma and alpha, or one where it has a single channel.
std::size_t CountPlanes(const RunImages& run) {
  if (ChannelsOf(run) < 3) {
    return 1;
  }
  return ChannelsOf(run) >= 4 && (run.channelMask & kBitAlpha) != 0 ? 4 : 3;
}

}  // namespace

std::unique_ptr<Backend> FastFootprint::Make() {
  return std::unique_ptr<Backend>(new (std::nothrow) FastBackend);
}

// What wraps around must not reach the frame.
GridSides FastBackend::GridOf(const ImageRec& mask, std::int32_t margin) const {
  const Aperture aperture = MakeAperture(mask, nullptr);
  // A margin stands at both ends: half of what is reached is enough, rounded up.
  const auto needed = [](MaskReach reach) { return (reach.before + reach.after + 1) / 2; };
  return GridFor({mask.width, mask.height},
                 std::max({margin, needed(Across(aperture)), needed(Down(aperture))}));
}

void FastBackend::FreeGrids() {
  grids_.Free();
  isLoaded_ = false;
}

std::int32_t FastBackend::Load(const ImageRec& mask, const GridPlace& place, Rows* rows) {
  isLoaded_ = false;
  const std::int32_t prepared =
      grids_.Prepare(FastLayout(place.frame, {place.grid.width, place.grid.height}));
  if (prepared != kStatusOk) {
    return prepared;
  }
  aperture_ = MakeAperture(mask, grids_.MaskBits());
  MarkMask(mask, aperture_.extent, grids_.MaskBits());
  leastWeight_ = LoadSpectrum(mask, aperture_.extent, &grids_, operations_, rows);
  isLoaded_ = true;
  return kStatusOk;
}

FastFrame FastBackend::MakeFrame(const Look& look) {
  PlaceFrameRows(grids_.Layout(), Down(aperture_).before, look.edgeMode == kEdgeReplicate,
                 grids_.FrameSource());
  return {&grids_, &operations_, look.edgeMode, Across(aperture_).before};
}

std::int32_t FastBackend::PreparePlanes(std::size_t count) {
  for (std::size_t p = 0; p < count; ++p) {
    const std::int32_t prepared = grids_.PreparePlane(p);
    if (prepared != kStatusOk) {
      return prepared;
    }
  }
  return kStatusOk;
}

void FastBackend::ConvolveColumns(const std::array<double*, FastLayout::kPlanes>& planes,
                                  std::size_t count, Rows* rows) {
  rows->Run(ConvolvePass{&grids_, &operations_, planes, count}, grids_.Layout().Blocks());
}

bool FastBackend::ConvolveBands(const FastFrame& frame, const PicturePlane& from,
                                const BandPlanes& planes, Rows* rows) {
  const std::int32_t width = grids_.Layout().frame.width;
  const std::int32_t height = grids_.Layout().frame.height;
  const BandRule rule = MakeBandRule(from.curve, leastWeight_);
  std::atomic<std::uint64_t> bands{0};
  rows->Run(ValuesPass{frame, from, rule, planes.values, &bands}, height);
  const Reach reach(aperture_, width, height, frame.edgeMode == kEdgeReplicate);
  // The plane that a band works in is still free while it is marked.
  auto* marked = reinterpret_cast<BitWord*>(planes.work);
  bool isFirst = true;
  for (std::int32_t number = 0; number < BandRule::kCount; ++number) {
    if (((bands.load() >> static_cast<unsigned>(number)) & 1U) == 0) {
      continue;
    }
    const Band band = MakeBand(rule, number);
    rows->Run(MarkPass{&reach, band, planes.values, width, marked}, height);
    rows->Run(ReachPass{&reach, marked, width, grids_.ReachedBits()}, height);
    rows->Run(BandPass{frame, band, planes.values, planes.work}, height);
    ConvolveColumns({planes.work}, 1, rows);
    rows->Run(SumPass{frame, band, planes.work, grids_.ReachedBits(), isFirst, planes.sum}, height);
    isFirst = false;
  }
  return !isFirst;
}

// A hyperbola alone spans no more than a transform can bear, but for lights of a float picture:
// what rounding leaves of the brightest of them, times the slope of the way back at 0, must stay
// below a millionth.
bool FastBackend::NeedsBands(const PicturePlane& plane, Rows* rows) {
  if (!plane.curve.on || plane.curve.hasPower || plane.source->sampleType != kSampleFloat) {
    return plane.curve.on && plane.curve.hasPower;
  }
  constexpr double kLeast = 0x1p30;
  std::atomic<double> brightest{0.0};
  rows->Run(BrightestPass{plane.source, plane.channelBit, &brightest}, plane.source->height);
  double value = brightest;
  ApplyOpenCurve(plane.curve, 1, &value);
  return value / (plane.curve.a * plane.curve.a) > kLeast;
}

// Alpha that is even stays so where the frame's edge goes on for ever. What an open curve makes of
// floats below 0 is something else.
bool FastBackend::HasEvenAlpha(const PicturePlane& plane, const Look& look, double* value,
                               Rows* rows) const {
  const bool isFloat = plane.source->sampleType == kSampleFloat;
  if (plane.channelBit != kBitAlpha || look.edgeMode != kEdgeReplicate ||
      aperture_.extent.isEmpty || (plane.curve.on && isFloat)) {
    return false;
  }
  std::atomic<bool> isEven{true};
  rows->Run(EvenAlphaPass{plane.source, &isEven}, plane.source->height);
  (isFloat ? FillFromFloatPicture : FillFromPicture)(*plane.source, kBitAlpha, {0, 0, 1}, value);
  return isEven;
}

std::int32_t FastBackend::Convolve(const RunImages& run, const Look& look, Rows* rows) {
  const std::size_t count = CountPlanes(run);
  const EmphasisCurve curve = MakeEmphasisCurve(static_cast<double>(look.emphasis));
  std::array<PicturePlane, FastLayout::kPlanes> planes{};
  std::array<bool, FastLayout::kPlanes> needsBands{};
  for (std::size_t p = 0; p < count; ++p) {
    const std::uint32_t bit = 1U << p;
    planes[p] = {run.source, bit, HasCurve(bit, look) ? curve : EmphasisCurve{}};
    needsBands[p] = NeedsBands(planes[p], rows);
  }
  // What a picture of three planes has is enough for bands; one of a single plane needs more then.
  std::size_t free = count == 1 && needsBands[0] ? 3 : count;
  const std::int32_t prepared = PreparePlanes(free);
  if (prepared != kStatusOk) {
    return prepared;
  }
  const FastFrame frame = MakeFrame(look);
  ForwardPass<PicturePlane> forward{frame};
  PicturePass picture{frame, {}, count, run.dest};
  std::array<double*, FastLayout::kPlanes> spectra{};
  std::size_t spectraCount = 0;
  // The grid's planes are handed out from the last one on. Those with bands come first, while there
  // are two more to work in.
  for (const bool inBands : {true, false}) {
    for (std::size_t p = 0; p < count; ++p) {
      const PicturePlane& plane = planes[p];
      if (needsBands[p] != inBands) {
        continue;
      }
      FinishedPlane& finished = picture.planes[p];
      if (HasEvenAlpha(plane, look, &finished.even, rows)) {
        forward.Add(plane, nullptr);
        continue;
      }
      double* own = grids_.Plane(--free);
      finished.curve = plane.curve;
      if (!inBands) {
        forward.Add(plane, own);
        spectra[spectraCount++] = own;
        finished.spectra = own;
      } else if (ConvolveBands(frame, plane, {grids_.Plane(0), grids_.Plane(1), own}, rows)) {
        finished.rows = own;
      }
    }
  }
  // None of a single channel in bands.
  if (forward.count > 0) {
    rows->Run(forward, run.source->height);
    ConvolveColumns(spectra, spectraCount, rows);
  }
  rows->Run(picture, run.dest->height);
  return kStatusOk;
}

std::int32_t FastBackend::ConvolveChannels(const RunImages& run, const Look& look,
                                           const Gamma& gamma, Rows* rows) {
  const std::int32_t prepared = PreparePlanes(1);
  if (prepared != kStatusOk) {
    return prepared;
  }
  const FastFrame frame = MakeFrame(look);
  double* plane = grids_.Plane(0);
  for (std::int32_t c = 0; c < ChannelsOf(run); ++c) {
    if (!HasChannel(run.channelMask, c)) {
      continue;
    }
    const ChannelGamma own = MakeChannelGamma(gamma, look.emphasisAlpha, c);
    ForwardPass<ChannelPlane> forward{frame};
    forward.Add({run.source, c, own}, plane);
    rows->Run(forward, run.source->height);
    ConvolveColumns({plane}, 1, rows);
    rows->Run(ChannelPass{frame, plane, c, own, run.dest}, run.dest->height);
  }
  return kStatusOk;
}

}  // namespace lx
