// SPDX-License-Identifier: BSD-3-Clause
// The transforms of all sizes, for every width of vectors.
//
// A block of n is split by passes over the whole of it, radix parts at a time, until its parts are
// leaves: width x radix values, which are loaded once and finished in registers. The passes read
// and write whole vectors, j being the lane. In the leaf j runs over the lanes first; then its
// rows are transposed, so that the lanes are blocks of their own.
//
// Between the passes numbers do not lie as pairs but as runs, a vector of real parts and a
// vector of imaginary ones, in the same place. Only what enters and what leaves is in pairs.
#pragma once

#include "fftkernels/fftkernels/butterflies.h"
#include "fftkernels/fftkernels/split_order.h"
#include "fftkernels/fftkernels/twiddles.h"
#include "fftkernels/fftkernels/vectors.h"

namespace lx {

// The largest m of the turns w^(m j) between a pass and its parts.
template <int radix>
constexpr int LargestTurn() {
  int largest = 0;
  for (const SplitOrder order : {SplitOrder::kDown, SplitOrder::kTurn}) {
    for (const int shift : PartsOf<radix>(order).shift) {
      largest = shift > largest ? shift : -shift > largest ? -shift : largest;
    }
  }
  return largest;
}

// How complex numbers lie: in runs of so many real parts and so many imaginary ones. In runs of
// one they are pairs.
inline constexpr int kPairs = 1;

//   Form::kLanes<T>  numbers of a vector of that processor, a power of two
template <class Form, class T>
class Transforms {
 public:
  // Fills the tables of all sizes up to n. Before any other call, once.
  template <int n>
  static void FillTables() {
    if constexpr (n >= 2) {
      FillComplexTables<n, LeafWidth(n)>();
      FillRealTable<n>();
      FillTables<n / 2>();
    }
  }

  // n complex numbers, from natural order into the order of frequencies.
  template <int n>
  static void Forward(T* data) {
    ForwardBlock<SplitOrder::kDown, n, LeafSize(n), kPairs>(data);
  }

  // And back, n times the numbers.
  template <int n>
  static void Inverse(T* data) {
    InverseBlock<SplitOrder::kDown, n, LeafSize(n), kPairs>(data);
  }

  template <int n>
  static void ForwardReal(T* data) {
    ForwardRealBlock<n, kPairs>(data);
  }

  template <int n>
  static void InverseReal(T* data) {
    InverseRealBlock<n, kPairs>(data);
  }

 private:
  static constexpr int kLanes = Form::template kLanes<T>;
  template <int lanes>
  using Vectors = Lanes<Form, T, lanes>;

  // A leaf's rows hold so many numbers. More than eight rows of eight would not stay in
  // registers.
  static constexpr int LeafWidth(int n) {
    int width = kLanes < 8 ? kLanes : 8;
    while (width > 1 && (width * width > n || n < 16)) {
      width /= 2;
    }
    return width;
  }
  static constexpr int LeafRadix(int n) {
    const int most = LeafWidth(n) == 1 ? 16 : 8;
    return n / LeafWidth(n) < most ? n / LeafWidth(n) : most;
  }
  static constexpr int LeafSize(int n) { return LeafWidth(n) * LeafRadix(n); }

  // The parts of a block that is so many leaves. Never two passes where one can do it.
  static constexpr int PassRadix(int leaves) { return leaves == 16 ? 4 : leaves < 8 ? leaves : 8; }

  template <int block, int radix, int lanes>
  struct Turns {
    static constexpr int kLargest = LargestTurn<radix>();
    static constexpr int kCount = block / radix;
    alignas(64) static inline T values[2 * kLargest * kCount];
  };

  // One table serves the passes of a real transform.
  template <int n, int lanes>
  struct RealTurns {
    alignas(64) static inline T values[n / 2];
  };

  template <int lanes, int run>
  LX_ALWAYS_INLINE static void LoadRun(const T* data, int j, typename Vectors<lanes>::Vector& re,
                                       typename Vectors<lanes>::Vector& im) {
    if constexpr (run == kPairs) {
      Vectors<lanes>::LoadPairs(data + 2 * j, re, im);
    } else {
      const T* start = data + 2 * (j / run * run) + j % run;
      re = Vectors<lanes>::Load(start);
      im = Vectors<lanes>::Load(start + run);
    }
  }

  template <int lanes, int run>
  LX_ALWAYS_INLINE static void StoreRun(T* data, int j, typename Vectors<lanes>::Vector re,
                                        typename Vectors<lanes>::Vector im) {
    if constexpr (run == kPairs) {
      Vectors<lanes>::StorePairs(data + 2 * j, re, im);
    } else {
      T* start = data + 2 * (j / run * run) + j % run;
      Vectors<lanes>::Store(start, re);
      Vectors<lanes>::Store(start + run, im);
    }
  }

  // Multiplies by w^(shift j), or by its inverse, from a row of a table of turns.
  template <int shift, int direction, int lanes, class V>
  LX_ALWAYS_INLINE static void Turn(const T* row, V& re, V& im) {
    if constexpr (shift != 0) {
      constexpr int kTurn = shift < 0 ? -shift : shift;
      const V cosine = Vectors<lanes>::Load(row + 2 * lanes * (kTurn - 1));
      const V sine = Vectors<lanes>::Load(row + 2 * lanes * (kTurn - 1) + lanes);
      const V a = re;
      const V b = im;
      if constexpr ((shift > 0) == (direction == kForward)) {
        re = a * cosine - b * sine;
        im = b * cosine + a * sine;
      } else {
        re = a * cosine + b * sine;
        im = b * cosine - a * sine;
      }
    }
  }

  template <SplitOrder order, int block, int radix, int runIn, int runOut>
  [[gnu::noinline]] static void ForwardPass(T* data) {
    using V = typename Vectors<kLanes>::Vector;
    constexpr SplitParts<radix> kParts = PartsOf<radix>(order);
    constexpr int kStride = block / radix;
    using Table = Turns<block, radix, kLanes>;
    const T* row = Table::values;
    for (int j = 0; j < kStride; j += kLanes, row += 2 * kLanes * Table::kLargest) {
      V re[radix];
      V im[radix];
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        LoadRun<kLanes, runIn>(data, j + k * kStride, re[k], im[k]);
      });
      TransformValues<T, order, radix, kForward>(re, im);
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        Turn<kParts.shift[k], kForward, kLanes>(row, re[k], im[k]);
        StoreRun<kLanes, runOut>(data, j + k * kStride, re[k], im[k]);
      });
    }
  }

  template <SplitOrder order, int block, int radix, int runIn, int runOut>
  [[gnu::noinline]] static void InversePass(T* data) {
    using V = typename Vectors<kLanes>::Vector;
    constexpr SplitParts<radix> kParts = PartsOf<radix>(order);
    constexpr int kStride = block / radix;
    using Table = Turns<block, radix, kLanes>;
    const T* row = Table::values;
    for (int j = 0; j < kStride; j += kLanes, row += 2 * kLanes * Table::kLargest) {
      V re[radix];
      V im[radix];
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        LoadRun<kLanes, runIn>(data, j + k * kStride, re[k], im[k]);
        Turn<kParts.shift[k], kInverse, kLanes>(row, re[k], im[k]);
      });
      TransformValues<T, order, radix, kInverse>(re, im);
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        StoreRun<kLanes, runOut>(data, j + k * kStride, re[k], im[k]);
      });
    }
  }

  // Among blocks whose values stand in lanes, those of kTurn have another order than kDown.
  //   first  the block of lane 0 among the parts
  template <SplitOrder order, int radix, int width, int first, class V>
  LX_ALWAYS_INLINE static void ExchangeOrders(V* rows) {
    ForEach<width>([&](auto p) __attribute__((always_inline)) {
      constexpr int kPartner = PlaceInOtherOrder<width>(p);
      if constexpr (kPartner > p) {
        const V a = rows[p];
        const V b = rows[kPartner];
        constexpr auto kPick = [](int l) {
          return PartsOf<radix>(order).of[first + l] == SplitOrder::kTurn ? width + l : l;
        };
        rows[p] = Vectors<width>::Pick(a, b, kPick);
        rows[kPartner] = Vectors<width>::Pick(b, a, kPick);
      }
    });
  }

  template <SplitOrder order, int width, int radix, int runIn>
  [[gnu::noinline]] static void ForwardLeaf(T* data) {
    using V = typename Vectors<width>::Vector;
    constexpr SplitParts<radix> kParts = PartsOf<radix>(order);
    V re[radix];
    V im[radix];
    ForEach<radix>([&](auto k) __attribute__((always_inline)) {
      LoadRun<width, runIn>(data, k * width, re[k], im[k]);
    });
    TransformValues<T, order, radix, kForward>(re, im);
    if constexpr (width > 1) {
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        Turn<kParts.shift[k], kForward, width>(Turns<width * radix, radix, width>::values, re[k],
                                               im[k]);
      });
      ForEach<radix / width>([&](auto group) __attribute__((always_inline)) {
        constexpr int kFirst = group * width;
        Vectors<width>::Transpose(re + kFirst);
        Vectors<width>::Transpose(im + kFirst);
        TransformValues<T, SplitOrder::kDown, width, kForward>(re + kFirst, im + kFirst);
        ExchangeOrders<order, radix, width, kFirst>(re + kFirst);
        ExchangeOrders<order, radix, width, kFirst>(im + kFirst);
        Vectors<width>::Transpose(re + kFirst);
        Vectors<width>::Transpose(im + kFirst);
      });
    }
    ForEach<radix>([&](auto k) __attribute__((always_inline)) {
      StoreRun<width, kPairs>(data, k * width, re[k], im[k]);
    });
  }

  template <SplitOrder order, int width, int radix, int runOut>
  [[gnu::noinline]] static void InverseLeaf(T* data) {
    using V = typename Vectors<width>::Vector;
    constexpr SplitParts<radix> kParts = PartsOf<radix>(order);
    V re[radix];
    V im[radix];
    ForEach<radix>([&](auto k) __attribute__((always_inline)) {
      LoadRun<width, kPairs>(data, k * width, re[k], im[k]);
    });
    if constexpr (width > 1) {
      ForEach<radix / width>([&](auto group) __attribute__((always_inline)) {
        constexpr int kFirst = group * width;
        Vectors<width>::Transpose(re + kFirst);
        Vectors<width>::Transpose(im + kFirst);
        ExchangeOrders<order, radix, width, kFirst>(re + kFirst);
        ExchangeOrders<order, radix, width, kFirst>(im + kFirst);
        TransformValues<T, SplitOrder::kDown, width, kInverse>(re + kFirst, im + kFirst);
        Vectors<width>::Transpose(re + kFirst);
        Vectors<width>::Transpose(im + kFirst);
      });
      ForEach<radix>([&](auto k) __attribute__((always_inline)) {
        Turn<kParts.shift[k], kInverse, width>(Turns<width * radix, radix, width>::values, re[k],
                                               im[k]);
      });
    }
    TransformValues<T, order, radix, kInverse>(re, im);
    ForEach<radix>([&](auto k) __attribute__((always_inline)) {
      StoreRun<width, runOut>(data, k * width, re[k], im[k]);
    });
  }

  template <SplitOrder order, int block, int leaf, int runIn>
  static void ForwardBlock(T* data) {
    if constexpr (block == leaf) {
      ForwardLeaf<order, LeafWidth(leaf), LeafRadix(leaf), runIn>(data);
    } else {
      constexpr int kRadix = PassRadix(block / leaf);
      constexpr SplitParts<kRadix> kParts = PartsOf<kRadix>(order);
      ForwardPass<order, block, kRadix, runIn, kLanes>(data);
      ForEach<kRadix>([&](auto k) {
        ForwardBlock<kParts.of[k], block / kRadix, leaf, kLanes>(data + 2 * k * (block / kRadix));
      });
    }
  }

  template <SplitOrder order, int block, int leaf, int runOut>
  static void InverseBlock(T* data) {
    if constexpr (block == leaf) {
      InverseLeaf<order, LeafWidth(leaf), LeafRadix(leaf), runOut>(data);
    } else {
      constexpr int kRadix = PassRadix(block / leaf);
      constexpr SplitParts<kRadix> kParts = PartsOf<kRadix>(order);
      ForEach<kRadix>([&](auto k) {
        InverseBlock<kParts.of[k], block / kRadix, leaf, kLanes>(data + 2 * k * (block / kRadix));
      });
      InversePass<order, block, kRadix, kLanes, runOut>(data);
    }
  }

  // Real transforms. n numbers are looked at as n/2 complex ones, z[j] = u[j] + i u[j + n/2],
  // which folds them onto n/2 real numbers for the even frequencies and n/4 complex ones for
  // those that are 1 mod 4.

  // Vectors of a real pass hold so many numbers.
  static constexpr int RealWidth(int n) { return n / 4 < kLanes ? n / 4 : kLanes; }

  // What a narrower pass reads, or no pass at all, has to be in pairs.
  static constexpr int RealRun(int n) { return n / 4 < kLanes ? kPairs : kLanes; }

  template <int n, int runIn, int runReal, int runComplex>
  [[gnu::noinline]] static void ForwardRealPass(T* data) {
    constexpr int kWidth = RealWidth(n);
    using V = typename Vectors<kWidth>::Vector;
    constexpr int kQuarter = n / 4;
    const T* row = RealTurns<n, kWidth>::values;
    for (int j = 0; j < kQuarter; j += kWidth, row += 2 * kWidth) {
      V e;
      V f;
      V g;
      V h;
      LoadRun<kWidth, runIn>(data, j, e, f);
      LoadRun<kWidth, runIn>(data, j + kQuarter, g, h);
      V re = e - f;
      V im = g - h;
      Turn<1, kForward, kWidth>(row, re, im);
      StoreRun<kWidth, runReal>(data, j, e + f, g + h);
      StoreRun<kWidth, runComplex>(data, j + kQuarter, re, im);
    }
  }

  template <int n, int runReal, int runComplex, int runOut>
  [[gnu::noinline]] static void InverseRealPass(T* data) {
    constexpr int kWidth = RealWidth(n);
    using V = typename Vectors<kWidth>::Vector;
    constexpr int kQuarter = n / 4;
    const T* row = RealTurns<n, kWidth>::values;
    for (int j = 0; j < kQuarter; j += kWidth, row += 2 * kWidth) {
      V sumRe;
      V sumIm;
      V re;
      V im;
      LoadRun<kWidth, runReal>(data, j, sumRe, sumIm);
      LoadRun<kWidth, runComplex>(data, j + kQuarter, re, im);
      Turn<1, kInverse, kWidth>(row, re, im);
      StoreRun<kWidth, runOut>(data, j, sumRe + re, sumRe - re);
      StoreRun<kWidth, runOut>(data, j + kQuarter, sumIm + im, sumIm - im);
    }
  }

  template <int n, int runIn>
  static void ForwardRealBlock(T* data) {
    if constexpr (n == 2) {
      const T a = data[0];
      data[0] += data[1];
      data[1] = a - data[1];
    } else {
      constexpr int kRunReal = RealRun(n / 2);
      constexpr int kRunComplex = RealRun(n);
      ForwardRealPass<n, runIn, kRunReal, kRunComplex>(data);
      ForwardRealBlock<n / 2, kRunReal>(data);
      ForwardBlock<SplitOrder::kDown, n / 4, LeafSize(n / 4), kRunComplex>(data + n / 2);
    }
  }

  template <int n, int runOut>
  static void InverseRealBlock(T* data) {
    if constexpr (n == 2) {
      ForwardRealBlock<2, kPairs>(data);
    } else {
      constexpr int kRunReal = RealRun(n / 2);
      constexpr int kRunComplex = RealRun(n);
      InverseBlock<SplitOrder::kDown, n / 4, LeafSize(n / 4), kRunComplex>(data + n / 2);
      InverseRealBlock<n / 2, kRunReal>(data);
      InverseRealPass<n, kRunReal, kRunComplex, runOut>(data);
    }
  }

  template <int block, int width>
  static void FillComplexTables() {
    if constexpr (block == LeafSize(block)) {
      if constexpr (width > 1) {
        using Table = Turns<block, LeafRadix(block), width>;
        FillTwiddles(block, Table::kLargest, width, width, Table::values);
      }
    } else {
      using Table = Turns<block, PassRadix(block / LeafSize(block)), kLanes>;
      FillTwiddles(block, Table::kLargest, Table::kCount, kLanes, Table::values);
    }
  }

  template <int n>
  static void FillRealTable() {
    if constexpr (n >= 4) {
      FillTwiddles(n, 1, n / 4, RealWidth(n), RealTurns<n, RealWidth(n)>::values);
    }
  }
};

}  // namespace lx
