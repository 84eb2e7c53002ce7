// SPDX-License-Identifier: BSD-3-Clause
// EXR files of several channels, types and parts, made and read by OpenImageIO itself.
#pragma once

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace lx_test {

// What a channel's sample is. Whole numbers are of the unsigned type.
using ExrSample = std::function<double(int x, int y)>;

struct ExrChannel {
  std::string name;
  OIIO::TypeDesc type;
  ExrSample sample;
};

struct ExrPart {
  int width = 30;
  int height = 20;
  std::vector<ExrChannel> channels;
  std::function<void(OIIO::ImageSpec*)> describe{};
};

using Bits = std::vector<std::byte>;

inline OIIO::ImageSpec SpecOf(const ExrPart& part) {
  OIIO::ImageSpec spec(part.width, part.height, static_cast<int>(part.channels.size()),
                       OIIO::TypeDesc::HALF);
  spec.channelnames.clear();
  spec.attribute("DateTime", "");  // not the time of this test
  for (const ExrChannel& channel : part.channels) {
    spec.channelnames.push_back(channel.name);
    spec.channelformats.push_back(channel.type);
  }
  if (part.describe) {
    part.describe(&spec);
  }
  return spec;
}

inline Bits BitsOf(const ExrPart& part) {
  Bits bits;
  for (int y = 0; y < part.height; ++y) {
    for (int x = 0; x < part.width; ++x) {
      for (const ExrChannel& channel : part.channels) {
        std::byte sample[4];
        if (channel.type == OIIO::TypeDesc::UINT32) {
          const auto number = static_cast<std::uint32_t>(channel.sample(x, y));
          std::memcpy(sample, &number, sizeof number);
        } else {
          const auto number = static_cast<float>(channel.sample(x, y));
          OIIO::convert_pixel_values(OIIO::TypeDesc::FLOAT, &number, channel.type, sample, 1);
        }
        bits.insert(bits.end(), sample, sample + channel.type.size());
      }
    }
  }
  return bits;
}

inline void MakeExr(const std::filesystem::path& file, const std::vector<ExrPart>& parts) {
  std::vector<OIIO::ImageSpec> specs;
  for (const ExrPart& part : parts) {
    specs.push_back(SpecOf(part));
  }
  const auto output = OIIO::ImageOutput::create(file.string());
  const bool opened =
      parts.size() == 1 ? output->open(file.string(), specs[0])
                        : output->open(file.string(), static_cast<int>(specs.size()), specs.data());
  ASSERT_TRUE(opened) << output->geterror();
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) {
      ASSERT_TRUE(output->open(file.string(), specs[i], OIIO::ImageOutput::AppendSubimage))
          << output->geterror();
    }
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::UNKNOWN, BitsOf(parts[i]).data()))
        << output->geterror();
  }
  ASSERT_TRUE(output->close()) << output->geterror();
}

struct ReadExr {
  OIIO::ImageSpec spec;
  std::map<std::string, OIIO::TypeDesc> types;
  std::map<std::string, Bits> bits;                   // of each channel
  std::map<std::string, std::vector<double>> values;  // the same as numbers
};

// A part, its channels apart. The test that asks for one that is not there fails.
inline ReadExr Read(const std::filesystem::path& file, int part = 0) {
  ReadExr read;
  const auto input = OIIO::ImageInput::open(file.string());
  EXPECT_TRUE(input) << OIIO::geterror();
  if (!input || !input->seek_subimage(part, 0)) {
    ADD_FAILURE() << file << " has no part " << part;
    return read;
  }
  read.spec = input->spec();
  Bits all(read.spec.image_bytes(true));
  EXPECT_TRUE(
      input->read_image(part, 0, 0, read.spec.nchannels, OIIO::TypeDesc::UNKNOWN, all.data()))
      << input->geterror();
  std::size_t place = 0;
  for (int c = 0; c < read.spec.nchannels; ++c) {
    const std::string name = read.spec.channel_name(c);
    const OIIO::TypeDesc type = read.spec.channelformat(c);
    read.types[name] = type;
    for (std::size_t i = 0; i < read.spec.image_pixels(); ++i) {
      const std::byte* const sample = all.data() + i * read.spec.pixel_bytes(true) + place;
      read.bits[name].insert(read.bits[name].end(), sample, sample + type.size());
      if (type == OIIO::TypeDesc::UINT32) {
        std::uint32_t number = 0;
        std::memcpy(&number, sample, sizeof number);
        read.values[name].push_back(number);
      } else {
        float number = 0.0F;
        OIIO::convert_pixel_values(type, sample, OIIO::TypeDesc::FLOAT, &number, 1);
        read.values[name].push_back(double{number});
      }
    }
    place += type.size();
  }
  return read;
}

inline int PartCount(const std::filesystem::path& file) {
  const auto input = OIIO::ImageInput::open(file.string());
  int count = 0;
  while (input && input->seek_subimage(count, 0)) {
    ++count;
  }
  return count;
}

// Numbers from 0 to 1 that jump from pixel to pixel, others for each seed.
inline ExrSample Jumping(int seed) {
  return
      [seed](int x, int y) { return ((x * 31 + y * 17) * 7919 + seed * 104729) % 1001 / 1000.0; };
}

}  // namespace lx_test
