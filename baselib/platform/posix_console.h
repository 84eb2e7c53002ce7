// What stands for a console window where there is none: the standard error stream.
#pragma once

#include <cstdint>

namespace lx::posix {

bool ConsoleHasTitle();
void ConsoleCreate();
bool ConsoleIgnoreBreak();
void ConsoleSetTitle(const char* title);
void* ConsoleOutput();
bool ConsoleRaise(const char* title);
void ConsoleWrite(void* output, const char* text);

void Sleep(std::uint32_t milliseconds);
double LocalDaySeconds();

}  // namespace lx::posix
