// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/idle_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using glimmerhost::Look;
using glimmerhost::LookLayer;
using glimmerhost::Page;
using glimmerhost::Shape;
using Lines = std::vector<std::string>;

class IdleOption : public testing::Test {
 public:
  Lines Idle() const { return IdleOptions(page, {{"film.toml: ", file}, {"--", typed}}); }

  std::vector<Shape> Shapes() const {
    return ShapesOf(page, {{"film.toml: ", file}, {"--", typed}});
  }

  const Page page = Page::Load(PAGE);
  Look file;
  Look typed;
};

TEST_F(IdleOption, IsOneThatTheShapeHasNoUseFor) {
  typed["sides"] = "5";
  typed["spread"] = "heart.png";
  typed["radius"] = "4px";
  typed["emphasis"] = "20";
  const std::string circle = " has no effect with the shape circle";
  EXPECT_EQ((Lines{"--sides" + circle, "--spread" + circle}), Idle());

  typed["shape"] = "polygon";
  EXPECT_EQ(Lines{"--spread has no effect with the shape polygon"}, Idle());

  typed["shape"] = "image";
  EXPECT_EQ((Lines{"--radius has no effect with the shape image",
                   "--sides has no effect with the shape image"}),
            Idle());
}

TEST_F(IdleOption, IsNoneThatAShapeOfTheShotHasAUseFor) {
  typed["shape"] = "1001=circle; 1024=polygon";
  typed["sides"] = "5";
  typed["rotation"] = "5";
  typed["center"] = "50%,50%";
  EXPECT_EQ(Lines{"--center has no effect with the shape circle or polygon"}, Idle());
  EXPECT_EQ((std::vector<Shape>{Shape::kCircle, Shape::kPolygon}), Shapes());
}

// A file is made for more than one use.
TEST_F(IdleOption, IsNoneOfALookFile) {
  file["sides"] = "5";
  EXPECT_EQ(Lines{}, Idle());
  file["shape"] = "ellipse";
  EXPECT_EQ(std::vector<Shape>{Shape::kEllipse}, Shapes());
}

TEST_F(IdleOption, IsTakenByItsKeyToo) {
  typed.set = {"PRM_Sides=5", "PRM_RadiusX=0.1"};
  EXPECT_EQ(Lines{"--set PRM_Sides has no effect with the shape circle"}, Idle());
  typed.set.emplace_back("PRM_Shape=polygon");
  EXPECT_EQ(Lines{}, Idle());
}

// What is wrong with it says somebody else.
TEST_F(IdleOption, IsNoneWhereTheShapeIsNoShape) {
  typed["sides"] = "5";
  typed["shape"] = "star";
  EXPECT_EQ(Lines{}, Idle());
}

}  // namespace
