// The platform seam: every operation that the base services ask of the system.
//
// One source per system fills the table that SystemPlatform returns. Callers go
// through GetPlatform, so that a test can put a fault in place of any operation with a
// ScopedPlatform. No setting and no environment variable chooses a table.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

struct Platform {
  // The general heap, as the C runtime gives it; null where memory has run out.
  void* (*allocate)(std::size_t size);
  void (*release)(void* block);

  // Processors that this process may run on. May answer 0 or less; callers raise it.
  std::int32_t (*processorCount)();

  // Size of a memory page in bytes. Callers raise what is too small.
  std::int32_t (*pageSize)();

  // Whether the environment has a variable of that name, an empty one included.
  bool (*hasEnvironmentVariable)(const char* name);

  // Keeps the shared library that holds a function in the process for good, also when
  // everything that uses it is unloaded. Does nothing for one that cannot be found.
  void (*keepLoaded)(void (*function)());
};

// This system's operations. The table lives as long as the process.
const Platform& SystemPlatform();

// The table in force: the system's, unless a test has put another in its place.
const Platform& GetPlatform();

// Puts a table in force for the length of a scope. The table is borrowed. Scopes
// nest, and only one thread may open or close them.
class ScopedPlatform {
 public:
  explicit ScopedPlatform(const Platform* table);
  ~ScopedPlatform();
  ScopedPlatform(const ScopedPlatform&) = delete;
  ScopedPlatform& operator=(const ScopedPlatform&) = delete;

 private:
  const Platform* previous_;
};

}  // namespace lx
