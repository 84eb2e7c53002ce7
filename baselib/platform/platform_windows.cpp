#include <direct.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>

#include "baselib/platform/console.h"
#include "baselib/platform/float_control.h"
#include "baselib/platform/platform.h"
#include "baselib/platform/settings.h"
#include "baselib/platform/threads.h"
#include "baselib/platform/windows_api.h"

namespace lx {
namespace {

SYSTEM_INFO SystemInfo() {
  SYSTEM_INFO info;
  ::GetSystemInfo(&info);
  return info;
}

std::int32_t ProcessorCount() {
  return static_cast<std::int32_t>(SystemInfo().dwNumberOfProcessors);
}

std::int32_t PageSize() { return static_cast<std::int32_t>(SystemInfo().dwPageSize); }

// Not the C runtime's copy, which leaves out empty variables and may be old.
bool HasEnvironmentVariable(const char* name) {
  return ::GetEnvironmentVariableA(name, nullptr, 0) != 0 ||
         ::GetLastError() != ERROR_ENVVAR_NOT_FOUND;
}

HMODULE ModuleOf(const void* address) {
  HMODULE module = nullptr;
  ::GetModuleHandleExA(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      static_cast<LPCSTR>(address), &module);
  return module;
}

bool KeepLoaded(void (*function)()) {
  static const char inThisModule = 0;
  const auto* address = reinterpret_cast<const void*>(function);
  if (ModuleOf(address) == ModuleOf(&inThisModule)) {
    return false;
  }
  HMODULE module = nullptr;
  return ::GetModuleHandleExA(
             GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
             static_cast<LPCSTR>(address), &module) != 0;
}

std::int64_t Counter() {
  LARGE_INTEGER count;
  ::QueryPerformanceCounter(&count);
  return count.QuadPart;
}

std::int64_t CounterFrequency() {
  LARGE_INTEGER frequency;
  ::QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

std::uint32_t TickCount() { return ::GetTickCount(); }

std::uint32_t LastError() { return ::GetLastError(); }

// The system refuses a buffer that is too small, where a text that is cut says more.
void ErrorText(std::uint32_t error, char* text, std::size_t size) {
  constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  constexpr DWORD kLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);
  char whole[2048] = {};
  ::FormatMessageA(kFlags, nullptr, error, kLanguage, whole, sizeof whole, nullptr);
  std::snprintf(text, size, "%s", whole);
}

std::uint32_t ProcessId() { return ::GetCurrentProcessId(); }

bool CloseFile(std::FILE* file) {
  const bool whole = std::ferror(file) == 0;
  return std::fclose(file) == 0 && whole;
}

bool IsProtected(const char* path) {
  const DWORD attributes = ::GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

bool MoveOver(const char* from, const char* to) {
  return !IsProtected(to) && ::MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) != 0;
}

void RemoveNamed(const char* path) { (void)std::remove(path); }

bool IsDirectory(const char* path) {
  struct _stat status;
  return _stat(path, &status) == 0 && (status.st_mode & _S_IFDIR) != 0;
}

bool MakeDirectory(const char* path) { return _mkdir(path) == 0; }

bool SetWritable(const char* path, bool writable) {
  return _chmod(path, writable ? _S_IREAD | _S_IWRITE : _S_IREAD) != -1;
}

void* Allocate(std::size_t size) { return std::malloc(size); }

void* Reallocate(void* block, std::size_t size) { return std::realloc(block, size); }

void Release(void* block) { std::free(block); }

// Larger pages are a right of the user's here, and a block must be made of them from the start.
void AdviseHugePages(void* /*block*/, std::size_t /*bytes*/) {}

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
      .pathSeparator = '\\',
      .defaultHome = "C:\\Program Files\\Vantrell",
      .settingsRoot = "",
      .openSettings = native::OpenSettings,
      .querySetting = native::QuerySetting,
      .closeSettings = native::CloseSettings,
      .processId = ProcessId,
      .openFile = std::fopen,
      .closeFile = CloseFile,
      .moveFile = MoveOver,
      .removeFile = RemoveNamed,
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
