// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/message_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <utility>

namespace glimmerhost {

MessageBar::MessageBar(const QString& name, QWidget* parent)
    : QFrame(parent),
      text_(new QLabel(this)),
      act_(AddButton("messageButton", &onAct_)),
      other_(AddButton("messageOtherButton", &onOther_)) {
  setObjectName(name);
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::ToolTipBase);
  setForegroundRole(QPalette::ToolTipText);
  text_->setObjectName("messageText");
  text_->setWordWrap(true);
  text_->setForegroundRole(QPalette::ToolTipText);
  // A message may hold a file's name: it is no markup, and can be copied.
  text_->setTextFormat(Qt::PlainText);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* const close = new QToolButton(this);
  close->setObjectName("messageClose");
  close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  close->setAutoRaise(true);
  close->setToolTip(tr("Close the message"));
  close->setAccessibleName(close->toolTip());
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(8, 4, 4, 4);
  row->addWidget(text_, 1);
  row->addWidget(act_);
  row->addWidget(other_);
  row->addWidget(close);
  connect(close, &QToolButton::clicked, this, &MessageBar::Clear);
  hide();
}

// The line is gone before the act begins, which may show another.
QPushButton* MessageBar::AddButton(const char* name, std::function<void()>* act) {
  auto* const button = new QPushButton(this);
  button->setObjectName(name);
  connect(button, &QPushButton::clicked, this, [this, act] {
    const std::function<void()> chosen = *act;
    Clear();
    if (chosen) {
      chosen();
    }
  });
  return button;
}

void MessageBar::Tell(const QString& text) {
  text_->setText(text);
  text_->setAccessibleName(text);
  onAct_ = nullptr;
  onOther_ = nullptr;
  act_->hide();
  other_->hide();
  setVisible(!text.isEmpty());
}

void MessageBar::Offer(const QString& text, const QString& button, std::function<void()> act) {
  Tell(text);
  onAct_ = std::move(act);
  act_->setText(button);
  act_->show();
}

void MessageBar::Offer(const QString& text, const QString& button, std::function<void()> act,
                       const QString& otherButton, std::function<void()> otherAct) {
  Offer(text, button, std::move(act));
  onOther_ = std::move(otherAct);
  other_->setText(otherButton);
  other_->show();
}

void MessageBar::Clear() {
  text_->clear();
  onAct_ = nullptr;
  onOther_ = nullptr;
  hide();
}

QString MessageBar::Text() const { return isHidden() ? QString() : text_->text(); }

}  // namespace glimmerhost
