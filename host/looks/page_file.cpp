// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/page_file.h"

#include "host/support/system.h"

namespace glimmerhost {

Page LoadPage() {
  return Page::Load(
      (ProgramFolder() / GLIMMERHOST_PAGE_FOLDER / "glimmerblur.toml").lexically_normal());
}

}  // namespace glimmerhost
