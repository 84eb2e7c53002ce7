// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/plain_rows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QWheelEvent>

namespace glimmerhost {
namespace {

// A list that is not turned by who scrolls the page.
class StillList : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void wheelEvent(QWheelEvent* event) override {
    hasFocus() ? QComboBox::wheelEvent(event) : event->ignore();
  }
};

// A label where & means nothing.
QString Literal(QString label) { return label.replace("&", "&&"); }

}  // namespace

ListRow::ListRow(LookDocument* document, const Parameter& parameter, const QString& help,
                 QWidget* parent)
    : LookRow(document, parameter.key, "", QString::fromStdString(parameter.label), help, parent),
      list_(new StillList(this)) {
  AddList(parameter.entries, QString::fromStdString(parameter.label));
}

ListRow::ListRow(LookDocument* document, const std::string& name, const QString& label,
                 const std::vector<std::string>& entries, const QString& help, QWidget* parent)
    : LookRow(document, "", name, label, help, parent), list_(new StillList(this)) {
  AddList(entries, label);
}

void ListRow::AddList(const std::vector<std::string>& entries, const QString& label) {
  for (const std::string& entry : entries) {
    list_->addItem(QString::fromStdString(entry));
  }
  list_->setFocusPolicy(Qt::StrongFocus);
  NamePart(list_, "list", label);
  AddControl(list_, 1);
  connect(list_, &QComboBox::activated, this, [this](int index) {
    const std::string text = list_->itemText(index).toStdString();
    Try([&] { Document()->SetTextAt(Name(), Frame(), text, What(), 0); });
  });
}

void ListRow::ShowValue(const RowFrame& frame) {
  if (!Key().empty()) {
    list_->setCurrentIndex(std::get<int>(frame.values.at(Key())));
    return;
  }
  const int index = list_->findText(QString::fromStdString(Document()->TextOf(Name())));
  list_->setCurrentIndex(index < 0 ? 0 : index);
}

SwitchRow::SwitchRow(LookDocument* document, const Parameter& parameter, const QString& help,
                     QWidget* parent)
    : LookRow(document, parameter.key, "", QString::fromStdString(parameter.label), help, parent),
      switch_(new QCheckBox(Literal(QString::fromStdString(parameter.label)), this)) {
  HideLabel();
  NamePart(switch_, "switch", QString::fromStdString(parameter.label));
  AddControl(switch_, 1);
  connect(switch_, &QCheckBox::clicked, this, [this](bool on) {
    Try([&] { Document()->SetTextAt(Name(), Frame(), on ? "on" : "off", What(), 0); });
  });
}

void SwitchRow::ShowValue(const RowFrame& frame) {
  switch_->setChecked(std::get<bool>(frame.values.at(Key())));
}

TextRow::TextRow(LookDocument* document, const std::string& name, const QString& label,
                 const QString& otherwise, bool takesFiles, const QString& help, QWidget* parent)
    : LookRow(document, "", name, label, help, parent), field_(new QLineEdit(this)) {
  field_->setPlaceholderText(otherwise);
  NamePart(field_, "field", label);
  AddControl(field_, 1);
  connect(field_, &QLineEdit::editingFinished, this, &TextRow::Commit);
  connect(field_, &QLineEdit::textEdited, this, &TextRow::ClearError);
  if (takesFiles) {
    auto* choose = new QPushButton(tr("Choose..."), this);
    NamePart(choose, "choose", tr("Choose %1").arg(label));
    AddControl(choose, 0);
    connect(choose, &QPushButton::clicked, this, &TextRow::Choose);
  }
}

void TextRow::ShowValue(const RowFrame&) {
  const QString text = QString::fromStdString(Document()->TextOf(Name()));
  // What is being typed, or was refused, stays until the look has another text.
  if (!field_->isModified() || text != shown_) {
    shown_ = text;
    field_->setText(text);
    ClearError();
  }
}

void TextRow::Commit() {
  const std::string text = field_->text().trimmed().toStdString();
  if (field_->isModified() && Try([&] { Document()->SetText(Name(), text, What()); })) {
    field_->setModified(false);
    field_->setText(shown_);
  }
}

void TextRow::Choose() {
  auto* dialog = new QFileDialog(this, accessibleName());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::ExistingFile);
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
    field_->setModified(false);
    Try([&] { Document()->SetText(Name(), file.toStdString(), What()); });
  });
  dialog->open();
}

}  // namespace glimmerhost
