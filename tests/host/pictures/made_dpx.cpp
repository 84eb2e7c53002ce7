// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/pictures/made_dpx.h"

#include <cstddef>
#include <vector>

namespace lx_test {
namespace {

class DpxWriter {
 public:
  explicit DpxWriter(const MadeDpx& kind) : kind_(kind) {}

  std::string Bytes() {
    Header();
    const RawSample sample = kind_.sample ? kind_.sample : Scattered(kind_.bits);
    for (int y = 0; y < kind_.height; ++y) {
      std::vector<std::uint32_t> line;
      for (int x = 0; x < kind_.width; ++x) {
        for (int c = 0; c < kind_.channels; ++c) {
          line.push_back(sample(x, y, c));
        }
      }
      Line(line);
      bytes_.append(y + 1 < kind_.height ? kind_.linePadding : 0, '\0');
    }
    return bytes_;
  }

 private:
  void Put(std::size_t at, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) {
      const int place = kind_.highFirst ? count - 1 - i : i;
      bytes_[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * place) & 0xFFU);
    }
  }

  void Append(std::uint32_t value, int count) {
    bytes_.append(static_cast<std::size_t>(count), '\0');
    Put(bytes_.size() - static_cast<std::size_t>(count), value, count);
  }

  void Header() {
    // What is not set is undefined: all bits.
    bytes_.assign(kind_.pictureAt, '\xFF');
    bytes_.replace(0, 4, kind_.highFirst ? "SDPX" : "XPDS");
    Put(4, kind_.pictureAt, 4);
    bytes_.replace(8, 5, std::string("V2.0\0", 5));
    Put(24, 1664, 4);
    Put(28, 384, 4);
    Put(32, 0, 4);
    bytes_.replace(36, 732, std::string(732, '\0'));
    Put(768, 0, 2);
    Put(770, 1, 2);
    Put(772, static_cast<std::uint32_t>(kind_.width), 4);
    Put(776, static_cast<std::uint32_t>(kind_.height), 4);
    constexpr std::size_t kElement = 780;
    Put(kElement, 0, 4);
    const int descriptor = kind_.channels == 1 ? 6 : kind_.channels == 3 ? 50 : 51;
    bytes_[kElement + 20] = static_cast<char>(descriptor);
    bytes_[kElement + 21] = 0;
    bytes_[kElement + 22] = 0;
    bytes_[kElement + 23] = static_cast<char>(kind_.bits);
    Put(kElement + 24, static_cast<std::uint32_t>(kind_.packing), 2);
    Put(kElement + 26, kind_.encoding, 2);
    Put(kElement + 28, kind_.pictureAt, 4);
    Put(kElement + 32, kind_.linePadding, 4);
    Put(kElement + 36, 0, 4);
  }

  void Line(const std::vector<std::uint32_t>& line) {
    if (kind_.bits % 8 == 0) {
      for (const std::uint32_t sample : line) {
        Append(sample, kind_.bits / 8);
      }
    } else if (kind_.packing == DpxPacking::kPacked) {
      Packed(line);
    } else if (kind_.bits == 10) {
      FilledTens(line);
    } else {
      for (const std::uint32_t sample : line) {
        Append(kind_.packing == DpxPacking::kFilledHigh ? sample << 4U : sample, 2);
      }
      bytes_.append(line.size() % 2 * 2, '\0');
    }
  }

  void Packed(const std::vector<std::uint32_t>& line) {
    std::uint64_t word = 0;
    int used = 0;
    for (const std::uint32_t sample : line) {
      word |= std::uint64_t{sample} << used;
      used += kind_.bits;
      if (used >= 32) {
        Append(static_cast<std::uint32_t>(word), 4);
        word >>= 32U;
        used -= 32;
      }
    }
    if (used > 0) {
      Append(static_cast<std::uint32_t>(word), 4);
    }
  }

  void FilledTens(const std::vector<std::uint32_t>& line) {
    for (std::size_t i = 0; i < line.size(); i += 3) {
      std::uint32_t word = 0;
      for (std::size_t part = 0; part < 3 && i + part < line.size(); ++part) {
        word |= line[i + part] << (20 - 10 * static_cast<int>(part));
      }
      Append(kind_.packing == DpxPacking::kFilledHigh ? word << 2U : word, 4);
    }
  }

  const MadeDpx& kind_;
  std::string bytes_;
};

}  // namespace

std::string DpxBytes(const MadeDpx& kind) { return DpxWriter(kind).Bytes(); }

}  // namespace lx_test
