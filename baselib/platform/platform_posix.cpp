#include <dlfcn.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "baselib/platform/console.h"
#include "baselib/platform/float_control.h"
#include "baselib/platform/platform.h"
#include "baselib/platform/settings.h"
#include "baselib/platform/threads.h"

namespace lx {
namespace {

// The affinity mask and not the machine: what binds a process to some processors
// (a host, a farm) decides how wide it works.
std::int32_t ProcessorCount() {
  cpu_set_t mask;
  CPU_ZERO(&mask);
  if (sched_getaffinity(0, sizeof mask, &mask) == 0) {
    return CPU_COUNT(&mask);
  }
  // A mask wider than cpu_set_t; the count of what is online is the next best answer.
  return static_cast<std::int32_t>(sysconf(_SC_NPROCESSORS_ONLN));
}

std::int32_t PageSize() { return static_cast<std::int32_t>(sysconf(_SC_PAGESIZE)); }

bool HasEnvironmentVariable(const char* name) { return std::getenv(name) != nullptr; }

bool KeepLoaded(void (*function)()) {
  static const char inThisModule = 0;
  Dl_info own;
  Dl_info info;
  if (dladdr(&inThisModule, &own) == 0 || dladdr(reinterpret_cast<void*>(function), &info) == 0 ||
      info.dli_fbase == own.dli_fbase) {
    return false;
  }
  // The handle is not kept: what matters is that the library is marked.
  return dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE) != nullptr;
}

constexpr std::int64_t kNanoseconds = 1000000000;  // in a second

std::int64_t Counter() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kNanoseconds + now.tv_nsec;
}

std::int64_t CounterFrequency() { return kNanoseconds; }

std::uint32_t TickCount() {
  constexpr std::int64_t kNanosecondsInOne = 1000000;
  return static_cast<std::uint32_t>(Counter() / kNanosecondsInOne);
}

std::uint32_t LastError() { return static_cast<std::uint32_t>(errno); }

void ErrorText(std::uint32_t error, char* text, std::size_t size) {
  char scratch[256];
  std::snprintf(text, size, "%s", strerror_r(static_cast<int>(error), scratch, sizeof scratch));
}

std::uint32_t ProcessId() { return static_cast<std::uint32_t>(getpid()); }

bool CloseFile(std::FILE* file) {
  const bool whole = std::ferror(file) == 0;
  return std::fclose(file) == 0 && whole;
}

// The right to rename is the folder's; whether a file may be replaced is asked of the file. The
// mode speaks to the administrator too, who could write everything.
bool IsProtected(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 &&
         ((status.st_mode & 0222) == 0 || access(path, R_OK | W_OK) != 0);
}

bool MoveFile(const char* from, const char* to) {
  return !IsProtected(to) && std::rename(from, to) == 0;
}
void RemoveFile(const char* path) { (void)std::remove(path); }

bool IsDirectory(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool MakeDirectory(const char* path) { return mkdir(path, 0777) == 0; }

// Only the bits for reading and writing: a directory needs its others to be entered.
bool SetWritable(const char* path, bool writable) {
  struct stat status;
  if (stat(path, &status) != 0) {
    return false;
  }
  constexpr mode_t kOwner = S_IRUSR | S_IWUSR;
  constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
  const mode_t mode = status.st_mode & 07777;
  return chmod(path, writable ? mode | kOwner : mode & ~kAnyWrite) == 0;
}

void* Allocate(std::size_t size) { return std::malloc(size); }

void* Reallocate(void* block, std::size_t size) { return std::realloc(block, size); }

void Release(void* block) { std::free(block); }

void AdviseHugePages(void* block, std::size_t bytes) {
  const auto page = static_cast<std::uintptr_t>(PageSize());
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t before = (page - address % page) % page;
  if (bytes < before + page) {
    return;
  }
  const int error = errno;
  (void)madvise(static_cast<char*>(block) + before, (bytes - before) / page * page, MADV_HUGEPAGE);
  errno = error;
}

}  // namespace

const Platform& SystemPlatform() {
  static const Platform kTable = {
      .allocate = Allocate,
      .reallocate = Reallocate,
      .release = Release,
      .adviseHugePages = AdviseHugePages,
      .processorCount = ProcessorCount,
      .pageSize = PageSize,
      .hasEnvironmentVariable = HasEnvironmentVariable,
      .keepLoaded = KeepLoaded,
      .counter = Counter,
      .counterFrequency = CounterFrequency,
      .pathSeparator = '/',
      .defaultHome = "/opt/Vantrell",
      .settingsRoot = "",
      .openSettings = native::OpenSettings,
      .querySetting = native::QuerySetting,
      .closeSettings = native::CloseSettings,
      .processId = ProcessId,
      .openFile = std::fopen,
      .closeFile = CloseFile,
      .moveFile = MoveFile,
      .removeFile = RemoveFile,
      .isDirectory = IsDirectory,
      .makeDirectory = MakeDirectory,
      .setWritable = SetWritable,
      .localDaySeconds = native::LocalDaySeconds,
      .sleep = native::Sleep,
      .consoleHasTitle = native::ConsoleHasTitle,
      .consoleCreate = native::ConsoleCreate,
      .consoleIgnoreBreak = native::ConsoleIgnoreBreak,
      .consoleSetTitle = native::ConsoleSetTitle,
      .consoleOutput = native::ConsoleOutput,
      .consoleRaise = native::ConsoleRaise,
      .consoleWrite = native::ConsoleWrite,
      .tickCount = TickCount,
      .lastError = LastError,
      .errorText = ErrorText,
      .beginThread = native::BeginThread,
      .endThread = native::EndThread,
      .terminateThread = native::TerminateThread,
      .closeThread = native::CloseThread,
      .currentThread = native::CurrentThread,
      .threadPriority = native::ThreadPriority,
      .setThreadPriority = native::SetThreadPriority,
      .setThreadPriorityBoost = native::SetThreadPriorityBoost,
      .allocateThreadSlot = native::AllocateThreadSlot,
      .releaseThreadSlot = native::ReleaseThreadSlot,
      .setThreadSlot = native::SetThreadSlot,
      .threadSlot = native::ThreadSlot,
      .createEvent = native::MakeEvent,
      .destroyEvent = native::DestroyEvent,
      .setEvent = native::SetEvent,
      .resetEvent = native::ResetEvent,
      .waitForEvents = native::WaitForEvents,
      .lockBytes = native::kLockBytes,
      .initializeLock = native::InitializeLock,
      .destroyLock = native::DestroyLock,
      .enterLock = native::EnterLock,
      .leaveLock = native::LeaveLock,
      .floatControl = FloatControl,
      .setFloatControl = SetFloatControl,
      .extendFloatPrecision = ExtendFloatPrecision,
  };
  return kTable;
}

}  // namespace lx
