// SPDX-License-Identifier: BSD-3-Clause
// Typed options as they come to the store.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/looks/keyframed_values.h"
#include "host/support/failure.h"
#include "tests/support/looks.h"

namespace {

using glimmerhost::Page;
using glimmerhost::TypedLook;

double Number(const std::map<std::string, glimmerhost::Value>& values, const char* key) {
  return std::get<double>(values.at(key));
}

TEST(StoreValues, SetBothRadiiAndThenEachAlone) {
  TypedLook typed;
  typed["radius"] = "40px";
  typed["radius-y"] = "10%";

  const auto values = lx_test::StillValuesOf(Page::Load(PAGE), typed, 800, 600);

  EXPECT_EQ(0.1, Number(values, "PRM_RadiusX"));
  EXPECT_EQ(0.1, Number(values, "PRM_RadiusY"));
  typed["radius-x"] = "8px";
  EXPECT_EQ(0.02, Number(lx_test::StillValuesOf(Page::Load(PAGE), typed, 800, 600), "PRM_RadiusX"));
}

TEST(StoreValues, LetSetHaveTheLastWord) {
  TypedLook typed;
  typed["sides"] = "5";
  typed.set = {"PRM_Sides=7", "PRM_Shape=2", "PRM_Match=on"};

  const auto values = lx_test::StillValuesOf(Page::Load(PAGE), typed, 800, 600);

  EXPECT_EQ(7.0, Number(values, "PRM_Sides"));
  EXPECT_EQ(2, std::get<int>(values.at("PRM_Shape")));
  EXPECT_TRUE(std::get<bool>(values.at("PRM_Match")));
}

TEST(StoreValues, RefuseARadiusBeyondThePage) {
  for (const char* radius : {"401px", "101%", "1.5", "-1px"}) {
    TypedLook typed;
    typed["radius"] = radius;
    EXPECT_THROW(lx_test::StillValuesOf(Page::Load(PAGE), typed, 800, 600), glimmerhost::UsageError)
        << radius;
  }
}

TEST(StoreValues, RefuseAssignmentsThatAreNone) {
  for (const char* text : {"PRM_Sides", "=5", "PRM_Sides=", "PRM_Side=5"}) {
    TypedLook typed;
    typed.set = {text};
    EXPECT_THROW(lx_test::StillValuesOf(Page::Load(PAGE), typed, 800, 600), glimmerhost::UsageError)
        << text;
  }
}

}  // namespace
