// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_directory.h"

#include <array>
#include <cstddef>
#include <ios>
#include <limits>

#include "host/pictures/channels.h"
#include "host/pictures/file_bytes.h"

namespace glimmerhost {
namespace {

// Numbers in the byte order that the file's first two letters name.
class Numbers {
 public:
  explicit Numbers(FileBytes* bytes) : bytes_(bytes), isAtEnd_(!bytes->IsOpen()) {
    highFirst_ = Take(2) == 0x4D4D;
  }

  // What stands at the file's place; 0 behind its end.
  std::uint64_t Take(std::size_t size) {
    std::array<std::uint8_t, 8> part{};
    if (isAtEnd_ || bytes_->Read(part.data(), size) != size) {
      isAtEnd_ = true;
      return 0;
    }
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
      number = number << 8U | part[highFirst_ ? i : size - 1 - i];
    }
    return number;
  }

  void MoveTo(std::uint64_t place) {
    constexpr auto kLast = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    isAtEnd_ = isAtEnd_ || place > kLast ||
               bytes_->Seek(static_cast<std::int64_t>(place), std::ios_base::beg) < 0;
  }

  bool IsAtEnd() const { return isAtEnd_; }

 private:
  FileBytes* bytes_;
  bool isAtEnd_;
  bool highFirst_ = false;
};

// A small file: version 42, where the directory is (4 bytes); there a count (2), and for each tag
// its number (2), its type (2), how many values (4), and the values or their place (4). A large
// one: version 43, the size of places (2) and 0 (2), where the directory is (8); there a count (8),
// and for each tag the same with 8 bytes for values and their number.
class Directories {
 public:
  explicit Directories(const std::filesystem::path& file)
      : file_(file),
        bytes_(file, FileUse::kRead),
        numbers_(&bytes_),
        isLarge_(numbers_.Take(2) == 43) {
    if (!bytes_.IsOpen()) {
      ReadFailure(file_, "the system does not open it again");
    }
    if (isLarge_) {
      numbers_.Take(4);
    }
    first_ = numbers_.Take(PlaceSize());
  }

  std::uint64_t First() const { return first_; }

  std::vector<TiffEntry> At(std::uint64_t place) {
    numbers_.MoveTo(place);
    const std::uint64_t count = numbers_.Take(isLarge_ ? 8 : 2);
    std::vector<TiffEntry> entries;
    for (std::uint64_t i = 0; i < count; ++i) {
      const TiffEntry entry = Next();
      if (numbers_.IsAtEnd()) {
        break;
      }
      entries.push_back(entry);
    }
    if (bytes_.IsRefused() || bytes_.IsUnreadable()) {
      ReadFailure(file_, "the system does not read on");
    }
    return entries;
  }

 private:
  std::size_t PlaceSize() const { return isLarge_ ? 8 : 4; }

  TiffEntry Next() {
    TiffEntry entry{};
    entry.tag = static_cast<std::uint16_t>(numbers_.Take(2));
    entry.type = static_cast<std::uint16_t>(numbers_.Take(2));
    entry.count = numbers_.Take(PlaceSize());
    // Small values stand at the beginning of the room for them.
    constexpr std::uint16_t kShort = 3;
    const std::size_t size = entry.type == kShort ? 2 : PlaceSize();
    entry.value = numbers_.Take(size);
    if (size < PlaceSize()) {
      numbers_.Take(PlaceSize() - size);
    }
    return entry;
  }

  const std::filesystem::path& file_;
  FileBytes bytes_;
  Numbers numbers_;
  bool isLarge_;
  std::uint64_t first_ = 0;
};

}  // namespace

std::vector<TiffEntry> FirstTiffDirectory(const std::filesystem::path& file) {
  Directories directories(file);
  return directories.At(directories.First());
}

std::vector<TiffEntry> TiffDirectoryAt(const std::filesystem::path& file, std::uint64_t place) {
  return Directories(file).At(place);
}

}  // namespace glimmerhost
