// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/page_file.h"

#include <algorithm>
#include <filesystem>

#include "host/looks/keys.h"
#include "host/support/failure.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

// The program reads these by itself, and would find nothing, or another thing than it takes.
void CheckKnownKeys(const Page& page, const std::filesystem::path& file) {
  const struct {
    const char* key;
    Kind kind;
  } known[] = {{kShapeKey, Kind::kList},       {kMatchKey, Kind::kSwitch},
               {kRadiusXKey, Kind::kNumber},   {kRadiusYKey, Kind::kNumber},
               {kEmphasisKey, Kind::kNumber},  {kCenterXKey, Kind::kNumber},
               {kCenterYKey, Kind::kNumber},   {kRadiusPsf1Key, Kind::kNumber},
               {kRadiusPsf2Key, Kind::kNumber}};
  for (const auto& wanted : known) {
    const auto& parameters = page.Parameters();
    const bool fits =
        std::any_of(parameters.begin(), parameters.end(), [&](const Parameter& parameter) {
          return parameter.key == wanted.key && parameter.kind == wanted.kind;
        });
    if (!fits) {
      throw Failure(file.string() + ": not a page for this program: " + wanted.key +
                    " is missing or of another kind");
    }
  }
}

}  // namespace

Page LoadPage() {
  const std::filesystem::path file =
      (ProgramFolder() / GLIMMERHOST_PAGE_FOLDER / "glimmerblur.toml").lexically_normal();
  Page page = Page::Load(file);
  CheckKnownKeys(page, file);
  return page;
}

}  // namespace glimmerhost
