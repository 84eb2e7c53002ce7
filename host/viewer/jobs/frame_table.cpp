// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/frame_table.h"

#include <QFont>
#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <utility>

namespace glimmerhost {
namespace {

QVariant AlignmentOf(int column) {
  return QVariant((column == FrameTable::kSeconds ? Qt::AlignRight : Qt::AlignLeft) |
                  Qt::AlignVCenter);
}

QString NoteOf(const FrameReport& report) {
  QStringList lines;
  if (!report.fault.empty()) {
    lines.append(QString::fromStdString(report.fault));
  }
  for (const std::string& remark : report.remarks) {
    lines.append(QString::fromStdString(remark));
  }
  return lines.join(QStringLiteral("; "));
}

}  // namespace

void FrameTable::SetFrames(const std::vector<int>& frames) {
  const bool isSame = std::equal(rows_.begin(), rows_.end(), frames.begin(), frames.end(),
                                 [](const Row& row, int frame) { return row.frame == frame; });
  if (isSame) {
    return;
  }
  std::map<int, Row> known;
  for (Row& row : rows_) {
    known[row.frame] = std::move(row);
  }
  beginResetModel();
  rows_.clear();
  places_.clear();
  for (const int frame : frames) {
    Row& row = known[frame];
    row.frame = frame;
    places_[frame] = rows_.size();
    rows_.push_back(row);
  }
  endResetModel();
}

void FrameTable::Begin() {
  for (Row& row : rows_) {
    row.hasFailed = false;
    row.note.clear();
  }
  if (!rows_.empty()) {
    emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
  }
}

std::size_t FrameTable::RowOf(int frame) {
  const auto place = places_.find(frame);
  if (place != places_.end()) {
    return place->second;
  }
  const int row = rowCount();
  beginInsertRows({}, row, row);
  rows_.push_back({});
  rows_.back().frame = frame;
  places_[frame] = rows_.size() - 1;
  endInsertRows();
  return rows_.size() - 1;
}

void FrameTable::Take(const FrameReport& report) {
  const std::size_t place = RowOf(report.frame);
  Row& row = rows_[place];
  row.hasFailed = report.state == FrameState::kFailed || report.state == FrameState::kMissing;
  row.note = NoteOf(report);
  if (!row.hasFailed) {
    row.standing = FrameStanding::kCurrent;
  }
  if (report.state == FrameState::kDone) {
    row.seconds = report.seconds;
  }
  const int changed = static_cast<int>(place);
  emit dataChanged(index(changed, 0), index(changed, kColumns - 1));
}

void FrameTable::SetStanding(const std::map<int, FrameStanding>& standing) {
  for (Row& row : rows_) {
    const auto found = standing.find(row.frame);
    if (found != standing.end()) {
      row.standing = found->second;
      row.hasFailed = row.hasFailed && row.standing != FrameStanding::kCurrent;
    }
  }
  if (!rows_.empty()) {
    emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
  }
}

int FrameTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int FrameTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : int{kColumns};
}

QString FrameTable::StateOf(const Row& row) const {
  if (row.hasFailed) {
    return tr("failed");
  }
  switch (row.standing) {
    case FrameStanding::kToDo:
      return tr("to do");
    case FrameStanding::kCurrent:
      return tr("done");
    case FrameStanding::kStale:
      return tr("out of date");
    case FrameStanding::kUnknown:
      return tr("not ours");
  }
  return {};
}

QVariant FrameTable::data(const QModelIndex& index, int role) const {
  const Row& row = rows_.at(static_cast<std::size_t>(index.row()));
  if (role == Qt::FontRole && row.hasFailed && index.column() == kState) {
    QFont font;
    font.setBold(true);
    return font;
  }
  if (role == Qt::TextAlignmentRole) {
    return AlignmentOf(index.column());
  }
  if (role == Qt::ToolTipRole) {
    if (row.standing == FrameStanding::kUnknown && !row.hasFailed) {
      return tr("A file of that name is there, and no manifest tells of it");
    }
    return row.note;
  }
  if (role != Qt::DisplayRole) {
    return {};
  }
  switch (index.column()) {
    case kFrame:
      return row.frame;
    case kState:
      return StateOf(row);
    case kSeconds:
      return row.seconds > 0.0 ? QLocale().toString(row.seconds, 'f', 2) : QString();
    default:
      return row.note;
  }
}

QVariant FrameTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole) {
    return AlignmentOf(section);
  }
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
    return {};
  }
  const QString names[] = {tr("Frame"), tr("State"), tr("Seconds"), tr("Note")};
  return names[section];
}

}  // namespace glimmerhost
