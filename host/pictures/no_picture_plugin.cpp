// SPDX-License-Identifier: BSD-3-Clause
// A system whose programs have PNG and TIFF alone.
#include <stdexcept>

#include "host/pictures/colour_config.h"
#include "host/pictures/plugged_formats.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

[[noreturn]] void None() { throw std::logic_error("there is no plug-in for pictures"); }

}  // namespace

const bool kHasPicturePlugin = false;
const bool kHasColourManagement = false;
const char* const kReadableFormats = "PNG and TIFF";
const char* const kWritableEndings = ".png, .tif or .tiff";

std::optional<OutputFormat> PluggedFormatOf(const std::filesystem::path& /*file*/) { None(); }

Picture ReadPlugged(const std::filesystem::path& /*file*/, const std::string& /*why*/,
                    const ReadOptions& /*options*/, ReadReport* /*report*/) {
  None();
}

PictureHead ReadPluggedHead(const std::filesystem::path& /*file*/, const std::string& /*why*/) {
  None();
}

void CompletePlugged(const std::filesystem::path& /*file*/, const std::string& /*why*/,
                     const ReadOptions& /*options*/, Picture* /*picture*/, ReadReport* /*report*/) {
  None();
}

void WritePlugged(const OutputFile& /*file*/, const OutputFormat& /*format*/,
                  const Picture& /*picture*/, const Coding& /*coding*/,
                  std::vector<NotCarried>* /*lost*/) {
  None();
}

std::unique_ptr<const ColourConfig> ColourConfig::Load(const std::filesystem::path& file) {
  throw Failure(file.string() + ": this build has no colour management");
}

}  // namespace glimmerhost
