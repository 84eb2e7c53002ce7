// SPDX-License-Identifier: BSD-3-Clause
// The line operations of one form: for the sources that are compiled for one instruction set each.
//
// Form is a type of the source's own, and lanes how many doubles its vectors hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "fftkernels/fftkernels/vectors.h"
#include "fftkernels/mixed_radix/radices.h"
#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/backends/fast/pixel_operations_of.h"

namespace lx {

template <class Form, int lanes>
class LineOperationsOf {
 public:
  static constexpr LineOperations Table() {
    return {PixelOperationsOf<Form, lanes>::Read,
            PixelOperationsOf<Form, lanes>::Write,
            ForwardRows,
            InverseRows,
            Spread,
            Gather,
            Pack,
            Unpack,
            ConvolveColumns,
            ForwardColumns};
  }

 private:
  using L = Lanes<Form, double, lanes>;
  using V = typename L::Vector;
  using Stage = LinePlan::Stage;

  // Calls function(offset) for each vector of the eight lines.
  template <class Function>
  LX_ALWAYS_INLINE static void EachVector(Function function) {
    for (std::int32_t s = 0; s < kLines; s += lanes) {
      function(s);
    }
  }

  // The numbers of a small transform.
  template <int radix>
  struct Numbers {
    V re[radix];
    V im[radix];

    LX_ALWAYS_INLINE void Load(const double* from, std::ptrdiff_t step) {
      ForEach<radix>([&](auto j) __attribute__((always_inline)) {
        re[j] = L::Load(from + j * step);
        im[j] = L::Load(from + j * step + kLines);
      });
    }
    LX_ALWAYS_INLINE void Store(double* to, std::ptrdiff_t step) const {
      ForEach<radix>([&](auto j) __attribute__((always_inline)) {
        L::Store(to + j * step, re[j]);
        L::Store(to + j * step + kLines, im[j]);
      });
    }
    LX_ALWAYS_INLINE void Forward() { TransformRadix<radix>(re, im); }
    LX_ALWAYS_INLINE void Backward() { TransformRadix<radix>(im, re); }

    // All but the first, by the twiddles or back.
    LX_ALWAYS_INLINE void Turn(const double* twiddles) {
      ForEach<radix - 1>([&](auto k) __attribute__((always_inline)) {
        const double cosine = twiddles[2 * k];
        const double sine = twiddles[2 * k + 1];
        const V turned = re[k + 1] * cosine - im[k + 1] * sine;
        im[k + 1] = re[k + 1] * sine + im[k + 1] * cosine;
        re[k + 1] = turned;
      });
    }
    LX_ALWAYS_INLINE void TurnBack(const double* twiddles) {
      ForEach<radix - 1>([&](auto k) __attribute__((always_inline)) {
        const double cosine = twiddles[2 * k];
        const double sine = twiddles[2 * k + 1];
        const V turned = re[k + 1] * cosine + im[k + 1] * sine;
        im[k + 1] = im[k + 1] * cosine - re[k + 1] * sine;
        re[k + 1] = turned;
      });
    }
    LX_ALWAYS_INLINE void Multiply(const double* spectrum) {
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        const V byRe = L::Load(spectrum + k * kStride);
        const V byIm = L::Load(spectrum + k * kStride + kLines);
        const V product = re[k] * byRe - im[k] * byIm;
        im[k] = re[k] * byIm + im[k] * byRe;
        re[k] = product;
      });
    }
  };

  static constexpr std::int32_t TwiddlesOf(std::int32_t radix) { return 2 * (radix - 1); }

  // One stage over lines that stand behind each other.
  template <int radix, bool isForward>
  static void RunStage(const Stage& stage, std::int32_t lines, double* data) {
    const std::int32_t part = stage.length / radix;
    const std::ptrdiff_t step = std::ptrdiff_t{part} * kStride;
    for (std::int32_t line = 0; line < lines; ++line, data += radix * step) {
      const double* twiddles = stage.twiddles;
      for (std::int32_t j = 0; j < part; ++j, twiddles += TwiddlesOf(radix)) {
        EachVector([&](std::int32_t s) __attribute__((always_inline)) {
          double* at = data + std::ptrdiff_t{j} * kStride + s;
          Numbers<radix> numbers;
          numbers.Load(at, step);
          if constexpr (isForward) {
            numbers.Forward();
            numbers.Turn(twiddles);
          } else {
            numbers.TurnBack(twiddles);
            numbers.Backward();
          }
          numbers.Store(at, step);
        });
      }
    }
  }

  // The last stage, which has no twiddles.
  template <int radix, bool isForward>
  static void RunInnermost(std::int32_t lines, double* data) {
    for (std::int32_t line = 0; line < lines; ++line, data += radix * kStride) {
      EachVector([&](std::int32_t s) __attribute__((always_inline)) {
        Numbers<radix> numbers;
        numbers.Load(data + s, kStride);
        if constexpr (isForward) {
          numbers.Forward();
        } else {
          numbers.Backward();
        }
        numbers.Store(data + s, kStride);
      });
    }
  }

  // The last stage, the product, and the first stage back.
  template <int radix>
  static void RunProduct(std::int32_t lines, const double* spectrum, double* data) {
    for (std::int32_t line = 0; line < lines; ++line) {
      EachVector([&](std::int32_t s) __attribute__((always_inline)) {
        Numbers<radix> numbers;
        numbers.Load(data + s, kStride);
        numbers.Forward();
        numbers.Multiply(spectrum + s);
        numbers.Backward();
        numbers.Store(data + s, kStride);
      });
      data += radix * kStride;
      spectrum += radix * kStride;
    }
  }

  // The first stage, out of the rows of a block.
  template <int radix>
  static void RunFirst(const Stage& stage, const std::int32_t* source, const double* block,
                       double* data) {
    const std::int32_t part = stage.length / radix;
    const std::ptrdiff_t step = std::ptrdiff_t{part} * kStride;
    const double* twiddles = stage.twiddles;
    for (std::int32_t j = 0; j < part; ++j, twiddles += TwiddlesOf(radix)) {
      EachVector([&](std::int32_t s) __attribute__((always_inline)) {
        Numbers<radix> numbers;
        ForEach<radix>([&](auto r) __attribute__((always_inline)) {
          const std::int32_t row = source[j + r * part];
          numbers.re[r] = V{};
          numbers.im[r] = V{};
          if (row >= 0) {
            const double* from = block + std::ptrdiff_t{row} * kStride + s;
            numbers.re[r] = L::Load(from);
            numbers.im[r] = L::Load(from + kLines);
          }
        });
        numbers.Forward();
        numbers.Turn(twiddles);
        numbers.Store(data + std::ptrdiff_t{j} * kStride + s, step);
      });
    }
  }

  // The last stage back, into the rows that are wanted.
  template <int radix>
  static void RunLast(const Stage& stage, std::int32_t stored, const double* data, double* block) {
    const std::int32_t part = stage.length / radix;
    const std::ptrdiff_t step = std::ptrdiff_t{part} * kStride;
    const double* twiddles = stage.twiddles;
    for (std::int32_t j = 0; j < part; ++j, twiddles += TwiddlesOf(radix)) {
      EachVector([&](std::int32_t s) __attribute__((always_inline)) {
        Numbers<radix> numbers;
        numbers.Load(data + std::ptrdiff_t{j} * kStride + s, step);
        numbers.TurnBack(twiddles);
        numbers.Backward();
        double* to = block + std::ptrdiff_t{j} * kStride + s;
        ForEach<radix>([&](auto r) __attribute__((always_inline)) {
          if (j + r * part < stored) {
            L::Store(to + r * step, numbers.re[r]);
            L::Store(to + r * step + kLines, numbers.im[r]);
          }
        });
      });
    }
  }

  using StageFunction = void (*)(const Stage&, std::int32_t, double*);
  using InnermostFunction = void (*)(std::int32_t, double*);
  using ProductFunction = void (*)(std::int32_t, const double*, double*);
  using FirstFunction = void (*)(const Stage&, const std::int32_t*, const double*, double*);
  using LastFunction = void (*)(const Stage&, std::int32_t, const double*, double*);

  // What a radix runs by.
  struct Functions {
    StageFunction forward;
    StageFunction backward;
    InnermostFunction innermost;
    InnermostFunction innermostBackward;
    ProductFunction product;
    FirstFunction first;
    LastFunction last;
  };

  static const Functions& Of(const Stage& stage) {
    static constexpr auto kTable = []<int... r>(std::integer_sequence<int, r...>) {
      struct {
        Functions of[sizeof...(r)];
      } table{
          {{RunStage<r + 1, true>, RunStage<r + 1, false>, RunInnermost<r + 1, true>,
            RunInnermost<r + 1, false>, RunProduct<r + 1>, RunFirst<r + 1>, RunLast<r + 1>}...}};
      return table;
    }
    (std::make_integer_sequence<int, kLargestRadix>{});
    return kTable.of[stage.radix - 1];
  }

  // Calls function(line, length of a line) for each line of the first stage. All later stages go
  // through a line while it is in the nearest cache.
  template <class Function>
  LX_ALWAYS_INLINE static void EachPart(const LinePlan& plan, Function function) {
    const std::int32_t part = plan.stages[1].length;
    for (std::int32_t r = 0; r < plan.stages[0].radix; ++r) {
      function(std::ptrdiff_t{r} * part * kStride, part);
    }
  }

  static void StagesForward(const LinePlan& plan, std::int32_t length, double* data) {
    for (std::int32_t s = 1; s + 1 < plan.count; ++s) {
      const Stage& stage = plan.stages[static_cast<std::size_t>(s)];
      Of(stage).forward(stage, length / stage.length, data);
    }
  }

  static void StagesBackward(const LinePlan& plan, std::int32_t length, double* data) {
    for (std::int32_t s = plan.count - 2; s > 0; --s) {
      const Stage& stage = plan.stages[static_cast<std::size_t>(s)];
      Of(stage).backward(stage, length / stage.length, data);
    }
  }

  static const Stage& LastStage(const LinePlan& plan) {
    return plan.stages[static_cast<std::size_t>(plan.count - 1)];
  }

  static void ForwardParts(const LinePlan& plan, double* data) {
    const Stage& last = LastStage(plan);
    EachPart(plan, [&](std::ptrdiff_t at, std::int32_t length) {
      StagesForward(plan, length, data + at);
      Of(last).innermost(length / last.length, data + at);
    });
  }

  static void ForwardRows(const RowPlan& plan, double* buffer) {
    Of(plan.half.stages[0]).forward(plan.half.stages[0], 1, buffer);
    ForwardParts(plan.half, buffer);
    JoinSpectra(plan, buffer);
  }

  static void InverseRows(const RowPlan& plan, double* buffer) {
    PartSpectra(plan, buffer);
    const Stage& last = LastStage(plan.half);
    EachPart(plan.half, [&](std::ptrdiff_t at, std::int32_t length) {
      Of(last).innermostBackward(length / last.length, buffer + at);
      StagesBackward(plan.half, length, buffer + at);
    });
    Of(plan.half.stages[0]).backward(plan.half.stages[0], 1, buffer);
  }

  // From the spectrum z of a row taken as complex numbers to twice its own:
  //   2 x[k] = s + t, 2 x[half - k] = conj(s - t)
  //   s = z[k] + conj z[half - k],  t = -i exp(-2 pi i k / (2 half)) (z[k] - conj z[half - k])
  static void JoinSpectra(const RowPlan& plan, double* buffer) {
    for (std::int32_t c = 0; c < plan.coupleCount; ++c) {
      const RowPlan::Couple& couple = plan.couples[c];
      EachVector([&](std::int32_t s) __attribute__((always_inline)) {
        double* first = buffer + std::ptrdiff_t{couple.first} * kStride + s;
        double* second = buffer + std::ptrdiff_t{couple.second} * kStride + s;
        const V aRe = L::Load(first);
        const V aIm = L::Load(first + kLines);
        const V bRe = L::Load(second);
        const V bIm = L::Load(second + kLines);
        const V sumRe = aRe + bRe;
        const V sumIm = aIm - bIm;
        const V differenceRe = aRe - bRe;
        const V differenceIm = aIm + bIm;
        const V turnRe = differenceIm * couple.cosine - differenceRe * couple.sine;
        const V turnIm = differenceRe * couple.cosine + differenceIm * couple.sine;
        L::Store(first, sumRe + turnRe);
        L::Store(first + kLines, sumIm - turnIm);
        L::Store(second, sumRe - turnRe);
        L::Store(second + kLines, V{} - (sumIm + turnIm));
      });
    }
    EachVector([&](std::int32_t s) __attribute__((always_inline)) {
      double* highest = buffer + std::ptrdiff_t{plan.half.length} * kStride + s;
      double* lowest = buffer + s;
      const V re = L::Load(lowest);
      const V im = L::Load(lowest + kLines);
      L::Store(lowest, (re + im) * 2.0);
      L::Store(lowest + kLines, V{});
      L::Store(highest, (re - im) * 2.0);
      L::Store(highest + kLines, V{});
      TurnMiddle(plan, s, buffer);
    });
  }

  // The other way round:
  //   2 z[k] = s + i u, 2 z[half - k] = conj s + i conj u
  //   s = x[k] + conj x[half - k],  u = exp(2 pi i k / (2 half)) (x[k] - conj x[half - k])
  static void PartSpectra(const RowPlan& plan, double* buffer) {
    for (std::int32_t c = 0; c < plan.coupleCount; ++c) {
      const RowPlan::Couple& couple = plan.couples[c];
      EachVector([&](std::int32_t s) __attribute__((always_inline)) {
        double* first = buffer + std::ptrdiff_t{couple.first} * kStride + s;
        double* second = buffer + std::ptrdiff_t{couple.second} * kStride + s;
        const V aRe = L::Load(first);
        const V aIm = L::Load(first + kLines);
        const V bRe = L::Load(second);
        const V bIm = L::Load(second + kLines);
        const V sumRe = aRe + bRe;
        const V sumIm = aIm - bIm;
        const V differenceRe = aRe - bRe;
        const V differenceIm = aIm + bIm;
        const V turnRe = differenceRe * couple.cosine - differenceIm * couple.sine;
        const V turnIm = differenceIm * couple.cosine + differenceRe * couple.sine;
        L::Store(first, sumRe - turnIm);
        L::Store(first + kLines, sumIm + turnRe);
        L::Store(second, sumRe + turnIm);
        L::Store(second + kLines, turnRe - sumIm);
      });
    }
    EachVector([&](std::int32_t s) __attribute__((always_inline)) {
      const V low = L::Load(buffer + s);
      const V high = L::Load(buffer + std::ptrdiff_t{plan.half.length} * kStride + s);
      L::Store(buffer + s, low + high);
      L::Store(buffer + s + kLines, low - high);
      TurnMiddle(plan, s, buffer);
    });
  }

  // The frequency that is its own partner.
  LX_ALWAYS_INLINE static void TurnMiddle(const RowPlan& plan, std::int32_t s, double* buffer) {
    if (plan.middle >= 0) {
      double* middle = buffer + std::ptrdiff_t{plan.middle} * kStride + s;
      L::Store(middle, L::Load(middle) * 2.0);
      L::Store(middle + kLines, L::Load(middle + kLines) * -2.0);
    }
  }

  // to[i][l] = from[l][i], eight by eight.
  LX_ALWAYS_INLINE static void TransposeEight(const double* from, std::ptrdiff_t fromStride,
                                              double* to, std::ptrdiff_t toStride) {
    for (std::int32_t i = 0; i < kLines; i += lanes) {
      for (std::int32_t l = 0; l < kLines; l += lanes) {
        V rows[lanes];
        ForEach<lanes>([&](auto k) __attribute__((always_inline)) {
          rows[k] = L::Load(from + (l + k) * fromStride + i);
        });
        L::Transpose(rows);
        ForEach<lanes>([&](auto k) __attribute__((always_inline)) {
          L::Store(to + (i + k) * toStride + l, rows[k]);
        });
      }
    }
  }

  static void CopyRow(const double* from, double* to) {
    EachVector([&](std::int32_t s) __attribute__((always_inline)) {
      L::Store(to + s, L::Load(from + s));
      L::Store(to + s + kLines, L::Load(from + s + kLines));
    });
  }

  // Rows of a block that comes next, which no processor foresees. An address that does not exist
  // does no harm.
  template <int isForWriting>
  LX_ALWAYS_INLINE static void Prefetch(const double* rows, std::int32_t count) {
    for (std::int32_t at = 0; at < count * kStride; at += 8) {
      __builtin_prefetch(rows + at, isForWriting);
    }
  }

  // The buffer has room for whole blocks; what it holds behind the columns goes along.
  static void Spread(const double* buffer, std::int32_t columns, std::int32_t count,
                     std::ptrdiff_t blockStride, double* plane) {
    for (std::int32_t x = 0; x < columns; x += kLines) {
      Prefetch<1>(plane + 2 * blockStride, count);
      const double* from = buffer + std::ptrdiff_t{x} * kStride;
      if (count == kLines) {
        TransposeEight(from, kStride, plane, kStride);
        TransposeEight(from + kLines, kStride, plane + kLines, kStride);
      } else {
        double rows[kLines * kStride];
        TransposeEight(from, kStride, rows, kStride);
        TransposeEight(from + kLines, kStride, rows + kLines, kStride);
        for (std::int32_t y = 0; y < count; ++y) {
          CopyRow(rows + y * kStride, plane + y * kStride);
        }
      }
      plane += blockStride;
    }
  }

  static void Gather(const double* plane, std::int32_t columns, std::int32_t count,
                     std::ptrdiff_t blockStride, double* buffer) {
    double rows[kLines * kStride] = {};
    for (std::int32_t x = 0; x < columns; x += kLines) {
      Prefetch<0>(plane + 2 * blockStride, count);
      const double* from = plane;
      if (count < kLines) {
        for (std::int32_t y = 0; y < count; ++y) {
          CopyRow(plane + y * kStride, rows + y * kStride);
        }
        from = rows;
      }
      double* to = buffer + std::ptrdiff_t{x} * kStride;
      TransposeEight(from, kStride, to, kStride);
      TransposeEight(from + kLines, kStride, to + kLines, kStride);
      plane += blockStride;
    }
  }

  static void Pack(const double* rows, std::int32_t stride, std::int32_t count, double* buffer) {
    const std::int32_t whole = count - count % kLines;
    for (std::int32_t x = 0; x < whole; x += kLines) {
      TransposeEight(rows + x, stride, buffer + x * kLines, kLines);
    }
    for (std::int32_t x = whole; x < count; ++x) {
      for (std::int32_t y = 0; y < kLines; ++y) {
        buffer[x * kLines + y] = rows[y * stride + x];
      }
    }
  }

  static void Unpack(const double* buffer, std::int32_t stride, std::int32_t count, double* rows) {
    const std::int32_t whole = count - count % kLines;
    for (std::int32_t x = 0; x < whole; x += kLines) {
      TransposeEight(buffer + x * kLines, kLines, rows + x, stride);
    }
    for (std::int32_t x = whole; x < count; ++x) {
      for (std::int32_t y = 0; y < kLines; ++y) {
        rows[y * stride + x] = buffer[x * kLines + y];
      }
    }
  }

  static void ConvolveColumns(const LinePlan& plan, const ColumnRows& rows, const double* spectrum,
                              double* block, double* scratch) {
    const Stage& first = plan.stages[0];
    const Stage& last = LastStage(plan);
    Of(first).first(first, rows.source, block, scratch);
    EachPart(plan, [&](std::ptrdiff_t at, std::int32_t length) {
      StagesForward(plan, length, scratch + at);
      Of(last).product(length / last.length, spectrum + at, scratch + at);
      StagesBackward(plan, length, scratch + at);
    });
    Of(first).last(first, rows.stored, scratch, block);
  }

  static void ForwardColumns(const LinePlan& plan, const ColumnRows& rows, const double* block,
                             double* spectrum) {
    Of(plan.stages[0]).first(plan.stages[0], rows.source, block, spectrum);
    ForwardParts(plan, spectrum);
  }
};

}  // namespace lx
