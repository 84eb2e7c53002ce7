// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/message_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <utility>

namespace glimmerhost {

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent), text_(new QLabel(this)), act_(new QPushButton(this)) {
  setObjectName("messageBar");
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
  act_->setObjectName("messageButton");
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
  row->addWidget(close);
  connect(close, &QToolButton::clicked, this, &MessageBar::Clear);
  connect(act_, &QPushButton::clicked, this, [this] {
    const std::function<void()> act = onAct_;
    Clear();
    if (act) {
      act();
    }
  });
  hide();
}

void MessageBar::Tell(const QString& text) {
  text_->setText(text);
  text_->setAccessibleName(text);
  onAct_ = nullptr;
  act_->hide();
  show();
}

void MessageBar::Offer(const QString& text, const QString& button, std::function<void()> act) {
  Tell(text);
  onAct_ = std::move(act);
  act_->setText(button);
  act_->show();
}

void MessageBar::Clear() {
  text_->clear();
  onAct_ = nullptr;
  hide();
}

QString MessageBar::Text() const { return isHidden() ? QString() : text_->text(); }

}  // namespace glimmerhost
