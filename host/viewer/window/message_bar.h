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
  explicit MessageBar(const QString& name, QWidget* parent = nullptr);

  // Shows a line in the place of the one before; an empty one takes that away.
  void Tell(const QString& text);

  // The same with a button that does something about it.
  void Offer(const QString& text, const QString& button, std::function<void()> act);

  // The same with a second button, for whoever does not want it.
  void Offer(const QString& text, const QString& button, std::function<void()> act,
             const QString& otherButton, std::function<void()> otherAct);

  // Takes the line away.
  void Clear();

  // Empty where none is shown.
  QString Text() const;

 private:
  QPushButton* AddButton(const char* name, std::function<void()>* act);

  QLabel* text_;
  std::function<void()> onAct_;
  std::function<void()> onOther_;
  QPushButton* act_;
  QPushButton* other_;
};

}  // namespace glimmerhost
