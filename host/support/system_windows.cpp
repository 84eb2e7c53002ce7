// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// Only after the header above, whose macros it is written in.
#include <shellapi.h>

#include <bit>
#include <cstddef>
#include <cstdio>

#include "host/support/failure.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

std::string ToUtf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), size, nullptr, nullptr);
  bytes.resize(bytes.size() - 1);  // its end
  return bytes;
}

// The system's text for its last error, in one line.
std::string LastErrorText() {
  wchar_t text[1024] = {};
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                 GetLastError(), 0, text, std::size(text), nullptr);
  std::string line = ToUtf8(text);
  line.erase(line.find_last_not_of("\r\n ") + 1);
  return line;
}

DWORD_PTR AllowedMask() {
  DWORD_PTR process = 0;
  DWORD_PTR machine = 0;
  return GetProcessAffinityMask(GetCurrentProcess(), &process, &machine) != 0 ? process : 0;
}

}  // namespace

const char kShellQuote = '"';

const char* const kHomeAdvice =
    "a variable LX_HOME_DIR of the system's environment names another home directory";

// What main receives has lost what the system's code page cannot say. Wide, then; and what this
// program prints is UTF-8 too.
std::vector<std::string> Arguments(int /*argc*/, const char* const* /*argv*/) {
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) {
    arguments.push_back(ToUtf8(wide[i]));
  }
  LocalFree(wide);
  return arguments;
}

std::filesystem::path ProgramFile(const std::filesystem::path& /*link*/) {
  std::wstring name(32768, L'\0');
  name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
  return {name};
}

std::uint32_t ProcessId() { return GetCurrentProcessId(); }

std::uint64_t AvailableMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return GlobalMemoryStatusEx(&status) != 0 ? status.ullAvailPageFile : 0;
}

bool ProcessExists(std::uint32_t process) {
  const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, process);
  if (handle == nullptr) {
    return GetLastError() == ERROR_ACCESS_DENIED;
  }
  // One that has ended is kept by those who still look at it.
  const bool runs = WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
  CloseHandle(handle);
  return runs;
}

std::string HostName() {
  wchar_t name[256] = {};
  DWORD size = std::size(name);
  return GetComputerNameExW(ComputerNameDnsHostname, name, &size) != 0 ? ToUtf8(name) : "";
}

bool IsWritable(const std::filesystem::path& folder) {
  constexpr int kWrite = 2;
  return _waccess(folder.c_str(), kWrite) == 0;
}

// By the system alone: modules do not ask the C runtime's copy.
void SetVariable(const char* name, const char* value) { SetEnvironmentVariableA(name, value); }

// The runtime gives their numbers to nobody else.
void HoldStandardStreams() {}

// The heap does so by itself.
void GiveLargeBlocksBack() {}

void UseBinaryStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

bool IsTerminal() {
  const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

int AllowedProcessors() { return std::popcount(AllowedMask()); }

bool KeepProcessors(int count) {
  DWORD_PTR left = AllowedMask();
  DWORD_PTR kept = 0;
  for (int i = 0; i < count && left != 0; ++i, left &= left - 1) {
    kept |= left & -left;
  }
  return SetProcessAffinityMask(GetCurrentProcess(), kept) != 0;
}

SharedLibrary::SharedLibrary(const std::filesystem::path& file) {
  // No window about what is said below.
  SetErrorMode(SEM_FAILCRITICALERRORS);
  library_ = LoadLibraryW(std::filesystem::absolute(file).c_str());
  if (library_ == nullptr) {
    throw Failure(file.string() + ": not a module that can be loaded: " + LastErrorText());
  }
}

SharedLibrary::~SharedLibrary() { FreeLibrary(static_cast<HMODULE>(library_)); }

SharedLibrary::AnyFunction* SharedLibrary::Address(const char* name) const {
  return reinterpret_cast<AnyFunction*>(GetProcAddress(static_cast<HMODULE>(library_), name));
}

}  // namespace glimmerhost
