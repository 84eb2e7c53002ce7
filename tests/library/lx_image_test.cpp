// SPDX-License-Identifier: BSD-3-Clause
#include "library/lx_image.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>

#include "baselib/threads/pool.h"
#include "baselib/utils/heap.h"
#include "tests/support/heap_faults.h"
#include "tests/support/platform_recorder.h"
#include "tests/support/tracked_heap.h"

namespace {

using lx::LXImage;

TEST(LXImage, OwnsItsSamplesWhenItMakesThem) {
  const LXImage image(5, 3, 1.0F, nullptr, 7);

  EXPECT_EQ(1, image.ownsData);
  ASSERT_NE(nullptr, image.data);
  for (int y = 0; y < 3; ++y) {
    EXPECT_EQ(image.data + y * 20, image.rows[y]);
  }
  EXPECT_EQ(5, image.width);
  EXPECT_EQ(3, image.height);
  EXPECT_EQ(1.0, image.aspectX);
  EXPECT_EQ(1.0, image.aspectY);
  EXPECT_EQ(0.0, image.offsetX);
  EXPECT_EQ(0.0, image.offsetY);
  EXPECT_EQ(144.0F, image.scale);
  EXPECT_EQ(7, image.tag);
  EXPECT_EQ(nullptr, image.extra);
}

TEST(LXImage, BorrowsSamplesThatItIsGiven) {
  std::uint16_t samples[5 * 3 * 4] = {};
  {
    const LXImage image(5, 3, 1.0F, samples, 0);
    EXPECT_EQ(0, image.ownsData);
    EXPECT_EQ(samples, image.data);
    EXPECT_EQ(samples + 20, image.rows[1]);
  }
  EXPECT_EQ(0, samples[0]);
}

TEST(LXImage, FreesSamplesRowsAndExtra) {
  lx_test::HeapFaults heap;
  {
    LXImage image(5, 3, 1.0F, nullptr, 0);
    image.extra = lx::lx_malloc(10);
    EXPECT_EQ(3, heap.Alive());
  }
  EXPECT_EQ(0, heap.Alive());
}

TEST(LXImage, IsEmptyAtNoSize) {
  const std::unique_ptr<LXImage> image(LXImage::Make(0, 0));

  ASSERT_NE(nullptr, image);
  EXPECT_TRUE(std::isinf(image->scale));
}

TEST(LXImage, IsNotMadeForSidesThatNoImageHas) {
  EXPECT_EQ(nullptr, LXImage::Make(-1, 4));
  EXPECT_EQ(nullptr, LXImage::Make(23171, 23171));
  EXPECT_EQ(nullptr, LXImage::Make(INT32_MAX, INT32_MAX));
}

TEST(LXImage, IsNotMadeWithoutMemoryAndLeavesNothing) {
  for (const int nth : {1, 2}) {
    lx_test::HeapFaults heap;
    heap.Refuse(nth);
    EXPECT_EQ(nullptr, LXImage::Make(5, 3));
    EXPECT_EQ(0, heap.Alive());
  }
}

TEST(LXImage, ThatCouldNotBeMadeMisusesNoHeap) {
  const lx_test::TrackedHeap tracked(1, 1, 0);
  testing::internal::CaptureStderr();

  EXPECT_EQ(nullptr, LXImage::Make(23171, 23171));

  EXPECT_EQ("", lx_test::LoggedLines());
}

void Fill(LXImage* image, int start) {
  for (int i = 0; i < image->width * image->height * 4; ++i) {
    image->data[i] = static_cast<std::uint16_t>(start + i);
  }
}

TEST(LXImage, CopiesOnlyTheFourthChannelOfAllRows) {
  LXImage image(5, 3, 0, nullptr, 0);
  LXImage source(5, 3, 0, nullptr, 0);
  Fill(&image, 0);
  Fill(&source, 1000);

  image.CopyAlphaFrom(&source);

  for (int i = 0; i < 60; ++i) {
    EXPECT_EQ(i % 4 == 3 ? 1000 + i : i, image.data[i]) << i;
  }
}

TEST(LXImage, CopiesAlphaOnEveryWayOfThePool) {
  lx_test::PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  LXImage image(5, 7, 0, nullptr, 0);
  LXImage source(5, 7, 0, nullptr, 0);
  Fill(&image, 0);
  Fill(&source, 1000);

  image.CopyAlphaFrom(&source);

  EXPECT_EQ(1, platform.Count("set start 1"));
  EXPECT_EQ(1, platform.Count("set start 2"));
  for (int i = 0; i < 140; ++i) {
    EXPECT_EQ(i % 4 == 3 ? 1000 + i : i, image.data[i]) << i;
  }
}

TEST(LXImage, CopiesAlphaOverTheSmallerOfTwoSizes) {
  LXImage image(5, 3, 0, nullptr, 0);
  LXImage source(2, 7, 0, nullptr, 0);
  Fill(&image, 0);
  Fill(&source, 1000);

  image.CopyAlphaFrom(&source);

  EXPECT_EQ(1007, image.rows[0][7]);
  EXPECT_EQ(11, image.rows[0][11]);
  EXPECT_EQ(1000 + 2 * 8 + 3, image.rows[2][3]);
}

}  // namespace
