// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/page_view.h"

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <sstream>
#include <variant>

namespace glimmerhost {
namespace {

std::size_t Widest(const std::vector<PageRow>& rows, std::string PageRow::*column) {
  std::size_t widest = 0;
  for (const PageRow& row : rows) {
    widest = std::max(widest, (row.*column).size());
  }
  return widest;
}

PageRow RowOf(const Widget& widget) {
  const bool isButton = !widget.label.empty();
  PageRow row{};
  row.name = widget.name;
  row.label = isButton ? widget.label : "Colour box";
  row.shown = widget.visible;
  row.enabled = true;
  row.key = widget.key;
  row.kind = isButton ? RowKind::kButton : RowKind::kColourBox;
  return row;
}

}  // namespace

// A page has no room for all digits of a double that was a float.
std::string PageText(const Parameter& parameter, const Value& value) {
  if (const double* number = std::get_if<double>(&value)) {
    std::ostringstream out;
    out << *number;
    return out.str();
  }
  return parameter.Show(value);
}

std::vector<PageRow> PageRows(const Page& page, const std::map<std::string, Value>& values,
                              const Dialog& dialog) {
  std::vector<PageRow> rows;
  for (const Parameter& parameter : page.Parameters()) {
    const auto value = values.find(parameter.key);
    rows.push_back({parameter.key, parameter.label,
                    PageText(parameter, value == values.end() ? parameter.initial : value->second),
                    parameter.Offered(), parameter.shown.Holds(values),
                    parameter.enabled.Holds(values),
                    parameter.noteShown.Holds(values) ? parameter.note : "", parameter.key});
  }
  for (const Widget& widget : dialog.Widgets()) {
    rows.push_back(RowOf(widget));
  }
  return rows;
}

void PrintPage(const std::vector<PageRow>& rows, std::ostream& out) {
  std::vector<PageRow> printed = rows;
  for (PageRow& row : printed) {
    if (row.kind == RowKind::kButton) {
      row.label = "[" + row.label + "]";
    }
  }
  const auto column = [&](const PageRow& row, std::string PageRow::*part) {
    out << std::left << std::setw(static_cast<int>(Widest(printed, part)) + 2) << row.*part;
  };
  for (const PageRow& row : printed) {
    column(row, &PageRow::label);
    column(row, &PageRow::value);
    column(row, &PageRow::range);
    out << (row.shown ? "shown   " : "hidden  ") << (row.enabled ? "enabled" : "disabled") << '\n';
    if (!row.note.empty()) {
      out << "  " << row.note << '\n';
    }
  }
}

}  // namespace glimmerhost
