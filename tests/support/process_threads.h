// SPDX-License-Identifier: BSD-3-Clause
// The threads of this process, and what it may run them on.
#pragma once

namespace lx_test {

// As the system lists them: one that has been awaited may be there for another moment.
int ThreadCount();

// The processors that a library in this process is told of, which may be more than it may run on.
int ToldProcessors();

}  // namespace lx_test
