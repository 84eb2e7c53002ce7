// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/view_bar.h"

#include <QSignalBlocker>
#include <algorithm>
#include <utility>

namespace glimmerhost {
namespace {

QStringList ListOf(const std::vector<std::string>& names) {
  QStringList list;
  for (const std::string& name : names) {
    list.append(QString::fromStdString(name));
  }
  return list;
}

// Without telling anybody.
void Fill(QComboBox* box, const QStringList& texts, const QString& chosen) {
  const QSignalBlocker silent(box);
  box->clear();
  box->addItems(texts);
  box->setCurrentIndex(std::max(static_cast<int>(texts.indexOf(chosen)), 0));
}

}  // namespace

ViewBar::ViewBar(PictureView* view, QWidget* parent)
    : QToolBar(tr("View"), parent), view_(view), colours_(this) {
  setObjectName("viewBar");
  AddSizes();
  addSeparator();
  AddChannels();
  addSeparator();
  AddLevels();
  addSeparator();
  AddComparison();
  AddColours();
  connect(view_, &PictureView::ViewChanged, this, &ViewBar::ShowView);
  connect(view_, &PictureView::ZoomChanged, this, &ViewBar::ShowZoom);
  connect(view_, &PictureView::FramesShown, this, &ViewBar::ShowZoom);
  connect(&colours_, &ScreenColours::Settled, this, &ViewBar::ShowColours);
  connect(&colours_, &ScreenColours::Failed, this, [this](const QString& why) {
    ShowColours();
    emit ColoursFailed(why);
  });
  ShowView();
  ShowZoom();
}

QAction* ViewBar::Add(const QString& name, const QString& text, const QKeySequence& key,
                      const QString& help) {
  // The bar has the short text; in a menu, R alone says too little.
  QAction* const action = addAction(help);
  action->setIconText(text);
  action->setObjectName(name);
  action->setShortcut(key);
  action->setToolTip(
      key.isEmpty() ? help : tr("%1 (%2)").arg(help, key.toString(QKeySequence::NativeText)));
  // A tool bar's own buttons have no place in the order of tabs.
  QWidget* const button = widgetForAction(action);
  button->setObjectName(name + "Button");
  button->setFocusPolicy(Qt::TabFocus);
  button->setAccessibleName(help);
  return action;
}

void ViewBar::AddSizes() {
  connect(Add("fit", tr("Fit"), Qt::Key_F, tr("Fit the picture in")), &QAction::triggered, view_,
          &PictureView::Fit);
  connect(Add("oneToOne", tr("1:1"), Qt::Key_1, tr("Show pixels one to one")), &QAction::triggered,
          view_, &PictureView::OneToOne);
  zoom_ = new QLabel(this);
  zoom_->setObjectName("zoom");
  zoom_->setAccessibleName(tr("Zoom"));
  zoom_->setAlignment(Qt::AlignCenter);
  zoom_->setMinimumWidth(zoom_->fontMetrics().horizontalAdvance("6400%") + 12);
  addWidget(zoom_);
}

void ViewBar::AddChannels() {
  struct Channel {
    const char* name;
    QString text;
    Qt::Key key;
    QString help;
  };
  const std::array<Channel, 6> channels{{
      {"channelColour", tr("RGB"), Qt::Key_C, tr("Show all colours")},
      {"channelRed", tr("R"), Qt::Key_R, tr("Show red alone")},
      {"channelGreen", tr("G"), Qt::Key_G, tr("Show green alone")},
      {"channelBlue", tr("B"), Qt::Key_B, tr("Show blue alone")},
      {"channelAlpha", tr("A"), Qt::Key_A, tr("Show alpha alone")},
      {"channelLuma", tr("Luma"), Qt::Key_L, tr("Show luma alone")},
  }};
  for (std::size_t i = 0; i < channels.size(); ++i) {
    QAction* const action =
        Add(channels[i].name, channels[i].text, channels[i].key, channels[i].help);
    action->setCheckable(true);
    channelGroup_.addAction(action);
    channels_[i] = action;
    connect(action, &QAction::triggered, this, [this, i] {
      Change([i](ViewSettings* settings) { settings->channel = static_cast<ViewChannel>(i); });
    });
  }
}

QDoubleSpinBox* ViewBar::AddLevel(const QString& name, const QString& label, double lowest,
                                  double highest, double step, const QString& help) {
  auto* const box = new QDoubleSpinBox(this);
  box->setObjectName(name);
  box->setRange(lowest, highest);
  box->setSingleStep(step);
  box->setDecimals(2);
  box->setToolTip(help);
  box->setAccessibleName(help);
  box->setAlignment(Qt::AlignRight);
  auto* const text = new QLabel(label, this);
  text->setBuddy(box);
  text->setMargin(4);
  addWidget(text);
  addWidget(box);
  return box;
}

void ViewBar::AddLevels() {
  exposure_ =
      AddLevel("exposure", tr("E&xposure"), -10.0, 10.0, 0.5, tr("Exposure of the view, in stops"));
  gamma_ = AddLevel("gamma", tr("Ga&mma"), 0.1, 5.0, 0.1, tr("Gamma of the view"));
  const auto changed = QOverload<double>::of(&QDoubleSpinBox::valueChanged);
  connect(exposure_, changed, this, [this](double value) {
    Change([value](ViewSettings* settings) { settings->exposure = value; });
  });
  connect(gamma_, changed, this, [this](double value) {
    Change([value](ViewSettings* settings) { settings->gamma = value; });
  });
  QAction* const reset =
      Add("resetLevels", tr("Reset"), {}, tr("Set exposure and gamma of the view back"));
  connect(reset, &QAction::triggered, this, [this] {
    Change([](ViewSettings* settings) {
      settings->exposure = ViewSettings().exposure;
      settings->gamma = ViewSettings().gamma;
    });
  });
}

void ViewBar::AddComparison() {
  before_ = Add("before", tr("Before"), Qt::Key_T, tr("Show the picture before the blur"));
  before_->setCheckable(true);
  connect(before_, &QAction::triggered, this, [this](bool on) {
    Change([on](ViewSettings* settings) { settings->showsBefore = on; });
  });
  wipe_ = Add("wipe", tr("Wipe"), Qt::Key_W, tr("Show before and after side by side"));
  wipe_->setCheckable(true);
  connect(wipe_, &QAction::triggered, this,
          [this](bool on) { Change([on](ViewSettings* settings) { settings->wipes = on; }); });
}

QComboBox* ViewBar::AddBox(const QString& name, const QString& label, const QString& help) {
  auto* const box = new QComboBox(this);
  box->setObjectName(name);
  box->setToolTip(help);
  box->setAccessibleName(help);
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box->setMinimumContentsLength(10);
  auto* const text = new QLabel(label, this);
  text->setBuddy(box);
  text->setMargin(4);
  colourWidgets_.push_back(addWidget(text));
  colourWidgets_.push_back(addWidget(box));
  connect(box, &QComboBox::activated, this, &ViewBar::ChooseColours);
  return box;
}

void ViewBar::AddColours() {
  colourWidgets_.push_back(addSeparator());
  space_ = AddBox("space", tr("Fro&m"), tr("Colour space of the pictures"));
  display_ = AddBox("display", tr("Displa&y"), tr("Display that colours are shown for"));
  screenView_ = AddBox("displayView", tr("As"), tr("View of the display"));
  ShowColours();
}

void ViewBar::Change(const std::function<void(ViewSettings*)>& change) {
  ViewSettings settings = view_->View();
  change(&settings);
  view_->SetView(settings);
}

// Whoever has changed it.
void ViewBar::ShowView() {
  const ViewSettings& settings = view_->View();
  const QSignalBlocker noExposure(exposure_);
  const QSignalBlocker noGamma(gamma_);
  channels_[static_cast<std::size_t>(settings.channel)]->setChecked(true);
  exposure_->setValue(settings.exposure);
  gamma_->setValue(settings.gamma);
  before_->setChecked(settings.showsBefore);
  wipe_->setChecked(settings.wipes);
}

void ViewBar::ShowZoom() {
  const double percent = view_->Zoom() * 100.0;
  zoom_->setText(view_->Before() ? tr("%1%").arg(percent, 0, 'f', percent < 10.0 ? 1 : 0)
                                 : QString());
}

void ViewBar::ShowColours() {
  const ScreenChoices& choices = colours_.Choices();
  const ScreenChoice& choice = colours_.Choice();
  for (QAction* const widget : colourWidgets_) {
    widget->setVisible(!choices.displays.empty());
  }
  Fill(space_, ListOf(choices.spaces), QString::fromStdString(choice.space));
  Fill(display_, QStringList(tr("as they are")) + ListOf(choices.displays),
       QString::fromStdString(choice.display));
  const auto views = choices.views.find(choice.display);
  Fill(screenView_, views == choices.views.end() ? QStringList() : ListOf(views->second),
       QString::fromStdString(choice.view));
  space_->setEnabled(!choice.display.empty());
  screenView_->setEnabled(!choice.display.empty());
  Change([this](ViewSettings* settings) { settings->display = colours_.Transform(); });
  emit ColoursSettled();
}

// Another display has other views, and begins with its usual one.
void ViewBar::ChooseColours() {
  ScreenChoice choice = colours_.Choice();
  const std::string display =
      display_->currentIndex() > 0 ? display_->currentText().toStdString() : std::string();
  choice.space = space_->currentText().toStdString();
  choice.view = screenView_->currentText().toStdString();
  if (display != choice.display) {
    const auto views = colours_.Choices().views.find(display);
    const bool hasViews = views != colours_.Choices().views.end() && !views->second.empty();
    choice.view = hasViews ? views->second.front() : std::string();
    choice.display = display;
  }
  colours_.Choose(choice);
}

}  // namespace glimmerhost
