// SPDX-License-Identifier: BSD-3-Clause
// The TOML library, as every file of the program must see it.
#pragma once

// The library asserts what a damaged file breaks, in builds that have assertions, and reports it
// as an error in the others. It must do so in all of them.
#define TOML_ASSERT(condition) static_assert(true)

#include <toml++/toml.h>
