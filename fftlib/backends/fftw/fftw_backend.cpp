// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/fftw_backend.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/backends/fftw/fftw_passes.h"
#include "fftlib/psf/normalise.h"

namespace lx {
namespace {

constexpr std::int32_t kPlanes = 4;

EmphasisCurve CurveOf(std::uint32_t channelBit, const Look& look) {
  return HasCurve(channelBit, look) ? MakeEmphasisCurve(static_cast<double>(look.emphasis))
                                    : EmphasisCurve{};
}

}  // namespace

FftwBackend::~FftwBackend() { library_.KeepWisdom(); }

std::unique_ptr<Backend> FftwFootprint::Make() {
  return std::unique_ptr<Backend>(new (std::nothrow) FftwBackend);
}

bool FftwBackend::IsLoaded() const {
  return grids_.psfSpatial != nullptr && grids_.psfSpectrum != nullptr && grids_.psfPlan != nullptr;
}

std::int32_t FftwBackend::Load(const ImageRec& mask, const GridPlace& place, Rows* rows) {
  const std::int32_t side = place.grid.width;
  const std::int32_t prepared = grids_.PreparePsf(side, &library_);
  if (prepared != kStatusOk) {
    return prepared;
  }
  // Intended: only the frame's rectangle is written. What the last load left outside it
  // goes into the new PSF.
  rows->Run(MaskInput{&mask, place, grids_.psfSpatial}, mask.height);
  const std::int32_t shifted = NormaliseAndShiftPsf(grids_.psfSpatial, side, side);
  if (shifted == kStatusOk) {
    GetFftCalls().execute(grids_.psfPlan);
  }
  return shifted;
}

// From an input pass to the inverse transform, which leaves the plane in workSpatial.
template <class Input>
void FftwBackend::TransformPlane(const Input& input, const GridPlace& place, Rows* rows) {
  rows->Run(input, place.frame.height);
  GetFftCalls().execute(grids_.forwardPlan);
  rows->Run(MultiplySpectra{grids_.psfSpectrum, grids_.workSpectrum, place.grid.height / 2 + 1},
            place.grid.height);
  GetFftCalls().execute(grids_.inversePlan);
}

std::int32_t FftwBackend::Convolve(const RunImages& run, const Look& look, Rows* rows) {
  const std::int32_t side = run.place.grid.width;
  // Every plane overwrites the work grids whole, so they need no clearing.
  const std::int32_t prepared = grids_.PrepareWork(side, false, &library_);
  if (prepared != kStatusOk) {
    return prepared;
  }
  const std::int32_t channels =
      std::min<std::int32_t>({run.source->channels, run.dest->channels, kPlanes});
  double** const results[] = {&grids_.lumaResult, &grids_.crResult, &grids_.cbResult};
  double* kept = nullptr;
  bool withAlpha = false;
  for (std::int32_t c = 0; c < channels; ++c) {
    const std::uint32_t bit = 1U << static_cast<std::uint32_t>(c);
    if ((run.channelMask & bit) == 0) {
      continue;
    }
    TransformPlane(PlaneInput{run.source, run.place, bit, CurveOf(bit, look), look.edgeMode,
                              grids_.workSpatial, kept},
                   run.place, rows);
    kept = nullptr;
    withAlpha = bit == kBitAlpha;
    if (c < 3) {
      const std::int32_t made = FftGrids::PrepareResult(side, results[c]);
      if (made != kStatusOk) {
        return made;
      }
      kept = *results[c];
    }
  }
  // No input pass comes behind the last plane to keep it. Alpha is read where it is.
  KeepRows(grids_.workSpatial, run.place, 0, run.place.frame.height - 1, kept);
  rows->Run(PictureOutput{grids_.lumaResult, grids_.crResult, grids_.cbResult,
                          withAlpha ? grids_.workSpatial : nullptr, run.place,
                          MakeEmphasisCurve(static_cast<double>(look.emphasis)), look.emphasisAlpha,
                          run.dest},
            run.dest->height);
  return kStatusOk;
}

std::int32_t FftwBackend::ConvolveChannels(const RunImages& run, const Look& look,
                                           const Gamma& gamma, Rows* rows) {
  const std::int32_t prepared = grids_.PrepareWork(run.place.grid.width, true, &library_);
  if (prepared != kStatusOk) {
    return prepared;
  }
  const std::int32_t channels = std::min<std::int32_t>(run.source->channels, run.dest->channels);
  for (std::int32_t c = 0; c < channels; ++c) {
    if (!HasChannel(run.channelMask, c)) {
      continue;
    }
    const ChannelGamma ownGamma = MakeChannelGamma(gamma, look.emphasisAlpha, c);
    // Intended: the work grids are not cleared between channels; with margins of zero
    // they hold what the channel before left there.
    TransformPlane(
        ChannelInput{run.source, run.place, c, ownGamma, look.edgeMode, grids_.workSpatial},
        run.place, rows);
    rows->Run(ChannelOutput{grids_.workSpatial, run.place, c, ownGamma, run.dest},
              run.dest->height);
  }
  return kStatusOk;
}

}  // namespace lx
