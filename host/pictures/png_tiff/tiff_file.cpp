// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/file_metadata.h"
#include "host/pictures/floats/float_picture.h"
#include "host/pictures/floats/float_samples.h"
#include "host/pictures/picture_formats.h"
#include "host/pictures/png_tiff/tiff_deflated.h"
#include "host/pictures/png_tiff/tiff_directory.h"
#include "host/pictures/png_tiff/tiff_library.h"
#include "host/pictures/png_tiff/tiff_metadata.h"
#include "host/pictures/png_tiff/tiff_samples.h"
#include "host/pictures/png_tiff/tiff_tags.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

struct Compression {
  std::uint64_t mostPerByte;  // bytes that one byte of a file can become
  std::uint16_t tag;
  bool predicts;  // may store the differences of neighbours
};

constexpr Compression kCompressions[] = {
    {1032, COMPRESSION_ADOBE_DEFLATE, true},
    {1032, COMPRESSION_DEFLATE, true},
    {2731, COMPRESSION_LZW, true},
    {64, COMPRESSION_PACKBITS, false},
    {1, COMPRESSION_NONE, false},
};

const Compression* FindCompression(std::uint16_t tag) {
  const auto* const found =
      std::find_if(std::begin(kCompressions), std::end(kCompressions),
                   [tag](const Compression& compression) { return compression.tag == tag; });
  return found == std::end(kCompressions) ? nullptr : found;
}

std::string CompressionName(std::uint16_t tag) {
  const TIFFCodec* const codec = TIFFFindCODEC(tag);
  return codec == nullptr ? "compression " + std::to_string(tag) : std::string(codec->name);
}

std::string PhotometricName(std::uint16_t photometric) {
  switch (photometric) {
    case PHOTOMETRIC_MASK:
      return "a mask";
    case PHOTOMETRIC_SEPARATED:
      return "CMYK";
    case PHOTOMETRIC_YCBCR:
      return "YCbCr";
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
      return "Lab";
    default:
      return "of kind " + std::to_string(photometric);
  }
}

template <class Value>
Value Field(TIFF* tiff, std::uint32_t tag) {
  Value value{};
  TIFFGetFieldDefaulted(tiff, tag, &value);
  return value;
}

// How a file is cut: strips are blocks as wide as the picture.
struct Blocks {
  std::uint32_t width;
  std::uint32_t height;
  std::uint64_t rowBytes;
  bool tiles;
};

// Alpha is not light.
void InvertColours(Picture* picture) {
  for (std::size_t i = 0; i < picture->samples.size(); ++i) {
    if (i % 4 != 3) {
      picture->samples[i] = static_cast<std::uint16_t>(65535 - picture->samples[i]);
    }
  }
}

class TiffReader {
 public:
  TiffReader(const fs::path& file, Reader reader)
      : file_(file), library_(file, TiffLibrary::Use::kRead), tiff_(library_.Tiff()) {
    if (tiff_ == nullptr) {
      Broken();
    }
    width_ = Field<std::uint32_t>(tiff_, TIFFTAG_IMAGEWIDTH);
    height_ = Field<std::uint32_t>(tiff_, TIFFTAG_IMAGELENGTH);
    CheckSides(file_, width_, height_);
    channels_ = Field<std::uint16_t>(tiff_, TIFFTAG_SAMPLESPERPIXEL);
    bits_ = Field<std::uint16_t>(tiff_, TIFFTAG_BITSPERSAMPLE);
    floats_ = Field<std::uint16_t>(tiff_, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_IEEEFP;
    apart_ = Field<std::uint16_t>(tiff_, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    if (TIFFGetField(tiff_, TIFFTAG_PHOTOMETRIC, &photometric_) == 0) {
      photometric_ = channels_ == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    }
    CheckKind();
    CheckCompression();
    if (reader == Reader::kExact) {
      CheckExact();
    }
  }

  PictureHead Head() const {
    return {static_cast<int>(width_), static_cast<int>(height_), channels_, bits_, floats_};
  }

  // Throws BeyondReader where the plug-in would bring more of the file, or bring it otherwise, into
  // a file of that format.
  void CheckMetadata(const std::string& keptFor) const {
    CheckTiffMetadata(Metadata(), FirstTiffDirectory(file_), keptFor);
  }

  Picture Read(const ReadOptions& options, ReadReport* report) {
    if (floats_ && options.colours) {
      throw BeyondReader("its colours are to be transformed");
    }
    FindBlocks();
    deflated_.emplace(library_);
    Picture picture;
    picture.width = static_cast<int>(width_);
    picture.height = static_cast<int>(height_);
    picture.bits = bits_ <= 8 ? 8 : 16;
    if (floats_) {
      TakeFloats(options, report, &picture);
    } else {
      TakeWords(&picture);
    }
    const FileMetadata metadata = Metadata();
    picture.pixelAspect = PixelAspectOf(metadata.resolution);
    picture.metadata = std::make_shared<FileMetadata>(metadata);
    NoteLeft(picture, report);
    return picture;
  }

 private:
  FileMetadata Metadata() const {
    FileMetadata metadata = ReadTiffMetadata(tiff_);
    if (library_.IsStarved()) {
      throw std::bad_alloc();
    }
    // libtiff leaves out a tag that it could not read.
    if (library_.IsRefused()) {
      ReadFailure(file_, "the system does not read on");
    }
    std::uint64_t exif = 0;
    if (TIFFGetField(tiff_, TIFFTAG_EXIFIFD, &exif) != 0) {
      metadata.tiff.exifColourSpace = LoneColourSpace(TiffDirectoryAt(file_, exif));
    }
    return metadata;
  }

  void NoteLeft(const Picture& picture, ReadReport* report) const {
    const int taken = (picture.grey ? 1 : 3) + (picture.alpha == Alpha::kNone ? 0 : 1);
    if (const int left = channels_ - taken; left > 0 && photometric_ != PHOTOMETRIC_PALETTE) {
      const std::string why = "red, green, blue and alpha are";
      report->notCarried.push_back(
          left == 1 ? OneNotCarried("a further channel", "", why)
                    : SomeNotCarried(std::to_string(left) + " further channels", why));
    }
    if (TIFFLastDirectory(tiff_) == 0) {
      report->notCarried.push_back(SomeNotCarried("the parts of the file behind the first",
                                                  "the first alone is the picture"));
    }
  }

  [[noreturn]] void Broken() const {
    ReadFailure(file_, std::string("cut short or broken: ") + library_.Trouble());
  }

  // What both readers take, and not as the same samples or with the same words about it.
  void CheckExact() const {
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    TIFFGetField(tiff_, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    const int colours = photometric_ == PHOTOMETRIC_RGB ? 3 : 1;
    const bool hasAlpha = count == 1 && kinds[0] != EXTRASAMPLE_UNSPECIFIED;
    if (channels_ != colours + (hasAlpha ? 1 : 0)) {
      throw BeyondReader("its channels are not colours and one declared alpha");
    }
    const bool isPlain =
        floats_ ? bits_ <= 32 : bits_ == 8 || bits_ == 16 || photometric_ == PHOTOMETRIC_PALETTE;
    if (!isPlain || (photometric_ == PHOTOMETRIC_MINISWHITE && (floats_ || bits_ > 8))) {
      throw BeyondReader("its samples have " + std::to_string(bits_) + " bits of their kind");
    }
    if (TIFFLastDirectory(tiff_) == 0) {
      throw BeyondReader("it has several parts");
    }
  }

  void CheckKind() const {
    if (photometric_ != PHOTOMETRIC_MINISBLACK && photometric_ != PHOTOMETRIC_MINISWHITE &&
        photometric_ != PHOTOMETRIC_RGB && photometric_ != PHOTOMETRIC_PALETTE) {
      throw BeyondReader("its colours are " + PhotometricName(photometric_) +
                         "; grey, palettes and RGB can be read");
    }
    if (channels_ < 1 || (photometric_ == PHOTOMETRIC_PALETTE && channels_ != 1)) {
      throw BeyondReader("its pixels have " + std::to_string(channels_) + " samples");
    }
    const auto format = Field<std::uint16_t>(tiff_, TIFFTAG_SAMPLEFORMAT);
    const bool whole = format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID;
    const bool known = floats_ ? bits_ == 16 || bits_ == 32 || bits_ == 64
                               : whole && (bits_ == 1 || bits_ == 2 || bits_ == 4 || bits_ == 8 ||
                                           bits_ == 16 || bits_ == 32);
    if (!known || (photometric_ == PHOTOMETRIC_PALETTE && (floats_ || bits_ > 8))) {
      throw BeyondReader("its samples are of a kind that cannot be read: " + std::to_string(bits_) +
                         " bits, sample format " + std::to_string(format));
    }
  }

  void CheckCompression() {
    const auto tag = Field<std::uint16_t>(tiff_, TIFFTAG_COMPRESSION);
    const Compression* const compression = FindCompression(tag);
    if (compression == nullptr) {
      throw BeyondReader("it is compressed by " + CompressionName(tag) +
                         "; none, LZW, deflate and PackBits can be read");
    }
    std::error_code error;
    mostBytes_ = fs::file_size(file_, error) * compression->mostPerByte;
  }

  void FindBlocks() {
    blocks_.tiles = TIFFIsTiled(tiff_) != 0;
    if (blocks_.tiles) {
      blocks_.width = Field<std::uint32_t>(tiff_, TIFFTAG_TILEWIDTH);
      blocks_.height = Field<std::uint32_t>(tiff_, TIFFTAG_TILELENGTH);
      blocks_.rowBytes = TIFFTileRowSize64(tiff_);
    } else {
      blocks_.width = width_;
      blocks_.height = std::min(height_, Field<std::uint32_t>(tiff_, TIFFTAG_ROWSPERSTRIP));
      blocks_.rowBytes = TIFFScanlineSize64(tiff_);
    }
    const std::uint64_t samplesInRow = blocks_.width * std::uint64_t{apart_ ? 1U : channels_};
    if (blocks_.width == 0 || blocks_.height == 0 ||
        blocks_.rowBytes < (samplesInRow * bits_ + 7) / 8) {
      Broken();
    }
    // A header may claim anything; nothing is allocated for more than the file can hold.
    const std::uint64_t pixelBits = std::uint64_t{channels_} * bits_;
    if (std::uint64_t{width_} * height_ * pixelBits / 8 > mostBytes_ ||
        blocks_.rowBytes > mostBytes_ / blocks_.height) {
      ReadFailure(file_, "cut short or broken: too small for the size that it claims");
    }
  }

  std::size_t SampleCount() const { return std::size_t{width_} * height_ * channels_; }

  void TakeFloats(const ReadOptions& options, ReadReport* report, Picture* picture) {
    std::vector<float> values(SampleCount());
    ReadBlocks(UnpackFloats, values.data());
    const ChannelMap map = MapChannels(channels_, picture);
    if (photometric_ == PHOTOMETRIC_MINISWHITE) {
      // Before the range, which would take black for the brightest.
      for (std::size_t i = 0; i < values.size(); i += channels_) {
        values[i] = 1.0F - values[i];
      }
    }
    picture->grey = map.grey;
    SpreadFloats(file_, values, channels_, map, {options.KeepsFloats(true), options.range}, picture,
                 report);
  }

  // Whether rows of whole pixels follow one another, in samples that need no looking up.
  bool HasPixelRows() const {
    return !apart_ && !blocks_.tiles && (bits_ == 8 || bits_ == 16) &&
           photometric_ != PHOTOMETRIC_PALETTE;
  }

  // The usual kinds of files, straight into the picture: a pass less over it, and no other buffer
  // of its size.
  void TakePixels(Picture* picture) {
    const ChannelMap map = MapChannels(channels_, picture);
    picture->grey = map.grey;
    picture->samples.resize(picture->PixelCount() * 4);
    std::vector<std::uint8_t> rows;
    std::uint32_t strip = 0;
    for (std::uint32_t top = 0; top < height_; top += blocks_.height, ++strip) {
      const std::uint32_t end = top + std::min(blocks_.height, height_ - top);
      const std::uint32_t atOnce = IsStored(strip, end - top) ? StoredRows() : end - top;
      rows.resize(std::min<std::uint64_t>(atOnce, end - top) * blocks_.rowBytes);
      for (std::uint32_t y = top; y < end; y += std::min(atOnce, end - y)) {
        const std::uint32_t count = std::min(atOnce, end - y);
        if (IsStored(strip, end - top)) {
          ReadStored(strip, y - top, count, &rows);
        } else {
          ReadBlock(strip, count, &rows);
        }
        for (std::uint32_t row = 0; row < count; ++row) {
          UnpackPixels(rows.data() + row * blocks_.rowBytes, width_, bits_, channels_, map.alpha,
                       picture->samples.data() + std::size_t{y + row} * width_ * 4);
        }
      }
    }
    if (photometric_ == PHOTOMETRIC_MINISWHITE) {
      InvertColours(picture);
    }
  }

  // Whether a strip's rows stand in the file as they are. libtiff would have to be asked for a
  // whole strip at a time, which may be the whole picture.
  bool IsStored(std::uint32_t strip, std::uint32_t rows) const {
    return Field<std::uint16_t>(tiff_, TIFFTAG_COMPRESSION) == COMPRESSION_NONE &&
           Field<std::uint16_t>(tiff_, TIFFTAG_FILLORDER) == FILLORDER_MSB2LSB &&
           TIFFGetStrileOffset(tiff_, strip) != 0 &&
           TIFFGetStrileByteCount(tiff_, strip) >= rows * blocks_.rowBytes;
  }

  // As many as stay in the processor's own memory until they are unpacked.
  std::uint32_t StoredRows() const {
    constexpr std::uint64_t kBytes = 1U << 18U;
    return static_cast<std::uint32_t>(std::max<std::uint64_t>(kBytes / blocks_.rowBytes, 1));
  }

  void ReadStored(std::uint32_t strip, std::uint32_t firstRow, std::uint32_t count,
                  std::vector<std::uint8_t>* rows) {
    const std::uint64_t place = TIFFGetStrileOffset(tiff_, strip) + firstRow * blocks_.rowBytes;
    const std::size_t bytes = count * blocks_.rowBytes;
    if (!library_.ReadAt(place, rows->data(), bytes)) {
      ReadFailure(file_, "cut short or broken: the file ends too early");
    }
    if (bits_ == 16 && TIFFIsByteSwapped(tiff_) != 0) {
      SwapWords(rows->data(), bytes / 2);
    }
  }

  void TakeWords(Picture* picture) {
    if (HasPixelRows()) {
      return TakePixels(picture);
    }
    std::vector<std::uint16_t> samples = ReadWords();
    int channels = channels_;
    if (photometric_ == PHOTOMETRIC_PALETTE) {
      samples = LookUp(samples);
      channels = 3;
    }
    const ChannelMap map = MapChannels(channels, picture);
    picture->grey = map.grey;
    SpreadChannels(samples, channels, map, picture);
    if (photometric_ == PHOTOMETRIC_MINISWHITE) {
      InvertColours(picture);
    }
  }

  std::vector<std::uint16_t> ReadWords() {
    std::vector<std::uint16_t> samples(SampleCount());
    ReadBlocks(UnpackWords, samples.data());
    if (const std::uint16_t scale = WordScale(bits_);
        scale != 1 && photometric_ != PHOTOMETRIC_PALETTE) {
      for (std::uint16_t& sample : samples) {
        sample = static_cast<std::uint16_t>(sample * scale);
      }
    }
    return samples;
  }

  // Every block goes to its place in the picture, whose samples are together at the end.
  template <class Sample>
  void ReadBlocks(void (*unpack)(const std::uint8_t*, std::size_t, int, std::size_t, Sample*),
                  Sample* to) {
    std::vector<std::uint8_t> block(blocks_.rowBytes * blocks_.height);
    const std::uint32_t planes = apart_ ? channels_ : 1U;
    const std::size_t inRow = apart_ ? 1U : channels_;
    std::uint32_t number = 0;
    for (std::uint32_t plane = 0; plane < planes; ++plane) {
      for (std::uint64_t top = 0; top < height_; top += blocks_.height) {
        const auto rows =
            static_cast<std::size_t>(std::min<std::uint64_t>(blocks_.height, height_ - top));
        for (std::uint64_t left = 0; left < width_; left += blocks_.width) {
          const auto columns =
              static_cast<std::size_t>(std::min<std::uint64_t>(blocks_.width, width_ - left));
          ReadBlock(number++, rows, &block);
          for (std::size_t y = 0; y < rows; ++y) {
            unpack(block.data() + y * blocks_.rowBytes, columns * inRow, bits_,
                   apart_ ? channels_ : 1U, to + ((top + y) * width_ + left) * channels_ + plane);
          }
        }
      }
    }
  }

  void ReadBlock(std::uint32_t number, std::size_t rows, std::vector<std::uint8_t>* block) {
    if (deflated_->IsKnown()) {
      return ReadDeflated(number, blocks_.tiles ? blocks_.height : rows, block);
    }
    const auto size = static_cast<tmsize_t>(blocks_.tiles ? blocks_.height * blocks_.rowBytes
                                                          : rows * blocks_.rowBytes);
    const tmsize_t read = blocks_.tiles ? TIFFReadEncodedTile(tiff_, number, block->data(), size)
                                        : TIFFReadEncodedStrip(tiff_, number, block->data(), size);
    // Some decoders fill up what is missing and only leave a word about it.
    if (read != size || library_.Trouble()[0] != '\0') {
      Broken();
    }
  }

  void ReadDeflated(std::uint32_t number, std::size_t rows, std::vector<std::uint8_t>* block) {
    if (deflated_->Read(number, rows, block)) {
      return;
    }
    if (library_.Trouble()[0] != '\0') {
      Broken();
    }
    ReadFailure(file_, std::string("cut short or broken: ") + (blocks_.tiles ? "tile " : "strip ") +
                           std::to_string(number + 1) + " does not agree with its check sum");
  }

  std::vector<std::uint16_t> LookUp(const std::vector<std::uint16_t>& indices) {
    std::uint16_t* maps[3] = {};
    if (TIFFGetField(tiff_, TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) == 0) {
      ReadFailure(file_, "it has no palette");
    }
    std::vector<std::uint16_t> colours;
    colours.reserve(indices.size() * 3);
    for (const std::uint16_t index : indices) {
      for (const std::uint16_t* const map : maps) {
        // A picture of 8 bits, so that nothing is lost when it is written as such.
        colours.push_back(static_cast<std::uint16_t>(map[index] / 257 * 257));
      }
    }
    return colours;
  }

  // The first extra sample that is declared as alpha. Where nothing is declared, and of grey
  // whatever is, the sample behind the colours is alpha.
  ChannelMap MapChannels(int channels, Picture* picture) const {
    ChannelMap map = MapPlainChannels(channels);
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    bool straight = false;
    // Not the defaulted form, which declares what the file does not.
    if (TIFFGetField(tiff_, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 0) {
      const std::uint16_t* const end = kinds + count;
      const std::uint16_t* const alpha = std::find_if(
          kinds, end, [](std::uint16_t kind) { return kind != EXTRASAMPLE_UNSPECIFIED; });
      straight = alpha != end && *alpha == EXTRASAMPLE_UNASSALPHA;
      if (channels > 3) {
        map.alpha = alpha == end ? -1 : channels - static_cast<int>(end - alpha);
        if (map.alpha >= 0 && map.alpha < 3) {
          ReadFailure(file_, "it has " + std::to_string(channels) +
                                 " channels, and its alpha is where a colour is expected");
        }
      }
    }
    picture->alpha = map.alpha < 0 ? Alpha::kNone
                     : straight    ? Alpha::kStraight
                                   : Alpha::kPremultiplied;
    return map;
  }

  const fs::path& file_;
  TiffLibrary library_;
  TIFF* tiff_;
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
  std::uint16_t channels_ = 0;
  std::uint16_t bits_ = 0;
  std::uint16_t photometric_ = 0;
  bool floats_ = false;
  bool apart_ = false;
  std::uint64_t mostBytes_ = 0;
  Blocks blocks_{};
  std::optional<DeflatedBlocks> deflated_;  // there once samples are read
};

void SetLayout(TIFF* tiff, const Picture& picture, const Coding& coding, int channels) {
  SetTag(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
  SetTag(tiff, TIFFTAG_IMAGELENGTH, picture.height);
  SetTag(tiff, TIFFTAG_BITSPERSAMPLE, BitsOf(coding, picture.bits));
  SetTag(tiff, TIFFTAG_SAMPLESPERPIXEL, channels);
  SetTag(tiff, TIFFTAG_SAMPLEFORMAT, coding.floats ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT);
  SetTag(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  SetTag(tiff, TIFFTAG_PHOTOMETRIC, picture.grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
  if (picture.alpha != Alpha::kNone) {
    const std::uint16_t kind =
        picture.alpha == Alpha::kStraight ? EXTRASAMPLE_UNASSALPHA : EXTRASAMPLE_ASSOCALPHA;
    SetExtraSample(tiff, kind);
  }
}

std::uint16_t CompressionTag(const std::string& word) {
  return word == "none"       ? COMPRESSION_NONE
         : word == "lzw"      ? COMPRESSION_LZW
         : word == "packbits" ? COMPRESSION_PACKBITS
                              : COMPRESSION_ADOBE_DEFLATE;
}

// The one that was chosen, or the input's own where the samples are of its kind; deflate otherwise.
const Compression& CompressionFor(const Picture& picture, const Coding& coding) {
  const FileMetadata* const metadata = picture.metadata.get();
  const bool isOwn = metadata != nullptr && metadata->format == "tiff" &&
                     BitsOf(coding, picture.bits) == picture.bits;
  const Compression* const found = !coding.compression.empty()
                                       ? FindCompression(CompressionTag(coding.compression))
                                   : isOwn ? FindCompression(metadata->tiff.compression)
                                           : nullptr;
  return found == nullptr ? kCompressions[0] : *found;
}

// libtiff's own strips have 8 KiB, which is less than a row of a large picture.
constexpr int kStripRows = 32;

// Samples as the file has them. The bytes are one of the three buffers'.
class FileSamples {
 public:
  FileSamples(const Picture& picture, const Coding& coding, int channels)
      : picture_(picture),
        bits_(BitsOf(coding, picture.bits)),
        floats_(coding.floats),
        channels_(channels) {}

  void* Rows(int first, int rows) {
    if (floats_) {
      values_ = GatherFloatRows(picture_, channels_, first, rows);
      return values_.data();
    }
    samples_.resize(Count(rows));
    GatherRows(picture_, channels_, first, rows, samples_.data());
    if (bits_ == 8) {
      bytes_ = ToBytes(samples_);
      return bytes_.data();
    }
    return samples_.data();
  }

  tmsize_t ByteCount(int rows) const {
    return static_cast<tmsize_t>(Count(rows) * static_cast<std::size_t>(bits_ / 8));
  }

 private:
  std::size_t Count(int rows) const {
    return static_cast<std::size_t>(picture_.width) * static_cast<std::size_t>(channels_) *
           static_cast<std::size_t>(rows);
  }

  const Picture& picture_;
  int bits_;
  bool floats_;
  int channels_;
  std::vector<std::uint16_t> samples_;
  std::vector<std::uint8_t> bytes_;
  std::vector<float> values_;
};

bool WriteStrips(TIFF* tiff, const Picture& picture, const Coding& coding, int channels) {
  FileSamples samples(picture, coding, channels);
  std::uint32_t strip = 0;
  for (int y = 0; y < picture.height; y += kStripRows, ++strip) {
    const int rows = std::min(kStripRows, picture.height - y);
    const tmsize_t size = samples.ByteCount(rows);
    if (TIFFWriteEncodedStrip(tiff, strip, samples.Rows(y, rows), size) != size) {
      return false;
    }
  }
  return true;
}

// All that comes before the samples.
void SetTags(TIFF* tiff, const Picture& picture, const Coding& coding, int channels) {
  const std::uint64_t exif = picture.metadata ? WriteTiffExif(*picture.metadata, tiff) : 0;
  SetLayout(tiff, picture, coding, channels);
  if (exif != 0) {
    SetTag(tiff, TIFFTAG_EXIFIFD, exif);
  }
  const Compression& compression = CompressionFor(picture, coding);
  SetTag(tiff, TIFFTAG_COMPRESSION, compression.tag);
  if (compression.tag == COMPRESSION_ADOBE_DEFLATE || compression.tag == COMPRESSION_DEFLATE) {
    SetTag(tiff, TIFFTAG_ZIPQUALITY, DeflateLevel(coding));
  }
  if (compression.predicts) {
    SetTag(tiff, TIFFTAG_PREDICTOR, coding.floats ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL);
  }
  SetTag(tiff, TIFFTAG_ROWSPERSTRIP, kStripRows);
  if (picture.metadata) {
    SetTiffMetadata(*picture.metadata, tiff);
  }
}

}  // namespace

Picture ReadTiff(const fs::path& file, const ReadOptions& options, Reader reader,
                 ReadReport* report, std::string* metadataBeyond) {
  TiffReader tiff(file, reader);
  if (reader == Reader::kExact && options.keptFor != kNoFormat) {
    NoteBeyond(metadataBeyond, [&] { tiff.CheckMetadata(options.keptFor); });
  }
  return tiff.Read(options, report);
}

PictureHead ReadTiffHead(const fs::path& file) {
  return TiffReader(file, Reader::kBestEffort).Head();
}

void WriteTiff(const fs::path& file, const Picture& picture, const Coding& coding) {
  TiffLibrary library(file, TiffLibrary::Use::kWrite);
  TIFF* const tiff = library.Tiff();
  if (tiff == nullptr) {
    throw Failure(library.Trouble());
  }
  const int channels = ChannelsToWrite(picture);
  try {
    SetTags(tiff, picture, coding, channels);
  } catch (const TagRefused&) {
    library.Abandon();
    throw;
  }
  const bool written = WriteStrips(tiff, picture, coding, channels);
  const bool closed = library.Close();
  if (!written || !closed) {
    // libtiff has its own idea of why the system did not move on in a file.
    const bool taken = !library.IsRefused() && library.Trouble()[0] != '\0';
    throw Failure(taken ? library.Trouble() : "the system does not take all of it");
  }
}

}  // namespace glimmerhost
