#include "host/glimmerhost/module_choice.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

const lx::Footprint& Exact() { return *lx::FindFootprint("exact"); }

// What a file holds; empty for one that cannot be read. In one piece: every command looks through
// its module, and byte by byte a sanitizer's module of 50 MiB would take a second of each.
std::string BytesOf(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  std::string bytes(error ? 0 : static_cast<std::size_t>(size), '\0');
  std::ifstream in(file, std::ios::binary);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

}  // namespace

void CheckModuleOptions(const std::string& engine, const std::string& module) {
  if (!engine.empty() && lx::FindFootprint(engine) == nullptr) {
    throw UsageError("--engine " + engine + ": allowed is " + EngineNames());
  }
  if (!engine.empty() && !module.empty()) {
    throw UsageError("--engine " + engine + " and --module " + module +
                     ": allowed is one of them, as a module file has its own engine");
  }
}

ModuleChoice ChooseModule(const std::string& engine, const std::string& module) {
  CheckModuleOptions(engine, module);
  const fs::path file =
      module.empty() ? ModuleFileOf(*lx::FindFootprint(engine.empty() ? kDefaultEngine : engine))
                     : Utf8Path(module);
  std::error_code error;
  if (!fs::exists(file, error)) {
    throw Failure(file.string() + ": there is no such module file");
  }
  return {file, &EngineOfFile(file)};
}

// Exact's stands in the modules' own folder, where every host looks; others in folders inside it.
fs::path ModuleFileOf(const lx::Footprint& engine) {
  const fs::path folder = ProgramFolder() / GLIMMERHOST_MODULE_FOLDER;
  return (&engine == &Exact() ? folder / GLIMMERHOST_MODULE
                              : folder / engine.name / GLIMMERHOST_MODULE)
      .lexically_normal();
}

const lx::Footprint& EngineOfFile(const fs::path& file) {
  const std::string bytes = BytesOf(file);
  for (const lx::Footprint& engine : lx::kFootprints) {
    std::string marker(lx::kEngineMarker);
    marker.append(engine.name).push_back('\0');
    if (bytes.find(marker) != std::string::npos) {
      return engine;
    }
  }
  return Exact();
}

std::string EngineNames() {
  std::string names;
  for (const lx::Footprint& engine : lx::kFootprints) {
    if (!names.empty()) {
      names += &engine == &lx::kFootprints.back() ? " or " : ", ";
    }
    names += engine.name;
  }
  return names;
}

}  // namespace glimmerhost
