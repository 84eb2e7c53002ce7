// SPDX-License-Identifier: BSD-3-Clause
// Another program, run to its end.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace lx_test {

struct Outcome {
  int code = -1;     // -1 where it did not end by itself
  std::string text;  // of both outputs, with plain line ends
  long peak = 0;     // the most memory that it had, in KiB; 0 where the system does not tell
};

using Variables = std::map<std::string, std::string>;

// As a shell parts a line: at blanks, but not between single quotes.
std::vector<std::string> SplitArguments(const std::string& line);

// Files in the place of a child's streams; none for the streams that it has anyhow.
struct Streams {
  std::string input;
  std::string output;  // is made, or emptied; the outcome's text is of the other output then
};

//   variables  of its environment, beside those of this process
Outcome RunChild(const std::string& program, const std::vector<std::string>& arguments,
                 const Variables& variables = {}, const Streams& streams = {});

}  // namespace lx_test
