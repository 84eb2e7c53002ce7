// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/psf/polygon_fill.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "baselib/utils/convert.h"

namespace lx {
namespace {

// The x reached by one chain of edges within the current pixel row.
struct Extent {
  float min;
  float max;

  void Include(float x) {
    min = std::min(min, x);
    max = std::max(max, x);
  }
};

// Goes down one chain of edges from the top vertex to the bottom one.
class Walker {
 public:
  // step is +1 or -1, around the polygon.
  Walker(const PsfPolygon& polygon, std::int32_t top, std::int32_t bottom, std::int32_t step)
      : polygon_(polygon), bottom_(bottom), step_(step), current_(top), next_(After(top)) {}

  bool AtBottom() const { return current_ == bottom_; }

  // Follows the chain down to the line y = line. The extent takes in every vertex passed
  // and the crossing with the line; the crossing, where there is one, goes into crossing.
  void Advance(double line, Extent* extent, float* crossing) {
    while (!AtBottom() && static_cast<double>(Vertex(next_).y) < line) {
      extent->Include(Vertex(next_).x);
      current_ = next_;
      next_ = After(current_);
    }
    if (!AtBottom()) {
      const PolygonVertex from = Vertex(current_);
      const PolygonVertex to = Vertex(next_);
      // Kept as a float: the last bits of a mask depend on it.
      const float slope = NarrowToFloat((static_cast<double>(to.x) - from.x) /
                                        (static_cast<double>(to.y) - from.y));
      *crossing = NarrowToFloat((line - from.y) * slope + from.x);
      extent->Include(*crossing);
    }
  }

 private:
  const PolygonVertex& Vertex(std::int32_t index) const { return polygon_.vertices[index]; }
  std::int32_t After(std::int32_t index) const {
    return (index + step_ + polygon_.count) % polygon_.count;
  }

  const PsfPolygon& polygon_;
  std::int32_t bottom_;
  std::int32_t step_;
  std::int32_t current_;
  std::int32_t next_;
};

// The two runs of a pixel row that edges may cross, as columns, both ends inclusive. What lies
// between them is solid.
struct RowRuns {
  std::int32_t leftFirst;
  std::int32_t leftLast;
  std::int32_t rightFirst;
  std::int32_t rightLast;
};

// Columns off the mask are brought to the next one outside it before they become whole
// numbers, which no coordinate then overflows.
std::int32_t ToColumn(double x, std::int32_t first, std::int32_t width) {
  return static_cast<std::int32_t>(std::clamp(x - first, -1.0, static_cast<double>(width)));
}

// Columns of a mask whose first pixel is in column first.
RowRuns MakeRuns(Extent left, Extent right, std::int32_t first, std::int32_t width) {
  // A polygon may wind either way, so either chain may be the left one.
  if (right.min < left.min) {
    std::swap(left, right);
  }
  // Where both chains reach the same columns, as in the row of a vertex, the right run has them.
  if (left.max > right.min) {
    left.max = right.min;
  }
  const double leftMin = std::floor(static_cast<double>(left.min));
  double leftMax = std::floor(static_cast<double>(left.max));
  const double rightMin = std::floor(static_cast<double>(right.min));
  const double rightMax = std::floor(static_cast<double>(right.max));
  // A column that both chains cross is the right run's alone.
  if (leftMax == rightMin) {
    leftMax -= 1.0;
  }
  const auto column = [&](double x) { return ToColumn(x, first, width); };
  return {std::max(column(leftMin), 0), std::min(column(leftMax), width - 1),
          std::max(column(rightMin), 0), std::min(column(rightMax), width - 1)};
}

// A row of the mask, whose first pixel is the polygon's pixel (left, row).
void DrawRow(std::uint8_t* pixels, const RowRuns& runs, std::int32_t left, std::int32_t row,
             const PsfPolygon& polygon, CoverageFunction coverage) {
  const auto drawEdge = [&](std::int32_t first, std::int32_t last) {
    for (std::int32_t x = first; x <= last; ++x) {
      pixels[x] = static_cast<std::uint8_t>(
          TruncateToUnsigned(255.0 * coverage(polygon, left + x, row) + 0.5, 255.0));
    }
  };
  drawEdge(runs.leftFirst, runs.leftLast);
  const std::int32_t solidFirst = std::max(runs.leftLast, -1) + 1;
  for (std::int32_t x = solidFirst; x <= runs.rightFirst - 1; ++x) {
    pixels[x] = 255;
  }
  drawEdge(runs.rightFirst, runs.rightLast);
}

bool IsFillable(const ImageRec* mask, const PsfPolygon& polygon) {
  if (!ImageHasSamples(mask) || mask->channels != 1 || mask->sampleType != kSampleU8 ||
      polygon.count < 3 || polygon.count > kPolygonVertices) {
    return false;
  }
  return std::all_of(
      polygon.vertices, polygon.vertices + polygon.count,
      [](const PolygonVertex& v) { return std::isfinite(v.x) && std::isfinite(v.y); });
}

// How many vertices lie strictly outside each side of a box.
struct OutsideCounts {
  std::int32_t xMin = 0;
  std::int32_t xMax = 0;
  std::int32_t yMin = 0;
  std::int32_t yMax = 0;
};

OutsideCounts CountOutside(const ClipPolygon& polygon, const ClipBox& box) {
  OutsideCounts counts;
  for (std::int32_t i = 0; i < polygon.count; ++i) {
    const PolygonVertex& v = polygon.vertices[i];
    counts.xMin += v.x < box.xMin ? 1 : 0;
    counts.xMax += v.x > box.xMax ? 1 : 0;
    counts.yMin += v.y < box.yMin ? 1 : 0;
    counts.yMax += v.y > box.yMax ? 1 : 0;
  }
  return counts;
}

void Append(ClipPolygon* polygon, PolygonVertex vertex) {
  // A convex outline never gets there. One that rounding has bent must not write past the end.
  if (polygon->count < kClipVertices) {
    polygon->vertices[polygon->count++] = vertex;
  }
}

float Interpolate(float from, float to, float r) {
  return NarrowToFloat(from + static_cast<double>(r) * (static_cast<double>(to) - from));
}

void CopyVertices(const ClipPolygon& from, ClipPolygon* to) {
  to->count = from.count;
  std::copy(from.vertices, from.vertices + from.count, to->vertices);
}

}  // namespace

ClipPolygon MakeClipPolygon(const PsfPolygon& polygon) {
  ClipPolygon result;
  result.count = polygon.count;
  std::copy(polygon.vertices, polygon.vertices + polygon.count, result.vertices);
  return result;
}

void FillConvexPolygon(ImageRec* mask, const PsfPolygon& polygon, CoverageFunction coverage,
                       MaskOrigin origin) {
  if (!IsFillable(mask, polygon)) {
    return;
  }
  std::int32_t top = 0;
  std::int32_t bottom = 0;
  for (std::int32_t i = 1; i < polygon.count; ++i) {
    if (polygon.vertices[i].y < polygon.vertices[top].y) {
      top = i;
    }
    if (polygon.vertices[i].y > polygon.vertices[bottom].y) {
      bottom = i;
    }
  }
  const std::int32_t width = mask->width;
  const std::int32_t height = mask->height;
  auto* pixels = static_cast<std::uint8_t*>(mask->data);
  const float topX = polygon.vertices[top].x;
  Extent left{topX, topX};
  Extent right{topX, topX};
  float leftX = topX;
  float rightX = topX;
  Walker leftWalker(polygon, top, bottom, -1);
  Walker rightWalker(polygon, top, bottom, +1);

  // The row's lower edge: the first whole number strictly below the top vertex. Rows far
  // above the mask are passed over, since a row's extents follow from its two lines and
  // the vertices between them alone.
  const double topY = polygon.vertices[top].y;
  double line = std::ceil(topY);
  if (line == topY) {
    line += 1.0;
  }
  line = std::max(line, static_cast<double>(origin.y));
  for (;;) {
    leftWalker.Advance(line, &left, &leftX);
    rightWalker.Advance(line, &right, &rightX);
    const double row = line - 1.0;
    if (row >= static_cast<double>(origin.y) + height) {
      return;
    }
    if (row >= origin.y) {
      const auto y = static_cast<std::int32_t>(row);
      DrawRow(pixels + (std::ptrdiff_t{y} - origin.y) * width,
              MakeRuns(left, right, origin.x, width), origin.x, y, polygon, coverage);
    }
    // Asked after drawing: the bottom vertex lies in the row just drawn, or on its upper edge.
    if (leftWalker.AtBottom() && rightWalker.AtBottom()) {
      return;
    }
    // The next row begins where the edges leave this one.
    left = {leftX, leftX};
    right = {rightX, rightX};
    line += 1.0;
  }
}

float PixelCoverage(const PsfPolygon& polygon, std::int32_t x, std::int32_t y) {
  // Clipping overwrites its polygon.
  ClipPolygon clip = MakeClipPolygon(polygon);
  const ClipBox box{static_cast<float>(x), static_cast<float>(x + 1), static_cast<float>(y),
                    static_cast<float>(y + 1)};
  switch (ClipToBox(&clip, box)) {
    case ClipResult::kNothing:
      return 0.0F;
    case ClipResult::kInside:
      return 1.0F;
    case ClipResult::kClipped:
      break;
  }
  return PolygonArea(clip);
}

ClipResult ClipToBox(ClipPolygon* polygon, const ClipBox& box) {
  const OutsideCounts outside = CountOutside(*polygon, box);
  if (outside.xMin == 0 && outside.xMax == 0 && outside.yMin == 0 && outside.yMax == 0) {
    return ClipResult::kInside;
  }
  if (outside.xMin == polygon->count || outside.xMax == polygon->count ||
      outside.yMin == polygon->count || outside.yMax == polygon->count) {
    polygon->count = 0;
    return ClipResult::kNothing;
  }
  struct Side {
    std::int32_t outside;
    std::int32_t axis;
    float sign;
    float k;
  };
  // A lower bound has sign -1 and its k negated: -x - (-xMin) <= 0 says x >= xMin.
  const Side sides[] = {{outside.xMin, 0, -1.0F, -box.xMin},
                        {outside.xMax, 0, +1.0F, box.xMax},
                        {outside.yMin, 1, -1.0F, -box.yMin},
                        {outside.yMax, 1, +1.0F, box.yMax}};
  ClipPolygon other;
  ClipPolygon* from = polygon;
  ClipPolygon* to = &other;
  for (const Side& side : sides) {
    if (side.outside == 0) {
      continue;
    }
    ClipToHalfSpace(*from, to, side.axis, side.sign, side.k);
    std::swap(from, to);
    if (from->count == 0) {
      polygon->count = 0;
      return ClipResult::kNothing;
    }
  }
  if (from != polygon) {
    CopyVertices(*from, polygon);
  }
  return ClipResult::kClipped;
}

void ClipToHalfSpace(const ClipPolygon& source, ClipPolygon* target, std::int32_t axis, float sign,
                     float k) {
  const auto distance = [axis, sign, k](const PolygonVertex& v) {
    const double coordinate = axis == 0 ? v.x : v.y;
    return NarrowToFloat(sign * coordinate - k);
  };
  target->count = 0;
  if (source.count == 0) {
    return;
  }
  // The edge that closes the polygon comes first.
  PolygonVertex u = source.vertices[source.count - 1];
  float tu = distance(u);
  for (std::int32_t i = 0; i < source.count; ++i) {
    const PolygonVertex v = source.vertices[i];
    const float tv = distance(v);
    if ((tu <= 0.0F) != (tv <= 0.0F)) {
      const float r = NarrowToFloat(tu / (static_cast<double>(tu) - tv));
      Append(target, {Interpolate(u.x, v.x, r), Interpolate(u.y, v.y, r)});
    }
    if (tv <= 0.0F) {
      Append(target, v);
    }
    u = v;
    tu = tv;
  }
}

// The shoelace formula, with y counted from the last vertex to keep its numbers small.
float PolygonArea(const ClipPolygon& polygon) {
  if (polygon.count == 0) {
    return 0.0F;
  }
  const PolygonVertex last = polygon.vertices[polygon.count - 1];
  float px = last.x;
  float py = 0.0F;
  float sum = 0.0F;
  for (std::int32_t i = 0; i < polygon.count; ++i) {
    const PolygonVertex& v = polygon.vertices[i];
    const float vy = NarrowToFloat(static_cast<double>(v.y) - last.y);
    sum = NarrowToFloat(sum + (static_cast<double>(px) - v.x) * (static_cast<double>(py) + vy));
    px = v.x;
    py = vy;
  }
  return NarrowToFloat(std::fabs(sum * 0.5));
}

}  // namespace lx
