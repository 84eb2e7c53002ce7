// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/pixels/compose_view.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/viewer/pixels/area_mean.h"
#include "host/viewer/pixels/view_colours.h"

namespace glimmerhost {
namespace {

// Pixels first to end - 1.
struct Range {
  int first;
  int end;

  int Count() const { return std::max(end - first, 0); }
};

// Where one direction of a picture is in the viewport.
struct Axis {
  double zoom;
  double origin;
  int size;  // of the picture, in its own pixels

  // What a place of the viewport is in the picture.
  double InPicture(double place) const { return (place - origin) / zoom; }

  // The picture's pixel that the middle of one of the viewport's lies in.
  int PixelAt(int place) const {
    return std::clamp(static_cast<int>(std::floor(InPicture(place + 0.5))), 0, size - 1);
  }
};

// The viewport's pixels whose middles lie between two places of it.
Range PixelsBetween(double from, double to, int size) {
  const auto cut = [size](double place) {
    return static_cast<int>(std::clamp(std::ceil(place - 0.5), 0.0, static_cast<double>(size)));
  };
  return {cut(from), cut(to)};
}

// One picture into a part of the viewport.
class Drawing {
 public:
  Drawing(const Picture& picture, const ViewSettings& settings, Axis across, Axis down,
          ViewPixels* view)
      : picture_(picture),
        colours_(settings, picture.IsFloat()),
        across_(across),
        down_(down),
        view_(view) {}

  void Draw(Range columns, Range rows, bool smooth) {
    if (columns.Count() == 0 || rows.Count() == 0) {
      return;
    }
    if (across_.zoom < 1.0 && down_.zoom < 1.0) {
      DrawMeans(columns, rows);
    } else if (smooth) {
      DrawSmooth(columns, rows);
    } else {
      DrawNearest(columns, rows);
    }
  }

 private:
  std::uint32_t* RowOf(int y, int firstColumn) {
    return view_->pixels.data() + std::ptrdiff_t{y} * view_->width + firstColumn;
  }

  void DrawMeans(Range columns, Range rows) {
    const auto count = static_cast<std::size_t>(columns.Count());
    const Stretches across = CutIntoStretches(across_.InPicture(columns.first), 1.0 / across_.zoom,
                                              columns.Count(), across_.size);
    const Stretches down =
        CutIntoStretches(down_.InPicture(rows.first), 1.0 / down_.zoom, rows.Count(), down_.size);
    AreaMean mean(picture_, across);
    numbers_.resize(count * 4);
    for (int y = rows.first; y < rows.end; ++y) {
      mean.Row(down, static_cast<std::size_t>(y - rows.first), numbers_.data());
      colours_.Show(numbers_.data(), count, RowOf(y, columns.first));
    }
  }

  // The colours of a part of a row of the picture.
  void ShowPixels(int y, Range pixels, std::vector<std::uint32_t>* shown) {
    const auto count = static_cast<std::size_t>(pixels.Count());
    const std::size_t at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(across_.size) +
                            static_cast<std::size_t>(pixels.first)) *
                           4;
    shown->resize(count);
    if (picture_.IsFloat()) {
      colours_.Show(picture_.floats.data() + at, count, shown->data());
      return;
    }
    numbers_.resize(count * 4);
    std::copy_n(picture_.samples.begin() + static_cast<std::ptrdiff_t>(at), count * 4,
                numbers_.begin());
    colours_.Show(numbers_.data(), count, shown->data());
  }

  void DrawNearest(Range columns, Range rows) {
    const Range pixels{across_.PixelAt(columns.first), across_.PixelAt(columns.end - 1) + 1};
    std::vector<int> places;
    for (int x = columns.first; x < columns.end; ++x) {
      places.push_back(across_.PixelAt(x) - pixels.first);
    }
    std::vector<std::uint32_t> shown;
    int shownRow = -1;
    for (int y = rows.first; y < rows.end; ++y) {
      std::uint32_t* const row = RowOf(y, columns.first);
      const int pictureRow = down_.PixelAt(y);
      if (pictureRow == shownRow) {
        std::copy_n(row - view_->width, columns.Count(), row);
        continue;
      }
      ShowPixels(pictureRow, pixels, &shown);
      shownRow = pictureRow;
      std::transform(places.begin(), places.end(), row,
                     [&](int place) { return shown[static_cast<std::size_t>(place)]; });
    }
  }

  void DrawSmooth(Range columns, Range rows);

  const Picture& picture_;
  ViewColours colours_;
  Axis across_;
  Axis down_;
  ViewPixels* view_;
  std::vector<float> numbers_;
};

// Between two neighbours: 0 to 256 of the second.
struct Between {
  int first;
  int second;
  std::uint32_t part;
};

Between Neighbours(const Axis& axis, int place) {
  const double middle =
      std::clamp(axis.InPicture(place + 0.5) - 0.5, 0.0, static_cast<double>(axis.size - 1));
  const int first = static_cast<int>(middle);
  return {first, std::min(first + 1, axis.size - 1),
          static_cast<std::uint32_t>((middle - first) * 256.0 + 0.5)};
}

// Two colours of the screen, each of the bytes for itself: two at a time, with room between them.
std::uint32_t Blend(std::uint32_t a, std::uint32_t b, std::uint32_t part) {
  constexpr std::uint32_t kMask = 0x00ff00ffU;
  constexpr std::uint32_t kHalf = 0x00800080U;
  const std::uint32_t low = ((a & kMask) * (256U - part) + (b & kMask) * part + kHalf) >> 8 & kMask;
  const std::uint32_t high = (a >> 8 & kMask) * (256U - part) + (b >> 8 & kMask) * part + kHalf;
  return low | (high & ~kMask);
}

// A picture that is smaller than what it stands for: its pixels would show as squares.
void Drawing::DrawSmooth(Range columns, Range rows) {
  const Range pixels{Neighbours(across_, columns.first).first,
                     Neighbours(across_, columns.end - 1).second + 1};
  std::vector<Between> places;
  for (int x = columns.first; x < columns.end; ++x) {
    places.push_back(Neighbours(across_, x));
  }
  std::vector<std::uint32_t> above;
  std::vector<std::uint32_t> below;
  int aboveRow = -1;
  int belowRow = -1;
  std::vector<std::uint32_t> mixed;
  for (int y = rows.first; y < rows.end; ++y) {
    const Between lines = Neighbours(down_, y);
    if (lines.first == belowRow) {
      std::swap(above, below);
      std::swap(aboveRow, belowRow);
    }
    if (lines.first != aboveRow) {
      ShowPixels(lines.first, pixels, &above);
      aboveRow = lines.first;
    }
    if (lines.second != belowRow) {
      ShowPixels(lines.second, pixels, &below);
      belowRow = lines.second;
    }
    mixed.resize(above.size());
    std::transform(above.begin(), above.end(), below.begin(), mixed.begin(),
                   [&](std::uint32_t a, std::uint32_t b) { return Blend(a, b, lines.part); });
    std::transform(places.begin(), places.end(), RowOf(y, columns.first), [&](const Between& at) {
      return Blend(mixed[static_cast<std::size_t>(at.first - pixels.first)],
                   mixed[static_cast<std::size_t>(at.second - pixels.first)], at.part);
    });
  }
}

}  // namespace

ViewPixels ComposeView(const Picture& before, const Picture* after, const ViewSettings& settings,
                       const ViewPlace& place) {
  ViewPixels view{place.width, place.height, {}};
  view.pixels.assign(static_cast<std::size_t>(std::max(place.width, 0)) *
                         static_cast<std::size_t>(std::max(place.height, 0)),
                     0);
  const double right = place.left + before.width * place.zoom;
  const double bottom = place.top + before.height * place.zoom;
  const Range columns = PixelsBetween(place.left, right, place.width);
  const Range rows = PixelsBetween(place.top, bottom, place.height);
  int split = columns.end;
  if (after != nullptr && !settings.showsBefore) {
    const double wipe =
        place.left + std::clamp(settings.wipe, 0.0, 1.0) * before.width * place.zoom;
    split = settings.wipes ? std::clamp(PixelsBetween(place.left, wipe, place.width).end,
                                        columns.first, std::max(columns.first, columns.end))
                           : columns.first;
  }
  const auto draw = [&](const Picture& picture, Range part) {
    const double wider = static_cast<double>(before.width) / picture.width;
    const double higher = static_cast<double>(before.height) / picture.height;
    const bool isProxy = picture.width != before.width || picture.height != before.height;
    Drawing(picture, settings, {place.zoom * wider, place.left, picture.width},
            {place.zoom * higher, place.top, picture.height}, &view)
        .Draw(part, rows, isProxy);
  };
  draw(before, {columns.first, split});
  if (after != nullptr) {
    draw(*after, {split, columns.end});
  }
  return view;
}

}  // namespace glimmerhost
