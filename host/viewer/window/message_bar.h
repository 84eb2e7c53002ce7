// SPDX-License-Identifier: BSD-3-Clause
// MessageBar: what a person is told without being stopped: a line over the picture.
#pragma once

#include <QFrame>
#include <QString>
#include <functional>

class QLabel;
class QPushButton;

namespace glimmerhost {

class MessageBar : public QFrame {
  Q_OBJECT

 public:
  explicit MessageBar(QWidget* parent = nullptr);

  // Shows a line in the place of the one before.
  void Tell(const QString& text);

  // The same with a button that does something about it.
  void Offer(const QString& text, const QString& button, std::function<void()> act);

  // Takes the line away.
  void Clear();

  // Empty where none is shown.
  QString Text() const;

 private:
  QLabel* text_;
  QPushButton* act_;
  std::function<void()> onAct_;
};

}  // namespace glimmerhost
