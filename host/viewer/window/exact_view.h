// SPDX-License-Identifier: BSD-3-Clause
// ExactView: the frame that is looked at by another engine than the one that keeps up with a hand.
//
// While a hand moves, the quick engine's frames are shown. When the true one of these is there, a
// process of its own makes the same frame by the chosen engine; it is ended as soon as anything
// changes.
#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <string>

#include "host/looks/page.h"
#include "host/viewer/jobs/exact_render.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/window/viewing.h"

namespace glimmerhost {

class ExactView : public QObject {
  Q_OBJECT

 public:
  // All must outlive it.
  ExactView(const Page& page, Viewing* viewing, LookDocument* document,
            std::filesystem::path program, QObject* parent = nullptr);

  // Empty for the window's own.
  void SetEngine(const std::string& engine);
  const std::string& Engine() const { return engine_; }

  // Of what is looked at now; null while there is none.
  const std::shared_ptr<const Picture>& Result() const { return picture_; }
  bool IsRunning() const { return render_.IsRunning(); }

 signals:
  void Changed();
  void Told(const QString& line);

 private:
  void Follow();

  Viewing* viewing_;
  LookDocument* document_;
  std::string engine_;
  std::uint64_t serial_ = 0;  // of the live frame that it is for; 0 for none
  std::shared_ptr<const Picture> picture_;
  ExactRender render_;
};

}  // namespace glimmerhost
