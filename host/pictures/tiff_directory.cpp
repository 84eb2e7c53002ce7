#include "host/pictures/tiff_directory.h"

#include <array>
#include <cstddef>
#include <ios>
#include <limits>

#include "host/pictures/file_bytes.h"

namespace glimmerhost {
namespace {

// Numbers in the byte order that the file's first two letters name.
class Numbers {
 public:
  explicit Numbers(FileBytes* bytes) : bytes_(bytes) { highFirst_ = Take(2) == 0x4D4D; }

  // What stands at the file's place; 0 behind its end.
  std::uint64_t Take(std::size_t size) {
    std::array<std::uint8_t, 8> part{};
    if (bytes_->Read(part.data(), size) != size) {
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

  void Skip(std::int64_t count) {
    isAtEnd_ = isAtEnd_ || bytes_->Seek(count, std::ios_base::cur) < 0;
  }

  bool IsAtEnd() const { return isAtEnd_; }

 private:
  FileBytes* bytes_;
  bool highFirst_ = false;
  bool isAtEnd_ = false;
};

}  // namespace

// A small file: version 42, where the directory is (4 bytes); there a count (2), and for each tag
// its number (2) and 10 more. A large one: version 43, the size of places (2) and 0 (2), where the
// directory is (8); there a count (8), and for each tag its number and 18 more.
std::vector<std::uint16_t> FirstTiffTags(const std::filesystem::path& file) {
  FileBytes bytes(file, FileUse::kRead);
  if (!bytes.IsOpen()) {
    return {};
  }
  Numbers numbers(&bytes);
  const bool isLarge = numbers.Take(2) == 43;
  if (isLarge) {
    numbers.Take(4);
  }
  numbers.MoveTo(numbers.Take(isLarge ? 8 : 4));
  const std::uint64_t count = numbers.Take(isLarge ? 8 : 2);
  std::vector<std::uint16_t> tags;
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto tag = static_cast<std::uint16_t>(numbers.Take(2));
    numbers.Skip(isLarge ? 18 : 10);
    if (numbers.IsAtEnd()) {
      break;
    }
    tags.push_back(tag);
  }
  return tags;
}

}  // namespace glimmerhost
