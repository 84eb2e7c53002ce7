// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/guards/dpx_header.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "host/pictures/channels.h"

namespace glimmerhost {
namespace {

// Places in the header, in bytes.
constexpr std::size_t kPictureAt = 4;
constexpr std::size_t kUserSize = 32;
constexpr std::size_t kElementCount = 770;
constexpr std::size_t kWidth = 772;
constexpr std::size_t kHeight = 776;
constexpr std::size_t kElements = 780;
constexpr std::size_t kElementSize = 72;
constexpr std::size_t kMostElements = 8;
constexpr std::size_t kHeaderSize = kElements + kMostElements * kElementSize;

constexpr std::uint32_t kUndefined = 0xFFFFFFFF;

// One of the up to eight parts that a picture is made of, each with samples of its own.
struct Element {
  unsigned descriptor;
  unsigned bits;
  unsigned packing;
  unsigned encoding;
  std::uint32_t place;
  std::uint32_t linePadding;
};

class Header {
 public:
  // Not a DPX file's where it is not valid.
  explicit Header(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    in.read(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    count_ = static_cast<std::size_t>(in.gcount());
    const std::string_view magic(bytes_.data(), 4);
    highFirst_ = magic == "SDPX";
    valid_ = highFirst_ || magic == "XPDS";
  }

  bool IsValid() const { return valid_; }
  bool IsWhole() const { return count_ == bytes_.size(); }

  std::uint32_t Long(std::size_t at) const { return Number(at, 4); }
  std::uint32_t Short(std::size_t at) const { return Number(at, 2); }

  Element ElementAt(std::size_t index) const {
    const std::size_t at = kElements + index * kElementSize;
    return {Number(at + 20, 1), Number(at + 23, 1), Short(at + 24),
            Short(at + 26),     Long(at + 28),      Long(at + 32)};
  }

 private:
  std::uint32_t Number(std::size_t at, std::size_t size) const {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
      const std::size_t place = at + (highFirst_ ? i : size - 1 - i);
      number = number << 8U | static_cast<unsigned char>(bytes_[place]);
    }
    return number;
  }

  std::array<char, kHeaderSize> bytes_{};
  std::size_t count_ = 0;
  bool highFirst_ = false;
  bool valid_ = false;
};

// Samples of a pixel; 0 for kinds whose lines are not known to hold so many of each.
unsigned SamplesOf(unsigned descriptor) {
  constexpr unsigned kLastSingle = 6;  // from one of no kind to brightness
  constexpr unsigned kFirstMany = 150;
  constexpr unsigned kLastMany = 156;
  if (descriptor <= kLastSingle || descriptor == 8 || descriptor == 9) {
    return 1;
  }
  if (descriptor >= kFirstMany && descriptor <= kLastMany) {
    return descriptor - kFirstMany + 2;
  }
  switch (descriptor) {
    case 100:  // colours of every second pixel
      return 2;
    case 50:
    case 101:  // the same with alpha
    case 102:
      return 3;
    case 51:
    case 52:
    case 103:
      return 4;
    default:
      return 0;
  }
}

// What a line of so many samples takes at least.
std::uint64_t LineBytes(const Element& element, std::uint64_t samples) {
  constexpr std::uint64_t kWord = 4;
  const bool filled = element.packing == 1 || element.packing == 2;
  switch (element.bits) {
    case 10:
      return filled ? (samples + 2) / 3 * kWord : (samples * 10 + 31) / 32 * kWord;
    case 12:
      return filled ? samples * 2 : (samples * 12 + 31) / 32 * kWord;
    default:
      return (samples * element.bits + 7) / 8;
  }
}

// Where an element's samples end at the soonest; 0 if that cannot be told.
std::uint64_t EndOf(const Header& header, const Element& element) {
  const std::uint64_t width = header.Long(kWidth);
  const std::uint64_t height = header.Long(kHeight);
  // Sides beyond these are refused by those who read them, and would not fit into the product.
  constexpr std::uint64_t kLargestSide = 1U << 20U;
  const std::uint64_t samples = width * SamplesOf(element.descriptor);
  if (element.encoding != 0 || samples == 0 || height == 0 ||
      std::max(width, height) > kLargestSide) {
    return 0;
  }
  const std::uint64_t place = element.place == kUndefined ? header.Long(kPictureAt) : element.place;
  const std::uint64_t padding = element.linePadding == kUndefined ? 0 : element.linePadding;
  const std::uint64_t line = LineBytes(element, samples);
  // Padding behind the last line, or behind the picture, is nobody's loss.
  return place + (height - 1) * (line + padding) + line;
}

[[noreturn]] void CutShort(const std::filesystem::path& file, std::uint64_t needed,
                           std::uint64_t bytes) {
  ReadFailure(file, "cut short or broken: its header promises " + std::to_string(needed) +
                        " bytes, and the file has " + std::to_string(bytes));
}

}  // namespace

void CheckDpxHeader(const std::filesystem::path& file) {
  const Header header(file);
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(file, error);
  if (!header.IsValid() || error) {
    return;
  }
  if (!header.IsWhole()) {
    CutShort(file, kHeaderSize, bytes);
  }
  const std::uint32_t claimed = header.Long(kUserSize);
  if (claimed != kUndefined && claimed > bytes) {
    ReadFailure(file, "its header claims " + std::to_string(claimed) +
                          " bytes of user data, and the file has " + std::to_string(bytes));
  }
}

void CheckDpxLength(const std::filesystem::path& file) {
  CheckDpxHeader(file);
  const Header header(file);
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(file, error);
  if (!header.IsValid() || error) {
    return;
  }
  const std::size_t elements = std::min<std::size_t>(header.Short(kElementCount), kMostElements);
  for (std::size_t i = 0; i < elements; ++i) {
    if (const std::uint64_t end = EndOf(header, header.ElementAt(i)); end > bytes) {
      CutShort(file, end, bytes);
    }
  }
}

}  // namespace glimmerhost
