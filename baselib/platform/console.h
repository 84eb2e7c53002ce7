// The debug console and the time of its lines, as the platform's table has them. Where the system
// has no console window, the standard error stream takes its place.
#pragma once

#include <cstdint>

namespace lx::native {

bool ConsoleHasTitle();
void ConsoleCreate();
bool ConsoleIgnoreBreak();
void ConsoleSetTitle(const char* title);
void* ConsoleOutput();
bool ConsoleRaise(const char* title);
void ConsoleWrite(void* output, const char* text);

void Sleep(std::uint32_t milliseconds);
double LocalDaySeconds();

}  // namespace lx::native
