// SPDX-License-Identifier: BSD-3-Clause
// The picture under the hand: a person's events, and what they do.
#include "host/viewer/picture/picture_view.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <cstdint>
#include <memory>
#include <vector>

#include "hostframe/interfaces/colour.h"

namespace glimmerhost {
namespace {

// Red tells the column and green the row, in steps of the screen.
std::shared_ptr<const Picture> Grid(int width, int height, int blue = 0) {
  auto picture = std::make_shared<Picture>();
  picture->width = width;
  picture->height = height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (const int sample : {x * 257, y * 257, blue * 257, 65535}) {
        picture->samples.push_back(static_cast<std::uint16_t>(sample));
      }
    }
  }
  return picture;
}

OverlayStroke Handle(float left, float top) {
  return OverlayRectangle{{left, top, 5.0F, 5.0F}, {65535, 65535, 65535}, false};
}

class PictureViews : public testing::Test {
 public:
  // A picture of 100 x 50 in a view of 200 x 100: each pixel is a square of two.
  PictureViews() {
    view.resize(200, 100);
    view.show();
    Show(Grid(100, 50), nullptr);
  }

  void Show(const std::shared_ptr<const Picture>& before,
            const std::shared_ptr<const Picture>& after) {
    view.ShowFrames(before, after, false);
    WaitForImage();
  }

  // Until the image on the screen is of what is shown now.
  void WaitForImage() {
    QSignalSpy composed(&view, &PictureView::Composed);
    while (!view.IsUpToDate()) {
      ASSERT_TRUE(composed.wait());
    }
  }

  // The column and the row of the picture's pixel that is seen at a place.
  QPoint Seen(int x, int y) {
    const QRgb pixel = view.grab().toImage().pixel(x, y);
    return {qRed(pixel), qGreen(pixel)};
  }

  void Wheel(QPoint at, int notches) {
    QWheelEvent event(at, view.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&view, &event);
  }

  void Drag(Qt::MouseButton button, QPoint from, QPoint to) {
    QTest::mousePress(&view, button, {}, from);
    QTest::mouseMove(&view, to);
    QTest::mouseRelease(&view, button, {}, to);
  }

  // Where the three signals of a drag say that it went.
  std::vector<QPointF> Told(QPoint from, QPoint to) {
    std::vector<QPointF> told;
    const auto note = [&](QPointF at) { told.push_back(at); };
    QObject noting;
    QObject::connect(&view, &PictureView::Pressed, &noting, note);
    QObject::connect(&view, &PictureView::Moved, &noting, note);
    QObject::connect(&view, &PictureView::Released, &noting, note);
    Drag(Qt::LeftButton, from, to);
    return told;
  }

  PictureView view;
};

using Points = std::vector<QPointF>;

TEST_F(PictureViews, FitAPictureInAndShowIt) {
  EXPECT_EQ(2.0, view.Zoom());
  EXPECT_EQ(QSize(200, 100), view.ScreenSize());
  EXPECT_EQ(QPoint(0, 0), view.Corner());
  EXPECT_EQ(QPoint(0, 0), Seen(1, 1));
  EXPECT_EQ(QPoint(20, 30), Seen(40, 61));
  EXPECT_EQ(QPoint(99, 49), Seen(198, 98));
}

TEST_F(PictureViews, StayFittedWhenTheirSizeChanges) {
  view.resize(300, 80);

  EXPECT_EQ(1.6, view.Zoom());
  EXPECT_EQ(QPoint(70, 0), view.Corner());
}

TEST_F(PictureViews, KeepTheirPlaceForAPictureOfTheSameSizeOnly) {
  view.ZoomAt({0, 0}, 2.0);
  Show(Grid(100, 50), nullptr);
  EXPECT_EQ(4.0, view.Zoom());

  Show(Grid(50, 50), nullptr);
  EXPECT_EQ(2.0, view.Zoom());
  EXPECT_EQ(QPoint(50, 0), view.Corner());
}

TEST_F(PictureViews, ZoomByTheWheelAtTheCursor) {
  QSignalSpy sizes(&view, &PictureView::ScreenSizeChanged);
  Wheel({120, 40}, 2);

  EXPECT_DOUBLE_EQ(2.0 * 1.25 * 1.25, view.Zoom());
  EXPECT_EQ(QSize(313, 156), view.ScreenSize());
  ASSERT_EQ(1, sizes.count());
  EXPECT_EQ(QSize(313, 156), sizes[0][0].toSize());
  // The picture's place 60, 20 was there and is, to a half pixel of the screen.
  EXPECT_NEAR(120.0, view.Corner().x() + 60.0 * view.Zoom(), 0.5);
  EXPECT_NEAR(40.0, view.Corner().y() + 20.0 * view.Zoom(), 0.5);

  Wheel({120, 40}, -2);
  EXPECT_EQ(2.0, view.Zoom());
  EXPECT_EQ(QPoint(0, 0), view.Corner());
}

TEST_F(PictureViews, ZoomNoFurtherThanTheyMay) {
  Wheel({0, 0}, 100);
  EXPECT_EQ(64.0, view.Zoom());
  Wheel({0, 0}, -100);
  EXPECT_EQ(1.0 / 16.0, view.Zoom());
}

// A factor of 1 / 1.74 would leave it a rounding away, where nothing is shown pixel by pixel.
TEST_F(PictureViews, AreOneToOneToTheLastBitFromAnySize) {
  view.resize(174, 100);
  ASSERT_NE(1.0, view.Zoom() * (1.0 / view.Zoom()));

  view.OneToOne();
  EXPECT_EQ(1.0, view.Zoom());
}

TEST_F(PictureViews, MoveThePictureByTheMiddleButton) {
  QSignalSpy pressed(&view, &PictureView::Pressed);
  Drag(Qt::MiddleButton, {100, 50}, {130, 40});

  EXPECT_EQ(QPoint(30, -10), view.Corner());
  EXPECT_EQ(0, pressed.count());
}

TEST_F(PictureViews, MoveThePictureByTheLeftButtonWhileSpaceIsHeld) {
  QSignalSpy pressed(&view, &PictureView::Pressed);
  QTest::keyPress(&view, Qt::Key_Space);
  EXPECT_EQ(Qt::OpenHandCursor, view.cursor().shape());
  Drag(Qt::LeftButton, {100, 50}, {95, 70});
  QTest::keyRelease(&view, Qt::Key_Space);
  EXPECT_EQ(QPoint(-5, 20), view.Corner());
  EXPECT_EQ(0, pressed.count());

  Drag(Qt::LeftButton, {100, 50}, {95, 70});
  EXPECT_EQ(QPoint(-5, 20), view.Corner());
  EXPECT_EQ(1, pressed.count());
}

TEST_F(PictureViews, KeepAPartOfThePictureInSight) {
  Drag(Qt::MiddleButton, {100, 50}, {5000, -5000});

  EXPECT_EQ(QPoint(200 - 32, 32 - 100), view.Corner());
}

TEST_F(PictureViews, ShowTheLastImageAtItsNewPlaceUntilTheNextIsThere) {
  Drag(Qt::MiddleButton, {100, 50}, {120, 50});

  EXPECT_FALSE(view.IsUpToDate());
  EXPECT_EQ(QPoint(20, 30), Seen(60, 61));
  // What was not in the image is not there yet.
  Drag(Qt::MiddleButton, {100, 50}, {70, 50});
  EXPECT_EQ(QPoint(50, 30), Seen(90, 61));
  WaitForImage();
  EXPECT_EQ(QPoint(99, 30), Seen(189, 61));
}

TEST_F(PictureViews, ScaleTheLastImageUntilTheNextIsThere) {
  Drag(Qt::MiddleButton, {100, 50}, {120, 60});
  WaitForImage();
  Wheel({150, 60}, 3);

  EXPECT_FALSE(view.IsUpToDate());
  // The place under the cursor, and one to its left.
  EXPECT_EQ(QPoint(65, 25), Seen(152, 62));
  EXPECT_EQ(QPoint(45, 25), Seen(152 - static_cast<int>(20 * view.Zoom()), 62));
}

TEST_F(PictureViews, ShowNothingOfAPictureThatWasTakenAway) {
  view.ShowFrames(nullptr, nullptr, false);
  view.ShowFrames(Grid(100, 50, 255), nullptr, false);

  // The new one's image is not there yet.
  EXPECT_EQ(view.palette().color(QPalette::Dark).rgb(), view.grab().toImage().pixel(100, 50));
  WaitForImage();
  EXPECT_EQ(255, qBlue(view.grab().toImage().pixel(100, 50)));
}

TEST_F(PictureViews, ObeyKeys) {
  QTest::keyClick(&view, Qt::Key_1);
  EXPECT_EQ(1.0, view.Zoom());
  EXPECT_EQ(QPoint(50, 25), view.Corner());
  QTest::keyClick(&view, Qt::Key_Plus);
  EXPECT_EQ(2.0, view.Zoom());
  EXPECT_EQ(QPoint(0, 0), view.Corner());
  QTest::keyClick(&view, Qt::Key_Left);
  EXPECT_EQ(QPoint(20, 0), view.Corner());
  QTest::keyClick(&view, Qt::Key_Down);
  EXPECT_EQ(QPoint(20, -10), view.Corner());
  QTest::keyClick(&view, Qt::Key_Right);
  QTest::keyClick(&view, Qt::Key_Up);
  EXPECT_EQ(QPoint(0, 0), view.Corner());
  QTest::keyClick(&view, Qt::Key_Minus);
  EXPECT_EQ(1.0, view.Zoom());
  QTest::keyClick(&view, Qt::Key_F);
  EXPECT_EQ(2.0, view.Zoom());
  EXPECT_TRUE(view.IsFitted());
}

TEST_F(PictureViews, TellOfADragFromThePicturesCorner) {
  Drag(Qt::MiddleButton, {100, 50}, {110, 70});

  EXPECT_EQ((Points{{30, 40}, {55, 45}, {55, 45}}), Told({40, 60}, {65, 65}));
  // Outside of the picture, too.
  EXPECT_EQ((Points{{-8, -15}, {55, 45}, {55, 45}}), Told({2, 5}, {65, 65}));
}

TEST_F(PictureViews, TellNothingWithoutAPicture) {
  view.ShowFrames(nullptr, nullptr, false);

  EXPECT_EQ(Points{}, Told({40, 60}, {65, 65}));
  EXPECT_EQ(QSize(0, 0), view.ScreenSize());
}

struct Press {
  QPoint at;
  QPointF told;
};

TEST_F(PictureViews, TakeAPressNearAHandleForOneInItsMiddle) {
  // With middles at 42.5, 62.5 and 60.5, 62.5.
  view.ShowStrokes({Handle(40.0F, 60.0F), Handle(58.0F, 60.0F),
                    OverlayLine{{0.0F, 0.0F}, {200.0F, 0.0F}, {65535, 0, 0}}});
  for (const Press& press : {
           Press{{31, 62}, {42.5, 62.5}},  // 9 from the left edge
           Press{{47, 70}, {42.5, 62.5}},  // 2 and 5
           Press{{48, 62}, {42.5, 62.5}},  // nearer to the first than to the second
           Press{{55, 62}, {60.5, 62.5}},  // and this to the second
           Press{{41, 64}, {41, 64}},      // inside
           Press{{45, 65}, {45, 65}},      // on the edge
           Press{{29, 62}, {29, 62}},      // 11 away
           Press{{33, 52}, {33, 52}},      // 7 and 8 are 10.6
           Press{{100, 1}, {100, 1}},      // lines are no handles
       }) {
    const Points told = Told(press.at, press.at + QPoint(3, 7));
    ASSERT_EQ(3U, told.size());
    EXPECT_EQ(press.told, told[0]) << press.at.x() << ", " << press.at.y();
    // All of the drag is moved by as much.
    EXPECT_EQ(press.told + QPointF(3, 7), told[1]);
    EXPECT_EQ(press.told + QPointF(3, 7), told[2]);
  }
}

TEST_F(PictureViews, ShowByTheCursorWhatAPressWouldDo) {
  view.ShowStrokes({Handle(40.0F, 60.0F)});
  QTest::mouseMove(&view, {47, 62});
  EXPECT_EQ(Qt::PointingHandCursor, view.cursor().shape());
  QTest::mouseMove(&view, {120, 20});
  EXPECT_EQ(Qt::CrossCursor, view.cursor().shape());
}

TEST_F(PictureViews, PaintStrokesAsTheSurfaceDoesAtEveryZoom) {
  OverlaySurface surface;
  surface.beginDraw(true, 1);
  const auto red = quantel::cColour::fromRGB(1.0F, 0.0F, 0.0F);
  surface.drawLine({3.0F, 90.0F}, {170.0F, 4.5F}, quantel::cColour::kWhite);
  surface.frameRect({20.0F, 30.0F, 5.0F, 5.0F}, red);
  surface.fillRect({190.0F, 60.0F, 30.0F, 5.0F}, red, red);
  for (const double zoom : {2.0, 4.0}) {
    view.Fit();
    view.ZoomAt({0, 0}, zoom / view.Zoom());
    WaitForImage();
    view.ShowStrokes({});
    const QImage plain = view.grab().toImage();
    Picture painted;
    painted.width = view.ScreenSize().width();
    painted.height = view.ScreenSize().height();
    painted.samples.assign(painted.PixelCount() * 4, 1);
    surface.PaintOn(&painted);

    view.ShowStrokes(surface.Strokes());
    const QImage shown = view.grab().toImage();

    for (int y = 1; y < 99; ++y) {
      for (int x = 1; x < 199; ++x) {
        const auto at = static_cast<std::size_t>(y * painted.width + x) * 4;
        const QRgb expected = painted.samples[at + 3] == 1
                                  ? plain.pixel(x, y)
                                  : qRgb(painted.samples[at] / 257, painted.samples[at + 1] / 257,
                                         painted.samples[at + 2] / 257);
        ASSERT_EQ(expected, shown.pixel(x, y)) << x << ", " << y << " at " << zoom;
      }
    }
  }
}

TEST_F(PictureViews, TakeStrokesAlongWithThePicture) {
  const auto isRed = [&](QPoint at) { return view.grab().toImage().pixel(at) == 0xffff0000; };
  const OverlayStroke point = OverlayLine{{50.5F, 40.5F}, {50.5F, 40.5F}, {65535, 0, 0}};
  view.ShowStrokes({point});
  EXPECT_TRUE(isRed({50, 40}));

  Drag(Qt::MiddleButton, {100, 50}, {110, 55});
  EXPECT_FALSE(isRed({50, 40}));
  EXPECT_TRUE(isRed({60, 45}));

  view.ShowStrokes({OverlayLine{{10.5F, 10.5F}, {10.5F, 10.5F}, {65535, 0, 0}}});
  EXPECT_FALSE(isRed({60, 45}));
  EXPECT_TRUE(isRed({20, 15}));
}

TEST_F(PictureViews, TellThePixelUnderTheCursor) {
  QSignalSpy hovered(&view, &PictureView::Hovered);
  QSignalSpy ended(&view, &PictureView::HoverEnded);
  view.resize(240, 100);
  QTest::mouseMove(&view, {61, 31});
  ASSERT_EQ(1, hovered.count());
  EXPECT_EQ(QPoint(20, 15), hovered[0][0].toPoint());

  QTest::mouseMove(&view, {10, 31});
  EXPECT_EQ(1, hovered.count());
  EXPECT_EQ(1, ended.count());
}

class WipedViews : public PictureViews {
 public:
  WipedViews() {
    Show(Grid(100, 50), Grid(100, 50, 200));
    ViewSettings settings;
    settings.wipes = true;
    settings.wipe = 0.5;
    view.SetView(settings);
    WaitForImage();
  }

  int BlueAt(int x) { return qBlue(view.grab().toImage().pixel(x, 95)); }
};

TEST_F(WipedViews, ShowBeforeAndAfterSideBySide) {
  EXPECT_EQ(0, BlueAt(90));
  EXPECT_EQ(200, BlueAt(110));
}

TEST_F(WipedViews, MoveTheLineByItsGrip) {
  QSignalSpy changed(&view, &PictureView::ViewChanged);
  // The grip is in the middle of the line, and larger than it.
  EXPECT_EQ(Points{}, Told({107, 50}, {150, 20}));

  EXPECT_DOUBLE_EQ(0.75, view.View().wipe);
  EXPECT_EQ(1, changed.count());
  WaitForImage();
  EXPECT_EQ(0, BlueAt(130));

  Told({150, 90}, {5000, 90});
  EXPECT_DOUBLE_EQ(1.0, view.View().wipe);
}

TEST_F(WipedViews, LeaveAHandleOnTheLineToTheModule) {
  view.ShowStrokes({Handle(98.0F, 20.0F)});

  EXPECT_EQ(3U, Told({100, 29}, {150, 20}).size());
  EXPECT_DOUBLE_EQ(0.5, view.View().wipe);
}

TEST_F(WipedViews, MoveTheLineByKeys) {
  QTest::keyClick(&view, Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_DOUBLE_EQ(0.51, view.View().wipe);
  QTest::keyClick(&view, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_DOUBLE_EQ(0.5, view.View().wipe);
}

TEST_F(WipedViews, HaveNoLineWhereOneOfTheTwoIsShown) {
  ViewSettings settings = view.View();
  settings.showsBefore = true;
  view.SetView(settings);

  EXPECT_EQ(3U, Told({100, 50}, {150, 20}).size());
  EXPECT_DOUBLE_EQ(0.5, view.View().wipe);
}

// --- a screen of two pixels for one ---

TEST(ViewCameras, CountZoomInPixelsOfTheDevice) {
  ViewCamera camera;
  camera.SetViewport({200, 100}, 2.0);
  camera.SetPicture({100, 50});
  EXPECT_EQ(4.0, camera.Zoom());
  EXPECT_EQ(QSize(200, 100), camera.ScreenSize());

  camera.ZoomTo({100, 50}, 1.0);
  EXPECT_EQ(QSize(50, 25), camera.ScreenSize());
  // 37.5 to the nearest, a half upwards.
  EXPECT_EQ(QPoint(75, 38), camera.Corner());
  EXPECT_EQ((ViewPlace{1.0, 150.0, 76.0, 400, 200}), camera.Place());
  EXPECT_EQ(QPoint(2, 5), camera.PixelAt({76.0, 40.5}));
  EXPECT_EQ(QPoint(-1, 0), camera.PixelAt({74.9, 38.0}));
}

}  // namespace
}  // namespace glimmerhost
