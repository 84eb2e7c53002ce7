// SPDX-License-Identifier: BSD-3-Clause
// The system's last error, as a text.
#pragma once

namespace lx {

// What the system says of the calling thread's last error, without the line feed that may
// end it; empty where there was none. The buffer is the thread's own, of 256 bytes, and is
// overwritten by the next call. A carriage return before the line feed stays, and the text
// may hold percent signs.
const char* last_error_text();

}  // namespace lx
