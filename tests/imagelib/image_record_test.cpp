// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "imagelib/imagelib.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx::ImageCreate;
using lx::ImageFree;
using lx_test::Image;
using lx_test::MakeImage;

TEST(ImageCreate, TakesSidesFrom1To65535) {
  EXPECT_EQ(nullptr, ImageCreate(65536, 1, 1, 0, 0));
  EXPECT_EQ(nullptr, ImageCreate(0, 1, 1, 0, 0));
  EXPECT_EQ(nullptr, ImageCreate(-1, 1, 1, 0, 0));
  EXPECT_EQ(nullptr, ImageCreate(1, 65536, 1, 0, 0));
  EXPECT_EQ(nullptr, ImageCreate(1, 0, 1, 0, 0));
  EXPECT_EQ(nullptr, ImageCreate(1, -1, 1, 0, 0));
  EXPECT_NE(nullptr, Image(ImageCreate(65535, 2, 1, 0, 1)));
  EXPECT_NE(nullptr, Image(ImageCreate(2, 65535, 1, 0, 1)));
}

TEST(ImageCreate, RefusesUnknownSampleTypesAndNoChannels) {
  EXPECT_EQ(nullptr, ImageCreate(1, 1, 1, 4, 1));
  EXPECT_EQ(nullptr, ImageCreate(1, 1, 0, 0, 1));
}

TEST(ImageCreate, RefusesAProductThatWrapsBelowOne) {
  EXPECT_EQ(nullptr, ImageCreate(65535, 65535, 1, 0, 0));  // negative
  EXPECT_EQ(nullptr, ImageCreate(32768, 32768, 4, 0, 0));  // wraps to 0
}

TEST(ImageCreate, LetsAProductThroughThatWrapsToASmallOne) {
  const Image image(ImageCreate(65535, 32769, 2, 0, 1));  // wraps to 65534

  ASSERT_NE(nullptr, image);
  EXPECT_EQ(4295032830, std::int64_t{image->rowBytes} * image->height);
}

TEST(ImageCreate, FillsTheRecord) {
  const Image image(ImageCreate(30, 20, 4, 1, 1));

  EXPECT_EQ(30, image->width);
  EXPECT_EQ(20, image->height);
  EXPECT_EQ(4, image->channels);
  EXPECT_EQ(1, image->sampleType);
  EXPECT_EQ(1, image->ownsData);
  EXPECT_EQ(0, image->regionValid);
  EXPECT_EQ(0, image->region.left | image->region.top | image->region.right | image->region.bottom);
  EXPECT_EQ(1.5, image->aspect);
  EXPECT_EQ(240, image->rowBytes);
  EXPECT_EQ(8, image->pixelBytes);
  EXPECT_EQ(2, image->elementBytes);
}

TEST(ImageCreate, NarrowsChannelsAndNeverLosesOwnership) {
  const Image wide(ImageCreate(1, 1, 65537, 0, 1));
  EXPECT_EQ(1, wide->channels);
  EXPECT_EQ(1, wide->pixelBytes);

  const Image flagged(ImageCreate(1, 1, 1, 0, 0x10000));
  EXPECT_EQ(1, flagged->ownsData);
  EXPECT_NE(nullptr, flagged->data);
}

TEST(ImageCreate, AlignsSamplesToThePage) {
  lx_test::HeapFaults heap;
  heap.SetPageSize(4096);

  const Image image = MakeImage(10, 10, 1, 0);

  EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(image->data) % 4096);
}

TEST(ImageCreate, LeavesNothingBehindWhereMemoryRunsOut) {
  for (const int nth : {1, 2}) {  // the samples, the record
    lx_test::HeapFaults heap;
    heap.Refuse(nth);

    EXPECT_EQ(nullptr, ImageCreate(10, 10, 1, 0, 1));
    EXPECT_EQ(0, heap.Alive());
  }
}

TEST(ImageFree, AnswersMinusOneForNull) { EXPECT_EQ(-1, ImageFree(nullptr)); }

TEST(ImageFree, FreesOnlyTheRecordOfAnImageWithoutSamples) {
  lx_test::HeapFaults heap;
  lx::ImageRec* image = ImageCreate(10, 10, 1, 0, 0);
  EXPECT_EQ(nullptr, image->data);
  EXPECT_EQ(1, heap.Alive());

  EXPECT_EQ(0, ImageFree(image));
  EXPECT_EQ(0, heap.Alive());
}

TEST(ImageFree, KeepsSamplesThatTheImageDoesNotOwn) {
  lx_test::HeapFaults heap;
  std::uint8_t samples[100] = {};
  lx::ImageRec* image = ImageCreate(10, 10, 1, 0, 0);
  image->data = samples;

  EXPECT_EQ(0, ImageFree(image));
  EXPECT_EQ(0, heap.Alive());
}

TEST(ImageCreateLike, GivesSamplesToTheCopyOfAnImageWithout) {
  const Image model(ImageCreate(7, 5, 3, 2, 0));

  const Image like(lx::ImageCreateLike(model.get()));

  EXPECT_EQ(7, like->width);
  EXPECT_EQ(5, like->height);
  EXPECT_EQ(3, like->channels);
  EXPECT_EQ(2, like->sampleType);
  EXPECT_NE(nullptr, like->data);
  EXPECT_EQ(nullptr, lx::ImageCreateLike(nullptr));
}

TEST(ImageClone, CopiesSamplesAndAValidRegion) {
  const Image image = MakeImage(9, 7, 4, 1);
  lx_test::FillNoise(image, 1);
  image->region = {1, 2, 3, 4};
  image->regionValid = 5;

  const Image clone(lx::ImageClone(image.get()));

  EXPECT_EQ(0, std::memcmp(image->data, clone->data, 9 * 7 * 8));
  EXPECT_EQ(5, clone->regionValid);
  EXPECT_EQ(2, clone->region.top);
  EXPECT_EQ(4, clone->region.bottom);
}

TEST(ImageClone, LeavesAnInvalidRegionBehind) {
  const Image image = MakeImage(2, 2, 1, 0);
  lx_test::Fill<std::uint8_t>(image, 0);
  image->region = {1, 2, 3, 4};

  const Image clone(lx::ImageClone(image.get()));

  EXPECT_EQ(0, clone->region.left);
}

TEST(ImageClone, IsNullWithoutSamplesOrForAWrappedRecord) {
  EXPECT_EQ(nullptr, lx::ImageClone(nullptr));
  EXPECT_EQ(nullptr, lx::ImageClone(Image(ImageCreate(4, 4, 1, 0, 0)).get()));
  EXPECT_EQ(nullptr, lx::ImageClone(Image(ImageCreate(65535, 33000, 2, 0, 1)).get()));
}

TEST(ImageClone, IsNullWhereMemoryRunsOut) {
  const Image image = MakeImage(4, 4, 1, 0);
  lx_test::Fill<std::uint8_t>(image, 1);
  lx_test::HeapFaults heap;
  heap.Refuse(1);

  EXPECT_EQ(nullptr, lx::ImageClone(image.get()));
}

// Fills the dispatcher's slot and notes what it is asked for.
class Slot {
 public:
  Slot() { lx::GetImageRowDispatcher() = {ParallelFor, this}; }
  ~Slot() { lx::GetImageRowDispatcher() = {nullptr, nullptr}; }
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;

  std::vector<std::int32_t> counts;

 private:
  // From the last row to the first, one at a time.
  static void ParallelFor(void* context, lx::ImageRowFunction function, std::int32_t count,
                          void* user) {
    static_cast<Slot*>(context)->counts.push_back(count);
    for (std::int32_t row = count - 1; row >= 0; --row) {
      function(user, row, row);
    }
  }
};

TEST(ImageRowDispatcher, TakesTheRowsOfLargeCopiesOnly) {
  const Image small = MakeImage(1024, 1023, 1, 0);  // 1024 bytes short of a mebibyte
  const Image large = MakeImage(1024, 1024, 1, 0);
  lx_test::Fill<std::uint8_t>(small, 3);
  lx_test::Fill<std::uint8_t>(large, 3);
  Slot slot;

  const Image smallClone(lx::ImageClone(small.get()));
  EXPECT_TRUE(slot.counts.empty());
  const Image largeClone(lx::ImageClone(large.get()));

  EXPECT_EQ(std::vector<std::int32_t>{1024}, slot.counts);
  EXPECT_EQ(0, std::memcmp(large->data, largeClone->data, 1024 * 1024));
}

TEST(ImageRowDispatcher, GivesABlurTheSameSamplesInAnyOrderOfLines) {
  const Image inLine = MakeImage(17, 13, 3, 1);
  const Image dispatched = MakeImage(17, 13, 3, 1);
  lx_test::FillNoise(inLine, 7);
  lx_test::FillNoise(dispatched, 7);

  lx::ImageBlur(inLine.get(), 2.0, 3.0, -1);
  Slot slot;
  lx::ImageBlur(dispatched.get(), 2.0, 3.0, -1);

  EXPECT_EQ((std::vector<std::int32_t>{13, 17}), slot.counts);
  EXPECT_EQ(0, std::memcmp(inLine->data, dispatched->data, 17 * 13 * 6));
}

}  // namespace
