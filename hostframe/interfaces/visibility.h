// SPDX-License-Identifier: BSD-3-Clause
// How names cross a library border.
//
// QTL_BORDER marks a type that two libraries share: its run-time type
// information must be one type for both, or a catch or a dynamic cast across the
// border would miss. QTL_KERNELEXEC and QTL_KERNELMEDIA mark what the host's two
// libraries export; a library defines QTL_BUILDS_KERNELEXEC or
// QTL_BUILDS_KERNELMEDIA while it is itself being built.
#pragma once

#if defined(_WIN32)
#define QTL_BORDER
#define QTL_EXPORT __declspec(dllexport)
#define QTL_IMPORT __declspec(dllimport)
#else
#define QTL_BORDER __attribute__((visibility("default")))
#define QTL_EXPORT __attribute__((visibility("default")))
#define QTL_IMPORT __attribute__((visibility("default")))
#endif

#if defined(QTL_BUILDS_KERNELEXEC)
#define QTL_KERNELEXEC QTL_EXPORT
#else
#define QTL_KERNELEXEC QTL_IMPORT
#endif

#if defined(QTL_BUILDS_KERNELMEDIA)
#define QTL_KERNELMEDIA QTL_EXPORT
#else
#define QTL_KERNELMEDIA QTL_IMPORT
#endif
