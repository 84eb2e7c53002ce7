// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "tests/support/child_program.h"

namespace lx_test {
namespace {

std::wstring Wide(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

// As the C runtime of the other side takes it apart again. No argument of a test's holds quotes
// or ends in a backslash behind a blank.
std::wstring CommandLine(const std::string& program, const std::vector<std::string>& arguments) {
  std::wstring line = L"\"" + Wide(program) + L"\"";
  for (const std::string& argument : arguments) {
    const std::wstring wide = Wide(argument);
    const bool plain = !wide.empty() && wide.find(L' ') == std::wstring::npos;
    line += plain ? L" " + wide : L" \"" + wide + L"\"";
  }
  return line;
}

// Variables of this process for the length of a scope, since a child inherits them.
class Inherited {
 public:
  explicit Inherited(const Variables& variables) : variables_(variables) {
    for (const auto& [name, value] : variables_) {
      SetEnvironmentVariableA(name.c_str(), value.c_str());
    }
  }
  ~Inherited() {
    for (const auto& [name, value] : variables_) {
      SetEnvironmentVariableA(name.c_str(), nullptr);
    }
  }
  Inherited(const Inherited&) = delete;
  Inherited& operator=(const Inherited&) = delete;

 private:
  const Variables& variables_;
};

// A file that a child has as one of its streams.
class StreamFile {
 public:
  StreamFile(const std::string& file, DWORD access, DWORD making, SECURITY_ATTRIBUTES* inheritable)
      : handle_(file.empty() ? nullptr
                             : CreateFileW(Wide(file).c_str(), access, FILE_SHARE_READ, inheritable,
                                           making, 0, nullptr)) {}
  ~StreamFile() {
    if (handle_ != nullptr) {
      CloseHandle(handle_);
    }
  }
  StreamFile(const StreamFile&) = delete;
  StreamFile& operator=(const StreamFile&) = delete;

  HANDLE Or(HANDLE other) const { return handle_ != nullptr ? handle_ : other; }

 private:
  HANDLE handle_;
};

}  // namespace

Outcome RunChild(const std::string& program, const std::vector<std::string>& arguments,
                 const Variables& variables, const Streams& streams) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const StreamFile input(streams.input, GENERIC_READ, OPEN_EXISTING, &inheritable);
  const StreamFile output(streams.output, GENERIC_WRITE, CREATE_ALWAYS, &inheritable);
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (CreatePipe(&readEnd, &writeEnd, &inheritable, 0) == 0) {
    return {-1, "no pipe", 0};
  }
  SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = input.Or(GetStdHandle(STD_INPUT_HANDLE));
  start.hStdOutput = output.Or(writeEnd);
  start.hStdError = writeEnd;
  PROCESS_INFORMATION child{};
  std::wstring line = CommandLine(program, arguments);
  BOOL started = FALSE;
  {
    const Inherited inherited(variables);
    started = CreateProcessW(Wide(program).c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                             nullptr, &start, &child);
  }
  CloseHandle(writeEnd);
  Outcome outcome;
  std::array<char, 4096> buffer{};
  DWORD got = 0;
  while (ReadFile(readEnd, buffer.data(), buffer.size(), &got, nullptr) != 0 && got > 0) {
    outcome.text.append(buffer.data(), got);
  }
  CloseHandle(readEnd);
  if (started != 0) {
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(child.hProcess, &code);
    outcome.code = static_cast<int>(code);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
  }
  std::erase(outcome.text, '\r');
  return outcome;
}

}  // namespace lx_test
