// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/png_file.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/file_bytes.h"
#include "host/pictures/picture_formats.h"
#include "host/pictures/png_tiff/png_library.h"
#include "host/pictures/png_tiff/png_metadata.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// One byte of a file becomes no more than so many of the picture: what deflate makes of two
// bits, 258 bytes, is the most.
constexpr std::uintmax_t kMostPerByte = 1032;

// libpng's view of samples that are stored one row after the other.
std::vector<png_bytep> Rows(void* samples, std::size_t rowBytes, std::size_t height) {
  std::vector<png_bytep> rows(height);
  for (std::size_t y = 0; y < height; ++y) {
    rows[y] = static_cast<png_bytep>(samples) + y * rowBytes;
  }
  return rows;
}

// PNG holds the high byte first.
void SwapOnLittleEndian(png_structp png) {
  if constexpr (std::endian::native == std::endian::little) {
    png_set_swap(png);
  }
}

// A chunk may claim two gigabytes, and libpng would take them before it reads on. None is larger
// than its file, and no row than the least of these.
std::size_t LargestBlockOfMemory(const fs::path& file) {
  constexpr std::uintmax_t kAtLeast = 16U << 20U;
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  return static_cast<std::size_t>(error ? kAtLeast : std::max(kAtLeast, 2 * size));
}

class PngReader {
 public:
  explicit PngReader(const fs::path& file)
      : file_(file),
        bytes_(file, FileUse::kRead),
        library_(&bytes_, PngLibrary::Use::kRead, LargestBlockOfMemory(file)) {
    // It was open a moment ago.
    if (!bytes_.IsOpen()) {
      ReadFailure(file, "the system does not open it");
    }
  }

  // To be called first, and once.
  PictureHead Head() {
    const png_structp png = library_.Png();
    const png_infop info = library_.Info();
    Must([&] { png_read_info(png, info); });
    CheckSides(file_, png_get_image_width(png, info), png_get_image_height(png, info));
    return {static_cast<int>(png_get_image_width(png, info)),
            static_cast<int>(png_get_image_height(png, info)), png_get_channels(png, info),
            png_get_bit_depth(png, info), false};
  }

  Picture Read(const ReadOptions& options, Reader reader, std::string* metadataBeyond) {
    const png_structp png = library_.Png();
    const png_infop info = library_.Info();
    const PictureHead head = Head();
    Picture picture;
    picture.width = head.width;
    picture.height = head.height;
    picture.bits = head.bits == 16 ? 16 : 8;
    Must([&] {
      png_set_expand(png);
      SwapOnLittleEndian(png);
      png_set_interlace_handling(png);
      png_read_update_info(png, info);
    });
    const int channels = png_get_channels(png, info);
    const ChannelMap map = MapPlainChannels(channels);
    picture.grey = map.grey;
    picture.alpha = map.alpha < 0 ? Alpha::kNone : Alpha::kStraight;

    const std::vector<std::uint16_t> samples = ReadSamples(
        picture.PixelCount() * static_cast<std::size_t>(channels), picture.bits, picture.height);
    SpreadChannels(samples, channels, map, &picture);
    const FileMetadata metadata = ReadPngMetadata(library_);
    if (reader == Reader::kExact && options.keptFor != kNoFormat) {
      NoteBeyond(metadataBeyond,
                 [&] { CheckPngMetadata(metadata, library_, picture.grey, options.keptFor); });
    }
    if (library_.IsRefused()) {
      throw std::bad_alloc();
    }
    picture.pixelAspect = PixelAspectOf(metadata.resolution);
    picture.metadata = std::make_shared<FileMetadata>(metadata);
    return picture;
  }

 private:
  template <class Step>
  void Must(const Step& step) {
    if (!library_.Run(step)) {
      if (library_.IsRefused()) {
        throw std::bad_alloc();
      }
      ReadFailure(file_, std::string("cut short or broken: ") + library_.Trouble());
    }
  }

  std::vector<std::uint16_t> ReadSamples(std::size_t count, int bits, int height) {
    const std::size_t rowBytes = png_get_rowbytes(library_.Png(), library_.Info());
    if (rowBytes * static_cast<std::size_t>(height) / kMostPerByte > fs::file_size(file_)) {
      ReadFailure(file_, "cut short or broken: too small for the size that it claims");
    }
    std::vector<std::uint16_t> samples(count);
    std::vector<std::uint8_t> narrow(bits == 8 ? count : 0);
    void* const to = bits == 8 ? static_cast<void*>(narrow.data()) : samples.data();
    std::vector<png_bytep> rows = Rows(to, rowBytes, static_cast<std::size_t>(height));
    Must([&] {
      png_read_image(library_.Png(), rows.data());
      png_read_end(library_.Png(), library_.Info());
    });
    std::transform(narrow.begin(), narrow.end(), samples.begin(),
                   [](std::uint8_t v) { return static_cast<std::uint16_t>(v * 257); });
    return samples;
  }

  const fs::path& file_;
  FileBytes bytes_;
  PngLibrary library_;
};

constexpr int kColourTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                                PNG_COLOR_TYPE_RGB_ALPHA};

}  // namespace

Picture ReadPng(const fs::path& file, const ReadOptions& options, Reader reader,
                std::string* metadataBeyond) {
  return PngReader(file).Read(options, reader, metadataBeyond);
}

PictureHead ReadPngHead(const fs::path& file) { return PngReader(file).Head(); }

void WritePng(const fs::path& file, const Picture& picture, const Coding& coding) {
  const int bits = BitsOf(coding, picture.bits);
  FileBytes bytes(file, FileUse::kMake);
  if (!bytes.IsOpen()) {
    throw Failure("the file cannot be made");
  }
  PngLibrary library(&bytes, PngLibrary::Use::kWrite);
  const int channels = ChannelsToWrite(picture);
  std::vector<std::uint16_t> samples = GatherChannels(picture, channels);
  std::vector<std::uint8_t> narrow;
  if (bits == 8) {
    narrow = ToBytes(samples);
  }
  void* const from = bits == 8 ? static_cast<void*>(narrow.data()) : samples.data();
  const auto width = static_cast<png_uint_32>(picture.width);
  const auto height = static_cast<png_uint_32>(picture.height);
  std::vector<png_bytep> rows =
      Rows(from, std::size_t{width} * static_cast<std::size_t>(channels * bits / 8), height);

  const png_structp png = library.Png();
  const png_infop info = library.Info();
  bool written = library.Run([&] {
    png_set_benign_errors(png, 1);
    png_set_compression_level(png, DeflateLevel(coding));
    png_set_IHDR(png, info, width, height, bits, kColourTypes[channels - 1], PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  });
  if (written && picture.metadata) {
    SetPngMetadata(*picture.metadata, &library);
  }
  written = written && library.Run([&] {
    png_write_info(png, info);
    SwapOnLittleEndian(png);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
  });
  if (library.IsRefused()) {
    throw std::bad_alloc();
  }
  if (!written) {
    throw Failure(library.Trouble());
  }
  if (!bytes.Close()) {
    throw Failure("the system does not take all of it");
  }
}

}  // namespace glimmerhost
