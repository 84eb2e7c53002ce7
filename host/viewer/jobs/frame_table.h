// SPDX-License-Identifier: BSD-3-Clause
// FrameTable: the frames of a shot, a row each, with what became of them.
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <map>
#include <vector>

#include "host/render/shot_report.h"
#include "host/viewer/jobs/shot_standing.h"

namespace glimmerhost {

class FrameTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kFrame, kState, kSeconds, kNote, kColumns };

  explicit FrameTable(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

  // Frames that stay keep what is known of them.
  void SetFrames(const std::vector<int>& frames);

  // Forgets what failed: a new render begins.
  void Begin();

  // What a render tells. A frame that is not in the table is added.
  void Take(const FrameReport& report);

  // What the files say; of frames that are not in the table nothing is kept.
  void SetStanding(const std::map<int, FrameStanding>& standing);

  int FrameAt(int row) const { return rows_.at(static_cast<std::size_t>(row)).frame; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Row {
    int frame = 0;
    FrameStanding standing = FrameStanding::kToDo;
    bool hasFailed = false;
    double seconds = 0.0;  // 0 for not known
    QString note;
  };

  QString StateOf(const Row& row) const;
  std::size_t RowOf(int frame);

  std::vector<Row> rows_;
  std::map<int, std::size_t> places_;
};

}  // namespace glimmerhost
