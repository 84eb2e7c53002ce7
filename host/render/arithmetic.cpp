// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/arithmetic.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "baselib/platform/platform.h"
#include "baselib/threads/system_info.h"
#include "fftlib/backends/footprint.h"
#include "host/shots/file_hash.h"

namespace glimmerhost {
namespace {

// The version of FFTW where it is a part of a file: "fftw-3.3.10-sse2-avx" and a zero. Other texts
// of it begin alike, and go on otherwise.
std::string VersionInFile(const std::filesystem::path& file) {
  constexpr std::string_view kBegin = "fftw-3";
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  for (std::size_t at = bytes.find(kBegin); at != std::string::npos;
       at = bytes.find(kBegin, at + 1)) {
    const std::size_t end = bytes.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789.-", at);
    if (end != std::string::npos && bytes[end] == '\0') {
      return bytes.substr(at, end - at);
    }
  }
  return {};
}

std::string FftwVersion(const EffectModule& module) {
  const char* const loaded = module.FindText("fftw_version");
  return loaded != nullptr ? loaded : VersionInFile(module.Choice().file);
}

std::string Threads() {
  const std::uint32_t count = lx::get_processor_count();
  return std::to_string(count) + (count == 1 ? " thread" : " threads");
}

std::string Numbered(std::string_view engine, std::string_view number) {
  return std::string(engine) + " " + std::string(number);
}

}  // namespace

std::string NumberedEngine(const ModuleChoice& choice) {
  return choice.arithmetic.empty()
             ? std::string(choice.engine->name) + " of file " + FileHash(choice.file)
             : Numbered(choice.engine->name, choice.arithmetic);
}

std::string ArithmeticOf(const EffectModule& module) {
  const ModuleChoice& choice = module.Choice();
  const std::string processor = std::string(", ") + lx::GetPlatform().processorForm();
  const bool isKnown = !choice.arithmetic.empty();
  std::string text = NumberedEngine(choice);
  if (isKnown && choice.engine->name == lx::FastFootprint::kName) {
    return text;
  }
  if (isKnown && choice.engine->name != lx::FftwFootprint::kName) {
    return text + processor;
  }
  const std::string fftw = FftwVersion(module);
  text += (fftw.empty() ? "" : ", " + fftw) + processor + ", " + Threads();
  // As the engine asks for them.
  return lx::GetPlatform().hasEnvironmentVariable("LX_USE_FFTW_WISDOM") ? text + ", measured plans"
                                                                        : text;
}

std::string FloatArithmetic() {
  return Numbered(lx::FastFootprint::kName, std::to_string(lx::FastFootprint::kArithmetic));
}

}  // namespace glimmerhost
