// SPDX-License-Identifier: BSD-3-Clause
// The file that describes the page, read.
#pragma once

#include <filesystem>
#include <vector>

#include "host/looks/page.h"

namespace glimmerhost {

struct PageDescription {
  std::vector<Parameter> parameters;  // in the order of the file
  std::vector<PageOption> options;    // group by group, as Page has them
};

// Throws Failure if the file cannot be read or does not describe a page.
PageDescription ReadPageDescription(const std::filesystem::path& file);

}  // namespace glimmerhost
