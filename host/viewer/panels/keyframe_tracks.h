// SPDX-License-Identifier: BSD-3-Clause
// KeyframeTracks: the ruler of a shot, and below it a row for everything that has keyframes.
//
//   1001      1010      1020      1030     a drag here moves the playhead
//   radius-x      <>------<>--------<>      a drag moves what is selected, as one step of undo
//     60px        ..--''                    the selected row has its curve
//   emphasis              <>
//
// Keys, with the focus: left and right a frame, with Ctrl to the keyframe before or behind, with
// Alt they move the selected keyframes; Home and End; up and down select a row; Ctrl+A all of its
// keyframes; Delete removes the selected ones; the menu key tells how they may go on; the space bar
// plays.
#pragma once

#include <QAbstractScrollArea>
#include <QString>
#include <map>
#include <string>
#include <vector>

#include "host/viewer/look/shown_number.h"
#include "host/viewer/panels/frame_scale.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/panels/value_curves.h"

class QMenu;

namespace glimmerhost {

class KeyframeTracks : public QAbstractScrollArea {
  Q_OBJECT

 public:
  KeyframeTracks(LookDocument* document, QWidget* parent);

  void SetShot(const ShotFrames& frames);
  void SetFrame(int frame);
  void SetUnit(RadiusUnit unit);

  // The frame of the keyframe before or behind the playhead, in the selected row or where none is
  // selected in any; the playhead's own where there is none.
  int KeyframeBeside(bool isBefore) const;

  // The row that has its curve shown; empty for none.
  std::string SelectedName() const;

  // What is selected, by names.
  const std::map<std::string, std::vector<double>>& Selection() const { return selection_; }

  // Where a keyframe lies on the viewport; for tests and for menus.
  QPoint PlaceOf(const std::string& name, double frame) const;
  QPoint PlaceOnRuler(int frame) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 signals:
  void FrameChosen(int frame);
  void PlayWanted();

  // An edit was not taken, and why.
  void Refused(QString why);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  using FramesByName = std::map<std::string, std::vector<double>>;

  struct Track {
    std::string name;
    std::vector<PlacedKeyframe> keys;
  };

  // What the left button does while it is held.
  enum class Drag { kNone, kPlayhead, kKeyframes };

  struct Hit {
    int track = -1;
    double frame = 0.0;
    bool isKeyframe = false;
  };

  FrameScale Scale() const;
  int TopOf(std::size_t track) const;
  int HeightOf(std::size_t track) const;
  Hit HitAt(const QPoint& point) const;
  bool IsSelected(const std::string& name, double frame) const;

  void Rebuild();
  void UpdateScrolling();
  void SelectRow(int track);
  void Click(const Hit& hit, bool adds);
  void DropLostSelection();
  void MoveSelection(int by, int gesture);
  void RemoveSelection();
  void StepKeyframe(bool isBefore);
  void StepRow(int by);
  void GoTo(double frame);
  bool Press(const QKeyEvent& event);
  bool PressArrow(const QKeyEvent& event);
  bool Abandon();
  bool SelectAll();
  QMenu* KeyframeMenu();
  bool HasCourse(Course course) const;
  template <class Edit>
  bool Try(const Edit& edit);

  void DrawRuler(QPainter* painter) const;
  void DrawTrack(QPainter* painter, std::size_t track) const;
  void DrawCurves(QPainter* painter, const QRect& lane) const;
  void DrawPlayhead(QPainter* painter) const;

  LookDocument* document_;
  ShotFrames shot_;
  int frame_ = 1;
  RadiusUnit unit_ = RadiusUnit::kPixels;
  std::vector<Track> tracks_;
  int selectedTrack_ = -1;
  mutable ValueCurves curves_;  // of the selected row, sampled when they are drawn
  mutable bool hasCurves_ = false;
  FramesByName selection_;

  Drag drag_ = Drag::kNone;
  QPoint dragFrom_;
  FramesByName dragged_;  // as it was when the drag began
  int draggedBy_ = 0;
  int gesture_ = 0;
};

}  // namespace glimmerhost
