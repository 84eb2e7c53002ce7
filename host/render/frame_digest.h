// SPDX-License-Identifier: BSD-3-Clause
// What decides the samples of a frame's output, and whether it is still the same as in a line of a
// manifest.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/parameter.h"
#include "host/render/shot_settings.h"
#include "host/shots/file_hash.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

// What files are among the sources.
inline constexpr const char* kInputSource = "input";
inline constexpr const char* kSpreadSource = "spread";
inline constexpr const char* kMaskSource = "mask";

// Names among the versions: the hash of the module's file, and the engine with the number of its
// arithmetic, which counts in place of it.
inline constexpr const char* kModuleVersion = "module";
inline constexpr const char* kEngineVersion = "engine";

// The files whose contents go into a frame, by what they are for. A pipe is none: its picture has a
// hash of its own.
std::map<std::string, std::filesystem::path> SourceFiles(
    const FrameFiles& files, const std::map<std::string, Value>& values);

// Names and values of all that decides the samples, in an order of their own. Whoever adds an
// option that changes samples adds it here: frames that were rendered otherwise are rendered again
// then.
//   values   of the store, and the mix
//   sources  the state of each source file, and of a pipe's picture as input
std::vector<std::pair<std::string, std::string>> WhatDecides(
    const ShotSettings& settings, const lx::Footprint& engine, const FrameFiles& files,
    const std::map<std::string, Value>& values, const std::map<std::string, FileState>& sources);

// One hash for all of these.
std::string FrameDigest(const std::vector<std::pair<std::string, std::string>>& decides);

}  // namespace glimmerhost
