// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/frame_checks.h"

#include <gtest/gtest.h>

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

}  // namespace
