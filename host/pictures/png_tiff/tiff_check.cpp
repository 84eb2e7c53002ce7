// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/png_tiff/tiff_deflated.h"
#include "host/pictures/png_tiff/tiff_file.h"
#include "host/pictures/png_tiff/tiff_library.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

class BlockCheck {
 public:
  BlockCheck(const fs::path& file, TiffLibrary* library)
      : file_(file),
        library_(*library),
        tiff_(library->Tiff()),
        tiled_(TIFFIsTiled(tiff_) != 0),
        deflated_(*library) {
    TIFFGetFieldDefaulted(tiff_, TIFFTAG_COMPRESSION, &compression_);
  }

  void Run() {
    if (TIFFIsCODECConfigured(compression_) == 0) {
      return;
    }
    const std::uint32_t count = tiled_ ? TIFFNumberOfTiles(tiff_) : TIFFNumberOfStrips(tiff_);
    for (std::uint32_t number = 0; number < count; ++number) {
      if (!IsGood(number)) {
        Refuse(number);
      }
    }
  }

 private:
  bool IsGood(std::uint32_t number) {
    if (compression_ == COMPRESSION_NONE) {
      return IsInFile(number);
    }
    return deflated_.IsDeflated() ? deflated_.IsWhole(number) : IsDecoded(number);
  }

  bool IsInFile(std::uint32_t number) const {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file_, error);
    const std::uint64_t place = TIFFGetStrileOffset(tiff_, number);
    return place <= size && TIFFGetStrileByteCount(tiff_, number) <= size - place;
  }

  bool IsDecoded(std::uint32_t number) {
    // What the most a byte can become is of LZW: a broken header may claim any size.
    constexpr std::uintmax_t kMostPerByte = 2731;
    std::error_code error;
    const tmsize_t size = tiled_ ? TIFFTileSize(tiff_) : TIFFStripSize(tiff_);
    if (size <= 0 ||
        static_cast<std::uintmax_t>(size) / kMostPerByte > fs::file_size(file_, error)) {
      return false;
    }
    block_.resize(static_cast<std::size_t>(size));
    const tmsize_t read = tiled_ ? TIFFReadEncodedTile(tiff_, number, block_.data(), size)
                                 : TIFFReadEncodedStrip(tiff_, number, block_.data(), size);
    return read > 0 && library_.Trouble()[0] == '\0';
  }

  [[noreturn]] void Refuse(std::uint32_t number) const {
    const std::string why = library_.Trouble();
    ReadFailure(file_, "cut short or broken: " + (tiled_ ? std::string("tile ") : "strip ") +
                           std::to_string(number + 1) +
                           (why.empty() ? " is not whole" : ": " + why));
  }

  const fs::path& file_;
  const TiffLibrary& library_;
  TIFF* tiff_;
  bool tiled_;
  DeflatedBlocks deflated_;
  std::uint16_t compression_ = COMPRESSION_NONE;
  std::vector<std::uint8_t> block_;
};

}  // namespace

void CheckBlocksOfTiff(const fs::path& file) {
  TiffLibrary library(file, TiffLibrary::Use::kRead);
  // What libtiff does not open, the plug-in refuses in its own words.
  if (library.Tiff() != nullptr) {
    BlockCheck(file, &library).Run();
  }
}

}  // namespace glimmerhost
