// The debug console's window, as the platform's table wants it, and the time of its lines.
#pragma once

#include <cstdint>

namespace lx::windows {

bool ConsoleHasTitle();
void ConsoleCreate();
bool ConsoleIgnoreBreak();
void ConsoleSetTitle(const char* title);
void* ConsoleOutput();
bool ConsoleRaise(const char* title);
void ConsoleWrite(void* output, const char* text);

void Sleep(std::uint32_t milliseconds);
double LocalDaySeconds();

}  // namespace lx::windows
