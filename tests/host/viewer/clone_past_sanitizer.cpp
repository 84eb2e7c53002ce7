// SPDX-License-Identifier: BSD-3-Clause
// For the thread sanitizer alone. Qt starts processes by clone with the parent's memory, as vfork
// does. The sanitizer takes that for a fork: it marks the memory as a child's, which is this
// process's own, and from then on sees nothing of this thread and lets no other start. Here its
// place is taken by the C library's function, which it does not look at.
#include <cstdarg>

extern "C" {

int __clone(int (*run)(void*), void* stack, int flags, void* argument, ...);

// Found before the sanitizer's, as programs are looked through before their libraries.
__attribute__((visibility("default"))) int clone(int (*run)(void*), void* stack, int flags,
                                                 void* argument, ...) {
  va_list more;
  va_start(more, argument);
  void* const parent = va_arg(more, void*);
  void* const thread = va_arg(more, void*);
  void* const child = va_arg(more, void*);
  va_end(more);
  return __clone(run, stack, flags, argument, parent, thread, child);
}

}  // extern "C"
