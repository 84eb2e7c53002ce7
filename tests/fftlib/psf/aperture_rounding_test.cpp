// SPDX-License-Identifier: BSD-3-Clause
// Where outlines are rounded to single precision on their way to a mask.
#include <gtest/gtest.h>

#include "fftlib/psf/polygon_fill.h"
#include "fftlib/psf/psf_outlines.h"

namespace {

// The last vertex of an outline of radius 8000 about the origin: 8000 sin(37 s), where s is
// 6.2831855 / 38 = 0.16534698009490967 as a float. Not rounded, s would give -1316.755379, and
// -2253.859174 for 22 sides.
TEST(ApertureRounding, HoldsThePolygonsStepAsAFloat) {
  const lx::PsfPolygon of38 = lx::MakeRegularPolygon({0, 0, 8000, 8000, 0, 1, 1}, 38);
  const lx::PsfPolygon of22 = lx::MakeRegularPolygon({0, 0, 8000, 8000, 0, 1, 1}, 22);

  EXPECT_NEAR(-1316.757211, of38.vertices[37].y, 3e-4);
  EXPECT_NEAR(-2253.857427, of22.vertices[21].y, 3e-4);
}

// The edge from (0, -1) to (7, 2) is cut by y = 0 after a third of its length. A third is
// 0.3333333432674408 as a float, which leads to x = 2.3333334 and a little beyond the line; not
// rounded, it would give 2.3333333 and 0.
TEST(ApertureRounding, HoldsTheRatioOfACutAsAFloat) {
  lx::ClipPolygon triangle{};
  triangle.count = 3;
  triangle.vertices[0] = {0, -1};
  triangle.vertices[1] = {7, 2};
  triangle.vertices[2] = {-7, 2};
  lx::ClipPolygon above{};

  lx::ClipToHalfSpace(triangle, &above, 1, 1.0F, 0.0F);

  ASSERT_EQ(3, above.count);
  EXPECT_EQ(2.3333334922790527F, above.vertices[2].x);
  EXPECT_EQ(2.9802322387695312e-08F, above.vertices[2].y);
}

}  // namespace
