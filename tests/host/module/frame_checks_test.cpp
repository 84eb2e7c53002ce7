// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/frame_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/module/border_pictures.h"
#include "host/support/failure.h"
#include "tests/support/looks.h"

namespace {

using glimmerhost::Page;
using glimmerhost::TypedLook;

TEST(GridCheck, KnowsWhatTheEffectsGridTakes) {
  const Page page = Page::Load(PAGE);
  TypedLook typed;
  typed["radius"] = "20px";  // margin 21
  struct {
    const char* engine;
    int widest;
  } const cases[] = {{"fast", 32768 - 42}, {"exact", 8192 - 42}, {"double", 8192 - 42}};
  for (const auto& [name, widest] : cases) {
    const lx::Footprint& engine = *lx::FindFootprint(name);
    const auto fits = lx_test::StillValuesOf(page, typed, widest, 10);
    EXPECT_NO_THROW(glimmerhost::CheckGrid(engine, fits, widest, 10)) << name;
    const auto tooWide = lx_test::StillValuesOf(page, typed, widest + 1, 10);
    EXPECT_THROW(glimmerhost::CheckGrid(engine, tooWide, widest + 1, 10), glimmerhost::Failure)
        << name;
  }
}

TEST(GridCheck, LeavesTheYRadiusOfACircleOut) {
  const Page page = Page::Load(PAGE);
  TypedLook typed;
  typed["radius-x"] = "1px";
  typed["radius-y"] = "2000px";
  typed["shape"] = "circle";
  const lx::Footprint& exact = *lx::FindFootprint("exact");
  EXPECT_NO_THROW(
      glimmerhost::CheckGrid(exact, lx_test::StillValuesOf(page, typed, 6000, 10), 6000, 10));
  typed["shape"] = "ellipse";
  EXPECT_THROW(
      glimmerhost::CheckGrid(exact, lx_test::StillValuesOf(page, typed, 6000, 10), 6000, 10),
      glimmerhost::Failure);
}

// A module without memory hands back a target that nothing was put into.
TEST(RenderedCheck, RefusesAnEmptyFrameOfAPicture) {
  const Page page = Page::Load(PAGE);
  TypedLook typed;
  typed["radius"] = "2px";
  constexpr int kWidth = 8;
  glimmerhost::FrameInput input;
  input.values = lx_test::StillValuesOf(page, typed, kWidth, kWidth);
  input.source =
      quantel::cPtr<glimmerhost::FrameImage>(new glimmerhost::FrameImage(kWidth, kWidth));
  const quantel::cPtr<glimmerhost::FrameImage> result(new glimmerhost::FrameImage(kWidth, kWidth));
  constexpr std::size_t kSamples = kWidth * kWidth * 4;

  // Black stays black.
  EXPECT_TRUE(glimmerhost::CheckRendered(input, result.Object()));

  std::fill_n(input.source->buffer(), kSamples, std::uint16_t{257});
  EXPECT_THROW(glimmerhost::CheckRendered(input, result.Object()), glimmerhost::Failure);

  // What is there is nothing of a module without memory, however little it is.
  result->buffer()[kSamples - 1] = 1;
  EXPECT_TRUE(glimmerhost::CheckRendered(input, result.Object()));
}

}  // namespace
