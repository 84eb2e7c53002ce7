// SPDX-License-Identifier: BSD-3-Clause
// Whether this is a build with a sanitizer, in which everything takes some ten times as long.
#pragma once

namespace lx_test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

}  // namespace lx_test
