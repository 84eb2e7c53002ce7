// SPDX-License-Identifier: BSD-3-Clause
// What the program asks of the system beyond the C++ library. One source a system defines it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace glimmerhost {

// The program's arguments in UTF-8, its own name first.
std::vector<std::string> Arguments(int argc, const char* const* argv);

// The running program's file, from the root on.
//   link  where the system names it; a machine may be without
std::filesystem::path ProgramFile(const std::filesystem::path& link = "/proc/self/exe");

// Its folder.
inline std::filesystem::path ProgramFolder() { return ProgramFile().parent_path(); }

std::uint32_t ProcessId();

// Bytes that programs may still take, swapping included; 0 if the system does not tell.
std::uint64_t AvailableMemory();

// Whether there is a process of that number on this machine, whoever's, that has not ended.
bool ProcessExists(std::uint32_t process);

// The machine's name in its network, in UTF-8; empty if the system does not tell.
std::string HostName();

// Whether files can be made in the folder.
bool IsWritable(const std::filesystem::path& folder);

// A variable of this process's environment, as modules see it.
void SetVariable(const char* name, const char* value);

// What a person puts around an argument with blanks in this system's shell.
extern const char kShellQuote;

// How a person names another home directory for this machine.
extern const char* const kHomeAdvice;

// Lets bytes pass stdin and stdout as they are, where the system would change the ends of lines.
void UseBinaryStreams();

// Keeps the places of standard streams that the program was started without: the next file that is
// opened would have one, and receive what is said. What is read from such a stream or written to it
// fails. In main, before anything is opened.
void HoldStandardStreams();

// Gives the memory of large blocks back as soon as they are freed. A program that lives for long,
// on several threads, would hold each one's largest frames otherwise. Before threads are made.
void GiveLargeBlocksBack();

// Whether a person watches stderr, on a screen that lines can be cleared on.
bool IsTerminal();

// How many processors this process may run on; 0 if the system does not tell.
int AllowedProcessors();

// Narrows the process to the first so many of them. False if the system refuses.
bool KeepProcessors(int count);

// A library loaded at run time, until the end of the scope.
class SharedLibrary {
 public:
  // Not looked for in the system's folders. Throws Failure, which names the file and says what
  // the system says.
  explicit SharedLibrary(const std::filesystem::path& file);
  ~SharedLibrary();
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;

  // A function or an object. Null if neither the library nor, where the system looks into them,
  // those that it loads have such a name.
  template <class Named>
  Named* Find(const char* name) const {
    return reinterpret_cast<Named*>(Address(name));
  }

 private:
  using AnyFunction = void();
  AnyFunction* Address(const char* name) const;

  void* library_;
};

}  // namespace glimmerhost
