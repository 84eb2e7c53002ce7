// SPDX-License-Identifier: BSD-3-Clause
// The text of the border: strings of 16-bit characters on every system.
#pragma once

#include <string>

namespace quantel {

using wstring = std::u16string;

static_assert(sizeof(wstring::value_type) == 2, "the border's characters have 16 bits");

}  // namespace quantel
