// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>

#include "host/support/child_process.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

struct Registry {
  std::mutex lock;
  std::set<HANDLE> children;
};

// Never destroyed: the system may end the program while its last objects go.
Registry& TheRegistry() {
  static auto* const registry = new Registry;
  return *registry;
}

std::wstring Wide(const std::string& utf8) {
  const auto size = static_cast<int>(utf8.size());
  std::wstring wide(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)),
      L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

// As the other side takes a line apart: backslashes stand for themselves, but in front of a quote.
std::wstring Quoted(const std::string& argument) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : Wide(argument)) {
    if (c == L'"') {
      quoted.append(backslashes + 1, L'\\');
    }
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  quoted.append(backslashes, L'\\');
  return quoted + L'"';
}

std::string LastErrorText() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

void Close(HANDLE* handle) {
  if (*handle != nullptr) {
    CloseHandle(*handle);
    *handle = nullptr;
  }
}

// The handle is the stream's from then on.
std::FILE* StreamOf(HANDLE handle, bool writes) {
  const int number = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle),
                                     _O_BINARY | (writes ? _O_WRONLY : _O_RDONLY));
  return _fdopen(number, writes ? "wb" : "rb");
}

// A file that goes when it is closed.
HANDLE KeptWords(SECURITY_ATTRIBUTES* inheritable) {
  std::array<wchar_t, MAX_PATH + 1> folder{};
  std::array<wchar_t, MAX_PATH + 1> name{};
  GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  GetTempFileNameW(folder.data(), L"glb", 0, name.data());
  return CreateFileW(name.data(), GENERIC_READ | GENERIC_WRITE,
                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, inheritable,
                     CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

}  // namespace

struct ChildProcess::System {
  HANDLE child = nullptr;
  HANDLE lines = nullptr;  // what ReadLine reads: the child's outputs, or what was kept of them
  std::FILE* stream = nullptr;
  bool isKept = false;  // whether lines are a file, to be read from its beginning

  ~System() {
    if (stream != nullptr) {
      std::fclose(stream);
    }
    Close(&child);
    Close(&lines);
  }

  ProcessEnd Reap() {
    WaitForSingleObject(child, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(child, &code);
    const std::lock_guard<std::mutex> hold(TheRegistry().lock);
    TheRegistry().children.erase(child);
    Close(&child);
    return {static_cast<int>(code), 0};
  }

  // The child inherits what may be inherited at that moment, so only one is started at a time.
  bool Start(std::wstring* line, HANDLE input, HANDLE output, HANDLE errors) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input;
    start.hStdOutput = output;
    start.hStdError = errors;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, line->data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                       &process) == 0) {
      return false;
    }
    CloseHandle(process.hThread);
    child = process.hProcess;
    TheRegistry().children.insert(child);
    return true;
  }
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           Use use)
    : system_(std::make_unique<System>()) {
  std::wstring line = Quoted(program);
  for (const std::string& argument : arguments) {
    line += L" " + Quoted(argument);
  }
  const std::lock_guard<std::mutex> hold(TheRegistry().lock);
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (CreatePipe(&readEnd, &writeEnd, &inheritable, 0) == 0) {
    throw Failure(program + ": cannot be started: " + LastErrorText());
  }
  const bool writes = use == Use::kInput;
  HANDLE own = writes ? writeEnd : readEnd;
  HANDLE theirs = writes ? readEnd : writeEnd;
  SetHandleInformation(own, HANDLE_FLAG_INHERIT, 0);
  if (use == Use::kLines) {
    system_->lines = own;
  } else {
    system_->isKept = true;
    system_->stream = StreamOf(own, writes);
    // Not a pipe: nobody reads it before the end, and the child would wait.
    system_->lines = KeptWords(&inheritable);
  }
  HANDLE words = use == Use::kLines ? theirs : system_->lines;
  HANDLE nothing = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               &inheritable, OPEN_EXISTING, 0, nullptr);
  const bool started =
      system_->Start(&line, writes ? theirs : nothing, writes ? words : theirs, words);
  const DWORD error = GetLastError();
  CloseHandle(nothing);
  CloseHandle(theirs);
  if (!started && (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND)) {
    throw MissingInput(program + ": not found");
  }
  if (!started) {
    throw Failure(program + ": cannot be started: " +
                  std::system_category().message(static_cast<int>(error)));
  }
}

ChildProcess::~ChildProcess() {
  if (system_->child != nullptr) {
    TerminateProcess(system_->child, 1);
    system_->Reap();
  }
}

bool ChildProcess::ReadSome() {
  std::array<char, 4096> buffer{};
  DWORD got = 0;
  if (ReadFile(system_->lines, buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) ==
          0 ||
      got == 0) {
    return false;
  }
  unread_.append(buffer.data(), got);
  return true;
}

std::FILE* ChildProcess::Stream() const { return system_->stream; }

bool ChildProcess::CloseStream() {
  return std::fclose(std::exchange(system_->stream, nullptr)) == 0;
}

ProcessEnd ChildProcess::Wait() {
  const ProcessEnd end = system_->Reap();
  if (system_->isKept) {
    SetFilePointer(system_->lines, 0, nullptr, FILE_BEGIN);
  }
  return end;
}

// What ends this program from its console ends them as well, in their own way; they get a while.
void EndChildren() noexcept {
  constexpr DWORD kMilliseconds = 3000;
  constexpr UINT kInterrupted = 130;
  Registry& registry = TheRegistry();
  registry.lock.lock();
  for (HANDLE child : registry.children) {
    if (WaitForSingleObject(child, kMilliseconds) != WAIT_OBJECT_0) {
      TerminateProcess(child, kInterrupted);
    }
  }
}

}  // namespace glimmerhost
