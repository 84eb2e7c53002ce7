// SPDX-License-Identifier: BSD-3-Clause
// The manual, from the list of commands and their options.
#pragma once

#include <string>

namespace glimmerhost {

// In the language of man pages.
//   frame  the text around: @COMMANDS@ in it stands for the commands, @OPTIONS@ for the options of
//          all of them
std::string ManPage(std::string frame);

}  // namespace glimmerhost
