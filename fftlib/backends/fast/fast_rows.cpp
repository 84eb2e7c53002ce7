// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/fast_rows.h"

#include <algorithm>
#include <bit>

#include "fftlib/planes/float_rows.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_operations.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// Whether the operations read and write its pixels all planes at once.
bool IsPacked(const ImageRec& image) {
  return image.sampleType == kSampleU16 && image.channels == 4;
}

// Eight rows of such an image; behind count the first once more.
PixelRows RowsAt(const ImageRec& image, std::int32_t y, std::int32_t count) {
  PixelRows rows{};
  for (std::int32_t r = 0; r < kLines; ++r) {
    rows[static_cast<std::size_t>(r)] = static_cast<std::uint16_t*>(image.data) +
                                        std::ptrdiff_t{r < count ? y + r : y} * image.width * 4;
  }
  return rows;
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
    GetRowOperations().undoCurve(plane.curve, buffer, 1.0, numbers, buffer);
  }
}

}  // namespace

std::int32_t AskFor(const Rows& rows, std::int32_t count) {
  std::int32_t granted = 0;
  // Once for each row, though eight are worked on at once.
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
  frame.operations->forwardRows(frame.grids->Rows(), buffer);
  frame.operations->spread(buffer, layout.Columns(), count, layout.PlaneBlock(), to);
}

void TransformRowsBack(const FastFrame& frame, const double* from, std::int32_t count,
                       double* buffer) {
  const FastLayout& layout = frame.grids->Layout();
  frame.operations->gather(from, layout.Columns(), count, layout.PlaneBlock(), buffer);
  frame.operations->inverseRows(frame.grids->Rows(), buffer);
}

void FillBuffers(const FastFrame& frame, std::span<const PicturePlane> planes, std::int32_t y,
                 std::int32_t count, const PlaneBuffers& buffers) {
  const ImageRec& source = *planes[0].source;
  const bool isFloat = source.sampleType == kSampleFloat;
  const std::int32_t width = frame.grids->Layout().frame.width;
  const bool atOnce = IsPacked(source);
  if (atOnce) {
    PlaneBuffers byChannel{};
    for (std::size_t p = 0; p < planes.size(); ++p) {
      byChannel[static_cast<std::size_t>(std::countr_zero(planes[p].channelBit))] = buffers[p];
    }
    frame.operations->readPixels(RowsAt(source, y, count), width, byChannel);
  }
  for (std::size_t p = 0; p < planes.size(); ++p) {
    const PicturePlane& plane = planes[p];
    if (buffers[p] == nullptr) {
      continue;
    }
    if (!atOnce) {
      const auto fill = isFloat ? FillFromFloatPicture : FillFromPicture;
      PackRows(frame, y, count, buffers[p],
               [&](RowPiece piece, double* row) { fill(source, plane.channelBit, piece, row); });
    }
    if (plane.curve.on && isFloat) {
      ApplyOpenCurve(plane.curve, width * kLines, buffers[p]);
    } else if (plane.curve.on) {
      GetRowOperations().applyCurve(plane.curve, width * kLines, buffers[p]);
    }
  }
}

void FillBuffers(const FastFrame& frame, std::span<const ChannelPlane> planes, std::int32_t y,
                 std::int32_t count, const PlaneBuffers& buffers) {
  for (std::size_t p = 0; p < planes.size() && buffers[p] != nullptr; ++p) {
    PackRows(frame, y, count, buffers[p], [&](RowPiece piece, double* row) {
      FillFromChannel(*planes[p].source, planes[p].channel, planes[p].gamma, piece, row);
    });
  }
}

template <class Plane>
void ForwardPass<Plane>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const std::ptrdiff_t bufferSize = frame.grids->Layout().RowBuffer();
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    PlaneBuffers buffers{};
    std::array<std::int32_t, FastLayout::kPlanes> granted{};
    for (std::size_t p = 0; p < count; ++p) {
      granted[p] = AskFor(rows, wanted);
      if (to[p] != nullptr && granted[p] > 0) {
        buffers[p] = scratch.Data() + static_cast<std::ptrdiff_t>(p) * bufferSize;
      }
    }
    FillBuffers(frame, std::span(from).first(count), y, wanted, buffers);
    for (std::size_t p = 0; p < count; ++p) {
      if (buffers[p] != nullptr) {
        TransformRows(frame, granted[p], buffers[p], frame.RowsOf(to[p], y));
      }
      if (to[p] != nullptr) {
        ClearRows(frame, wanted - granted[p], frame.RowsOf(to[p], y + granted[p]));
      }
    }
  });
}

template struct ForwardPass<PicturePlane>;
template struct ForwardPass<ChannelPlane>;

void PicturePass::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const bool isFloat = dest->sampleType == kSampleFloat;
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  PlaneBuffers buffers{};
  for (std::size_t p = 0; p < count; ++p) {
    buffers[p] =
        scratch.Data() + static_cast<std::ptrdiff_t>(p) * frame.grids->Layout().RowBuffer();
  }
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    const std::int32_t granted = AskFor(rows, wanted);
    if (granted == 0) {
      return;
    }
    for (std::size_t p = 0; p < count; ++p) {
      Finish(frame, planes[p], isFloat, y, granted, buffers[p]);
    }
    if (IsPacked(*dest)) {
      frame.operations->writePixels(buffers, dest->width, granted, RowsAt(*dest, y, granted));
    } else {
      StoreByPieces(buffers, y, granted);
    }
  });
}

void PicturePass::StoreByPieces(const PlaneBuffers& buffers, std::int32_t y,
                                std::int32_t rows) const {
  double pieces[4][kPieces];
  for (std::int32_t x = 0; x < dest->width; x += kPiece) {
    const std::int32_t pixels = std::min<std::int32_t>(kPiece, dest->width - x);
    for (std::size_t p = 0; p < count; ++p) {
      frame.operations->unpack(buffers[p] + std::ptrdiff_t{x} * kLines, kPiece, pixels, pieces[p]);
    }
    for (std::int32_t r = 0; r < rows; ++r) {
      const std::ptrdiff_t at = std::ptrdiff_t{r} * kPiece;
      const PlaneRow row{pieces[0] + at, pieces[1] + at, pieces[2] + at,
                         count == 4 ? pieces[3] + at : nullptr};
      const RowPiece piece{x, y + r, pixels};
      if (dest->sampleType == kSampleFloat) {
        StoreToFloatPicture(row, piece, dest);
      } else {
        StoreToPicture(row, {1.0, 1.0, 1.0}, piece, SampleScale<std::uint32_t>::full, dest);
      }
    }
  }
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
