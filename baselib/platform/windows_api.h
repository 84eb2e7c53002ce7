// SPDX-License-Identifier: BSD-3-Clause
// The system's own header, without what would get in the way. For the sources of this
// platform's side alone: its macros rename functions called CreateEvent, MoveFile and the like.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
