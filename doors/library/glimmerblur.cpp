// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/glimmerblur.h"

extern "C" const char* glimmerblur_version(void) { return "5.13"; }
