// SPDX-License-Identifier: BSD-3-Clause
// What the platform tells of the process and its processors.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

namespace native {

// Processors that this process may run on. May answer 0 or less; callers raise it.
std::int32_t ProcessorCount();

std::uint32_t ProcessId();

// Whether the environment has a variable of that name, an empty one included.
bool HasEnvironmentVariable(const char* name);

// The calling thread's last error of the system, 0 for none, and the text of an error:
// at most size - 1 bytes and a terminating zero, empty for an error without a text.
std::uint32_t LastError();
void ErrorText(std::uint32_t error, char* text, std::size_t size);

}  // namespace native

struct ProcessOperations {
  decltype(native::ProcessorCount)* processorCount = native::ProcessorCount;
  decltype(native::ProcessId)* processId = native::ProcessId;
  decltype(native::HasEnvironmentVariable)* hasEnvironmentVariable = native::HasEnvironmentVariable;
  decltype(native::LastError)* lastError = native::LastError;
  decltype(native::ErrorText)* errorText = native::ErrorText;
};

}  // namespace lx
