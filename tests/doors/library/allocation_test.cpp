// SPDX-License-Identifier: BSD-3-Clause
// The library where operator new fails, and how much it takes of it. A program of its own: the
// operators are replaced in all of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "tests/doors/library/library_frames.h"

namespace {

std::atomic<int> untilRefused{0};  // counts down; at 0 none is refused
std::atomic<std::int64_t> live{0};
std::atomic<std::int64_t> most{0};

// The size stands before what is handed out.
constexpr std::size_t kHead = alignof(std::max_align_t);

void* Take(std::size_t size) {
  if (untilRefused > 0 && --untilRefused == 0) {
    return nullptr;
  }
  auto* block = static_cast<unsigned char*>(std::malloc(size + kHead));
  if (block == nullptr) {
    return nullptr;
  }
  *reinterpret_cast<std::size_t*>(block) = size;
  const std::int64_t now = live += static_cast<std::int64_t>(size);
  std::int64_t before = most;
  while (before < now && !most.compare_exchange_weak(before, now)) {
  }
  return block + kHead;
}

void* TakeOrThrow(std::size_t size) {
  void* taken = Take(size);
  if (taken == nullptr) {
    throw std::bad_alloc();
  }
  return taken;
}

void GiveBack(void* taken) {
  if (taken != nullptr) {
    unsigned char* block = static_cast<unsigned char*>(taken) - kHead;
    live -= static_cast<std::int64_t>(*reinterpret_cast<std::size_t*>(block));
    std::free(block);
  }
}

}  // namespace

void* operator new(std::size_t size) { return TakeOrThrow(size); }
void* operator new[](std::size_t size) { return TakeOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return Take(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Take(size);
}
void operator delete(void* taken) noexcept { GiveBack(taken); }
void operator delete[](void* taken) noexcept { GiveBack(taken); }
void operator delete(void* taken, std::size_t /*size*/) noexcept { GiveBack(taken); }
void operator delete[](void* taken, std::size_t /*size*/) noexcept { GiveBack(taken); }

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::Object;
using library_test::Options;

// Calls function with the first request refused, then the second, until none is.
//   function  answers whether it met a refusal
template <class Function>
int RefuseEach(Function function) {
  for (int n = 1;; ++n) {
    if (!function(n)) {
      return n - 1;
    }
  }
}

TEST(LibraryNew, RefusedWhileAnObjectIsMadeLeavesNothing) {
  const std::int64_t before = live;
  const int refused = RefuseEach([&](int n) {
    glimmerblur* made = nullptr;
    untilRefused = n;
    const glimmerblur_status status = glimmerblur_create(nullptr, &made);
    const bool wasMet = untilRefused == 0;
    untilRefused = 0;
    EXPECT_EQ(wasMet ? GLIMMERBLUR_NO_MEMORY : GLIMMERBLUR_OK, status) << n;
    EXPECT_EQ(wasMet, made == nullptr);
    glimmerblur_destroy(made);
    return wasMet;
  });
  EXPECT_GE(refused, 2);
  EXPECT_EQ(before, live);
}

// Whole frames, tiles and planes, each from the beginning, so that threads are started too.
TEST(LibraryNew, RefusedWhileAFrameIsRenderedLeavesItAsItWas) {
  struct Case {
    int channels;
    double emphasis;
    std::uint64_t limit;
  };
  for (const Case& each :
       {Case{4, 1.0, 0}, Case{4, 90.0, 0}, Case{2, 20.0, 0}, Case{4, 1.0, 900000}}) {
    const Floats source = Noise(150, 110, 1, 0.0, 1.0, each.channels);
    Floats from = source;
    const Floats blank(150, 110, each.channels);
    Floats dest = blank;
    glimmerblur_options options = Options(3);
    options.memory_limit = each.limit;
    const Floats expected = Blurred(Make(Look(4.0, each.emphasis), options), source);
    const glimmerblur_frame in = from.Frame();
    const glimmerblur_frame out = dest.Frame();
    const std::int64_t before = live;
    const int refused = RefuseEach([&](int n) {
      const Object object = Make(Look(4.0, each.emphasis), options);
      untilRefused = n;
      const glimmerblur_status status = glimmerblur_render(object.get(), &in, &out, nullptr);
      const bool wasMet = untilRefused == 0;
      untilRefused = 0;
      EXPECT_TRUE(wasMet || status == GLIMMERBLUR_OK);
      // A thread that does not start is done without.
      if (status == GLIMMERBLUR_OK) {
        EXPECT_EQ(expected, dest) << n;
        dest.samples = blank.samples;
        return wasMet;
      }
      EXPECT_EQ(GLIMMERBLUR_NO_MEMORY, status) << n;
      EXPECT_STREQ("Memory has run out.", glimmerblur_message(object.get()));
      EXPECT_EQ(blank, dest) << n;
      EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &in, &out, nullptr)) << n;
      EXPECT_EQ(expected, dest) << n;
      std::fill(dest.samples.begin(), dest.samples.end(), 0.0F);
      return wasMet;
    });
    EXPECT_GE(refused, 4) << each.channels;
    EXPECT_EQ(before, live);
  }
}

TEST(LibraryNew, RefusedForAnApertureKeepsTheOneThatWas) {
  glimmerblur_look look = Look(0.0);
  look.shape = GLIMMERBLUR_PICTURE;
  library_test::Pixels<std::uint8_t> first(5, 4, 1);
  library_test::Pixels<std::uint8_t> second(7, 7, 1);
  std::fill(first.samples.begin(), first.samples.end(), std::uint8_t{200});
  std::fill(second.samples.begin(), second.samples.end(), std::uint8_t{90});
  const glimmerblur_frame one = first.Frame();
  const glimmerblur_frame other = second.Frame();
  const Floats source = Noise(30, 20, 2);
  const Object object = Make(look);
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &one, 2, 2, -1, -1));
  const Floats expected = Blurred(object, source);
  const int refused = RefuseEach([&](int n) {
    untilRefused = n;
    const glimmerblur_status status = glimmerblur_set_aperture(object.get(), &other, 3, 3, -1, -1);
    const bool wasMet = untilRefused == 0;
    untilRefused = 0;
    if (!wasMet) {
      EXPECT_EQ(GLIMMERBLUR_OK, status);
      return false;
    }
    EXPECT_EQ(GLIMMERBLUR_NO_MEMORY, status);
    EXPECT_EQ(expected, Blurred(object, source)) << n;
    return true;
  });
  EXPECT_GE(refused, 1);
  EXPECT_NE(expected, Blurred(object, source));
}

TEST(LibraryNew, TakesNoMoreForPlanesThanTheLimit) {
  constexpr int kPlanes = 30;
  const Floats source = Noise(200, 150, 3, 0.0, 1.0, kPlanes);
  Floats from = source;
  Floats dest(200, 150, kPlanes);
  const glimmerblur_frame in = from.Frame();
  const glimmerblur_frame out = dest.Frame();
  const std::int64_t ofFrame = std::int64_t{200} * 150 * kPlanes * 4;
  for (const std::int64_t limit : {ofFrame / 10 * 9, ofFrame + ofFrame / 2, ofFrame * 4}) {
    glimmerblur_options options = Options(2);
    options.memory_limit = static_cast<std::uint64_t>(limit);
    const Object object = Make(Look(3.0), options);
    const std::int64_t before = live;
    most = before;

    const glimmerblur_status status = glimmerblur_render(object.get(), &in, &out, nullptr);

    EXPECT_EQ(limit < ofFrame ? GLIMMERBLUR_NO_MEMORY : GLIMMERBLUR_OK, status) << limit;
    EXPECT_LE(most - before, limit);
    glimmerblur_report report;
    glimmerblur_report_init(&report);
    ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_get_report(object.get(), &report));
    EXPECT_LE(report.bytes, options.memory_limit);
    // Planes that are done are kept until all are.
    EXPECT_TRUE(status != GLIMMERBLUR_OK || report.bytes > static_cast<std::uint64_t>(ofFrame));
  }
}

}  // namespace
