// SPDX-License-Identifier: BSD-3-Clause
// The format's own header. It says nothing of C++, nor that what it declares leaves the file.
#pragma once

#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop
