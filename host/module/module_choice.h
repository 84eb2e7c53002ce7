// SPDX-License-Identifier: BSD-3-Clause
// Which module a command runs, and by which engine that one works.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "fftlib/backends/footprint.h"

namespace glimmerhost {

// The engine of the module that runs where none is chosen.
inline constexpr const char* kDefaultEngine = "fast";

struct ModuleChoice {
  std::filesystem::path file;
  const lx::Footprint* engine;  // never null

  // The number of the engine's arithmetic, as the file says it; empty for one that says nothing.
  std::string arithmetic{};
};

// The module of an engine, where build and installation put it from the program's folder, or the
// file that is named. By which engine a file works is what the file itself says.
//   engine  its name; empty for the default
//   module  a module file; empty for none
// Throws UsageError for an engine that is none or not in this build, and for an engine and a module
// file at once; MissingInput where there is no such module file, and Failure where this
// installation lacks that of an engine.
ModuleChoice ChooseModule(const std::string& engine, const std::string& module);

// The file of an engine's module, whether or not it is there.
std::filesystem::path ModuleFileOf(const lx::Footprint& engine);

// A file with what it says of itself. Its engine is exact for one that says nothing, for one that
// cannot be read, and for one that this program does not know. None needs more.
ModuleChoice ChoiceOfFile(const std::filesystem::path& file);

// Whether this build has a module of that engine. Without FFTW it has none of exact. A file of one
// may be named all the same: what a frame takes in it is known.
bool IsInBuild(const lx::Footprint& engine);

// The names of this build's engines, the default first; and in a sentence, "fast, exact, double or
// single".
std::vector<std::string> EngineList();
std::string EngineNames();

}  // namespace glimmerhost
