// SPDX-License-Identifier: BSD-3-Clause
// Words for bash.
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

// A word that bash reads as that text, whatever is in it. It has no control characters, so that a
// script of such words has the lines that it was given and no others.
std::string ShellWord(const std::string& text);

// The words of a command, with a blank between two.
std::string ShellLine(const std::vector<std::string>& words);

}  // namespace glimmerhost
