// SPDX-License-Identifier: BSD-3-Clause
// How renders run: asked whether to go on, on how many threads, in tiles, many at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::Object;
using library_test::Options;

// What the progress function was told, and when it says no.
struct Listener {
  int cancelAt = -1;
  std::vector<double> told;
  std::vector<std::thread::id> threads;

  static std::int32_t Hear(void* user, double done) {
    auto* self = static_cast<Listener*>(user);
    self->told.push_back(done);
    self->threads.push_back(std::this_thread::get_id());
    return static_cast<int>(self->told.size()) == self->cancelAt ? 1 : 0;
  }
};

TEST(LibraryProgress, RisesToOneOnTheCallersThread) {
  for (const int threads : {1, 3}) {
    const Object object = Make(Look(5.0, 100.0), Options(threads));
    Listener listener;
    glimmerblur_set_progress(object.get(), Listener::Hear, &listener);
    Blurred(object, Noise(200, 300, 1));
    ASSERT_GE(listener.told.size(), 8U);
    EXPECT_TRUE(std::is_sorted(listener.told.begin(), listener.told.end()));
    EXPECT_GE(listener.told.front(), 0.0);
    EXPECT_EQ(1.0, listener.told.back());
    for (const std::thread::id id : listener.threads) {
      EXPECT_EQ(std::this_thread::get_id(), id);
    }
  }
}

TEST(LibraryProgress, CancelsAtEveryPlaceWithoutATrace) {
  for (const double emphasis : {1.0, 100.0}) {
    const Floats source = Noise(64, 96, 2);
    const Floats expected = Blurred(Look(5.0, emphasis), source);
    int cancelled = 0;
    for (int at = 1;; ++at) {
      // Every time from the beginning, so that loading is cancelled, too.
      const Object object = Make(Look(5.0, emphasis), Options(1));
      Listener listener;
      listener.cancelAt = at;
      glimmerblur_set_progress(object.get(), Listener::Hear, &listener);
      Floats dest(64, 96);
      const glimmerblur_status status = library_test::Render(object, source, &dest);
      if (status == GLIMMERBLUR_OK) {
        EXPECT_EQ(expected, dest);
        break;
      }
      ++cancelled;
      ASSERT_EQ(GLIMMERBLUR_CANCELLED, status);
      ASSERT_EQ(Floats(64, 96), dest) << at;
      ASSERT_EQ(static_cast<std::size_t>(at), listener.told.size()) << "asked once more";
      glimmerblur_set_progress(object.get(), nullptr, nullptr);
      ASSERT_EQ(expected, Blurred(object, source)) << at;
    }
    EXPECT_GT(cancelled, 20);
  }
}

TEST(LibraryThreads, GiveTheSameSamplesInAnyNumber) {
  const Floats source = Noise(150, 90, 3);
  const Floats expected = Blurred(Make(Look(7.0, 40.0), Options(1)), source);
  for (const int threads : {2, 5, 20}) {
    EXPECT_EQ(expected, Blurred(Make(Look(7.0, 40.0), Options(threads)), source));
  }
}

// A pool of the caller's that does everything backwards, and on another thread.
void Backwards(void* user, std::int32_t count, glimmerblur_work work, void* data) {
  ++*static_cast<int*>(user);
  std::thread([&] {
    for (std::int32_t i = count - 1; i >= 0; --i) {
      work(data, i);
    }
  }).join();
}

TEST(LibraryThreads, MayBeTheCallersOwn) {
  int calls = 0;
  glimmerblur_options options = Options(4);
  options.parallel_for = Backwards;
  options.parallel_user = &calls;
  const Floats source = Noise(50, 60, 4);
  const Object object = Make(Look(4.0, 20.0), options);
  Listener listener;
  glimmerblur_set_progress(object.get(), Listener::Hear, &listener);
  EXPECT_EQ(Blurred(Look(4.0, 20.0), source), Blurred(object, source));
  EXPECT_GE(calls, 5);
  EXPECT_GE(listener.told.size(), 5U);
  for (const std::thread::id id : listener.threads) {
    EXPECT_EQ(std::this_thread::get_id(), id);
  }
}

TEST(LibraryObjects, WorkAtOnceOnAsManyThreads) {
  std::vector<std::pair<glimmerblur_look, Floats>> frames;
  std::vector<Floats> expected;
  for (unsigned i = 0; i < 4; ++i) {
    frames.emplace_back(Look(3.0 + i, i % 2 == 0 ? 20.0 : 90.0),
                        Noise(60 + static_cast<int>(i), 40, i));
    expected.push_back(Blurred(frames.back().first, frames.back().second));
  }
  std::atomic<int> same{0};
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 3; ++round) {
        same += Blurred(frames[i].first, frames[i].second) == expected[i] ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(12, same);
}

glimmerblur_report ReportOf(const Object& object) {
  glimmerblur_report report;
  glimmerblur_report_init(&report);
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_get_report(object.get(), &report));
  return report;
}

class LibraryTiles : public testing::TestWithParam<double> {};

TEST_P(LibraryTiles, GiveTheSamplesOfAWholeRender) {
  for (const int centred : {0, 1}) {
    for (const int edge : {GLIMMERBLUR_REPEAT, GLIMMERBLUR_ZERO}) {
      glimmerblur_look look = Look(9.0, GetParam());
      look.shape = GLIMMERBLUR_POLYGON;
      look.sides = 5;
      look.centred = centred;
      look.edge = edge;
      library_test::Pixels<std::uint16_t> source(301, 211);
      const Floats noise = Noise(301, 211, 5);
      std::transform(noise.samples.begin(), noise.samples.end(), source.samples.begin(),
                     [](float value) { return static_cast<std::uint16_t>(value * 65535.0F); });
      const Object whole = Make(look);
      const auto expected = Blurred(whole, source);
      ASSERT_EQ(1, ReportOf(whole).tiles);

      glimmerblur_options options = Options();
      options.memory_limit = ReportOf(whole).bytes / 3;
      const Object tiled = Make(look, options);
      EXPECT_EQ(expected, Blurred(tiled, source));
      EXPECT_GT(ReportOf(tiled).tiles, 3);
      EXPECT_LE(ReportOf(tiled).bytes, options.memory_limit);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Emphases, LibraryTiles, testing::Values(1.0, 20.0, 200.0));

TEST(LibraryTiles, MayReadAndWriteTheSameMemory) {
  const Floats source = Noise(300, 200, 9);
  const Object whole = Make(Look(9.0, 20.0));
  Blurred(whole, source);
  glimmerblur_options options = Options();
  options.memory_limit = ReportOf(whole).bytes / 2;
  const Object object = Make(Look(9.0, 20.0), options);
  const Floats expected = Blurred(object, source);
  ASSERT_GT(ReportOf(object).tiles, 1);
  Floats pixels = source;
  const glimmerblur_frame frame = pixels.Frame();
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  EXPECT_EQ(expected, pixels);
}

TEST(LibraryTiles, AreRefusedWhereTheLimitIsTooLow) {
  glimmerblur_options options = Options();
  options.memory_limit = 1000;
  const Object object = Make(Look(9.0), options);
  Floats dest(301, 211);
  EXPECT_EQ(GLIMMERBLUR_NO_MEMORY, library_test::Render(object, Noise(301, 211, 6), &dest));
  EXPECT_EQ(Floats(301, 211), dest);
  EXPECT_EQ(0U, std::string(glimmerblur_message(object.get()))
                    .find("The memory limit is 1000 bytes; with this aperture even the smallest"));
}

TEST(LibraryLooks, ThatChangeAreThoseOfTheNextRender) {
  const Object object = Make(Look(2.0));
  const Floats source = Noise(40, 30, 7);
  for (const double radius : {6.0, 2.0, 9.5}) {
    for (const int centred : {1, 0}) {
      glimmerblur_look look = Look(radius, 20.0);
      look.centred = centred;
      ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_look(object.get(), &look));
      EXPECT_EQ(Blurred(look, source), Blurred(object, source));
      const Floats other = Noise(41, 30, 8);
      EXPECT_EQ(Blurred(look, other), Blurred(object, other));
    }
  }
}

}  // namespace
