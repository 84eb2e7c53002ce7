// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/page_panel.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <deque>

#include "host/viewer/panels/number_row.h"
#include "host/viewer/panels/plain_rows.h"

namespace glimmerhost {
namespace {

// Keeps a row at its place on the screen while those above it come and go: the one that has the
// focus, or else the first that is seen.
class HeldPlace {
 public:
  HeldPlace(QScrollArea* scroll, const std::map<std::string, LookRow*>& rows) : scroll_(scroll) {
    const QWidget* focused = QApplication::focusWidget();
    for (const auto& [name, row] : rows) {
      const int top = TopOf(row);
      const bool isSeen = row->isVisible() && top + row->height() > 0;
      const bool hasFocus = focused != nullptr && row->isAncestorOf(focused);
      if (isSeen && (hasFocus || held_ == nullptr || (!isFocused_ && top < before_))) {
        held_ = row;
        before_ = top;
        isFocused_ = hasFocus;
      }
    }
  }

  void Restore() const {
    if (held_ != nullptr && held_->isVisible()) {
      // The area learns of its new size from an event otherwise, and cuts the place to the old one.
      QWidget* content = scroll_->widget();
      content->layout()->activate();
      content->resize(content->width(), content->sizeHint().height());
      QApplication::sendPostedEvents(content, QEvent::LayoutRequest);
      QScrollBar* bar = scroll_->verticalScrollBar();
      bar->setValue(bar->value() + TopOf(held_) - before_);
    }
  }
  HeldPlace(const HeldPlace&) = delete;
  HeldPlace& operator=(const HeldPlace&) = delete;

 private:
  int TopOf(const QWidget* row) const {
    return row->mapTo(scroll_->widget(), QPoint(0, 0)).y() - scroll_->verticalScrollBar()->value();
  }

  QScrollArea* scroll_;
  LookRow* held_ = nullptr;
  int before_ = 0;
  bool isFocused_ = false;
};

Parameter MixParameter(const QString& label) {
  Parameter mix;
  mix.key = kMix;
  mix.label = label.toStdString();
  mix.initial = 1.0;
  mix.highest = mix.typedHighest = 1.0;
  return mix;
}

QString OtherHelp(const char* name, const QString& text) {
  return QString("<p><b>--%1</b></p><p>%2</p>").arg(QString(name), text.toHtmlEscaped());
}

}  // namespace

struct PagePanel::Section {
  QString title;
  QLabel* heading;
  QVBoxLayout* rows;
  std::vector<QWidget*> widgets{};
};

PagePanel::PagePanel(const Page& page, LookDocument* document, QWidget* parent)
    : QWidget(parent), page_(page), document_(document) {
  setObjectName("pagePanel");
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(0);
  AddBar(all);
  scroll_ = new QScrollArea(this);
  scroll_->setObjectName("pageScroll");
  scroll_->setWidgetResizable(true);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setFocusPolicy(Qt::NoFocus);
  auto* content = new QWidget(scroll_);
  content_ = new QVBoxLayout(content);
  content_->setContentsMargins(10, 4, 10, 10);
  content_->setSpacing(2);
  content_->setAlignment(Qt::AlignTop);
  AddPage();
  AddPictureRows();
  scroll_->setWidget(content);
  all->addWidget(scroll_, 1);
  connect(document_, &LookDocument::Changed, this, &PagePanel::Refresh);
  ShowSections();
  Refresh();
}

PagePanel::~PagePanel() = default;

void PagePanel::AddBar(QVBoxLayout* all) {
  auto* bar = new QHBoxLayout;
  bar->setContentsMargins(10, 6, 10, 6);
  bar->setSpacing(2);
  bar->addWidget(new QLabel(tr("Radii in"), this));
  bar->addSpacing(4);
  auto* units = new QButtonGroup(this);
  const struct {
    RadiusUnit unit;
    QString text;
    QString name;
    QString help;
  } choices[] = {{RadiusUnit::kPixels, tr("p&x"), "unitPixels", tr("Radii in pixels: 40px")},
                 {RadiusUnit::kPercent, tr("&%"), "unitPercent",
                  tr("Diameters in percent of the picture's width: 4%")},
                 {RadiusUnit::kPart, tr("pa&rt"), "unitPart",
                  tr("Diameters as a part of the picture's width: 0.04")}};
  for (const auto& choice : choices) {
    auto* button = new QToolButton(this);
    button->setObjectName(choice.name);
    button->setText(choice.text);
    button->setToolTip(choice.help);
    button->setAccessibleName(choice.help);
    button->setCheckable(true);
    button->setChecked(choice.unit == unit_);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    units->addButton(button, static_cast<int>(choice.unit));
    bar->addWidget(button);
  }
  connect(units, &QButtonGroup::idClicked, this,
          [this](int id) { SetUnit(static_cast<RadiusUnit>(id)); });
  bar->addStretch(1);
  auto* reset = new QPushButton(tr("Reset &all"), this);
  reset->setObjectName("resetAll");
  reset->setToolTip(tr("Back to the defaults, also the second clip, alpha, pixel aspect and shot"));
  connect(reset, &QPushButton::clicked, document_, &LookDocument::ResetAll);
  bar->addWidget(reset);
  all->addLayout(bar);
}

PagePanel::Section* PagePanel::SectionOf(const QString& title) {
  for (Section& section : sections_) {
    if (section.title == title) {
      return &section;
    }
  }
  auto* heading = new QLabel(title, content_->parentWidget());
  heading->setTextFormat(Qt::PlainText);
  QFont bold = heading->font();
  bold.setBold(true);
  heading->setFont(bold);
  heading->setContentsMargins(0, sections_.empty() ? 0 : 10, 0, 0);
  auto* rows = new QVBoxLayout;
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(2);
  content_->addWidget(heading);
  content_->addLayout(rows);
  sections_.push_back({title, heading, rows});
  return &sections_.back();
}

void PagePanel::AddRow(LookRow* row, Section* section) {
  section->rows->addWidget(row);
  section->widgets.push_back(row);
  rows_[row->objectName().toStdString()] = row;
}

LookRow* PagePanel::RowOf(const std::string& name) const {
  const auto found = rows_.find(name);
  return found == rows_.end() ? nullptr : found->second;
}

// In the order of the options; what none of them sets comes behind.
void PagePanel::AddPage() {
  for (const PageOption& option : page_.Options()) {
    AddOption(option, SectionOf(QString::fromStdString(option.group)));
  }
  for (const Parameter& parameter : page_.Parameters()) {
    if (RowOf(parameter.key) == nullptr) {
      AddParameter(parameter,
                   QString("<p><b>--set %1=</b></p>").arg(QString::fromStdString(parameter.key)),
                   SectionOf(tr("Other")));
    }
  }
}

void PagePanel::AddOption(const PageOption& option, Section* section) {
  if (option.keys.empty()) {
    AddRow(new TextRow(document_, option.name, tr("Second clip"), tr("none: the frame itself"),
                       true, HelpOf(option), content_->parentWidget()),
           section);
  }
  for (const std::string& key : option.keys) {
    const Parameter& parameter = page_.Find(key);
    const bool isOfPoint = parameter.measure == Measure::kX || parameter.measure == Measure::kY;
    if (RowOf(key) == nullptr && (option.keys.size() == 1 || isOfPoint)) {
      AddParameter(parameter, HelpOf(option), section);
    }
  }
}

void PagePanel::AddParameter(const Parameter& parameter, const QString& help, Section* section) {
  QWidget* parent = content_->parentWidget();
  switch (parameter.kind) {
    case Kind::kList:
      return AddRow(new ListRow(document_, parameter, help, parent), section);
    case Kind::kSwitch:
      return AddRow(new SwitchRow(document_, parameter, help, parent), section);
    case Kind::kNumber:
    case Kind::kWhole:
      break;
  }
  auto* row = new NumberRow(document_, parameter, help, parent);
  numbers_.push_back(row);
  AddRow(row, section);
}

// What a look has beside the page, as far as the page has no option for it.
void PagePanel::AddPictureRows() {
  QWidget* parent = content_->parentWidget();
  Section* section = SectionOf(tr("Picture"));
  AddParameter(
      MixParameter(tr("Mix: how much of the blur is seen")),
      OtherHelp(kMix, tr("0 to 1 (default): how much of the blur is seen over the frame as it "
                         "was")),
      section);
  AddRow(
      new ListRow(document_, kAlpha, tr("Alpha"), {"premultiplied", "as-is"},
                  OtherHelp(kAlpha, tr("premultiplied (default): colour of a file with straight "
                                       "alpha is multiplied by it on the way in and divided on the "
                                       "way out; as-is: samples are left alone")),
                  parent),
      section);
  AddRow(new TextRow(document_, kPixelAspect, tr("Pixel aspect"), tr("that of the file"), false,
                     OtherHelp(kPixelAspect, tr("A:B, the pixel aspect to work with")), parent),
         section);
  AddRow(
      new TextRow(document_, kShot, tr("Shot"), tr("the frames of the clip"), false,
                  OtherHelp(kShot, tr("FIRST-LAST, the frames that times of keyframes count in")),
                  parent),
      section);
}

void PagePanel::SetFrame(int frame) {
  if (frame != frame_) {
    frame_ = frame;
    Refresh();
  }
}

void PagePanel::SetUnit(RadiusUnit unit) {
  if (unit == unit_) {
    return;
  }
  unit_ = unit;
  const char* names[] = {"unitPixels", "unitPercent", "unitPart"};
  findChild<QToolButton*>(names[static_cast<int>(unit)])->setChecked(true);
  Refresh();
  emit UnitChanged();
}

void PagePanel::Refresh() {
  for (NumberRow* row : numbers_) {
    row->SetUnit(unit_);
  }
  const RowFrame frame{frame_, document_->AllAt(frame_)};
  for (const auto& [name, row] : rows_) {
    row->Show(frame);
  }
}

void PagePanel::ShowRows(const std::vector<PageRow>& rows,
                         const std::map<std::string, Value>& store) {
  const HeldPlace place(scroll_, rows_);
  for (const PageRow& row : rows) {
    ShowParameter(row);
  }
  for (const PageOption& option : page_.Options()) {
    if (LookRow* row = RowOf(option.name); row != nullptr && !store.empty()) {
      row->setVisible(option.shown.Holds(store));
    }
  }
  ShowWidgets(rows);
  ShowSections();
  place.Restore();
}

void PagePanel::ShowParameter(const PageRow& row) {
  LookRow* shown = row.kind == RowKind::kParameter ? RowOf(row.key) : nullptr;
  if (shown != nullptr) {
    shown->ShowLabel(QString::fromStdString(row.label));
    shown->ShowNote(QString::fromStdString(row.note));
    shown->setEnabled(row.enabled);
    shown->setVisible(row.shown);
  }
}

// Made anew only where there are others: who presses one keeps the focus on it.
void PagePanel::ShowWidgets(const std::vector<PageRow>& rows) {
  std::vector<PageRow> widgets;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(widgets),
               [](const PageRow& row) { return row.kind != RowKind::kParameter; });
  const auto isSame = [](const PageRow& a, const PageRow& b) {
    return a.name == b.name && a.key == b.key && a.label == b.label;
  };
  Section* section = widgets.empty() ? nullptr : SectionOf(tr("More"));
  if (!std::equal(widgets.begin(), widgets.end(), widgets_.begin(), widgets_.end(), isSame)) {
    for (const PageRow& row : widgets_) {
      auto* gone = findChild<QPushButton*>(QString::fromStdString(row.name));
      for (Section& other : sections_) {
        std::erase(other.widgets, gone);
      }
      delete gone;
    }
    for (const PageRow& row : widgets) {
      auto* button = new QPushButton(QString::fromStdString(row.label), content_->parentWidget());
      button->setObjectName(QString::fromStdString(row.name));
      connect(button, &QPushButton::clicked, this,
              [this, key = QString::fromStdString(row.key)] { emit WidgetPressed(key); });
      section->rows->addWidget(button);
      section->widgets.push_back(button);
    }
  }
  for (const PageRow& row : widgets) {
    auto* button = findChild<QPushButton*>(QString::fromStdString(row.name));
    button->setVisible(row.shown);
    button->setEnabled(row.enabled);
  }
  widgets_ = widgets;
}

void PagePanel::ShowSections() {
  for (const Section& section : sections_) {
    section.heading->setVisible(
        std::any_of(section.widgets.begin(), section.widgets.end(),
                    [](const QWidget* widget) { return !widget->isHidden(); }));
  }
}

}  // namespace glimmerhost
