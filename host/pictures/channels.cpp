// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/channels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/support/failure.h"

namespace glimmerhost {

namespace {

// With the number known a pixel is a few moves instead of loops.
template <int kChannels>
void Gather(const std::uint16_t* pixel, std::size_t count, std::uint16_t* to) {
  for (std::size_t i = 0; i < count; ++i, pixel += 4, to += kChannels) {
    if constexpr (kChannels < 3) {
      to[0] = static_cast<std::uint16_t>((pixel[0] + pixel[1] + pixel[2] + 1) / 3);
    } else {
      to[0] = pixel[0];
      to[1] = pixel[1];
      to[2] = pixel[2];
    }
    if constexpr (kChannels % 2 == 0) {
      to[kChannels - 1] = pixel[3];
    }
  }
}

}  // namespace

ChannelMap MapPlainChannels(int count) {
  switch (count) {
    case 1:
      return {0, 0, 0, -1, true};
    case 2:
      return {0, 0, 0, 1, true};
    case 3:
      return {0, 1, 2, -1, false};
    default:
      return {0, 1, 2, 3, false};
  }
}

void SpreadChannels(const std::vector<std::uint16_t>& from, int channels, const ChannelMap& map,
                    Picture* picture) {
  picture->samples.resize(picture->PixelCount() * 4);
  const std::uint16_t* pixel = from.data();
  std::uint16_t* to = picture->samples.data();
  for (std::size_t i = 0; i < picture->PixelCount(); ++i, pixel += channels, to += 4) {
    to[0] = pixel[map.red];
    to[1] = pixel[map.green];
    to[2] = pixel[map.blue];
    to[3] = map.alpha < 0 ? std::uint16_t{65535} : pixel[map.alpha];
  }
}

int ChannelsToWrite(const Picture& picture) {
  return (picture.grey ? 1 : 3) + (picture.alpha == Alpha::kNone ? 0 : 1);
}

std::vector<std::uint16_t> GatherChannels(const Picture& picture, int channels) {
  std::vector<std::uint16_t> out(picture.PixelCount() * static_cast<std::size_t>(channels));
  GatherRows(picture, channels, 0, picture.height, out.data());
  return out;
}

void GatherRows(const Picture& picture, int channels, int firstRow, int rows, std::uint16_t* to) {
  const auto width = static_cast<std::size_t>(picture.width);
  const std::uint16_t* const from =
      picture.samples.data() + static_cast<std::size_t>(firstRow) * width * 4;
  const std::size_t count = static_cast<std::size_t>(rows) * width;
  switch (channels) {
    case 1:
      return Gather<1>(from, count, to);
    case 2:
      return Gather<2>(from, count, to);
    case 3:
      return Gather<3>(from, count, to);
    default:
      return Gather<4>(from, count, to);
  }
}

std::vector<std::uint8_t> ToBytes(const std::vector<std::uint16_t>& samples) {
  std::vector<std::uint8_t> bytes(samples.size());
  std::transform(samples.begin(), samples.end(), bytes.begin(),
                 [](std::uint16_t v) { return static_cast<std::uint8_t>((v + 128U) / 257U); });
  return bytes;
}

void RoundToBits(int bits, std::vector<std::uint16_t>* samples) {
  const std::uint32_t most = (1U << static_cast<unsigned>(bits)) - 1;
  const auto shift = static_cast<unsigned>(16 - bits);
  for (std::uint16_t& sample : *samples) {
    const std::uint32_t code = (sample * most + 32767U) / 65535U;
    // The high bits once more in the low ones: full scale stays full scale.
    sample = static_cast<std::uint16_t>(code << shift | code >> (16U - 2U * shift));
  }
}

void ReadFailure(const std::filesystem::path& file, const std::string& why) {
  // Libraries say it again for each row.
  constexpr std::size_t kLongest = 300;
  std::string line = why.empty() ? "not a picture that can be read" : why;
  if (line.size() > kLongest) {
    line.resize(kLongest);
    line += "...";
  }
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  throw Failure(file.string() + ": " + line);
}

void CheckSides(const std::filesystem::path& file, std::int64_t width, std::int64_t height) {
  constexpr std::int64_t kLargestSide = 65535;
  if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) {
    ReadFailure(file, "its size of " + std::to_string(width) + " x " + std::to_string(height) +
                          " cannot be worked on");
  }
}

}  // namespace glimmerhost
