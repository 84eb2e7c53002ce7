// SPDX-License-Identifier: BSD-3-Clause
// PagePanel: the page in rows that can be changed, and below them what else a look has.
//
//   Radii in  (px) % part            Reset all
//   Aperture                                     a title for each group of the page's options
//     Shape of the aperture
//     [circle           v]  <> o                 keyframe, reset
//     Width of the aperture ...
//     ----o---------  38.4px <> o
//   ...
//   Picture                                      mix, alpha, pixel aspect, shot
//
// Rows come from the page alone; which are shown and can be changed, and what stands beside them,
// the module says.
#pragma once

#include <QWidget>
#include <map>
#include <string>
#include <vector>

#include "host/session/page_view.h"
#include "host/viewer/look/shown_number.h"
#include "host/viewer/panels/look_document.h"

class QScrollArea;
class QVBoxLayout;

namespace glimmerhost {

class LookRow;
class NumberRow;

class PagePanel : public QWidget {
  Q_OBJECT

 public:
  //   page, document  must outlive this
  PagePanel(const Page& page, LookDocument* document, QWidget* parent);
  ~PagePanel() override;

  // The frame whose values are shown, and which keyframes are set at.
  void SetFrame(int frame);

  // What the page shows now: rows of parameters, and the widgets that the module has added.
  //   store  the module's, which knows when an option that is no parameter is shown; empty: always
  void ShowRows(const std::vector<PageRow>& rows, const std::map<std::string, Value>& store = {});

  RadiusUnit Unit() const { return unit_; }
  void SetUnit(RadiusUnit unit);

 signals:
  // A button or a colour box of the module's, by the key that it is told of.
  void WidgetPressed(QString key);
  void UnitChanged();

 private:
  struct Section;

  void AddBar(QVBoxLayout* all);
  void AddPage();
  void AddParameter(const Parameter& parameter, const QString& help, Section* section);
  void AddOption(const PageOption& option, Section* section);
  void AddPictureRows();
  Section* SectionOf(const QString& title);
  void AddRow(LookRow* row, Section* section);
  LookRow* RowOf(const std::string& name) const;
  void ShowParameter(const PageRow& row);
  void ShowWidgets(const std::vector<PageRow>& rows);
  void ShowSections();
  void Refresh();

  const Page& page_;
  LookDocument* document_;
  int frame_ = 1;
  RadiusUnit unit_ = RadiusUnit::kPixels;
  QScrollArea* scroll_ = nullptr;
  QVBoxLayout* content_ = nullptr;
  std::vector<Section> sections_;
  std::map<std::string, LookRow*> rows_;  // by key, or by name
  std::vector<NumberRow*> numbers_;
  std::vector<PageRow> widgets_;  // that are there
};

}  // namespace glimmerhost
