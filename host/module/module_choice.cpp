// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/module_choice.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/input_file.h"
#include "host/support/system.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

const lx::Footprint& Exact() { return *lx::FindFootprint("exact"); }

// False in a build without the library that exact transforms by.
constexpr bool kHasExact = GLIMMERHOST_HAS_EXACT != 0;

// Every command looks through its module, and one of a sanitizer's build has 50 MiB: byte by byte
// that would take a second, and in one piece most of a tenth.
constexpr std::size_t kBlock = 0x10000;

// More than the longest marker, as one may begin in a block and end in the next.
constexpr std::size_t kOverlap = 64;

// More than the digits of an arithmetic's number.
constexpr std::size_t kNumber = 4;

// Reads the marker of an engine, if one stands in a block. One that begins in its last bytes is
// left to the next block, unless there is none.
bool ReadMarker(std::string_view bytes, bool isLast, ModuleChoice* choice) {
  for (const lx::Footprint& engine : lx::kFootprints) {
    std::string marker(lx::kEngineMarker);
    marker.append(engine.name).push_back('\0');
    if (const std::size_t at = bytes.find(marker);
        at != std::string_view::npos && (isLast || at + kOverlap <= bytes.size())) {
      choice->engine = &engine;
      bytes.remove_prefix(at + marker.size());
      choice->arithmetic =
          bytes.substr(0, std::min(bytes.find_first_not_of("0123456789"), kNumber));
      return true;
    }
  }
  return false;
}

//   name  empty for the default
const lx::Footprint& FindEngine(const std::string& name) {
  const lx::Footprint* const engine = lx::FindFootprint(name.empty() ? kDefaultEngine : name);
  if (engine == nullptr || !IsInBuild(*engine)) {
    throw MustBe("--engine", EngineNames() + (engine == nullptr ? "" : " (this build has no FFTW)"),
                 name);
  }
  return *engine;
}

}  // namespace

ModuleChoice ChooseModule(const std::string& engine, const std::string& module) {
  if (!engine.empty() && !module.empty()) {
    throw UsageError("--engine " + engine + " and --module " + module +
                     " cannot be given together: a module file has its own engine");
  }
  const fs::path file = module.empty() ? ModuleFileOf(FindEngine(engine)) : Utf8Path(module);
  std::error_code error;
  if (module.empty() && !fs::exists(file, error)) {
    throw Failure(file.string() + ": not found");
  }
  RequireFile(file);
  return ChoiceOfFile(file);
}

// Exact's stands in the modules' own folder, where every host looks; others in folders inside it.
fs::path ModuleFileOf(const lx::Footprint& engine) {
  const fs::path folder = ProgramFolder() / GLIMMERHOST_MODULE_FOLDER;
  return (&engine == &Exact() ? folder / GLIMMERHOST_MODULE
                              : folder / engine.name / GLIMMERHOST_MODULE)
      .lexically_normal();
}

ModuleChoice ChoiceOfFile(const fs::path& file) {
  ModuleChoice choice{file, &Exact()};
  std::ifstream in(file, std::ios::binary);
  std::string bytes(kOverlap + kBlock, '\0');
  std::size_t kept = 0;
  while (in) {
    in.read(&bytes[kept], kBlock);
    const std::size_t filled = kept + static_cast<std::size_t>(in.gcount());
    if (ReadMarker({bytes.data(), filled}, !in, &choice)) {
      return choice;
    }
    kept = std::min(filled, kOverlap);
    std::copy_n(bytes.data() + filled - kept, kept, bytes.data());
  }
  return choice;
}

bool IsInBuild(const lx::Footprint& engine) { return kHasExact || &engine != &Exact(); }

std::vector<std::string> EngineList() {
  std::vector<std::string> names;
  for (const lx::Footprint& engine : lx::kFootprints) {
    if (IsInBuild(engine)) {
      names.emplace_back(engine.name);
    }
  }
  return names;
}

std::string EngineNames() { return JoinOr(EngineList()); }

}  // namespace glimmerhost
