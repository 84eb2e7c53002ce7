#include <cstdio>
#include <ctime>

#include "baselib/platform/console.h"

namespace lx::native {

bool ConsoleHasTitle() { return false; }
void ConsoleCreate() {}
bool ConsoleIgnoreBreak() { return true; }
void ConsoleSetTitle(const char* /*title*/) {}
void* ConsoleOutput() { return stderr; }
bool ConsoleRaise(const char* /*title*/) { return true; }

void ConsoleWrite(void* output, const char* text) {
  std::fputs(text, static_cast<std::FILE*>(output));
}

void Sleep(std::uint32_t milliseconds) {
  const timespec time{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1000000};
  nanosleep(&time, nullptr);
}

double LocalDaySeconds() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
}

}  // namespace lx::native
