// SPDX-License-Identifier: BSD-3-Clause
// The account of blocks by itself. 0x1430, 0x2980 and 0x4270 share a bucket (12007) where
// pointers have eight bytes.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "baselib/utils/heap_state.h"
#include "baselib/utils/heap_tracking.h"
#include "tests/support/heap_faults.h"
#include "tests/support/tracked_heap.h"

namespace {

using lx::hm_lookup;
using lx::hm_record;
using lx::hm_unrecord;
using testing::internal::CaptureStderr;

const void* Pointer(std::uintptr_t address) { return reinterpret_cast<const void*>(address); }

std::uint32_t HashOf(std::uint64_t number, std::size_t bytes) {
  unsigned char text[8];
  for (std::size_t i = 0; i < bytes; ++i) {
    text[i] = static_cast<unsigned char>(number >> (8 * i));
  }
  return lx::hm_hash(text, bytes);
}

TEST(HeapHash, GivesTheKnownNumbersForFourBytes) {
  EXPECT_EQ(0x69B836B4U, HashOf(0x12345678, 4));
  EXPECT_EQ(0x5BC5B4BBU, HashOf(0x00401000, 4));
  EXPECT_EQ(0x009DBEE6U, HashOf(1, 4));
  EXPECT_EQ(14004U, HashOf(0x12345678, 4) & 0x3FFFU);
  EXPECT_EQ(0U, HashOf(0, 4));
}

// Worked out by the shifting form in which the function was published.
TEST(HeapHash, GivesTheKnownNumbersForEightBytes) {
  EXPECT_EQ(0xC5083A87U, HashOf(0x12345678, 8));
  EXPECT_EQ(0x5CC39630U, HashOf(0x00401000, 8));
  EXPECT_EQ(0xC9417A18U, HashOf(0x7F0012345678, 8));
}

TEST(HeapHash, ChoosesOneOf16384Buckets) {
  if constexpr (sizeof(void*) == 8) {
    EXPECT_EQ(14983U, lx::hm_bucket(Pointer(0x12345678)));
    for (const std::uintptr_t address : {0x1430U, 0x2980U, 0x4270U}) {
      EXPECT_EQ(12007U, lx::hm_bucket(Pointer(address)));
    }
  }
}

class HeapAccount : public testing::Test {
 public:
  lx_test::TrackedHeap heap{0, 0, 0};
  lx::HeapInfo* table = &lx::heap_state().normal;

  std::uint32_t SizeOf(std::uintptr_t block) {
    std::uint32_t size = 77;
    const bool found = hm_lookup(table, block, &size, nullptr, nullptr);
    EXPECT_EQ(found, size != 0);
    return size;
  }
};

TEST_F(HeapAccount, HasANameFromItsFirstUseOn) {
  EXPECT_STREQ("", table->name);
  hm_record(table, 0x1000, 5, "f", 1);
  hm_record(&lx::heap_state().image, 0x1000, 5, "f", 1);

  EXPECT_STREQ("NORMAL", table->name);
  EXPECT_STREQ("IMAGE", lx::hm_info(lx::Heap::kImage).name);
}

TEST_F(HeapAccount, CountsBlocksAndBytes) {
  hm_record(table, 0x1000, 100, "f", 1);
  hm_record(table, 0x2000, 50, "f", 2);
  hm_unrecord(table, 0x1000);
  hm_record(table, 0x3000, 10, "f", 3);

  EXPECT_EQ(3U, table->allocations);
  EXPECT_EQ(1U, table->frees);
  EXPECT_EQ(60U, table->currentBytes);
  EXPECT_EQ(150U, table->peakBytes);
  EXPECT_EQ(0U, table->collisions);
}

TEST_F(HeapAccount, KeepsTheNewestOfABucketInTheTable) {
  hm_record(table, 0x1430, 1, "a", 1);
  hm_record(table, 0x2980, 2, "b", 2);
  hm_record(table, 0x4270, 3, "c", 3);

  const lx::HeapInfoNode& first = table->nodes[12007];
  EXPECT_EQ(0x4270U, first.ptr);
  ASSERT_NE(nullptr, first.next);
  EXPECT_EQ(0x2980U, first.next->ptr);
  EXPECT_STREQ("b", first.next->file);
  ASSERT_NE(nullptr, first.next->next);
  EXPECT_EQ(0x1430U, first.next->next->ptr);
  EXPECT_EQ(nullptr, first.next->next->next);
  EXPECT_EQ(2U, table->collisions);
  EXPECT_EQ(3U, table->allocations);
}

TEST_F(HeapAccount, TakesBlocksOutOfAnyPlaceOfAChain) {
  const std::uintptr_t blocks[] = {0x1430, 0x2980, 0x4270};
  for (const std::uintptr_t gone : blocks) {
    lx::hm_forget();
    for (std::uint32_t i = 0; i < 3; ++i) {
      hm_record(table, blocks[i], i + 1, "f", 1);
    }

    hm_unrecord(table, gone);

    for (std::uint32_t i = 0; i < 3; ++i) {
      EXPECT_EQ(blocks[i] == gone ? 0U : i + 1, SizeOf(blocks[i])) << std::hex << gone;
    }
    for (const std::uintptr_t block : blocks) {
      if (block != gone) {
        hm_unrecord(table, block);
      }
    }
    EXPECT_EQ(0U, table->nodes[12007].ptr);
    EXPECT_EQ(nullptr, table->nodes[12007].next);
    EXPECT_EQ(3U, table->frees);
    EXPECT_EQ(0U, table->currentBytes);
  }
}

TEST_F(HeapAccount, GivesItsChainBackToTheRuntime) {
  lx_test::HeapFaults runtime;
  hm_record(table, 0x1430, 1, "f", 1);
  EXPECT_EQ(0, runtime.Alive());
  hm_record(table, 0x2980, 1, "f", 1);
  EXPECT_EQ(1, runtime.Alive());

  hm_unrecord(table, 0x2980);

  EXPECT_EQ(0, runtime.Alive());
  EXPECT_EQ(0x1430U, table->nodes[12007].ptr);
}

TEST_F(HeapAccount, LeavesABlockOutThatItHasNoNodeFor) {
  hm_record(table, 0x1430, 1, "f", 1);
  lx_test::HeapFaults runtime;
  runtime.Refuse(1);
  CaptureStderr();

  hm_record(table, 0x2980, 2, "f", 2);

  EXPECT_EQ("(LX LIB) ERROR: LX-HM-DEBUG: INTERNAL ERROR: Cannot allocate space for info node.\n",
            lx_test::LoggedLines());
  EXPECT_EQ(1, table->outOfNodes);
  EXPECT_EQ(1U, table->allocations);
  EXPECT_EQ(1U, table->collisions);
  EXPECT_EQ(0U, SizeOf(0x2980));
  EXPECT_EQ(1U, SizeOf(0x1430));
}

TEST_F(HeapAccount, ReportsAFreeOfWhatItDoesNotKnow) {
  hm_record(table, 0x1430, 1, "f", 1);
  CaptureStderr();

  hm_unrecord(table, 0x2980);  // in the same bucket
  hm_unrecord(table, 0x7777);
  hm_unrecord(&lx::heap_state().image, 0x1430);

  EXPECT_EQ(
      "(LX LIB) ERROR: LX-HM-DEBUG: Attempt to free P - Not allocated in NORMAL!\n"
      "(LX LIB) ERROR: LX-HM-DEBUG: Attempt to free P - Not allocated in NORMAL!\n"
      "(LX LIB) ERROR: LX-HM-DEBUG: Attempt to free P - Not allocated in IMAGE!\n",
      lx_test::LinesWithoutPointers());
  EXPECT_EQ(0U, table->frees);
  EXPECT_EQ(1U, table->currentBytes);
}

TEST_F(HeapAccount, KnowsWhereABlockWasBorn) {
  hm_record(table, 0x1430, 12, "source.cpp", 34);
  std::uint32_t size = 0;
  char file[lx::kHeapFileBytes] = {};
  std::int32_t line = 0;

  EXPECT_TRUE(hm_lookup(table, 0x1430, &size, file, &line));
  EXPECT_EQ(12U, size);
  EXPECT_STREQ("source.cpp", file);
  EXPECT_EQ(34, line);

  EXPECT_FALSE(hm_lookup(table, 0x2980, &size, file, &line));
  EXPECT_EQ(0U, size);
  EXPECT_STREQ("source.cpp", file);
}

TEST_F(HeapAccount, KeepsTheLast47CharactersOfAName) {
  struct Case {
    std::string name;
    std::string kept;
  };
  const std::string tail = "0123456789012345678901234567890123456789012345.";  // 47
  for (const Case& c : {Case{tail, tail}, Case{"x" + tail, tail},
                        Case{"/home/source/" + tail, tail}, Case{"", ""}}) {
    hm_record(table, 0x1000, 1, c.name.c_str(), 1);
    EXPECT_EQ(c.kept, table->nodes[lx::hm_bucket(Pointer(0x1000))].file);
    hm_unrecord(table, 0x1000);
  }
}

TEST_F(HeapAccount, ComplainsOfATableThatIsNone) {
  static lx::HeapInfo other;
  CaptureStderr();

  lx::hm_init_info(&other);

  EXPECT_EQ(
      "(LX LIB) ERROR: LX-HM-DEBUG: INTERNAL ERROR: Asked to initialize unknown info at: P.\n",
      lx_test::LinesWithoutPointers());
}

TEST_F(HeapAccount, ComplainsOfALockThatWasNeverTaken) {
  lx::heap_state().mutexReady = false;
  CaptureStderr();

  lx::release_hm_mutex();

  EXPECT_EQ(
      "(LX LIB) ERROR: LX-HM-DEBUG: INTERNAL ERROR: release_hm_mutex() found "
      "hm_mutex_init=0!\n",
      lx_test::LoggedLines());
  lx::acquire_hm_mutex();
  lx::release_hm_mutex();
}

}  // namespace
