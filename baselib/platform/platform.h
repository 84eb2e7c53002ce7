// The platform seam: every operation that the base services ask of the system.
//
// One source per system fills the table that SystemPlatform returns. Callers go
// through GetPlatform, so that a test can put a fault in place of any operation with a
// ScopedPlatform. No setting and no environment variable chooses a table.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace lx {

// What the system hands out. Null stands for none.
using ThreadHandle = void*;
using EventHandle = void*;

// A place of persistent settings that has been opened. Null stands for none.
using SettingsHandle = void*;

enum class SettingsRoot { kMachine, kUser };

// Types of a setting's value that are text.
inline constexpr std::uint32_t kSettingText = 1;
inline constexpr std::uint32_t kSettingExpandable = 2;

// A thread's start function. The result is the thread's exit code.
using ThreadStart = std::uint32_t (*)(void* argument);

struct Platform {
  // The general heap, as the C runtime gives it; null where memory has run out.
  void* (*allocate)(std::size_t size);
  void* (*reallocate)(void* block, std::size_t size);
  void (*release)(void* block);

  // Tells the system that larger pages than pageSize's pay for a block, because it is gone through
  // again and again. Only a hint: contents and the last error stay, and a system without such
  // pages does nothing. To be given ahead of the first write, since what has been written is not
  // moved at once. Any thread may call.
  //   block  from any allocator, of any alignment; its first and last page count only if they are
  //          the block's alone. Of some MiB at least: the hint stays with the addresses, and a
  //          heap hands those of small blocks out again
  void (*adviseHugePages)(void* block, std::size_t bytes);

  // Processors that this process may run on. May answer 0 or less; callers raise it.
  std::int32_t (*processorCount)();

  // Size of a memory page in bytes. Callers raise what is too small.
  std::int32_t (*pageSize)();

  // Whether the environment has a variable of that name, an empty one included.
  bool (*hasEnvironmentVariable)(const char* name);

  // Keeps the shared library that holds a function in the process for good, also when
  // everything that uses it is unloaded. False, with nothing done, where it cannot be found
  // or is this module itself, which must be able to go.
  bool (*keepLoaded)(void (*function)());

  // A counter that never goes back, and how often a second it counts.
  std::int64_t (*counter)();
  std::int64_t (*counterFrequency)();

  // What parts the components of a path, and the home directory where no setting names one.
  char pathSeparator;
  const char* defaultHome;

  // The machine's persistent settings, by the keys of a registry. A system without one has
  // files in its place, below settingsRoot; with a registry that is not looked at.
  //   size    takes the bytes of the buffer and gives those of the value, 0 for none
  //   type    null if it is not asked for
  //   buffer  null to ask for size and type alone
  const char* settingsRoot;
  SettingsHandle (*openSettings)(SettingsRoot root, const char* key);
  bool (*querySetting)(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                       std::uint32_t* size);
  void (*closeSettings)(SettingsHandle settings);

  std::uint32_t (*processId)();

  // Files, by the C runtime's modes. closeFile gives false if anything of what was written
  // was lost; moveFile takes the place of a file that is there already, unless this
  // process may not read and write it.
  std::FILE* (*openFile)(const char* path, const char* mode);
  bool (*closeFile)(std::FILE* file);
  bool (*moveFile)(const char* from, const char* to);
  void (*removeFile)(const char* path);

  bool (*isDirectory)(const char* path);
  bool (*makeDirectory)(const char* path);
  bool (*setWritable)(const char* path, bool writable);  // by its owner

  // Seconds since midnight by the wall clock, in local time.
  double (*localDaySeconds)();

  void (*sleep)(std::uint32_t milliseconds);

  // The debug console. Whether the process has a console with a title; making one; keeping the
  // process alive when it is closed or interrupted, false where that cannot be; its title; what
  // is written to, null where there is nothing; putting the window of that title above all
  // others, false where it is not there yet; writing.
  bool (*consoleHasTitle)();
  void (*consoleCreate)();
  bool (*consoleIgnoreBreak)();
  void (*consoleSetTitle)(const char* title);
  void* (*consoleOutput)();
  bool (*consoleRaise)(const char* title);
  void (*consoleWrite)(void* output, const char* text);

  // Milliseconds since some moment, which begin again at 0 after 2^32.
  std::uint32_t (*tickCount)();

  // The calling thread's last error of the system, 0 for none, and the text of an error:
  // at most size - 1 bytes and a terminating zero, empty for an error without a text.
  std::uint32_t (*lastError)();
  void (*errorText)(std::uint32_t error, char* text, std::size_t size);

  // Starts a thread. The id is above 0. The handle is closed with closeThread.
  // Null where the system has no thread to give.
  //   stackBytes  the size of its stack
  //   flags       0: it runs at once
  ThreadHandle (*beginThread)(std::uint32_t stackBytes, ThreadStart start, void* argument,
                              std::uint32_t flags, std::uint32_t* threadId);

  // A thread's last act before its start function returns.
  void (*endThread)(std::uint32_t exitCode);

  // Ends another thread at the event that it waits for, now or next, and returns when it
  // has ended. Where the system cannot end a thread from outside, the thread leaves there
  // by itself: see waitForEvents. May be called while this module is unloaded. False where it
  // cannot be done.
  bool (*terminateThread)(ThreadHandle thread, std::uint32_t exitCode);

  // Gives a handle back. May wait for the thread to end.
  bool (*closeThread)(ThreadHandle thread);

  // Stands for the calling thread, whichever that is. Not to be closed.
  ThreadHandle (*currentThread)();

  // Priorities count from 0, the ordinary one; -15 is idle. A system on which a thread
  // could starve, or never rise again, only keeps the number.
  std::int32_t (*threadPriority)(ThreadHandle thread);
  bool (*setThreadPriority)(ThreadHandle thread, std::int32_t priority);
  bool (*setThreadPriorityBoost)(ThreadHandle thread, bool disabled);

  // A slot that holds one word for each thread, null at first. kNoThreadSlot where none is
  // left.
  std::uint32_t (*allocateThreadSlot)();
  void (*releaseThreadSlot)(std::uint32_t slot);
  bool (*setThreadSlot)(std::uint32_t slot, void* value);
  void* (*threadSlot)(std::uint32_t slot);

  // An event that is set by hand, reset by hand and made unset. Null where there is none to
  // be had.
  EventHandle (*createEvent)();
  void (*destroyEvent)(EventHandle event);
  void (*setEvent)(EventHandle event);
  void (*resetEvent)(EventHandle event);

  // Waits until all of the events are set. False where the calling thread was told to
  // end instead; it then leaves without touching anything it shares.
  bool (*waitForEvents)(std::uint32_t count, const EventHandle* events);

  // Critical sections: recursive locks in memory of the caller's, of that size.
  std::size_t lockBytes;
  void (*initializeLock)(void* lock);
  void (*destroyLock)(void* lock);
  void (*enterLock)(void* lock);
  void (*leaveLock)(void* lock);

  // The floating-point control word of the calling thread: rounding, precision, exception
  // masks and flushing of denormals as one word. Flags that arithmetic raises are not in it.
  std::uint32_t (*floatControl)();
  void (*setFloatControl)(std::uint32_t word);

  // Sets the precision of x87 arithmetic to its full 64-bit mantissa. Nothing elsewhere.
  void (*extendFloatPrecision)();
};

inline constexpr std::uint32_t kNoThreadSlot = 0xFFFFFFFF;

// This system's operations. The table lives as long as the process.
const Platform& SystemPlatform();

// The table in force: the system's, unless a test has put another in its place.
const Platform& GetPlatform();

// How many things want to see every allocation: a table in force, the heap's account. With none
// of them the allocator calls the C runtime and nothing else. Change it by these two alone.
extern std::atomic<std::int32_t> heapWatchers;
void AddHeapWatcher();
void RemoveHeapWatcher();

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
