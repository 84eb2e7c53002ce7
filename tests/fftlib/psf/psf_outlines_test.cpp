// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/psf/psf_outlines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx::OutlineFrame;
using lx::PsfPolygon;
using lx_test::Inside;

double Degrees(double d) { return d * std::acos(-1.0) / 180.0; }

long MaskSum(const DefocusEngine& engine) {
  const auto* pixels = static_cast<const std::uint8_t*>(Inside(engine).psfMask()->data);
  long sum = 0;
  for (int i = 0; i < Inside(engine).psfMask()->width * Inside(engine).psfMask()->height; ++i) {
    sum += pixels[i];
  }
  return sum;
}

std::vector<std::uint8_t> MaskOf(const DefocusEngine& engine) {
  const auto* pixels = static_cast<const std::uint8_t*>(Inside(engine).psfMask()->data);
  return {pixels, pixels + Inside(engine).psfMask()->width * Inside(engine).psfMask()->height};
}

void Build(DefocusEngine* engine, int shape, float rx, float ry, float rotation = 0,
           int sides = 6) {
  engine->BuildShapePsf(64, 48, shape, rx, ry, rotation, sides);
}

TEST(EllipseOutline, HasFiftyVerticesOnTheRotatedAndThenStretchedEllipse) {
  for (const float rotation : {0.F, 30.F, -450.F}) {
    const PsfPolygon polygon = lx::MakeEllipse({32, 24, 20, 7, rotation, 2, 0.5});

    ASSERT_EQ(50, polygon.count);
    for (int k = 0; k < 50; ++k) {
      const double t = Degrees(7.2 * k);
      const double theta = Degrees(rotation);
      const double x = std::cos(theta) * 20 * std::cos(t) - std::sin(theta) * 7 * std::sin(t);
      const double y = std::sin(theta) * 20 * std::cos(t) + std::cos(theta) * 7 * std::sin(t);
      // The angles' constants are single precision: 1e-7 of some tens of pixels.
      EXPECT_NEAR(32 + x / 2, polygon.vertices[k].x, 3e-5) << rotation << " " << k;
      EXPECT_NEAR(24 + y / 0.5, polygon.vertices[k].y, 3e-5) << rotation << " " << k;
    }
  }
}

TEST(EllipseOutline, StoresVerticesOfSinglePrecisionConstants) {
  const PsfPolygon polygon = lx::MakeEllipse({32, 24, 20, 7, 30, 1, 1});

  const double theta = 30.0 * static_cast<double>(0.017453292F);
  for (int k = 0; k < 50; ++k) {
    const double t = k * static_cast<double>(0.12566371F);
    const double a = 20 * std::cos(t);
    const double b = 7 * std::sin(t);
    EXPECT_EQ(static_cast<float>((std::cos(theta) * a - std::sin(theta) * b) * 1.0 + 32),
              polygon.vertices[k].x);
  }
}

TEST(PolygonOutline, StartsOnItsXAxisAndGoesAroundEvenly) {
  for (const int sides : {3, 6, 50}) {
    const PsfPolygon polygon = lx::MakeRegularPolygon({10, 20, 8, 8, 0, 1, 1}, sides);

    ASSERT_EQ(sides, polygon.count);
    EXPECT_EQ(18.0F, polygon.vertices[0].x);
    EXPECT_EQ(20.0F, polygon.vertices[0].y);
    for (int k = 0; k < sides; ++k) {
      EXPECT_NEAR(10 + 8 * std::cos(Degrees(360.0 * k / sides)), polygon.vertices[k].x, 2e-5);
      EXPECT_NEAR(20 + 8 * std::sin(Degrees(360.0 * k / sides)), polygon.vertices[k].y, 2e-5);
    }
  }
}

TEST(PolygonOutline, BringsSidesInto3To50) {
  const OutlineFrame frame{10, 20, 8, 8, 0, 1, 1};
  for (const int few : {2, 0, -7}) {
    EXPECT_EQ(3, lx::MakeRegularPolygon(frame, few).count);
  }
  for (const int many : {51, 60, 1000000}) {
    EXPECT_EQ(50, lx::MakeRegularPolygon(frame, many).count);
  }
}

TEST(EllipseOutline, IsAPixelInRadiusAtLeastUnlessSmallerOnesAreAskedFor) {
  const OutlineFrame raised{10, 20, 0.25F, 0.5F, 0, 1, 1};
  EXPECT_EQ(11.0F, lx::MakeEllipse(raised).vertices[0].x);
  const OutlineFrame small{10, 20, 0.25F, 0.5F, 0, 1, 1, 0.5F};
  EXPECT_EQ(10.5F, lx::MakeEllipse(small).vertices[0].x);
}

TEST(RectangleOutline, BeginsAtTheCentreAndTurnsTheOtherWay) {
  const PsfPolygon straight = lx::MakeRectangle({30, 20, 10, 4, 0, 1, 1});
  const float expected[][2] = {{30, 18}, {40, 18}, {40, 22}, {30, 22}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(expected[i][0], straight.vertices[i].x, 1e-5);
    EXPECT_NEAR(expected[i][1], straight.vertices[i].y, 1e-5);
  }

  // 30 degrees: s = -0.5, c = 0.8660254; C = 8.660254, S = -5, P = -1, Q = 1.7320508.
  const PsfPolygon turned = lx::MakeRectangle({30, 20, 10, 4, 30, 1, 1});
  const double rotated[][2] = {
      {29, 18.2679492}, {37.660254, 13.2679492}, {39.660254, 16.7320508}, {31, 21.7320508}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(rotated[i][0], turned.vertices[i].x, 1e-5) << i;
    EXPECT_NEAR(rotated[i][1], turned.vertices[i].y, 1e-5) << i;
  }
}

TEST(RectangleOutline, MovesByHalfTheLengthInXAndAQuarterOfTheThicknessInY) {
  // bx = 30 - 0.8660254 * 5 = 25.669873, by = 20 + 0.5 * 2 * 0.5 = 20.5.
  const PsfPolygon moved = lx::MakeCentredRectangle({30, 20, 10, 4, 30, 1, 1});
  const PsfPolygon base = lx::MakeRectangle({30, 20, 10, 4, 30, 1, 1});

  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(base.vertices[i].x - 4.330127, moved.vertices[i].x, 1e-5);
    EXPECT_NEAR(base.vertices[i].y + 0.5, moved.vertices[i].y, 1e-5);
  }
}

TEST(RectangleOutline, RaisesTheThicknessBeforeHalvingIt) {
  const PsfPolygon polygon = lx::MakeRectangle({30, 20, 0.1F, 0.1F, 0, 1, 1});

  EXPECT_EQ(19.5F, polygon.vertices[0].y);
  EXPECT_EQ(31.0F, polygon.vertices[1].x);
}

TEST(ShapePsf, TakesItsMarginFromTheLargerRadiusAsItArrives) {
  struct Case {
    float x;
    float y;
    int margin;
  };
  for (const Case& c : {Case{0.3F, 0.3F, 2}, Case{10, 2.5F, 11}, Case{2.5F, 10, 11}, Case{7, 7, 8},
                        Case{7.01F, 7, 9}, Case{0.5F, 0.5F, 2}}) {
    DefocusEngine engine;
    Build(&engine, 1, c.x, c.y);
    EXPECT_EQ(c.margin, Inside(engine).margin()) << c.x << " " << c.y;
  }
}

TEST(ShapePsf, TakesTheYRadiusWhereXIsNotANumber) {
  DefocusEngine engine;

  Build(&engine, 1, std::numeric_limits<float>::quiet_NaN(), 5);

  EXPECT_EQ(6, Inside(engine).margin());
}

TEST(ShapePsf, KeepsTheEarlierPsfForRadiiThatNoGridCanHold) {
  for (const float radius : {std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(), 1e12F, 3e7F, 8191.F}) {
    DefocusEngine engine;
    Build(&engine, 1, 5, 5);

    Build(&engine, 1, radius, radius);

    EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus()) << radius;
    EXPECT_EQ(nullptr, Inside(engine).psfImage());
    EXPECT_EQ(128, Inside(engine).paddedWidth());
    EXPECT_NE(nullptr, Inside(engine).psfSpectrum());
  }
}

TEST(ShapePsf, DrawsNothingSmallerThanOnePixelInRadius) {
  DefocusEngine small;
  DefocusEngine one;

  Build(&small, 1, 0.3F, 0.3F);
  Build(&one, 1, 1, 1);

  EXPECT_EQ(MaskOf(one), MaskOf(small));
}

TEST(ShapePsf, DrawsTheAreaOfItsOutline) {
  // A 50-gon has 25 sin(7.2 degrees) of r1 r2, a hexagon 3 sin(60 degrees).
  const double fiftyGon = 25 * std::sin(Degrees(7.2));
  const double hexagon = 3 * std::sin(Degrees(60));
  const double areas[] = {fiftyGon * 12 * 5, hexagon * 12 * 5, 12 * 5, 12 * 5};
  for (int shape = 1; shape <= 4; ++shape) {
    DefocusEngine engine;
    Build(&engine, shape, 12, 5, 20);
    EXPECT_NEAR(areas[shape - 1], MaskSum(engine) / 255.0, 0.2) << shape;
  }
}

TEST(ShapePsf, LoadsAnEmptyMaskForAnUnknownShape) {
  DefocusEngine engine;

  Build(&engine, 5, 12, 5);

  EXPECT_EQ(0, MaskSum(engine));
  EXPECT_EQ(Inside(engine).psfMask(), Inside(engine).psfImage());
  EXPECT_EQ(13, Inside(engine).margin());
}

TEST(ShapePsf, HalvesTheExtentAlongAnAxisOfAspect2AndKeepsTheMargin) {
  DefocusEngine engine;
  engine.SetPixelAspect(2, 1);

  Build(&engine, 1, 12, 12);

  const auto* pixels = static_cast<const std::uint8_t*>(Inside(engine).psfMask()->data);
  EXPECT_GT(pixels[24 * 64 + 32 + 5], 0);
  EXPECT_EQ(0, pixels[24 * 64 + 32 + 6]);
  EXPECT_GT(pixels[(24 + 11) * 64 + 32], 0);
  EXPECT_EQ(13, Inside(engine).margin());
}

TEST(ShapePsf, CentresOnTheMasksMiddleForEvenAndOddSizes) {
  for (const int side : {40, 41}) {
    DefocusEngine engine;
    engine.BuildShapePsf(side, side, 1, 9, 9, 0, 6);

    const auto mask = MaskOf(engine);
    for (int y = 0; y < side; ++y) {
      for (int x = 0; x < side; ++x) {
        EXPECT_NEAR(mask[y * side + x], mask[(side - 1 - y) * side + side - 1 - x], 1)
            << side << ": " << x << "," << y;
      }
    }
  }
}

TEST(ShapePsf, DrawsMoreThan50SidesAs50) {
  DefocusEngine fifty;
  DefocusEngine sixty;

  Build(&fifty, 2, 15, 15, 10, 50);
  Build(&sixty, 2, 15, 15, 10, 60);

  EXPECT_EQ(MaskOf(fifty), MaskOf(sixty));
}

TEST(ShapePsf, ClearsAndKeepsItsMaskAtAnEqualSizeAndReplacesItAtAnother) {
  DefocusEngine engine;
  Build(&engine, 1, 15, 15);
  const lx::ImageRec* first = Inside(engine).psfMask();

  Build(&engine, 1, 3, 3);
  EXPECT_EQ(first, Inside(engine).psfMask());
  EXPECT_LT(MaskSum(engine), 255 * 30);

  engine.BuildShapePsf(65, 48, 1, 3, 3, 0, 6);
  EXPECT_EQ(65, Inside(engine).psfMask()->width);
}

TEST(ShapePsf, StopsBeforeTheLoadWithoutAMask) {
  lx_test::HeapFaults heap;
  DefocusEngine engine;
  heap.Refuse(1);

  Build(&engine, 1, 5, 5);

  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(-1, Inside(engine).margin());
  engine.BuildShapePsf(65536, 4, 1, 5, 5, 0, 6);
  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
}

TEST(LoadPsf, SoftensTheMaskAboveATenthOfAPixelAndWidensTheMargin) {
  DefocusEngine sharp;
  DefocusEngine tenth;
  DefocusEngine soft;
  tenth.SetPsfSoftness(0.1F);
  soft.SetPsfSoftness(2.5F);

  Build(&sharp, 1, 5, 5);
  Build(&tenth, 1, 5, 5);
  Build(&soft, 1, 5, 5);

  EXPECT_EQ(MaskOf(sharp), MaskOf(tenth));
  EXPECT_EQ(6, Inside(tenth).margin());
  EXPECT_EQ(6 + 3 + 1, Inside(soft).margin());
  const auto* pixels = static_cast<const std::uint8_t*>(Inside(soft).psfMask()->data);
  EXPECT_GT(pixels[24 * 64 + 32 + 7], 0);    // beyond the radius along x
  EXPECT_GT(pixels[(24 + 7) * 64 + 32], 0);  // and along y
}

}  // namespace
