#include "fftlib/backends/fast/fast_rows.h"

#include <algorithm>
#include <cstring>

#include "fftlib/planes/float_rows.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_kernels.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// Of eight rows, so that what goes between rows and lanes stays at hand.
constexpr std::int32_t kPiece = 64;
constexpr std::int32_t kPieces = kLines * kPiece;

// Calls function(y, rows wanted, rows granted) for the rows first to last, eight at a time. Asks
// before each row, up to the first refusal.
template <class Function>
void EachEight(std::int32_t first, std::int32_t last, Function function) {
  for (std::int32_t y = first; y <= last; y += kLines) {
    function(y, std::min(kLines, last - y + 1));
  }
}

// How many rows may be worked on.
std::int32_t AskFor(const Rows& rows, std::int32_t count) {
  std::int32_t granted = 0;
  while (granted < count && !rows.Cancelled()) {
    ++granted;
  }
  return granted;
}

// Calls fill(piece, row) for all pieces of eight rows and packs them. Rows behind count are zeros.
template <class Fill>
void PackRows(const FastFrame& frame, std::int32_t y, std::int32_t count, double* buffer,
              Fill fill) {
  double rows[kPieces];
  std::fill(rows + count * kPiece, rows + kPieces, 0.0);
  const std::int32_t width = frame.grids->Layout().frame.width;
  for (std::int32_t x = 0; x < width; x += kPiece) {
    const std::int32_t pixels = std::min(kPiece, width - x);
    for (std::int32_t r = 0; r < count; ++r) {
      fill(RowPiece{x, y + r, pixels}, rows + r * kPiece);
    }
    frame.kernels->pack(rows, kPiece, pixels, buffer + std::ptrdiff_t{x} * kLines);
  }
}

void ClearRows(const FastFrame& frame, std::int32_t count, double* plane) {
  const FastLayout& layout = frame.grids->Layout();
  for (std::int32_t b = 0; b < layout.Blocks() && count > 0; ++b) {
    std::fill_n(plane + b * layout.PlaneBlock(), std::ptrdiff_t{count} * kStride, 0.0);
  }
}

// Takes a plane back to numbers of a buffer, without its curve.
void Finish(const FastFrame& frame, const FinishedPlane& plane, bool isFloat, std::int32_t y,
            std::int32_t count, double* buffer) {
  const std::int32_t width = frame.grids->Layout().frame.width;
  const std::int32_t numbers = width * kLines;
  if (plane.spectra != nullptr) {
    TransformRowsBack(frame, frame.RowsOf(plane.spectra, y), count, buffer);
  } else if (plane.rows != nullptr) {
    std::memcpy(buffer, plane.rows + std::ptrdiff_t{y} * width,
                static_cast<std::size_t>(count) * static_cast<std::size_t>(width) * sizeof(double));
  } else {
    std::fill_n(buffer, numbers, plane.even);
    return;
  }
  if (!plane.curve.on) {
    return;
  }
  if (isFloat) {
    UndoOpenCurve(plane.curve, numbers, buffer);
  } else {
    GetRowKernels().undoCurve(plane.curve, buffer, 1.0, numbers, buffer);
  }
}

}  // namespace

void TransformRows(const FastFrame& frame, std::int32_t count, double* buffer, double* to) {
  const FastLayout& layout = frame.grids->Layout();
  const std::ptrdiff_t width = layout.frame.width;
  const auto repeat = [&](std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t from) {
    for (std::ptrdiff_t x = begin; x < end; ++x) {
      if (frame.edgeMode == kEdgeReplicate) {
        std::copy_n(buffer + from * kLines, kLines, buffer + x * kLines);
      } else {
        std::fill_n(buffer + x * kLines, kLines, 0.0);
      }
    }
  };
  // What is left of the frame comes round from the grid's other end.
  repeat(width, layout.width - frame.before, width - 1);
  repeat(layout.width - frame.before, layout.width, 0);
  const std::ptrdiff_t columns = frame.grids->Rows().Columns();
  std::fill(buffer + columns * kStride, buffer + layout.RowBuffer(), 0.0);
  frame.kernels->forwardRows(frame.grids->Rows(), buffer);
  frame.kernels->spread(buffer, layout.Columns(), count, layout.PlaneBlock(), to);
}

void TransformRowsBack(const FastFrame& frame, const double* from, std::int32_t count,
                       double* buffer) {
  const FastLayout& layout = frame.grids->Layout();
  frame.kernels->gather(from, layout.Columns(), count, layout.PlaneBlock(), buffer);
  frame.kernels->inverseRows(frame.grids->Rows(), buffer);
}

void PicturePlane::Fill(const FastFrame& frame, std::int32_t y, std::int32_t count,
                        double* buffer) const {
  const bool isFloat = source->sampleType == kSampleFloat;
  const auto fill = isFloat ? FillFromFloatPicture : FillFromPicture;
  PackRows(frame, y, count, buffer,
           [&](RowPiece piece, double* row) { fill(*source, channelBit, piece, row); });
  if (!curve.on) {
    return;
  }
  const std::int32_t numbers = frame.grids->Layout().frame.width * kLines;
  if (isFloat) {
    ApplyOpenCurve(curve, numbers, buffer);
  } else {
    GetRowKernels().applyCurve(curve, numbers, buffer);
  }
}

void ChannelPlane::Fill(const FastFrame& frame, std::int32_t y, std::int32_t count,
                        double* buffer) const {
  PackRows(frame, y, count, buffer, [&](RowPiece piece, double* row) {
    FillFromChannel(*source, channel, gamma, piece, row);
  });
}

template <class Plane>
void ForwardPass<Plane>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    for (std::size_t p = 0; p < count; ++p) {
      const std::int32_t granted = AskFor(rows, wanted);
      const Each& plane = planes[p];
      if (plane.to == nullptr) {
        continue;
      }
      if (granted > 0) {
        plane.from.Fill(frame, y, granted, scratch.Data());
        TransformRows(frame, granted, scratch.Data(), frame.RowsOf(plane.to, y));
      }
      ClearRows(frame, wanted - granted, frame.RowsOf(plane.to, y + granted));
    }
  });
}

template struct ForwardPass<PicturePlane>;
template struct ForwardPass<ChannelPlane>;

void PicturePass::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const FastLayout& layout = frame.grids->Layout();
  const bool isFloat = dest->sampleType == kSampleFloat;
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  const std::size_t planeCount = withAlpha ? 4 : 3;
  double pieces[4][kPieces];
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    const std::int32_t count = AskFor(rows, wanted);
    if (count == 0) {
      return;
    }
    for (std::size_t p = 0; p < planeCount; ++p) {
      Finish(frame, planes[p], isFloat, y, count,
             scratch.Data() + static_cast<std::ptrdiff_t>(p) * layout.RowBuffer());
    }
    for (std::int32_t x = 0; x < layout.frame.width; x += kPiece) {
      const std::int32_t pixels = std::min(kPiece, layout.frame.width - x);
      for (std::size_t p = 0; p < planeCount; ++p) {
        const double* buffer = scratch.Data() + static_cast<std::ptrdiff_t>(p) * layout.RowBuffer();
        frame.kernels->unpack(buffer + std::ptrdiff_t{x} * kLines, kPiece, pixels, pieces[p]);
      }
      for (std::int32_t r = 0; r < count; ++r) {
        const std::ptrdiff_t at = std::ptrdiff_t{r} * kPiece;
        const PlaneRow row{pieces[0] + at, pieces[1] + at, pieces[2] + at,
                           withAlpha ? pieces[3] + at : nullptr};
        const RowPiece piece{x, y + r, pixels};
        if (isFloat) {
          StoreToFloatPicture(row, piece, dest);
        } else {
          StoreToPicture(row, {1.0, 1.0, 1.0}, piece, SampleScale<std::uint32_t>::full, dest);
        }
      }
    }
  });
}

void ChannelPass::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const std::int32_t width = frame.grids->Layout().frame.width;
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  double piece[kPieces];
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    const std::int32_t count = AskFor(rows, wanted);
    if (count == 0) {
      return;
    }
    TransformRowsBack(frame, frame.RowsOf(spectra, y), count, scratch.Data());
    for (std::int32_t x = 0; x < width; x += kPiece) {
      const std::int32_t pixels = std::min(kPiece, width - x);
      frame.kernels->unpack(scratch.Data() + std::ptrdiff_t{x} * kLines, kPiece, pixels, piece);
      for (std::int32_t r = 0; r < count; ++r) {
        StoreToChannel(piece + std::ptrdiff_t{r} * kPiece, 1.0, channel, gamma, {x, y + r, pixels},
                       dest);
      }
    }
  });
}

}  // namespace lx
