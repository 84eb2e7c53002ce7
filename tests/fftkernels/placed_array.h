// SPDX-License-Identifier: BSD-3-Clause
// An array at a chosen distance from an aligned address, between numbers that nobody may touch.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lx_test {

template <class T>
class PlacedArray {
 public:
  // offset: elements from an address that suits the widest registers
  PlacedArray(const std::vector<T>& values, std::size_t offset)
      : count_(values.size()), storage_(values.size() + 2 * kGuard + kLine, kUntouched) {
    const auto address = reinterpret_cast<std::uintptr_t>(storage_.data());
    const std::size_t toLine = (kLineBytes - address % kLineBytes) % kLineBytes / sizeof(T);
    first_ = toLine + kGuard + offset;
    std::copy(values.begin(), values.end(), data());
  }

  T* data() { return storage_.data() + first_; }
  std::vector<T> Values() { return {data(), data() + count_}; }

  bool GuardsAreUntouched() {
    return std::all_of(storage_.data(), data(), IsUntouched) &&
           std::all_of(data() + count_, storage_.data() + storage_.size(), IsUntouched);
  }

 private:
  static constexpr std::size_t kLineBytes = 64;
  static constexpr std::size_t kLine = 2 * kLineBytes / sizeof(T);
  static constexpr std::size_t kGuard = 4 * kLineBytes / sizeof(T);
  static constexpr T kUntouched = static_cast<T>(-12345.625);

  static bool IsUntouched(T value) { return value == kUntouched; }

  std::size_t count_;
  std::vector<T> storage_;
  std::size_t first_;
};

}  // namespace lx_test
