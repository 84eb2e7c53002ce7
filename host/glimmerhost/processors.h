// SPDX-License-Identifier: BSD-3-Clause
// How many processors the process works on.
#pragma once

#include <string>

namespace glimmerhost {

// Narrows the process to the first so many of the processors that it may run on. The module
// and the picture library have no settings of their own: they count what the process may
// use, so this comes before either starts a thread.
//   count  a whole number from 1 on; empty changes nothing. More than there are means all, which is
//          said in a line
// Throws UsageError.
void NarrowProcessors(const std::string& count);

}  // namespace glimmerhost
