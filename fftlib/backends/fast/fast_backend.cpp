#include "fftlib/backends/fast/fast_backend.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>

#include "fftlib/backends/fast/fast_columns.h"
#include "fftlib/backends/fast/fast_load.h"

namespace lx {
namespace {

std::int32_t ChannelsOf(const RunImages& run) {
  return std::min<std::int32_t>(run.source->channels, run.dest->channels);
}

}  // namespace

std::unique_ptr<Backend> FastFootprint::Make() {
  return std::unique_ptr<Backend>(new (std::nothrow) FastBackend);
}

GridSides FastBackend::GridOf(const ImageRec& mask, std::int32_t margin) const {
  const MaskExtent extent = FindExtent(mask);
  const MaskReach across = ReachOf(extent.left, extent.right, mask.width);
  const MaskReach down = ReachOf(extent.top, extent.bottom, mask.height);
  // What wraps around must not reach the frame.
  const std::int32_t needed =
      (std::max(across.before + across.after, down.before + down.after) + 1) / 2;
  return GridFor({mask.width, mask.height}, std::max(margin, needed));
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
  const MaskExtent extent = FindExtent(mask);
  across_ = ReachOf(extent.left, extent.right, mask.width);
  down_ = ReachOf(extent.top, extent.bottom, mask.height);
  LoadSpectrum(mask, extent, &grids_, kernels_, rows);
  isLoaded_ = true;
  return kStatusOk;
}

FastFrame FastBackend::MakeFrame(const Look& look) {
  PlaceFrameRows(grids_.Layout(), down_.before, look.edgeMode == kEdgeReplicate,
                 grids_.FrameSource());
  return {&grids_, &kernels_, look.edgeMode, across_.before};
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
  rows->Run(ConvolvePass{&grids_, &kernels_, planes, count}, grids_.Layout().Blocks());
}

std::int32_t FastBackend::Convolve(const RunImages& run, const Look& look, Rows* rows) {
  const bool withAlpha = ChannelsOf(run) >= 4 && (run.channelMask & kBitAlpha) != 0;
  const std::size_t count = withAlpha ? 4 : 3;
  const std::int32_t prepared = PreparePlanes(count);
  if (prepared != kStatusOk) {
    return prepared;
  }
  const FastFrame frame = MakeFrame(look);
  ForwardPass<PicturePlane> forward{frame, {}, count};
  PicturePass picture{frame, {}, withAlpha, run.dest};
  std::array<double*, FastLayout::kPlanes> planes{};
  for (std::size_t p = 0; p < count; ++p) {
    const std::uint32_t bit = 1U << p;
    const EmphasisCurve curve = HasCurve(bit, look)
                                    ? MakeEmphasisCurve(static_cast<double>(look.emphasis))
                                    : EmphasisCurve{};
    planes[p] = grids_.Plane(p);
    forward.planes[p] = {{run.source, bit, curve}, planes[p]};
    picture.planes[p] = {planes[p], nullptr, 0.0, curve};
  }
  rows->Run(forward, run.source->height);
  ConvolveColumns(planes, count, rows);
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
    ForwardPass<ChannelPlane> forward{frame, {}, 1};
    forward.planes[0] = {{run.source, c, own}, plane};
    rows->Run(forward, run.source->height);
    ConvolveColumns({plane}, 1, rows);
    rows->Run(ChannelPass{frame, plane, c, own, run.dest}, run.dest->height);
  }
  return kStatusOk;
}

}  // namespace lx
