// SPDX-License-Identifier: BSD-3-Clause
// PresetsPanel: the looks that come with the program, each with its name, a summary and a little
// picture. A click, or Enter, uses one, as one step of undo.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <string>

#include "host/viewer/panels/look_document.h"

class QImage;
class QListWidget;
class QListWidgetItem;

namespace glimmerhost {

class PresetsPanel : public QWidget {
  Q_OBJECT

 public:
  // Asked for the picture of a preset, to give it to ShowPicture later.
  using PictureMaker = std::function<void(const std::string& name, const Look& look)>;

  //   document  must outlive this
  PresetsPanel(LookDocument* document, QWidget* parent);

  // Asks for all pictures at once; until one is there, a frame is shown in its place. May be called
  // again, for another clip.
  void AskForPictures(const PictureMaker& make);

  // Of any size; nothing happens for a name that there is not.
  void ShowPicture(const std::string& name, const QImage& picture);

  // What a picture is shown in, in logical pixels.
  static QSize PictureSize();

 signals:
  void Used(QString name);
  void Refused(QString why);

 private:
  void AddPresets();
  void Use(const QListWidgetItem* item);

  LookDocument* document_;
  QListWidget* list_;
};

}  // namespace glimmerhost
