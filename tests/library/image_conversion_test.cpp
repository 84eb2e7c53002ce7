// SPDX-License-Identifier: BSD-3-Clause
#include "library/image_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <tuple>

#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx::LXImage;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;

TEST(ImageFromLX, DoublesSamplesAndLosesNone) {
  LXImage all(128, 64, 0, nullptr, 0);  // 32768 samples: every one of 15 bits
  for (int i = 0; i < 32768; ++i) {
    all.data[i] = static_cast<std::uint16_t>(i);
  }

  const Image record(lx::ImageFromLX(&all));

  ASSERT_NE(nullptr, record);
  EXPECT_EQ(4, record->channels);
  EXPECT_EQ(1, record->sampleType);
  for (int i = 0; i < 32768; ++i) {
    ASSERT_EQ(2 * i, Samples<std::uint16_t>(record)[i]);
  }
  LXImage back(128, 64, 0, nullptr, 0);
  ASSERT_TRUE(lx::ImageToLX(record.get(), &back));
  for (int i = 0; i < 32768; ++i) {
    ASSERT_EQ(i, back.data[i]);
  }
}

TEST(ImageFromLX, WrapsSamplesAbove15Bits) {
  LXImage image(1, 1, 0, nullptr, 0);
  image.data[0] = 32768;
  image.data[1] = 65535;
  image.data[2] = image.data[3] = 0;

  const Image record(lx::ImageFromLX(&image));

  EXPECT_EQ(0, Samples<std::uint16_t>(record)[0]);
  EXPECT_EQ(65534, Samples<std::uint16_t>(record)[1]);
}

TEST(ImageFromLX, IsNullForNullForWideImagesAndWithoutMemory) {
  EXPECT_EQ(nullptr, lx::ImageFromLX(nullptr));
  LXImage wide(65536, 1, 0, nullptr, 0);
  EXPECT_EQ(nullptr, lx::ImageFromLX(&wide));
  LXImage small(4, 4, 0, nullptr, 0);
  lx_test::HeapFaults heap;
  heap.Refuse(1);
  EXPECT_EQ(nullptr, lx::ImageFromLX(&small));
  EXPECT_EQ(0, heap.Alive());
}

TEST(ImageCopyFromLX, ScalesFloatsByASinglePrecisionConstant) {
  LXImage image(1, 1, 0, nullptr, 0);
  const std::uint16_t samples[] = {0, 1, 16384, 32767};
  std::copy(samples, samples + 4, image.data);
  const Image record = MakeImage(1, 1, 4, 3);

  ASSERT_TRUE(lx::ImageCopyFromLX(record.get(), &image));

  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(static_cast<float>(samples[i]) * (1.0F / 32767.0F), Samples<float>(record)[i]);
  }
}

TEST(ImageCopyFromLX, RefusesOtherRecordsAndLeavesThem) {
  LXImage image(4, 3, 0, nullptr, 0);
  std::fill_n(image.data, 48, std::uint16_t{1});
  for (const auto& [w, h, channels, type] :
       {std::tuple{4, 3, 3U, 1U}, {4, 3, 4U, 0U}, {4, 3, 4U, 2U}, {3, 4, 4U, 1U}, {5, 3, 4U, 1U}}) {
    const Image record = MakeImage(w, h, channels, type);
    static_cast<std::uint8_t*>(record->data)[0] = 0x77;
    EXPECT_FALSE(lx::ImageCopyFromLX(record.get(), &image)) << channels << " " << type;
    EXPECT_EQ(0x77, static_cast<std::uint8_t*>(record->data)[0]);
  }
  const Image empty(lx::ImageCreate(4, 3, 4, 1, 0));
  EXPECT_FALSE(lx::ImageCopyFromLX(empty.get(), &image));
}

TEST(ImageToLX, HalvesWords) {
  const Image record = MakeImage(1, 1, 4, 1);
  const std::uint16_t samples[] = {65535, 1, 2, 40001};
  std::copy(samples, samples + 4, Samples<std::uint16_t>(record));
  LXImage image(1, 1, 0, nullptr, 0);

  ASSERT_TRUE(lx::ImageToLX(record.get(), &image));

  const int expected[] = {32767, 0, 1, 20000};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(expected[i], image.data[i]);
  }
}

TEST(ImageToLX, FillsUpBytes) {
  const Image record = MakeImage(64, 1, 4, 0);
  for (int i = 0; i < 256; ++i) {
    Samples<std::uint8_t>(record)[i] = static_cast<std::uint8_t>(i);
  }
  LXImage image(64, 1, 0, nullptr, 0);

  ASSERT_TRUE(lx::ImageToLX(record.get(), &image));

  EXPECT_EQ(0, image.data[0]);
  EXPECT_EQ(16448, image.data[128]);
  EXPECT_EQ(32767, image.data[255]);
  for (int i = 0; i < 256; ++i) {
    ASSERT_EQ(i * 128 + i / 2, image.data[i]);
  }
}

TEST(ImageToLX, AddsOpaqueAlphaToThreeChannels) {
  for (const std::uint32_t type : {0U, 1U}) {
    const Image record = MakeImage(2, 2, 3, type);
    for (int i = 0; i < 12; ++i) {
      if (type == 0) {
        Samples<std::uint8_t>(record)[i] = static_cast<std::uint8_t>(i * 20);
      } else {
        Samples<std::uint16_t>(record)[i] = static_cast<std::uint16_t>(i * 5000);
      }
    }
    LXImage image(2, 2, 0, nullptr, 0);

    ASSERT_TRUE(lx::ImageToLX(record.get(), &image));

    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(32767, image.data[4 * i + 3]);
      for (int c = 0; c < 3; ++c) {
        const int s = 3 * i + c;
        EXPECT_EQ(type == 0 ? s * 20 * 128 + s * 10 : s * 2500, image.data[4 * i + c]) << s;
      }
    }
  }
}

TEST(ImageToLX, RefusesOtherRecordsAndLeavesTheImage) {
  LXImage image(4, 3, 0, nullptr, 0);
  std::fill_n(image.data, 48, std::uint16_t{7});
  for (const auto& [w, h, channels, type] :
       {std::tuple{4, 3, 1U, 1U}, {4, 3, 5U, 1U}, {4, 3, 4U, 2U}, {4, 3, 4U, 3U}, {3, 4, 4U, 1U}}) {
    EXPECT_FALSE(lx::ImageToLX(MakeImage(w, h, channels, type).get(), &image));
  }
  EXPECT_FALSE(lx::ImageToLX(Image(lx::ImageCreate(4, 3, 4, 1, 0)).get(), &image));
  EXPECT_FALSE(lx::ImageToLX(nullptr, &image));
  EXPECT_EQ(7, image.data[0]);
}

}  // namespace
