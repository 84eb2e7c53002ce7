// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/presets_panel.h"

#include <QApplication>
#include <QImage>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>

#include "host/looks/parameter_file.h"
#include "host/looks/presets.h"

namespace glimmerhost {
namespace {

constexpr int kMargin = 6;
constexpr int kName = Qt::UserRole;
constexpr int kPicture = Qt::UserRole + 1;

// A picture, and beside it a name over a summary.
class PresetDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  // A narrow panel breaks a summary into three lines.
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    const int texts = 4 * QFontMetrics(option.font).lineSpacing();
    return {PresetsPanel::PictureSize().width() + 160,
            std::max(PresetsPanel::PictureSize().height(), texts) + 2 * kMargin};
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    painter->save();
    QStyleOptionViewItem back = option;
    initStyleOption(&back, index);
    const QString summary = back.text;
    back.text.clear();
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &back, painter, option.widget);
    const QRect all = option.rect.adjusted(kMargin, kMargin, -kMargin, -kMargin);
    DrawPicture(painter, QRect(all.topLeft(), PresetsPanel::PictureSize()), option.palette,
                index.data(kPicture).value<QImage>());
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter->setPen(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    const QRect texts = all.adjusted(PresetsPanel::PictureSize().width() + 2 * kMargin, 0, 0, 0);
    QFont bold = option.font;
    bold.setBold(true);
    painter->setFont(bold);
    painter->drawText(texts, Qt::AlignLeft | Qt::AlignTop, index.data(kName).toString());
    painter->setFont(option.font);
    const int below = QFontMetrics(bold).lineSpacing();
    painter->drawText(texts.adjusted(0, below, 0, 0), Qt::AlignLeft | Qt::TextWordWrap, summary);
    painter->restore();
  }

 private:
  static void DrawPicture(QPainter* painter, const QRect& place, const QPalette& palette,
                          const QImage& picture) {
    QColor frame = palette.color(QPalette::Text);
    frame.setAlphaF(0.3F);
    if (picture.isNull()) {
      painter->setPen(QPen(frame, 1, Qt::DashLine));
      painter->drawRect(place.adjusted(0, 0, -1, -1));
      return;
    }
    QRect shown({}, picture.size().scaled(place.size(), Qt::KeepAspectRatio));
    shown.moveCenter(place.center());
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(shown, picture);
  }
};

}  // namespace

QSize PresetsPanel::PictureSize() { return {96, 54}; }

PresetsPanel::PresetsPanel(LookDocument* document, QWidget* parent)
    : QWidget(parent), document_(document), list_(new QListWidget(this)) {
  setObjectName("presetsPanel");
  list_->setObjectName("presets");
  list_->setAccessibleName(tr("Presets"));
  list_->setItemDelegate(new PresetDelegate(list_));
  list_->setUniformItemSizes(true);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  list_->setFrameShape(QFrame::NoFrame);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(list_);
  AddPresets();
  // A style may send both for one click; the second then finds the look that it wants.
  connect(list_, &QListWidget::itemClicked, this, &PresetsPanel::Use);
  connect(list_, &QListWidget::itemActivated, this, &PresetsPanel::Use);
}

void PresetsPanel::AddPresets() {
  try {
    for (const Preset& preset : Presets()) {
      auto* item = new QListWidgetItem(QString::fromStdString(preset.summary), list_);
      item->setData(kName, QString::fromStdString(preset.name));
      item->setData(Qt::AccessibleTextRole, QString::fromStdString(preset.name));
      item->setToolTip(QString::fromStdString("--preset " + preset.name));
    }
  } catch (const std::exception& fault) {
    auto* item = new QListWidgetItem(QString::fromUtf8(fault.what()), list_);
    item->setFlags(Qt::NoItemFlags);
  }
}

void PresetsPanel::AskForPictures(const PictureMaker& make) {
  for (int i = 0; i < list_->count(); ++i) {
    const std::string name = list_->item(i)->data(kName).toString().toStdString();
    if (name.empty()) {
      continue;
    }
    try {
      make(name, ReadParameterFile(document_->ThePage(), PresetFile(name)));
    } catch (const std::exception& fault) {
      emit Refused(QString::fromUtf8(fault.what()));
    }
  }
}

void PresetsPanel::ShowPicture(const std::string& name, const QImage& picture) {
  for (int i = 0; i < list_->count(); ++i) {
    if (list_->item(i)->data(kName).toString().toStdString() == name) {
      list_->item(i)->setData(kPicture, picture);
    }
  }
}

void PresetsPanel::Use(const QListWidgetItem* item) {
  const QString name = item->data(kName).toString();
  if (name.isEmpty()) {
    return;
  }
  try {
    document_->UsePreset(name.toStdString());
    emit Used(name);
  } catch (const std::exception& fault) {
    emit Refused(QString::fromUtf8(fault.what()));
  }
}

}  // namespace glimmerhost
