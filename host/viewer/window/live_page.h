// SPDX-License-Identifier: BSD-3-Clause
// LivePage: the module's own page and handles, kept in step with the look that is edited.
//
//   LookDocument  --what differs-->  store, and the module is told   (rows, undo, other frames)
//   module's store  --what differs-->  LookDocument                  (a drag of a handle)
//
// The module writes floats, also of values that nobody has changed: a value that is the same as a
// float counts as unchanged, or a radius of 20px would be 0.0208333339542 after the next click. The
// look is the truth; frames are rendered from it.
#pragma once

#include <QObject>
#include <QPointF>
#include <QSize>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/session/effect_page.h"
#include "host/session/page_view.h"
#include "host/viewer/clip/loaded_frame.h"
#include "host/viewer/panels/look_document.h"

namespace glimmerhost {

class LivePage : public QObject {
  Q_OBJECT

 public:
  // All must outlive it.
  LivePage(const EffectModule& module, const Page& page, LookDocument* document,
           QObject* parent = nullptr);

  // The frame under the page from now on. The first one opens the page.
  //   frames  of the shot
  void Show(const std::shared_ptr<const LoadedFrame>& frame, int frames);

  // How large the picture is on the screen, in which the mouse counts and handles are drawn.
  void SetScreenSize(QSize size);

  // The mouse, in pixels of the screen from the picture's corner.
  void Press(QPointF point);
  void Move(QPointF point);
  void Release(QPointF point);
  bool IsDragging() const { return isDragging_; }

  // A button of the page, by the key that the module is told of, or a colour box.
  void PressWidget(const QString& key);

  // Null before the first frame. For looking at alone.
  const EffectPage* Effect() const { return effect_.get(); }

  std::vector<PageRow> Rows() const;

 signals:
  // The module has drawn its handles, and its answers may be others.
  void Updated();
  void Failed(const QString& fault);

 private:
  void Call(const std::function<void()>& call);
  void TellModule();
  void TakeFromModule();
  void Mouse(void (EffectPage::*call)(quantel::cPoint2), QPointF point);
  void DrawAgain();

  const EffectModule& module_;
  const Page& page_;
  LookDocument* document_;
  std::unique_ptr<EffectPage> effect_;
  quantel::cSize2 screenSize_{0, 0};
  int frame_ = 1;
  int gesture_ = 0;
  bool isDragging_ = false;
  bool isTaking_ = false;
};

}  // namespace glimmerhost
