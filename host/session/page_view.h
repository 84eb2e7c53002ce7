// SPDX-License-Identifier: BSD-3-Clause
// The page as a person sees it: row by row, with what is shown and what can be changed.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/module/page_host.h"

namespace glimmerhost {

enum class RowKind { kParameter, kButton, kColourBox };

// All texts are as a person reads them, without what a printed page puts round them.
struct PageRow {
  std::string name;  // a parameter's key, or a widget's name
  std::string label;
  std::string value;  // empty for a widget
  std::string range;
  bool shown;
  bool enabled;
  std::string note;  // what the page says beside it at the moment; empty for nothing
  std::string key;   // what the module is told of when the row is changed or pressed
  RowKind kind = RowKind::kParameter;
};

// A value as the page shows it: shorter than Parameter::Show, which keeps all digits.
std::string PageText(const Parameter& parameter, const Value& value);

// The parameters in the page's order, then the widgets that the module has added. Hidden ones, too:
// whoever shows the page looks at what is shown of them.
//   values  what is not among them has its default
std::vector<PageRow> PageRows(const Page& page, const std::map<std::string, Value>& values,
                              const Dialog& dialog);

// In columns, one row a line and its note below; buttons in brackets.
void PrintPage(const std::vector<PageRow>& rows, std::ostream& out);

}  // namespace glimmerhost
