// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/pictures/odd_pictures.h"

#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdio>

namespace lx_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Puts one more number behind the bits that are there; whole bytes in the machine's order, or
// the high one first.
class BitRow {
 public:
  explicit BitRow(bool highFirst) : highFirst_(highFirst) {}

  void Put(std::uint32_t value, int bits) {
    if (bits < 8) {
      if (used_ % 8 == 0) {
        bytes_.push_back(0);
      }
      bytes_.back() = static_cast<std::uint8_t>(bytes_.back() | value << (8 - bits - used_ % 8));
      used_ += bits;
      return;
    }
    for (int i = 0; i < bits / 8; ++i) {
      const int byte = highFirst_ ? bits / 8 - 1 - i : i;
      bytes_.push_back(static_cast<std::uint8_t>(std::uint64_t{value} >> 8 * byte));
    }
  }

  const Bytes& Done() const { return bytes_; }

 private:
  bool highFirst_;
  int used_ = 0;
  Bytes bytes_;
};

// Rows of a block whose corner is at left, top; beyond the picture they repeat its edge.
Bytes Block(const OddTiff& kind, int left, int top, int width, int height, int plane) {
  const bool highFirst = std::endian::native == std::endian::big;
  Bytes block;
  for (int y = top; y < top + height; ++y) {
    BitRow row(highFirst);
    for (int x = left; x < left + width; ++x) {
      const int first = kind.apart ? plane : 0;
      const int last = kind.apart ? plane + 1 : kind.channels;
      for (int c = first; c < last; ++c) {
        row.Put(kind.sample(std::min(x, kind.width - 1), std::min(y, kind.height - 1), c),
                kind.bits);
      }
    }
    block.insert(block.end(), row.Done().begin(), row.Done().end());
  }
  return block;
}

void SetTags(TIFF* tiff, const OddTiff& kind) {
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kind.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kind.height);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.channels);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.sampleFormat);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind.compression);
  if (kind.fillOrder != FILLORDER_MSB2LSB) {
    TIFFSetField(tiff, TIFFTAG_FILLORDER, kind.fillOrder);
  }
  if (kind.predictor != PREDICTOR_NONE) {
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, kind.predictor);
  }
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
               kind.apart ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (kind.tile > 0) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kind.tile);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, kind.tile);
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 4);
  }
  if (!kind.extraSamples.empty()) {
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(kind.extraSamples.size()),
                 kind.extraSamples.data());
  }
  if (kind.photometric == PHOTOMETRIC_PALETTE) {
    std::array<std::vector<std::uint16_t>, 3> map;
    for (int c = 0; c < 3; ++c) {
      for (std::uint32_t i = 0; i < 1U << kind.bits; ++i) {
        map[c].push_back(PaletteEntry(c, i));
      }
    }
    TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data());
  }
}

}  // namespace

RawSample Scattered(int bits) {
  return [bits](int x, int y, int channel) {
    const auto number = static_cast<std::uint32_t>((x * 7 + y) * 4 + channel) * 2654435761U;
    return number >> (32 - bits);
  };
}

std::uint16_t PaletteEntry(int channel, std::uint32_t index) {
  return static_cast<std::uint16_t>((index * 7U + 50U * static_cast<unsigned>(channel)) % 256 *
                                    257);
}

void MakeTiff(const std::filesystem::path& file, const OddTiff& wanted) {
  OddTiff kind = wanted;
  if (!kind.sample) {
    kind.sample = Scattered(kind.bits);
  }
  TIFF* const tiff = TIFFOpen(file.string().c_str(), kind.mode.c_str());
  ASSERT_NE(nullptr, tiff) << file;
  SetTags(tiff, kind);
  const int width = kind.tile > 0 ? kind.tile : kind.width;
  const int height = kind.tile > 0 ? kind.tile : 4;
  std::uint32_t number = 0;
  for (int plane = 0; plane < (kind.apart ? kind.channels : 1); ++plane) {
    for (int top = 0; top < kind.height; top += height) {
      for (int left = 0; left < kind.width; left += width) {
        const int rows = kind.tile > 0 ? height : std::min(height, kind.height - top);
        Bytes block = Block(kind, left, top, width, rows, plane);
        const auto size = static_cast<tmsize_t>(block.size());
        const tmsize_t written = kind.tile > 0
                                     ? TIFFWriteEncodedTile(tiff, number, block.data(), size)
                                     : TIFFWriteEncodedStrip(tiff, number, block.data(), size);
        EXPECT_EQ(size, written) << file;
        ++number;
      }
    }
  }
  TIFFClose(tiff);
}

void MakePng(const std::filesystem::path& file, const OddPng& kind) {
  const RawSample sample = kind.sample ? kind.sample : Scattered(kind.bits);
  const int channels =
      std::array{1, 0, 3, 1, 2, 0, 4}.at(static_cast<std::size_t>(kind.colourType));
  std::vector<Bytes> rows;
  for (int y = 0; y < kind.height; ++y) {
    BitRow row(true);
    for (int x = 0; x < kind.width; ++x) {
      for (int c = 0; c < channels; ++c) {
        row.Put(sample(x, y, c), kind.bits);
      }
    }
    rows.push_back(row.Done());
  }
  std::vector<png_bytep> pointers;
  for (Bytes& row : rows) {
    pointers.push_back(row.data());
  }
  std::FILE* const out = std::fopen(file.string().c_str(), "wb");
  ASSERT_NE(nullptr, out) << file;
  // Its own errors end the program, which a test that makes nonsense deserves.
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, out);
  png_set_IHDR(png, info, static_cast<png_uint_32>(kind.width),
               static_cast<png_uint_32>(kind.height), kind.bits, kind.colourType,
               kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (kind.colourType == PNG_COLOR_TYPE_PALETTE) {
    std::vector<png_color> palette(std::size_t{1} << kind.bits);
    for (std::uint32_t i = 0; i < palette.size(); ++i) {
      palette[i] = {static_cast<png_byte>(PaletteEntry(0, i) >> 8),
                    static_cast<png_byte>(PaletteEntry(1, i) >> 8),
                    static_cast<png_byte>(PaletteEntry(2, i) >> 8)};
    }
    png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    if (kind.transparent >= 0) {
      const Bytes clear(static_cast<std::size_t>(kind.transparent), 0);
      png_set_tRNS(png, info, clear.data(), kind.transparent, nullptr);
    }
  } else if (kind.transparent >= 0) {
    png_color_16 clear{};
    clear.gray = static_cast<png_uint_16>(kind.transparent);
    clear.red = clear.green = clear.blue = clear.gray;
    png_set_tRNS(png, info, nullptr, 0, &clear);
  }
  png_write_info(png, info);
  png_write_image(png, pointers.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  std::fclose(out);
}

std::uint32_t PngCheckSum(const unsigned char* bytes, std::size_t count) {
  std::uint32_t sum = 0xFFFFFFFFU;
  for (std::size_t i = 0; i < count; ++i) {
    sum ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) {
      sum = (sum & 1U) != 0 ? sum >> 1U ^ 0xEDB88320U : sum >> 1U;
    }
  }
  return ~sum;
}

}  // namespace lx_test
