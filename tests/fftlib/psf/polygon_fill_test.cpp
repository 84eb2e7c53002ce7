// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/psf/polygon_fill.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "fftlib/psf/psf_outlines.h"
#include "tests/support/images.h"

namespace {

using lx::ClipPolygon;
using lx::PsfPolygon;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;

PsfPolygon Polygon(const std::vector<std::pair<float, float>>& vertices) {
  PsfPolygon polygon{};
  for (const auto& [x, y] : vertices) {
    polygon.vertices[polygon.count++] = {x, y};
  }
  return polygon;
}

Image Mask(int width, int height, std::uint8_t value = 0) {
  Image mask = MakeImage(width, height, 1, 0);
  lx_test::Fill(mask, value);
  return mask;
}

int At(const Image& mask, int x, int y) { return Samples<std::uint8_t>(mask)[y * mask->width + x]; }

// The area of a convex polygon within a unit square, in another way than by clipping
// against sides: the length of the polygon's section at each y is piecewise linear, so its
// integral between all the y where it can bend is exact by the trapezium rule.
double SquareArea(const PsfPolygon& polygon, int px, int py) {
  std::vector<double> bends{double(py), double(py + 1)};
  const int n = polygon.count;
  for (int i = 0; i < n; ++i) {
    const auto& a = polygon.vertices[i];
    const auto& b = polygon.vertices[(i + 1) % n];
    bends.push_back(a.y);
    for (const double side : {double(px), double(px + 1)}) {
      if (a.x != b.x) {
        bends.push_back(a.y + (side - a.x) / (double(b.x) - a.x) * (double(b.y) - a.y));
      }
    }
  }
  std::sort(bends.begin(), bends.end());
  const auto section = [&](double y, bool fromBelow) {
    double low = 1e30;
    double high = -1e30;
    for (int i = 0; i < n; ++i) {
      const auto& a = polygon.vertices[i];
      const auto& b = polygon.vertices[(i + 1) % n];
      const double top = std::min(a.y, b.y);
      const double bottom = std::max(a.y, b.y);
      const bool crosses = fromBelow ? top < y && y <= bottom : top <= y && y < bottom;
      if (crosses) {
        const double x = a.x + (y - a.y) / (double(b.y) - a.y) * (double(b.x) - a.x);
        low = std::min(low, x);
        high = std::max(high, x);
      }
    }
    return std::max(0.0, std::min(high, px + 1.0) - std::max(low, double(px)));
  };
  double area = 0.0;
  for (std::size_t i = 0; i + 1 < bends.size(); ++i) {
    const double y0 = std::clamp(bends[i], double(py), py + 1.0);
    const double y1 = std::clamp(bends[i + 1], double(py), py + 1.0);
    if (y1 > y0) {
      area += (y1 - y0) * (section(y0, false) + section(y1, true)) / 2;
    }
  }
  return area;
}

int coverageCalls = 0;
float CountingCoverage(const PsfPolygon& polygon, std::int32_t x, std::int32_t y) {
  ++coverageCalls;
  return lx::PixelCoverage(polygon, x, y);
}

const PsfPolygon kSquare = Polygon({{2, 3}, {6, 3}, {6, 5}, {2, 5}});

TEST(PolygonFill, FillsASquareOfWholePixelsAndNothingElse) {
  const Image mask = Mask(10, 10);

  lx::FillConvexPolygon(mask.get(), kSquare);

  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 10; ++x) {
      EXPECT_EQ(x >= 2 && x < 6 && (y == 3 || y == 4) ? 255 : 0, At(mask, x, y)) << x << "," << y;
    }
  }
}

TEST(PolygonFill, VisitsTheRowBelowTheBottomEdge) {
  const Image mask = Mask(10, 10, 9);

  lx::FillConvexPolygon(mask.get(), kSquare);

  // The bottom edge is passed in that row: its columns are a boundary without coverage.
  for (int x = 0; x < 10; ++x) {
    EXPECT_EQ(x >= 2 && x <= 6 ? 0 : 9, At(mask, x, 5)) << x;
    EXPECT_EQ(9, At(mask, x, 6)) << x;
  }
}

TEST(PolygonFill, HalfCoveredPixelGets128) {
  const Image mask = Mask(8, 8);

  lx::FillConvexPolygon(mask.get(), Polygon({{2.5F, 2}, {5.5F, 2}, {5.5F, 4}, {2.5F, 4}}));

  EXPECT_EQ(128, At(mask, 2, 2));
  EXPECT_EQ(255, At(mask, 3, 2));
  EXPECT_EQ(128, At(mask, 5, 3));
}

TEST(PolygonFill, AsksForNoCoverageWhereThePolygonIsWiderThanTheMask) {
  const Image mask = Mask(6, 6);
  coverageCalls = 0;

  lx::FillConvexPolygon(mask.get(), Polygon({{-50, -9}, {60, -9}, {60, 20}, {-50, 20}}),
                        CountingCoverage);

  EXPECT_EQ(0, coverageCalls);
  for (int i = 0; i < 36; ++i) {
    EXPECT_EQ(255, Samples<std::uint8_t>(mask)[i]) << i;
  }
}

TEST(PolygonFill, WritesNothingForAPolygonWhollyLeftRightAboveOrBelow) {
  for (const auto& [dx, dy] : {std::pair{-20.F, 0.F}, {20.F, 0.F}, {0.F, -20.F}, {0.F, 20.F}}) {
    const Image mask = Mask(8, 8, 7);

    lx::FillConvexPolygon(mask.get(),
                          Polygon({{2 + dx, 2 + dy}, {6 + dx, 3 + dy}, {4 + dx, 6 + dy}}));

    for (int i = 0; i < 64; ++i) {
      EXPECT_EQ(7, Samples<std::uint8_t>(mask)[i]) << dx << " " << dy;
    }
  }
}

TEST(PolygonFill, GivesATinyCornerItsSmallArea) {
  const Image mask = Mask(6, 6);

  // The corner at (2.9, 2.9) takes a triangle of 0.1 x 0.1 / 2 = 0.005 from its pixel.
  lx::FillConvexPolygon(mask.get(), Polygon({{2.9F, 3}, {3, 2.9F}, {5, 5}}));

  EXPECT_EQ(1, At(mask, 2, 2));
}

TEST(PolygonFill, MatchesTheExactAreaOnRandomOutlines) {
  std::mt19937 random(4);
  const auto between = [&](double low, double high) {
    return static_cast<float>(low + (high - low) * (random() / 4294967296.0));
  };
  for (int round = 0; round < 60; ++round) {
    // Centres near the border too, so that outlines leave the mask on every side.
    const lx::OutlineFrame frame{between(-4, 44), between(-4, 36),    between(1, 18),
                                 between(1, 18),  between(-400, 400), between(0.5, 2),
                                 between(0.5, 2)};
    const PsfPolygon polygon =
        round % 2 == 0 ? lx::MakeEllipse(frame) : lx::MakeRegularPolygon(frame, 3 + round % 8);
    const Image mask = Mask(40, 32);

    lx::FillConvexPolygon(mask.get(), polygon);

    for (int y = 0; y < 32; ++y) {
      for (int x = 0; x < 40; ++x) {
        ASSERT_NEAR(255 * SquareArea(polygon, x, y), At(mask, x, y), 1.0)
            << "round " << round << " at " << x << "," << y;
      }
    }
  }
}

TEST(PolygonFill, HoldsInAPartOfAMaskWhatTheWholeMaskHoldsThere) {
  for (const float centre : {900.0F, 907.5F}) {
    const PsfPolygon polygon = lx::MakeEllipse({centre, 40.0F, 37.3F, 21.9F, 33.0F, 1, 1});
    const Image whole = Mask(1000, 90);
    lx::FillConvexPolygon(whole.get(), polygon);
    for (const lx::MaskOrigin origin : {lx::MaskOrigin{0, 0}, {850, 5}, {890, 50}, {960, -9}}) {
      const Image part = Mask(60, 40);
      lx::FillConvexPolygon(part.get(), polygon, lx::PixelCoverage, origin);
      for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x) {
          const bool isIn = origin.x + x < 1000 && origin.y + y >= 0;
          ASSERT_EQ(isIn ? At(whole, origin.x + x, origin.y + y) : At(part, x, y), At(part, x, y))
              << x << "," << y << " from " << origin.x << "," << origin.y;
        }
      }
    }
  }
}

TEST(PolygonFill, DrawsBelowZeroWhereAMaskBeginsThere) {
  const Image mask = Mask(8, 8);

  lx::FillConvexPolygon(mask.get(), Polygon({{-2.5F, -3}, {1, -3}, {1, 0.5F}, {-2.5F, 0.5F}}),
                        lx::PixelCoverage, {-4, -4});

  EXPECT_EQ(0, At(mask, 3, 0));    // row -4
  EXPECT_EQ(128, At(mask, 1, 1));  // column -3, half of it
  EXPECT_EQ(255, At(mask, 2, 1));
  EXPECT_EQ(255, At(mask, 4, 3));
  EXPECT_EQ(0, At(mask, 5, 3));  // column 1
  EXPECT_EQ(128, At(mask, 4, 4));
  EXPECT_EQ(0, At(mask, 4, 5));
}

TEST(PolygonFill, TakesEitherWinding) {
  const auto vertices =
      std::vector<std::pair<float, float>>{{3.3F, 1.2F}, {8.1F, 4.4F}, {5.2F, 8.7F}, {1.1F, 5}};
  const Image one = Mask(10, 10);
  const Image other = Mask(10, 10);

  lx::FillConvexPolygon(one.get(), Polygon(vertices));
  lx::FillConvexPolygon(other.get(), Polygon({vertices.rbegin(), vertices.rend()}));

  for (int i = 0; i < 100; ++i) {
    EXPECT_NEAR(Samples<std::uint8_t>(one)[i], Samples<std::uint8_t>(other)[i], 1) << i;
  }
}

TEST(PolygonFill, NeverClearsWhatItDoesNotCover) {
  const Image mask = Mask(10, 10, 100);

  lx::FillConvexPolygon(mask.get(), kSquare);

  EXPECT_EQ(100, At(mask, 0, 0));
  EXPECT_EQ(100, At(mask, 9, 3));
  EXPECT_EQ(255, At(mask, 3, 3));
}

TEST(PolygonFill, RefusesMasksThatAreNotOneByteChannel) {
  const Image three = MakeImage(8, 8, 3, 0);
  const Image words = MakeImage(8, 8, 1, 1);
  lx_test::Fill<std::uint8_t>(three, 1);
  lx_test::Fill<std::uint16_t>(words, 1);

  lx::FillConvexPolygon(nullptr, kSquare);
  lx::FillConvexPolygon(three.get(), kSquare);
  lx::FillConvexPolygon(words.get(), kSquare);

  EXPECT_TRUE(std::all_of(Samples<std::uint8_t>(three), Samples<std::uint8_t>(three) + 192,
                          [](int v) { return v == 1; }));
  EXPECT_TRUE(std::all_of(Samples<std::uint16_t>(words), Samples<std::uint16_t>(words) + 64,
                          [](int v) { return v == 1; }));
}

TEST(PolygonFill, RefusesPolygonsThatAreNone) {
  const Image mask = Mask(8, 8, 5);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  PsfPolygon tooMany = kSquare;
  tooMany.count = 51;

  for (const PsfPolygon& polygon :
       {Polygon({}), Polygon({{1, 1}}), Polygon({{1, 1}, {5, 5}}), tooMany,
        Polygon({{1, 1}, {nan, 5}, {2, 6}}),
        Polygon({{1, 1}, {std::numeric_limits<float>::infinity(), 5}, {2, 6}})}) {
    lx::FillConvexPolygon(mask.get(), polygon);
  }

  for (int i = 0; i < 64; ++i) {
    EXPECT_EQ(5, Samples<std::uint8_t>(mask)[i]);
  }
}

TEST(PolygonFill, EndsForVerticesOnOneLineAndFarAway) {
  const Image mask = Mask(8, 8);
  const auto sum = [&] {
    const auto* bytes = static_cast<const std::uint8_t*>(mask->data);
    return std::accumulate(bytes, bytes + 64, 0);
  };

  lx::FillConvexPolygon(mask.get(), Polygon({{1, 3}, {4, 3}, {6, 3}}));
  lx::FillConvexPolygon(mask.get(), Polygon({{0, 3e7F}, {5, 3e7F}, {0, 3.1e7F}}));
  lx::FillConvexPolygon(mask.get(), Polygon({{0, -3.1e7F}, {5, -3.1e7F}, {0, -3e7F}}));
  EXPECT_EQ(0, sum());
  lx::FillConvexPolygon(mask.get(), Polygon({{-1e12F, -1e12F}, {1e12F, -1e12F}, {0, 1e12F}}));

  EXPECT_EQ(64 * 255, sum());
}

TEST(PolygonFill, AsksForCoverageInProportionToTheRadius) {
  int calls[3] = {};
  const float radii[] = {10, 100, 1000};
  for (int i = 0; i < 3; ++i) {
    const Image mask = Mask(2048, 2048);
    coverageCalls = 0;
    lx::FillConvexPolygon(mask.get(), lx::MakeEllipse({1024, 1024, radii[i], radii[i], 0, 1, 1}),
                          CountingCoverage);
    calls[i] = coverageCalls;
  }

  EXPECT_LT(calls[1], 13 * calls[0]);
  EXPECT_LT(calls[2], 13 * calls[1]);
}

TEST(PolygonFill, HasRoomFor51VerticesInAClip) {
  const Image mask = Mask(68, 68);

  lx::FillConvexPolygon(mask.get(), lx::MakeEllipse({34, 34, 30, 10, 165, 1, 1}));

  EXPECT_EQ(249, At(mask, 5, 41));
  EXPECT_EQ(159, At(mask, 5, 42));
  EXPECT_EQ(15, At(mask, 5, 43));
}

TEST(ClipToBox, TellsNothingClippedAndInsideApart) {
  const lx::ClipBox box{0, 1, 0, 1};
  ClipPolygon inside = MakeClipPolygon(Polygon({{0, 0}, {1, 0}, {0.5F, 1}}));
  ClipPolygon beyond = MakeClipPolygon(Polygon({{2, 0}, {3, 0}, {2.5F, 1}}));
  ClipPolygon across = MakeClipPolygon(Polygon({{-1, 0.25F}, {2, 0.25F}, {2, 0.75F}, {-1, 0.75F}}));

  EXPECT_EQ(lx::ClipResult::kInside, lx::ClipToBox(&inside, box));
  EXPECT_EQ(3, inside.count);
  EXPECT_EQ(lx::ClipResult::kNothing, lx::ClipToBox(&beyond, box));
  EXPECT_EQ(0, beyond.count);
  EXPECT_EQ(lx::ClipResult::kClipped, lx::ClipToBox(&across, box));
  EXPECT_FLOAT_EQ(0.5F, lx::PolygonArea(across));
}

TEST(ClipToBox, FindsNothingLeftAroundACorner) {
  // No side has all vertices beyond it, and yet the box is missed.
  ClipPolygon polygon = MakeClipPolygon(Polygon({{1.5F, -4}, {6, 1.5F}, {6, -4}}));

  EXPECT_EQ(lx::ClipResult::kNothing, lx::ClipToBox(&polygon, {0, 1, 0, 1}));
  EXPECT_EQ(0, polygon.count);
}

TEST(ClipToHalfSpace, TakesTheLineAsInsideAndPutsTheCrossingBeforeTheVertex) {
  const ClipPolygon source = MakeClipPolygon(Polygon({{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
  ClipPolygon target;

  lx::ClipToHalfSpace(source, &target, 0, 1, 1);  // x <= 1

  ASSERT_EQ(4, target.count);
  const float expected[][2] = {{0, 0}, {1, 0}, {1, 2}, {0, 2}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(expected[i][0], target.vertices[i].x) << i;
    EXPECT_EQ(expected[i][1], target.vertices[i].y) << i;
  }
  // y >= 2: one edge lies on the line. Its vertices are inside, and each is also where
  // the border is crossed.
  lx::ClipToHalfSpace(source, &target, 1, -1, -2);
  EXPECT_EQ(4, target.count);
  EXPECT_EQ(0.0F, lx::PolygonArea(target));
}

TEST(PolygonArea, IsTheSameForEitherWindingAndFarFromTheOrigin) {
  for (const float far : {0.F, 4096.F, -8192.F}) {
    const auto area = [far](std::vector<std::pair<float, float>> v) {
      for (auto& [x, y] : v) {
        x += far;
        y += far;
      }
      return lx::PolygonArea(MakeClipPolygon(Polygon(v)));
    };
    EXPECT_EQ(1.0F, area({{0, 0}, {1, 0}, {1, 1}, {0, 1}}));
    EXPECT_EQ(1.0F, area({{0, 1}, {1, 1}, {1, 0}, {0, 0}}));
    EXPECT_EQ(0.5F, area({{0, 0}, {1, 0}, {0, 1}}));
  }
}

TEST(PixelCoverage, LeavesItsPolygonAlone) {
  const PsfPolygon before = lx::MakeEllipse({5, 5, 4, 3, 30, 1, 1});
  PsfPolygon polygon = before;

  lx::PixelCoverage(polygon, 1, 5);

  EXPECT_EQ(before.count, polygon.count);
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(before.vertices[i].x, polygon.vertices[i].x);
    EXPECT_EQ(before.vertices[i].y, polygon.vertices[i].y);
  }
}

}  // namespace
