// SPDX-License-Identifier: BSD-3-Clause
// Texts of the machine's settings.
#pragma once

namespace lx {

// A text under a key of the machine's settings, in a block that the caller gives back by
// lx_free. Null where there is none, or a value that is no text.
char* get_registry_string(const char* key, const char* value);

}  // namespace lx
