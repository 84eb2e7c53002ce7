// SPDX-License-Identifier: BSD-3-Clause
#include "library/host_exchange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "library/host_message.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap_faults.h"

namespace {

using lx::LXImage;
using lx_test::cPtr;
using lx_test::FakeImage;
using Log = std::vector<std::string>;

class HostExchange : public testing::Test {
 public:
  lx_test::FakeHost host;
  lx_test::CallLog& log = host.log;
};

cPtr<FakeImage> Frame(lx_test::CallLog* log, int width, int height) {
  cPtr<FakeImage> frame(new FakeImage(log, "frame", width, height));
  for (std::size_t i = 0; i < frame->samples.size(); ++i) {
    frame->samples[i] = static_cast<std::uint16_t>(2 * (i + 100));
  }
  return frame;
}

TEST_F(HostExchange, MirrorsRowsAndExchangesRedAndBlue) {
  const auto frame = Frame(&log, 3, 2);

  const std::unique_ptr<LXImage> image(lx::ConvertFromQTL(frame, nullptr));

  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) {
      const std::uint16_t* pixel = image->rows[1 - y] + x * 4;
      const int first = 100 + (y * 3 + x) * 4;
      EXPECT_EQ(first + 2, pixel[0]);
      EXPECT_EQ(first + 1, pixel[1]);
      EXPECT_EQ(first, pixel[2]);
      EXPECT_EQ(first + 3, pixel[3]);
    }
  }
  const auto back = Frame(&log, 3, 2);
  std::fill(back->samples.begin(), back->samples.end(), 0);
  lx::ConvertToQTL(image.get(), back);
  EXPECT_EQ(frame->samples, back->samples);
}

TEST_F(HostExchange, LosesTheLowestBitAndFillsItWithTheTopOne) {
  const cPtr<FakeImage> in(new FakeImage(&log, "in", 128, 128));
  for (int i = 0; i < 65536; ++i) {
    in->samples[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(i);
  }
  const cPtr<FakeImage> out(new FakeImage(&log, "out", 128, 128));

  const std::unique_ptr<LXImage> image(lx::ConvertFromQTL(in, nullptr));
  lx::ConvertToQTL(image.get(), out);

  for (int v = 0; v < 65536; ++v) {
    ASSERT_EQ((v & ~1) | (v >> 15), out->samples[static_cast<std::size_t>(v)]) << v;
  }
}

TEST_F(HostExchange, WritesSamplesAbove15BitsAs16) {
  LXImage image(2, 1, 0, nullptr, 0);
  const std::uint16_t samples[] = {0, 1, 16383, 16384, 32767, 32768, 65535, 0};
  std::copy(samples, samples + 8, image.data);
  const cPtr<FakeImage> out(new FakeImage(&log, "out", 2, 1));

  lx::ConvertToQTL(&image, out);

  const std::vector<std::uint16_t> expected{32766, 2, 0, 32769, 65535, 2, 65535, 0};
  EXPECT_EQ(expected, out->samples);
}

TEST_F(HostExchange, SetsScaleAndAspectToOne) {
  LXImage target(3, 2, 0, nullptr, 0);
  target.aspectX = 2;
  target.aspectY = 3;

  EXPECT_EQ(&target, lx::ConvertFromQTL(Frame(&log, 3, 2), &target));

  EXPECT_EQ(1.0F, target.scale);
  EXPECT_EQ(1.0, target.aspectX);
  EXPECT_EQ(1.0, target.aspectY);
}

TEST_F(HostExchange, AsksForSizeAndBufferInwardAndForTheBufferOnlyOutward) {
  const auto frame = Frame(&log, 3, 2);
  const std::unique_ptr<LXImage> image(lx::ConvertFromQTL(frame, nullptr));
  EXPECT_EQ((Log{"frame.size", "frame.buffer"}), log.calls);

  log.calls.clear();
  lx::ConvertToQTL(image.get(), frame);
  EXPECT_EQ(Log{"frame.buffer"}, log.calls);
  EXPECT_EQ(1, frame.RefCount()->Count());
}

// An argument that is made in the call is the parameter itself and lives to the end of the
// whole expression: only a callee that lets go is seen in a log copied inside of it.
TEST_F(HostExchange, LetsGoOfTheFrameBeforeItReturns) {
  using Only = cPtr<qplugin::iQpluginImage>;
  std::unique_ptr<LXImage> image;

  const Log from =
      (image.reset(lx::ConvertFromQTL(Only(new FakeImage(&log, "frame", 3, 2)), {})), log.calls);
  log.calls.clear();
  const Log to =
      (lx::ConvertToQTL(image.get(), Only(new FakeImage(&log, "frame", 3, 2))), log.calls);

  EXPECT_EQ((Log{"frame.size", "frame.buffer", "~frame"}), from);
  EXPECT_EQ((Log{"frame.buffer", "~frame"}), to);
}

TEST_F(HostExchange, LetsGoOfTheFrameThatItRefuses) {
  LXImage target(2, 3, 0, nullptr, 0);

  const Log refused =
      (lx::ConvertFromQTL(cPtr<qplugin::iQpluginImage>(new FakeImage(&log, "frame", 3, 2)),
                          &target),
       log.calls);

  EXPECT_EQ((Log{"frame.size", "~frame"}), refused);
}

TEST_F(HostExchange, RefusesATargetOfAnotherSize) {
  LXImage target(2, 3, 0, nullptr, 0);

  EXPECT_EQ(nullptr, lx::ConvertFromQTL(Frame(&log, 3, 2), &target));
}

TEST_F(HostExchange, GivesNullForANullFrameWithoutAWord) {
  EXPECT_EQ(nullptr, lx::ConvertFromQTL({}, nullptr));
  EXPECT_TRUE(log.calls.empty());
}

TEST_F(HostExchange, LeavesTheFrameOfANullImageAsItWas) {
  const auto before = Frame(&log, 3, 2)->samples;
  const auto kept = Frame(&log, 3, 2);

  lx::ConvertToQTL(nullptr, kept);

  EXPECT_EQ(before, kept->samples);
}

TEST_F(HostExchange, TellsTheUserOfANullImageBeforeItLetsGoOfTheFrame) {
  lx::SendHostMessage("the sink is known from here on");
  log.calls.clear();

  const Log told =
      (lx::ConvertToQTL(nullptr, cPtr<qplugin::iQpluginImage>(new FakeImage(&log, "frame", 3, 2))),
       log.calls);

  EXPECT_EQ((Log{"message(ConvertToQTL: invalid input pointer!)", "~frame"}), told);
}

TEST_F(HostExchange, TakesASizeBelowOneAsEmpty) {
  const cPtr<FakeImage> frame(new FakeImage(&log, "frame", 0, 0));

  const std::unique_ptr<LXImage> image(lx::ConvertFromQTL(frame, nullptr));

  EXPECT_EQ(0, image->width);
  EXPECT_EQ(0, image->height);
}

TEST_F(HostExchange, ThrowsWithoutMemory) {
  const auto frame = Frame(&log, 3, 2);
  lx_test::HeapFaults heap;
  heap.Refuse(1);

  EXPECT_THROW(lx::ConvertFromQTL(frame, nullptr), std::bad_alloc);
}

using HostMessage = HostExchange;

// The host of this test answers no other identity, as a host with services of many kinds.
TEST_F(HostMessage, ReachesTheSinkThatIsAskedForByItsOwnIdentity) {
  host.factory->sink->last.clear();

  lx::SendHostMessage("for a person");

  EXPECT_EQ(u"for a person", host.factory->sink->last);
}

TEST_F(HostMessage, AsksForTheSinkOnceAndWidensBytesWithTheirSign) {
  lx::SendHostMessage("before");
  host.log.calls.clear();

  lx::SendHostMessage("\xE9z");

  EXPECT_EQ(1U, host.log.calls.size());  // no findService any more
  EXPECT_EQ(u"\xFFE9z", host.factory->sink->last);
}

}  // namespace
