// SPDX-License-Identifier: BSD-3-Clause
// ViewBar: how the picture is looked at. Nothing here changes what is rendered.
#pragma once

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QToolBar>
#include <array>
#include <functional>
#include <vector>

#include "host/viewer/picture/picture_view.h"
#include "host/viewer/picture/screen_colours.h"

namespace glimmerhost {

// Each button is an action that also a menu can have, with a key that works in the whole window: F
// and 1 for the size, C R G B A L for the channel, T for before and after, W for the wipe.
class ViewBar : public QToolBar {
  Q_OBJECT

 public:
  //   view  must outlive it
  explicit ViewBar(PictureView* view, QWidget* parent = nullptr);

  // With a configuration there are spaces, displays and views to choose from; what cannot be had
  // is told by ColoursFailed. Whoever starts a window gives it the one that OCIO names.
  void UseColours(const ScreenChoice& choice) { colours_.Choose(choice); }
  const ScreenChoice& Colours() const { return colours_.Choice(); }

 signals:
  void ColoursSettled();
  void ColoursFailed(QString why);

 private:
  QAction* Add(const QString& name, const QString& text, const QKeySequence& key,
               const QString& help);
  void AddSizes();
  void AddChannels();
  void AddLevels();
  void AddComparison();
  void AddColours();
  QComboBox* AddBox(const QString& name, const QString& label, const QString& help);
  QDoubleSpinBox* AddLevel(const QString& name, const QString& label, double lowest, double highest,
                           double step, const QString& help);

  void Change(const std::function<void(ViewSettings*)>& change);
  void ShowView();
  void ShowZoom();
  void ShowColours();
  void ChooseColours();

  PictureView* view_;
  ScreenColours colours_;
  QLabel* zoom_;
  QActionGroup channelGroup_{this};
  std::array<QAction*, 6> channels_{};  // as ViewChannel counts
  QDoubleSpinBox* exposure_;
  QDoubleSpinBox* gamma_;
  QAction* before_;
  QAction* wipe_;
  QComboBox* space_;
  QComboBox* display_;
  QComboBox* screenView_;
  std::vector<QAction*> colourWidgets_;  // there while there is a configuration
};

}  // namespace glimmerhost
