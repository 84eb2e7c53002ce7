// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/pictures/damage/whole_files.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

#include "tests/host/pictures/made_dpx.h"
#include "tests/host/pictures/odd_pictures.h"

namespace lx_test {
namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 64;
constexpr int kHeight = 48;

// Slopes with a little noise: they become smaller by any compression, and no two rows are alike.
std::uint32_t Slope(int x, int y, int channel, int bits) {
  const auto noise = static_cast<std::uint32_t>((x * 7 + y) * 4 + channel) * 2654435761U >> 30U;
  const auto slope = static_cast<std::uint32_t>(x * 11 + y * 17 + channel * 40 + 100) + noise;
  // Slopes take 11 bits.
  return bits < 12 ? slope >> static_cast<unsigned>(11 - bits)
                   : slope << static_cast<unsigned>(std::min(bits, 16) - 12);
}

RawSample Slopes(int bits) {
  return [bits](int x, int y, int channel) { return Slope(x, y, channel, bits); };
}

float SlopeFloat(int x, int y, int channel) {
  return static_cast<float>(Slope(x, y, channel, 12)) / 4096.0F;
}

std::string Bytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class Maker {
 public:
  explicit Maker(const fs::path& folder) : folder_(folder) {}

  std::vector<WholeFile> All() {
    Png("Png8", 8, PNG_COLOR_TYPE_RGB);
    Png("Png16Alpha", 16, PNG_COLOR_TYPE_RGB_ALPHA);
    for (const auto& [name, compression] :
         {std::pair<std::string, std::uint16_t>{"None", COMPRESSION_NONE},
          {"PackBits", COMPRESSION_PACKBITS},
          {"LZW", COMPRESSION_LZW},
          {"deflate", COMPRESSION_ADOBE_DEFLATE}}) {
      const std::string format = "TIFF, " + (name == "None" ? "not compressed" : name);
      Tiff("Tiff" + name + "8Strips", format, {.bits = 8, .compression = compression});
      Tiff("Tiff" + name + "16Tiles", format, {.bits = 16, .compression = compression, .tile = 16});
    }
    Tiff("TiffDeflatePredicted16", "TIFF, deflate",
         {.bits = 16, .compression = COMPRESSION_ADOBE_DEFLATE, .predictor = 2, .mode = "wb"});
    Tiff("TiffDeflateFloat", "TIFF, deflate",
         {.bits = 32, .compression = COMPRESSION_ADOBE_DEFLATE, .predictor = 3, .sampleFormat = 3});
    Tiff("TiffDeflateCmyk", "TIFF, deflate",
         {.channels = 4,
          .photometric = PHOTOMETRIC_SEPARATED,
          .compression = COMPRESSION_ADOBE_DEFLATE});
    Tiff("TiffFloat", "TIFF, not compressed", {.bits = 32, .sampleFormat = 3});
    for (const char* compression : {"zip", "zips", "rle", "piz", "pxr24", "b44", "dwaa", "none"}) {
      Exr(compression, OIIO::TypeDesc::HALF);
    }
    for (const char* compression : {"zip", "none"}) {
      Exr(compression, OIIO::TypeDesc::FLOAT);
    }
    Dpx("Dpx8", 8, DpxPacking::kPacked);
    Dpx("Dpx10", 10, DpxPacking::kFilledHigh);
    Dpx("Dpx10Packed", 10, DpxPacking::kPacked);
    Dpx("Dpx12", 12, DpxPacking::kFilledHigh);
    Dpx("Dpx12Packed", 12, DpxPacking::kPacked);
    Dpx("Dpx16", 16, DpxPacking::kPacked);
    Plugged("Jpeg", "jpg", "JPEG", "", OIIO::TypeDesc::UINT8);
    // Behind the last marker and the twelve bytes that it has.
    files_.back().samplesFrom = files_.back().bytes.find("\xFF\xDA") + 14;
    Pam();
    return std::move(files_);
  }

 private:
  void Add(WholeFile file) {
    file.bytes = Bytes(folder_ / ("whole" + file.ending));
    if (file.samplesTo == 0) {
      file.samplesTo = file.bytes.size();
    }
    files_.push_back(std::move(file));
  }

  void Png(const std::string& name, int bits, int type) {
    OddPng kind;
    kind.width = kWidth;
    kind.height = kHeight;
    kind.bits = bits;
    kind.colourType = type;
    kind.sample = Slopes(bits);
    MakePng(folder_ / "whole.png", kind);
    // All of it has check sums.
    Add({name, ".png", "PNG", "", 0, 0, type == PNG_COLOR_TYPE_RGB_ALPHA ? 4 : 3, bits});
  }

  void Tiff(const std::string& name, const std::string& format, OddTiff kind) {
    kind.width = kWidth;
    kind.height = kHeight;
    kind.sample = Slopes(kind.bits);
    if (kind.sampleFormat == SAMPLEFORMAT_IEEEFP) {
      kind.sample = [](int x, int y, int channel) {
        const float value = SlopeFloat(x, y, channel);
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
      };
    }
    MakeTiff(folder_ / "whole.tif", kind);
    // The directory stands behind the samples; its place in four bytes before them.
    const std::string bytes = Bytes(folder_ / "whole.tif");
    const bool highFirst = bytes[0] == 'M';
    std::size_t directory = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      const auto byte = static_cast<unsigned char>(bytes[4 + (highFirst ? i : 3 - i)]);
      directory = directory << 8U | byte;
    }
    Add({name, ".tif", format, "", 8, directory,
         kind.photometric == PHOTOMETRIC_SEPARATED ? 3 : kind.channels, kind.bits,
         kind.sampleFormat == SAMPLEFORMAT_IEEEFP});
  }

  void Exr(const std::string& compression, OIIO::TypeDesc type) {
    const bool half = type == OIIO::TypeDesc::HALF;
    std::string name = compression;
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    Plugged("Exr" + name + (half ? "Half" : "Float"), "exr",
            "EXR, " + (compression == "none" ? "not compressed" : compression), compression, type);
    WholeFile& file = files_.back();
    file.samplesFrom = EndOfExrHeader(file.bytes);
  }

  // Behind the attributes, each a name, a kind, a size and so many bytes, and behind an empty one.
  static std::size_t EndOfExrHeader(const std::string& bytes) {
    std::size_t at = 8;
    while (bytes[at] != '\0') {
      at = bytes.find('\0', at) + 1;
      at = bytes.find('\0', at) + 1;
      std::uint32_t size = 0;
      std::memcpy(&size, bytes.data() + at, sizeof size);
      at += 4 + size;
    }
    return at + 1;
  }

  void Plugged(const std::string& name, const std::string& ending, const std::string& format,
               const std::string& compression, OIIO::TypeDesc type) {
    const std::string file = (folder_ / ("whole." + ending)).string();
    OIIO::ImageSpec spec(kWidth, kHeight, 3, type);
    if (!compression.empty()) {
      spec.attribute("compression", compression);
    }
    std::vector<float> samples;
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        for (int c = 0; c < 3; ++c) {
          samples.push_back(SlopeFloat(x, y, c));
        }
      }
    }
    const auto output = OIIO::ImageOutput::create(file);
    EXPECT_TRUE(output->open(file, spec) &&
                output->write_image(OIIO::TypeDesc::FLOAT, samples.data()) && output->close())
        << output->geterror();
    Add({name, "." + ending, format, "", 0, 0, 3, static_cast<int>(type.size() * 8),
         type.is_floating_point()});
  }

  void Dpx(const std::string& name, int bits, DpxPacking packing) {
    MadeDpx kind;
    kind.width = kWidth;
    kind.height = kHeight;
    kind.bits = bits;
    kind.packing = packing;
    kind.sample = Slopes(bits);
    std::ofstream(folder_ / "whole.dpx", std::ios::binary) << DpxBytes(kind);
    Add({name, ".dpx", "DPX", "", 2048, 0, 3, bits});
  }

  void Pam() {
    std::string bytes = "P7\nWIDTH " + std::to_string(kWidth) + "\nHEIGHT " +
                        std::to_string(kHeight) + "\nDEPTH 3\nMAXVAL 65535\nENDHDR\n";
    const std::size_t header = bytes.size();
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        for (int c = 0; c < 3; ++c) {
          const std::uint32_t sample = Slope(x, y, c, 16);
          bytes += {static_cast<char>(sample >> 8U), static_cast<char>(sample & 0xFFU)};
        }
      }
    }
    std::ofstream(folder_ / "whole.pam", std::ios::binary) << bytes;
    Add({"Pam", ".pam", "PAM", "", header, 0, 3, 16});
  }

  fs::path folder_;
  std::vector<WholeFile> files_;
};

}  // namespace

std::vector<WholeFile> WholeFiles(const fs::path& folder) { return Maker(folder).All(); }

}  // namespace lx_test
