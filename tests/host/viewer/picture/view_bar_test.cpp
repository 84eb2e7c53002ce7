// SPDX-License-Identifier: BSD-3-Clause
// The bars around the picture: by keys, by hand, and what they say.
#include "host/viewer/picture/view_bar.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <cstdint>
#include <fstream>
#include <limits>
#include <memory>
#include <vector>

#include "host/viewer/picture/value_bar.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

std::shared_ptr<const Picture> Words(int width, int height, int first) {
  auto picture = std::make_shared<Picture>();
  picture->width = width;
  picture->height = height;
  for (int i = 0; i < width * height * 4; ++i) {
    picture->samples.push_back(static_cast<std::uint16_t>(first + i));
  }
  return picture;
}

class ViewBars : public testing::Test {
 public:
  ViewBars() {
    auto* const layout = new QVBoxLayout(&window);
    layout->addWidget(bar);
    layout->addWidget(view);
    layout->addWidget(values);
    window.resize(1000, 400);
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    view->ShowFrames(Words(100, 50, 1), nullptr, false);
  }

  template <class Widget>
  Widget* Find(const char* name) {
    return window.findChild<Widget*>(name);
  }

  // As a person types, wherever in the window the focus is.
  void Type(Qt::Key key) { QTest::keyClick(&window, key); }

  QWidget window;
  PictureView* view = new PictureView(&window);
  ViewBar* bar = new ViewBar(view, &window);
  ValueBar* values = new ValueBar(view, &window);
};

TEST_F(ViewBars, ChooseTheChannelByKeys) {
  const std::vector<std::pair<Qt::Key, ViewChannel>> keys{
      {Qt::Key_R, ViewChannel::kRed},  {Qt::Key_G, ViewChannel::kGreen},
      {Qt::Key_B, ViewChannel::kBlue}, {Qt::Key_A, ViewChannel::kOpacity},
      {Qt::Key_L, ViewChannel::kLuma}, {Qt::Key_C, ViewChannel::kColour},
  };
  for (const auto& [key, channel] : keys) {
    Type(key);
    EXPECT_EQ(channel, view->View().channel) << key;
  }
  EXPECT_TRUE(Find<QAction>("channelColour")->isChecked());
}

TEST_F(ViewBars, ToggleBeforeAndWipeByKeys) {
  Type(Qt::Key_T);
  Type(Qt::Key_W);
  EXPECT_TRUE(view->View().showsBefore);
  EXPECT_TRUE(view->View().wipes);
  Type(Qt::Key_T);
  Type(Qt::Key_W);
  EXPECT_FALSE(view->View().showsBefore);
  EXPECT_FALSE(view->View().wipes);
}

TEST_F(ViewBars, ChooseTheSizeAndSayIt) {
  Type(Qt::Key_1);
  EXPECT_EQ(1.0, view->Zoom());
  EXPECT_EQ("100%", Find<QLabel>("zoom")->text());
  view->ZoomAt({0, 0}, 0.0625);
  EXPECT_EQ("6.3%", Find<QLabel>("zoom")->text());
  Type(Qt::Key_F);
  EXPECT_TRUE(view->IsFitted());
  view->ShowFrames(nullptr, nullptr, false);
  EXPECT_EQ("", Find<QLabel>("zoom")->text());
}

TEST_F(ViewBars, SetLevelsBothWaysAndBack) {
  QTest::keyClick(Find<QDoubleSpinBox>("exposure"), Qt::Key_Up);
  QTest::keyClick(Find<QDoubleSpinBox>("gamma"), Qt::Key_Down);
  EXPECT_EQ(0.5, view->View().exposure);
  EXPECT_EQ(0.9, view->View().gamma);

  ViewSettings settings = view->View();
  settings.exposure = -3.0;
  settings.channel = ViewChannel::kLuma;
  view->SetView(settings);
  EXPECT_EQ(-3.0, Find<QDoubleSpinBox>("exposure")->value());
  EXPECT_TRUE(Find<QAction>("channelLuma")->isChecked());

  // The box shows two digits, and keeps nobody from setting more.
  settings.exposure = 0.125;
  view->SetView(settings);
  EXPECT_EQ(0.125, view->View().exposure);

  Find<QAction>("resetLevels")->trigger();
  EXPECT_EQ(0.0, view->View().exposure);
  EXPECT_EQ(1.0, view->View().gamma);
  EXPECT_EQ(1.0, Find<QDoubleSpinBox>("gamma")->value());
  EXPECT_EQ(ViewChannel::kLuma, view->View().channel);
}

TEST_F(ViewBars, AreReachedByTheTabulator) {
  Find<QWidget>("fitButton")->setFocus();
  std::vector<QString> visited;
  for (int i = 0; i < 12; ++i) {
    visited.push_back(QApplication::focusWidget()->objectName());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ((std::vector<QString>{"fitButton", "oneToOneButton", "channelColourButton",
                                  "channelRedButton", "channelGreenButton", "channelBlueButton",
                                  "channelAlphaButton", "channelLumaButton", "exposure", "gamma",
                                  "resetLevelsButton", "beforeButton"}),
            visited);
}

class ColourBars : public ViewBars {
 public:
  ColourBars() {
    std::ofstream(folder / "config.ocio") << R"(ocio_profile_version: 2
search_path: ""
roles:
  scene_linear: Linear
file_rules:
  - !<Rule> {name: Default, colorspace: Linear}
displays:
  screen:
    - !<View> {name: plain, colorspace: Linear}
    - !<View> {name: dim, colorspace: Doubled}
colorspaces:
  - !<ColorSpace>
    name: Linear
  - !<ColorSpace>
    name: Doubled
    to_scene_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}
)";
  }

  void Use(const ScreenChoice& choice) {
    QSignalSpy settled(bar, &ViewBar::ColoursSettled);
    bar->UseColours(choice);
    ASSERT_TRUE(settled.wait());
  }

  // As a person does by the arrow keys.
  void Choose(const char* box, int index) {
    QSignalSpy settled(bar, &ViewBar::ColoursSettled);
    auto* const found = Find<QComboBox>(box);
    while (found->currentIndex() != index) {
      QTest::keyClick(found, found->currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
    }
    ASSERT_TRUE(settled.wait());
  }

  // What becomes of 0.5.
  float Shown() const {
    std::vector<float> pixel{0.5F, 0.5F, 0.5F};
    view->View().display->Apply(&pixel);
    return pixel[0];
  }

  lx_test::ScratchFolder folder;
};

TEST_F(ColourBars, HaveNothingToChooseWithoutAConfiguration) {
  EXPECT_FALSE(Find<QComboBox>("display")->isVisible());
}

TEST_F(ColourBars, ChooseADisplayAndItsViews) {
  Use({folder / "config.ocio", "scene_linear", "", ""});
  EXPECT_EQ(nullptr, view->View().display);
  EXPECT_EQ("as they are", Find<QComboBox>("display")->currentText());
  EXPECT_FALSE(Find<QComboBox>("displayView")->isEnabled());

  // Its usual view shows the working space as it is.
  Choose("display", 1);
  EXPECT_EQ("plain", Find<QComboBox>("displayView")->currentText());
  EXPECT_EQ(nullptr, view->View().display);

  Choose("displayView", 1);
  EXPECT_EQ(0.25F, Shown());
  EXPECT_EQ((ScreenChoice{folder / "config.ocio", "scene_linear", "screen", "dim"}),
            bar->Colours());

  Choose("display", 0);
  EXPECT_EQ(nullptr, view->View().display);
}

TEST_F(ColourBars, TakeUpWhatWasChosenBefore) {
  Use({folder / "config.ocio", "Doubled", "screen", "plain"});

  EXPECT_EQ("Doubled", Find<QComboBox>("space")->currentText());
  EXPECT_EQ("screen", Find<QComboBox>("display")->currentText());
  EXPECT_EQ("plain", Find<QComboBox>("displayView")->currentText());
  EXPECT_EQ(1.0F, Shown());
}

TEST_F(ColourBars, SayWhatIsWrongAndStayAsTheyWere) {
  Use({folder / "config.ocio", "scene_linear", "screen", "dim"});
  QSignalSpy failed(bar, &ViewBar::ColoursFailed);
  bar->UseColours({folder / "none.ocio", "scene_linear", "screen", "dim"});
  ASSERT_TRUE(failed.wait());

  EXPECT_EQ(QString::fromStdString((folder / "none.ocio").string() + ": not found"),
            failed[0][0].toString());
  EXPECT_EQ(0.25F, Shown());
  EXPECT_EQ(folder / "config.ocio", bar->Colours().config);
}

TEST_F(ViewBars, SayTheValuesUnderTheCursor) {
  view->ShowFrames(Words(100, 50, 1), Words(100, 50, 20001), false);
  view->ZoomAt(view->Corner(), 1.0 / view->Zoom());
  QTest::mouseMove(view, view->Corner() + QPoint(3, 2));

  EXPECT_EQ("x 3  y 2", Find<QLabel>("pixelPlace")->text().simplified().replace(" y", "  y"));
  // 4 * (2 * 100 + 3) is 812.
  EXPECT_EQ("before    813   814   815   816", Find<QLabel>("valuesBefore")->text());
  EXPECT_EQ("after  20813 20814 20815 20816", Find<QLabel>("valuesAfter")->text());

  // The next frame comes while the cursor rests.
  view->ShowFrames(Words(100, 50, 11), nullptr, false);
  EXPECT_EQ("before    823   824   825   826", Find<QLabel>("valuesBefore")->text());
  EXPECT_EQ("", Find<QLabel>("valuesAfter")->text());

  QTest::mouseMove(view, view->Corner() - QPoint(3, 2));
  EXPECT_EQ("", Find<QLabel>("valuesBefore")->text());
}

TEST_F(ViewBars, SayThatAProxysValuesAreNotExact) {
  view->ShowFrames(Words(100, 50, 1), Words(50, 25, 1), true);
  view->ZoomAt(view->Corner(), 1.0 / view->Zoom());
  QTest::mouseMove(view, view->Corner() + QPoint(3, 2));

  // The proxy's pixel 1, 1: 4 * 51 is 204.
  EXPECT_EQ("after about    205   206   207   208", Find<QLabel>("valuesAfter")->text());
}

TEST_F(ViewBars, SayWhichFrameIsShown) {
  values->SetMark(FrameMark::kProxy);
  EXPECT_EQ("proxy", Find<QLabel>("frameMark")->text());
  values->SetMark(FrameMark::kTrueFrame);
  EXPECT_EQ("true frame", Find<QLabel>("frameMark")->text());
  values->SetMark(FrameMark::kRendering);
  EXPECT_EQ("rendering…", Find<QLabel>("frameMark")->text());
  values->SetMark(FrameMark::kNone);
  EXPECT_EQ("", Find<QLabel>("frameMark")->text());
}

TEST(ValuesText, HasFourDigitsOfFloats) {
  Picture picture;
  picture.width = 2;
  picture.height = 1;
  picture.floats = {0.0F,      1.0F,   2.0F, 3.0F,
                    0.123456F, -12.5F, 1e6F, std::numeric_limits<float>::denorm_min()};

  EXPECT_EQ("     0.1235      -12.5      1e+06  1.401e-45", ValuesText(picture, {1, 0}));
}

}  // namespace
}  // namespace glimmerhost
