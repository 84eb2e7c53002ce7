// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/kernels/kernel_backend.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "baselib/utils/convert.h"
#include "baselib/utils/heap.h"
#include "fftlib/backends/kernels/kernel_passes.h"
#include "fftlib/psf/normalise.h"

namespace lx {
namespace {

constexpr std::int32_t kPlanes = 4;

std::ptrdiff_t SampleCount(const Size& size) { return std::ptrdiff_t{size.width} * size.height; }

// 2^30 at most.
template <class T>
std::uint32_t GridBytes(const Size& size) {
  return static_cast<std::uint32_t>(static_cast<std::size_t>(SampleCount(size)) *
                                    sizeof(ComplexSample<T>));
}

template <class T>
void ClearGrid(ComplexSample<T>* grid, const Size& size) {
  std::memset(static_cast<void*>(grid), 0, GridBytes<T>(size));
}

// A status.
template <class T>
std::int32_t PrepareGrid(ComplexSample<T>** grid, const Size& size, bool clear) {
  if (*grid != nullptr) {
    return kStatusOk;
  }
  *grid = static_cast<ComplexSample<T>*>(lx_aligned_malloc(GridBytes<T>(size), -1, true));
  if (*grid == nullptr) {
    return kStatusNoMemory;
  }
  if (clear) {
    ClearGrid(*grid, size);
  }
  return kStatusOk;
}

// A finished plane goes to its result, and chroma leaves a grid of zeros. What is given back is for
// the next plane's input pass to keep, which does the one on every way, and the other by itself
// where it writes the whole grid.
template <class T>
ComplexGrid<T> FinishPlane(const ComplexGrid<T>& work, const GridPlace& place, bool isLuma,
                           bool isForNextPass, const ComplexGrid<T>& result) {
  if (isForNextPass) {
    return result;
  }
  KeepKernelRows(work, place, 0, place.frame.height - 1, result);
  // Intended: not after luma. With margins of zero its residue goes into the plane of Cr, and
  // alpha's into the next frame's luma.
  if (!isLuma) {
    ClearGrid(work.samples, work.size);
  }
  return {};
}

}  // namespace

template <class T>
std::unique_ptr<Backend> KernelFootprint<T>::Make() {
  return std::unique_ptr<Backend>(new (std::nothrow) KernelBackend<T>);
}

template std::unique_ptr<Backend> KernelFootprint<float>::Make();
template std::unique_ptr<Backend> KernelFootprint<double>::Make();

template <class T>
void KernelBackend<T>::FreeGrids() {
  for (ComplexSample<T>** grid :
       {&grids_.psf, &grids_.work, &grids_.luma, &grids_.cr, &grids_.cb}) {
    lx_aligned_free(*grid, true);
    *grid = nullptr;
  }
}

template <class T>
std::int32_t KernelBackend<T>::Load(const ImageRec& mask, const GridPlace& place, Rows* rows) {
  for (ComplexSample<T>** grid : {&grids_.psf, &grids_.work}) {
    const std::int32_t prepared = PrepareGrid(grid, place.grid, true);
    if (prepared != kStatusOk) {
      return prepared;
    }
  }
  const ComplexGrid<T> psf{grids_.psf, place.grid};
  // Intended: only the frame's rectangle is written. What the last load left outside it
  // goes into the new PSF.
  rows->Run(KernelMaskInput<T>{&mask, place, psf}, mask.height);
  // Intended: the factor is a float in both precisions.
  const std::int32_t shifted =
      NormaliseAndShift(psf.samples, psf.size.width, psf.size.height,
                        [](double scale) { return static_cast<T>(NarrowToFloat(scale)); });
  if (shifted != kStatusOk) {
    return shifted;
  }
  // The spectrum is scaled here, so that runs need not scale what they make of it.
  RunLines<T>(psf, &LineTransforms<T>::forward, rows);
  if (rows->Status() == kStatusOk) {
    RunLines<T>(psf, &LineTransforms<T>::scale, rows);
  }
  return rows->Status();
}

// From an input pass to the inverse transform, in the work grid.
template <class T>
template <class Input>
std::int32_t KernelBackend<T>::TransformPlane(const Input& input, const GridPlace& place,
                                              Rows* rows) {
  const ComplexGrid<T> work = Work(place);
  rows->Run(input, place.frame.height);
  RunLines<T>(work, &LineTransforms<T>::forward, rows);
  if (rows->Status() != kStatusOk) {
    return rows->Status();
  }
  rows->Run(MultiplyRows<T>{work, grids_.psf}, work.size.height);
  RunLines<T>(work, &LineTransforms<T>::inverse, rows);
  return rows->Status();
}

template <class T>
std::int32_t KernelBackend<T>::Convolve(const RunImages& run, const Look& look, Rows* rows) {
  const Size& size = run.place.grid;
  const std::int32_t channels = std::min<std::int32_t>(run.source->channels, run.dest->channels);
  const bool withAlpha = channels >= kPlanes && (run.channelMask & kBitAlpha) != 0;
  const std::int32_t planes = withAlpha ? kPlanes : kPlanes - 1;
  const ComplexGrid<T> work = Work(run.place);
  ComplexSample<T>** const results[] = {&grids_.luma, &grids_.cr, &grids_.cb};
  ComplexGrid<T> kept;
  for (std::int32_t c = 0; c < planes; ++c) {
    const std::uint32_t bit = 1U << static_cast<std::uint32_t>(c);
    if (look.edgeMode == kEdgeZero && (bit == kBitCr || bit == kBitCb)) {
      // Chroma's zero. Intended: the transform library's back-end pads with 0 here too.
      std::for_each_n(work.samples, SampleCount(size),
                      [](ComplexSample<T>& sample) { sample.re = static_cast<T>(0.5); });
    }
    const std::int32_t transformed = TransformPlane(
        KernelPlaneInput<T>{run.source, run.place, bit, look, work, kept}, run.place, rows);
    kept = {};
    if (transformed != kStatusOk) {
      return transformed;
    }
    if (bit == kBitAlpha) {
      continue;
    }
    const std::int32_t prepared = PrepareGrid(results[c], size, false);
    if (prepared != kStatusOk) {
      return prepared;
    }
    const bool isForNextPass = c < planes - 1 && look.edgeMode == kEdgeReplicate;
    kept = FinishPlane(work, run.place, bit == kBitLuma, isForNextPass, {*results[c], size});
  }
  rows->Run(KernelPictureOutput<T>{{grids_.luma, size},
                                   {grids_.cr, size},
                                   {grids_.cb, size},
                                   work,
                                   run.place,
                                   withAlpha,
                                   look,
                                   run.dest},
            run.dest->height);
  return kStatusOk;
}

template <class T>
std::int32_t KernelBackend<T>::ConvolveChannels(const RunImages& run, const Look& look,
                                                const Gamma& /*gamma*/, Rows* rows) {
  const ComplexGrid<T> work = Work(run.place);
  const std::int32_t channels = std::min<std::int32_t>(run.source->channels, run.dest->channels);
  for (std::int32_t c = 0; c < channels; ++c) {
    if (!HasChannel(run.channelMask, c)) {
      continue;
    }
    const std::int32_t transformed = TransformPlane(
        KernelChannelInput<T>{run.source, run.place, c, look.edgeMode, work}, run.place, rows);
    if (transformed != kStatusOk) {
      return transformed;
    }
    rows->Run(KernelChannelOutput<T>{work, run.place, c, run.dest}, run.dest->height);
  }
  return kStatusOk;
}

template class KernelBackend<float>;
template class KernelBackend<double>;

}  // namespace lx
