// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/winbits/console_title.h"

#include "baselib/platform/platform.h"

namespace lx {

bool has_console_title() { return GetPlatform().consoleHasTitle(); }

}  // namespace lx
