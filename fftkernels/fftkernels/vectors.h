// SPDX-License-Identifier: BSD-3-Clause
// Small vectors in a way that every processor's compiler knows; of one lane, a plain number.
#pragma once

#include <type_traits>
#include <utility>

#define LX_ALWAYS_INLINE [[gnu::always_inline]] inline

namespace lx {

// Calls f with the integral constants 0 to count - 1, without a loop.
template <int count, class Function>
LX_ALWAYS_INLINE void ForEach(Function f) {
  [&]<int... k>(std::integer_sequence<int, k...>) __attribute__((always_inline)) {
    (f(std::integral_constant<int, k>{}), ...);
  }
  (std::make_integer_sequence<int, count>{});
}

// Form tells which processor this is compiled for. It is a type of that source's own, so that the
// linker never takes one source's code for another's.
template <class Form, class T, int lanes>
struct Lanes {
  using Vector __attribute__((vector_size(lanes * sizeof(T)))) = T;

  // From anywhere: nothing is asked of alignment.
  LX_ALWAYS_INLINE static Vector Load(const T* from) {
    Vector v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
  }
  LX_ALWAYS_INLINE static void Store(T* to, Vector v) { __builtin_memcpy(to, &v, sizeof v); }

  // Lanes picked from a, and from b behind it, by index(lane).
  template <class Index>
  LX_ALWAYS_INLINE static Vector Pick(Vector a, Vector b, Index /*index*/) {
    return PickEach<Index>(a, b, std::make_integer_sequence<int, lanes>{});
  }

  // Real and imaginary parts of as many complex numbers, from pairs.
  LX_ALWAYS_INLINE static void LoadPairs(const T* from, Vector& re, Vector& im) {
    const Vector a = Load(from);
    const Vector b = Load(from + lanes);
    re = Pick(a, b, [](int l) { return 2 * l; });
    im = Pick(a, b, [](int l) { return 2 * l + 1; });
  }
  LX_ALWAYS_INLINE static void StorePairs(T* to, Vector re, Vector im) {
    Store(to, Pick(re, im, [](int l) { return l / 2 + l % 2 * lanes; }));
    Store(to + lanes, Pick(re, im, [](int l) { return (l + lanes) / 2 + l % 2 * lanes; }));
  }

  // Lane l of row r becomes lane r of row l.
  LX_ALWAYS_INLINE static void Transpose(Vector* rows) { TransposeSquares<1>(rows); }

 private:
  template <class Index, int... l>
  LX_ALWAYS_INLINE static Vector PickEach(Vector a, Vector b,
                                          std::integer_sequence<int, l...> /*lanes*/) {
    return __builtin_shufflevector(a, b, Index{}(l)...);
  }

  // Exchanges the off-diagonal squares of step x step lanes, then larger ones.
  template <int step>
  LX_ALWAYS_INLINE static void TransposeSquares(Vector* rows) {
    if constexpr (step < lanes) {
      ForEach<lanes>([&](auto r) __attribute__((always_inline)) {
        if constexpr ((r & step) == 0) {
          const Vector a = rows[r];
          const Vector b = rows[r + step];
          rows[r] = Pick(a, b, [](int l) { return (l & step) == 0 ? l : lanes + l - step; });
          rows[r + step] = Pick(a, b, [](int l) { return (l & step) == 0 ? l + step : lanes + l; });
        }
      });
      TransposeSquares<2 * step>(rows);
    }
  }
};

template <class Form, class T>
struct Lanes<Form, T, 1> {
  using Vector = T;

  LX_ALWAYS_INLINE static Vector Load(const T* from) { return *from; }
  LX_ALWAYS_INLINE static void Store(T* to, Vector v) { *to = v; }
  LX_ALWAYS_INLINE static void LoadPairs(const T* from, Vector& re, Vector& im) {
    re = from[0];
    im = from[1];
  }
  LX_ALWAYS_INLINE static void StorePairs(T* to, Vector re, Vector im) {
    to[0] = re;
    to[1] = im;
  }
  LX_ALWAYS_INLINE static void Transpose(Vector* /*rows*/) {}
};

}  // namespace lx
