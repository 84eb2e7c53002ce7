// SPDX-License-Identifier: BSD-3-Clause
// FarmJob: a shot cut into chunks, each rendered by a process of its own, and then checked.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace glimmerhost {

struct FarmJob {
  std::string name;                  // in letters, digits and - alone
  std::string program;               // glimmerhost's file, from the root on
  std::vector<std::string> options;  // of render, which all chunks have in common
  std::string input;
  std::vector<int> frames;  // of all chunks, in the order of the list
  std::size_t chunks = 1;

  // A chunk's manifest is called so, with its place between the two.
  std::string manifestBefore;
  std::string manifestBehind;

  // Cuts the list into chunks of at most so many frames.
  void Cut(std::size_t most);

  // Of a chunk, counted from 1: render's --chunk cuts in the same way.
  std::vector<int> Frames(std::size_t chunk) const;

  // Its place as it stands in a name, "0003-of-0012": chunks of another size are others. The first
  // part alone has as many digits as the second.
  std::string Place(std::size_t chunk) const;
  int PlaceDigits() const;

  std::filesystem::path Manifest(std::size_t chunk) const;

  // What the program is given to render a chunk, without its own name.
  std::vector<std::string> Arguments(std::size_t chunk) const;

  // And to check all of them.
  std::vector<std::string> CheckArguments() const;
};

// The list, as an option. A list may begin like one.
std::string FramesOption(const std::vector<int>& frames);

}  // namespace glimmerhost
