// The page as a person sees it: row by row, with what is shown and what can be changed.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/module/page_host.h"

namespace glimmerhost {

struct PageRow {
  std::string name;  // a parameter's key, or a widget's name
  std::string label;
  std::string value;  // empty for a widget
  std::string range;
  bool shown;
  bool enabled;
  std::string note;  // what the page says beside it at the moment
};

// The parameters in the page's order, then the widgets that the module has added.
std::vector<PageRow> PageRows(const Page& page, const std::map<std::string, Value>& values,
                              const Dialog& dialog);

// In columns, one row a line, hidden rows too.
void PrintPage(const std::vector<PageRow>& rows, std::ostream& out);

}  // namespace glimmerhost
