#include "host/looks/render_settings.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/looks/keyframed_values.h"
#include "host/module/frame_checks.h"
#include "host/support/failure.h"

namespace {

using glimmerhost::Page;
using glimmerhost::TypedValues;

double Number(const std::map<std::string, glimmerhost::Value>& values, const char* key) {
  return std::get<double>(values.at(key));
}

TEST(RenderSettings, SetBothRadiiAndThenEachAlone) {
  TypedValues typed;
  typed.radius = "40px";
  typed.radiusY = "10%";

  const auto values = MakeStoreValues(Page::Load(PAGE), typed, 800, 600);

  EXPECT_EQ(0.1, Number(values, "PRM_RadiusX"));
  EXPECT_EQ(0.1, Number(values, "PRM_RadiusY"));
  typed.radiusX = "8px";
  EXPECT_EQ(0.02, Number(MakeStoreValues(Page::Load(PAGE), typed, 800, 600), "PRM_RadiusX"));
}

TEST(RenderSettings, LetSetHaveTheLastWord) {
  TypedValues typed;
  typed.sides = "5";
  typed.set = {"PRM_Sides=7", "PRM_Shape=2", "PRM_Match=on"};

  const auto values = MakeStoreValues(Page::Load(PAGE), typed, 800, 600);

  EXPECT_EQ(7.0, Number(values, "PRM_Sides"));
  EXPECT_EQ(2, std::get<int>(values.at("PRM_Shape")));
  EXPECT_TRUE(std::get<bool>(values.at("PRM_Match")));
}

TEST(RenderSettings, RefuseARadiusBeyondThePage) {
  for (const char* radius : {"401px", "101%", "1.5", "-1px"}) {
    TypedValues typed;
    typed.radius = radius;
    EXPECT_THROW(MakeStoreValues(Page::Load(PAGE), typed, 800, 600), glimmerhost::UsageError)
        << radius;
  }
}

TEST(RenderSettings, RefuseAssignmentsThatAreNone) {
  for (const char* text : {"PRM_Sides", "=5", "PRM_Sides=", "PRM_Side=5"}) {
    TypedValues typed;
    typed.set = {text};
    EXPECT_THROW(MakeStoreValues(Page::Load(PAGE), typed, 800, 600), glimmerhost::UsageError)
        << text;
  }
}

TEST(GridCheck, KnowsWhatTheEffectsGridTakes) {
  const Page page = Page::Load(PAGE);
  TypedValues typed;
  typed.radius = "20px";  // margin 21
  struct {
    const char* engine;
    int widest;
  } const cases[] = {{"fast", 32768 - 42}, {"exact", 8192 - 42}, {"double", 8192 - 42}};
  for (const auto& [name, widest] : cases) {
    const lx::Footprint& engine = *lx::FindFootprint(name);
    const auto fits = MakeStoreValues(page, typed, widest, 10);
    EXPECT_NO_THROW(glimmerhost::CheckGrid(engine, fits, widest, 10)) << name;
    const auto tooWide = MakeStoreValues(page, typed, widest + 1, 10);
    EXPECT_THROW(glimmerhost::CheckGrid(engine, tooWide, widest + 1, 10), glimmerhost::Failure)
        << name;
  }
}

TEST(GridCheck, LeavesTheYRadiusOfACircleOut) {
  const Page page = Page::Load(PAGE);
  TypedValues typed;
  typed.radiusX = "1px";
  typed.radiusY = "2000px";
  typed.shape = "circle";
  const lx::Footprint& exact = *lx::FindFootprint("exact");
  EXPECT_NO_THROW(glimmerhost::CheckGrid(exact, MakeStoreValues(page, typed, 6000, 10), 6000, 10));
  typed.shape = "ellipse";
  EXPECT_THROW(glimmerhost::CheckGrid(exact, MakeStoreValues(page, typed, 6000, 10), 6000, 10),
               glimmerhost::Failure);
}

}  // namespace
