// SPDX-License-Identifier: BSD-3-Clause
// Files with looks: TOML for hands, JSON for machines, by the file's ending .json.
//
// A key is an option without its dashes (shape = "image", radius-psf1 = "20px", match = true,
// emphasis = "first=50; last=60") or a key of the store; version = 1 says what the keys
// mean, and JSON must have it. A picture for spread is looked for from the file's own folder, so
// that both travel together.
#pragma once

#include <filesystem>
#include <string>

#include "host/looks/look.h"

namespace glimmerhost {

// Whether a file of that name is JSON; any other is TOML.
bool IsJson(const std::filesystem::path& file);

// The page says which names there are. Values are not looked at, but for alpha, pixel-aspect and
// shot. Throws MissingInput, Failure if the file cannot be read, UsageError for what it may not
// have and for what is no TOML or JSON; all name the file, and the line where it is known.
Look ReadParameterFile(const Page& page, const std::filesystem::path& file);

// The same for the text of such a file.
Look ParseParameters(const Page& page, const std::filesystem::path& file, const std::string& text);

// Writes a look, whole or not at all. What is there reads back as the same look.
//   used     its values of the store are ones that the page takes
//   replace  whether a file of that name may be there
// Throws Failure, and UsageError for a name that ends neither in .toml nor in .json.
void SaveParameters(const Page& page, const std::filesystem::path& file, const Look& used,
                    bool replace);

}  // namespace glimmerhost
