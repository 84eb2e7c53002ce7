// SPDX-License-Identifier: BSD-3-Clause
// Command lines, a word in each line, as far as to the plan of what would be done.
#include <iostream>
#include <string>
#include <vector>

#include "fuzz/fuzz_folder.h"
#include "host/glimmerhost/command_line.h"

namespace {

// No word leads out of the folder.
std::string Word(std::string text) {
  for (char& c : text) {
    c = c == '/' || c == '\0' ? '_' : c;
  }
  return text;
}

std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    words.push_back(Word(text.substr(at, end - at)));
    at = end + 1;
  }
  return words;
}

// Nothing is rendered, written or started: what is done is looked up, listed or explained.
bool IsHarmless(const std::string& command) {
  return command == "render" || command == "submit" || command == "presets" ||
         command == "--complete" || command == "--help";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  std::filesystem::current_path(fuzz::Folder());
  std::vector<std::string> words = Words(fuzz::Text(bytes, size));
  if (!IsHarmless(words.front())) {
    words.insert(words.begin(), "render");
  }
  if (words.front() == "render" || words.front() == "submit") {
    words.insert(words.begin() + 1, "--dry-run");
  }
  words.insert(words.begin(), "glimmerhost");
  std::cout.setstate(std::ios::badbit);
  std::cerr.setstate(std::ios::badbit);
  const int code = glimmerhost::RunCommandLine(words);
  if (code < 0 || code > 3) {
    __builtin_trap();
  }
  return 0;
}
