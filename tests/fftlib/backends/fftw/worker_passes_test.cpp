// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "fftlib/backends/fftw/fftw_passes.h"
#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using lx_test::Samples;

constexpr int kWidth = 24;
constexpr int kHeight = 20;

// Divides passes as a test asks, and notes them.
struct Owner {
  int ways = 1;
  bool reversed = false;
  bool threads = false;
  std::vector<std::pair<lx::Rows::Work, std::int32_t>> passes;

  static void ParallelFor(void* context, lx::PassFunction pass, std::int32_t count,
                          DefocusEngine* engine) {
    auto* self = static_cast<Owner*>(context);
    self->passes.emplace_back(Inside(*engine).rows().InWork(), count);
    std::vector<std::pair<std::int32_t, std::int32_t>> ranges;
    for (int way = 0; way < self->ways; ++way) {
      ranges.emplace_back(count * way / self->ways, count * (way + 1) / self->ways - 1);
    }
    if (self->reversed) {
      std::reverse(ranges.begin(), ranges.end());
    }
    std::vector<std::thread> running;
    for (const auto& [first, last] : ranges) {
      if (self->threads) {
        running.emplace_back(pass, engine, first, last);
      } else {
        pass(engine, first, last);
      }
    }
    for (std::thread& thread : running) {
      thread.join();
    }
  }
};

Image Source() {
  Image source = MakeImage(kWidth, kHeight, 4, 1);
  lx_test::FillNoise(source, 6);
  return source;
}

Image Render(DefocusEngine* engine, const Image& source) {
  Image dest = MakeImage(kWidth, kHeight, 4, 1);
  lx_test::Fill<std::uint16_t>(dest, 0x5555);
  engine->BuildShapePsf(kWidth, kHeight, 1, 3, 2, 30, 6);
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  EXPECT_TRUE(engine->Convolve(dest.get(), 15));
  return dest;
}

bool Same(const Image& a, const Image& b) {
  return std::memcmp(a->data, b->data, lx_test::SampleCount(a) * a->elementBytes) == 0;
}

TEST(WorkerPasses, GiveTheSameBitsHoweverRowsAreDivided) {
  const Image source = Source();
  DefocusEngine inLine;
  const Image expected = Render(&inLine, source);
  for (const int ways : {1, 2, 7, 33}) {
    for (const bool reversed : {false, true}) {
      Owner owner{ways, reversed, false, {}};
      DefocusEngine engine;
      engine.SetParallelFor(&owner, Owner::ParallelFor);
      EXPECT_TRUE(Same(expected, Render(&engine, source))) << ways << reversed;
    }
  }
}

TEST(WorkerPasses, GiveTheSameBitsOnThreads) {
  const Image source = Source();
  DefocusEngine inLine;
  const Image expected = Render(&inLine, source);
  Owner owner{3, false, true, {}};
  DefocusEngine engine;
  engine.SetParallelFor(&owner, Owner::ParallelFor);

  EXPECT_TRUE(Same(expected, Render(&engine, source)));
}

TEST(WorkerPasses, RunOncePerPlaneAndOnceForTheOutput) {
  Owner owner;
  DefocusEngine engine;
  engine.SetParallelFor(&owner, Owner::ParallelFor);

  Render(&engine, Source());

  std::vector<std::pair<lx::Rows::Work, std::int32_t>> expected{
      {lx::Rows::WorkOf<lx::MaskInput>, kHeight}};
  for (int plane = 0; plane < 4; ++plane) {
    expected.emplace_back(lx::Rows::WorkOf<lx::PlaneInput>, kHeight);
    expected.emplace_back(lx::Rows::WorkOf<lx::MultiplySpectra>, 32);
  }
  expected.emplace_back(lx::Rows::WorkOf<lx::PictureOutput>, kHeight);
  EXPECT_EQ(expected, owner.passes);
}

TEST(WorkerPasses, RunInLineWithoutFunctionOrContext) {
  Owner owner;
  DefocusEngine engine;
  engine.SetParallelFor(nullptr, Owner::ParallelFor);
  Render(&engine, Source());
  engine.SetParallelFor(&owner, nullptr);
  Render(&engine, Source());

  EXPECT_TRUE(owner.passes.empty());
}

TEST(WorkerPasses, GetAnEmptyRangeForNoRows) {
  std::int32_t lastSeen = 99;
  const auto pass = [&](lx::Rows&, std::int32_t, std::int32_t last) { lastSeen = last; };
  DefocusEngine engine;

  Inside(engine).rows().Run(pass, 0);

  EXPECT_EQ(-1, lastSeen);
}

// Runs each pass after an empty range of it, ahead of which the status is set.
struct EmptyRangesFirst {
  std::set<lx::Rows::Work> seen;

  static void ParallelFor(void* context, lx::PassFunction pass, std::int32_t count,
                          DefocusEngine* engine) {
    static_cast<EmptyRangesFirst*>(context)->seen.insert(Inside(*engine).rows().InWork());
    Inside(*engine).SetStatus(lx::kStatusNoMemory);
    pass(engine, 3, 2);
    EXPECT_EQ(0, engine->GetStatus());
    pass(engine, 0, count - 1);
  }
};

TEST(WorkerPasses, ClearTheStatusEvenOverAnEmptyRange) {
  EmptyRangesFirst owner;
  DefocusEngine engine;
  engine.SetParallelFor(&owner, EmptyRangesFirst::ParallelFor);

  const Image source = Source();
  const Image dest = Render(&engine, source);
  EXPECT_TRUE(engine.ConvolveChannels(dest.get(), 1));

  const std::set<lx::Rows::Work> all{
      lx::Rows::WorkOf<lx::MaskInput>,       lx::Rows::WorkOf<lx::PlaneInput>,
      lx::Rows::WorkOf<lx::MultiplySpectra>, lx::Rows::WorkOf<lx::PictureOutput>,
      lx::Rows::WorkOf<lx::ChannelInput>,    lx::Rows::WorkOf<lx::ChannelOutput>};
  EXPECT_EQ(all, owner.seen);
}

// Cancels the passes of one kind from a row on.
struct Canceller {
  int polls = 0;
  int stopAt = 1 << 30;  // the poll that answers "stop", and all after it
  int goOnAt = 1 << 30;  // the first one that answers "go on" again
  static std::int32_t Query(void* context) {
    auto* self = static_cast<Canceller*>(context);
    const int poll = self->polls++;
    return poll >= self->stopAt && poll < self->goOnAt ? 1 : 0;
  }
};

void PassThrough(void*, lx::PassFunction pass, std::int32_t count, DefocusEngine* engine) {
  pass(engine, 0, count - 1);
}

TEST(CancelQuery, IsPolledPerRowWithTheContextOfTheParallelFor) {
  Canceller canceller;
  int ignored = 0;
  DefocusEngine engine;
  engine.SetParallelFor(&canceller, PassThrough);
  engine.SetCancelQuery(&ignored, Canceller::Query);

  Render(&engine, Source());

  // One for each row of the mask, of four planes and of the output; none while multiplying.
  EXPECT_EQ(6 * kHeight, canceller.polls);
}

TEST(CancelQuery, LeavesTheRestOfTheDestinationAndNoError) {
  Canceller canceller;
  DefocusEngine engine;
  engine.SetParallelFor(&canceller, PassThrough);
  engine.SetCancelQuery(nullptr, Canceller::Query);
  const Image full = Render(&engine, Source());
  canceller.polls = 0;
  canceller.stopAt = 5 * kHeight + 4;  // in the output pass, after four rows

  DefocusEngine other;
  other.SetParallelFor(&canceller, PassThrough);
  other.SetCancelQuery(nullptr, Canceller::Query);
  const Image cut = Render(&other, Source());

  EXPECT_EQ(0, other.GetStatus());
  EXPECT_EQ(0, std::memcmp(full->data, cut->data, 4 * kWidth * 8));
  EXPECT_EQ(0x5555, Samples<std::uint16_t>(cut)[4 * kWidth * 4]);
}

// Cancelled at the first row of the second plane's input pass, Cr must come out as a plane
// of zeros would, and not as the luma that the grid held before.
TEST(CancelQuery, GivesAPlaneOfZerosForAPassWithoutRows) {
  for (const std::int32_t edgeMode : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    Canceller canceller;
    DefocusEngine engine;
    engine.SetEdgeMode(edgeMode);
    engine.SetParallelFor(&canceller, PassThrough);
    engine.SetCancelQuery(nullptr, Canceller::Query);
    canceller.stopAt = 2 * kHeight;
    canceller.goOnAt = 2 * kHeight + 1;

    Render(&engine, Source());

    const int n = Inside(engine).paddedWidth();
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const std::size_t at = static_cast<std::size_t>(Inside(engine).offsetY() + y) * n +
                               Inside(engine).offsetX() + x;
        ASSERT_NEAR(0.0, Inside(engine).crResult()[at] / (n * n), 1e-12);
      }
    }
  }
}

// What the pass before has made is complete, whenever a later one is cancelled.
TEST(CancelQuery, KeepsThePlaneBeforeWhole) {
  DefocusEngine whole;
  Render(&whole, Source());
  for (const int row : {0, 3}) {
    Canceller canceller;
    DefocusEngine engine;
    engine.SetParallelFor(&canceller, PassThrough);
    engine.SetCancelQuery(nullptr, Canceller::Query);
    canceller.stopAt = 2 * kHeight + row;
    canceller.goOnAt = 2 * kHeight + row + 1;

    Render(&engine, Source());

    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const std::size_t at =
            static_cast<std::size_t>(Inside(engine).offsetY() + y) * Inside(engine).paddedWidth() +
            Inside(engine).offsetX() + x;
        ASSERT_EQ(Inside(whole).lumaResult()[at], Inside(engine).lumaResult()[at]) << x << "," << y;
        ASSERT_EQ(Inside(whole).cbResult()[at], Inside(engine).cbResult()[at]) << x << "," << y;
      }
    }
  }
}

TEST(CancelQuery, IsAskedWithoutAContextToo) {
  static int polls;
  polls = 0;
  DefocusEngine engine;
  engine.SetCancelQuery(nullptr, [](void* context) -> std::int32_t {
    EXPECT_EQ(nullptr, context);
    ++polls;
    return 1;
  });

  Render(&engine, Source());

  EXPECT_EQ(6, polls);
}

}  // namespace
