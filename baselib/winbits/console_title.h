// SPDX-License-Identifier: BSD-3-Clause
// Whether the process has a console.
#pragma once

namespace lx {

// True where there is a console window that has a title.
bool has_console_title();

}  // namespace lx
