#include "fftlib/backends/fast/fast_rows.h"

#include <algorithm>

#include "fftlib/planes/float_rows.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_kernels.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

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
    PackRows(frame, y, count, buffer, [&](RowPiece piece, double* row) {
      std::copy_n(plane.rows + std::ptrdiff_t{piece.y} * width + piece.x, piece.width, row);
    });
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

std::int32_t AskFor(const Rows& rows, std::int32_t count) {
  std::int32_t granted = 0;
  while (granted < count && !rows.Cancelled()) {
    ++granted;
  }
  return granted;
}

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
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    const std::int32_t count = AskFor(rows, wanted);
    if (count == 0) {
      return;
    }
    TransformRowsBack(frame, frame.RowsOf(spectra, y), count, scratch.Data());
    UnpackRows(frame, scratch.Data(), y, count, [&](RowPiece piece, const double* row) {
      StoreToChannel(row, 1.0, channel, gamma, piece, dest);
    });
  });
}

}  // namespace lx
