// The threads of this process, and what it may run them on.
#pragma once

namespace lx_test {

// As the system lists them: one that has been awaited may be there for another moment.
int ThreadCount();

// The processors that a library in this process is told of.
int ProcessorCount();

}  // namespace lx_test
