// SPDX-License-Identifier: BSD-3-Clause
// Runs of the program in this process, in a folder of files that are there again before each.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/command_line_run.h"
#include "tests/support/scratch_folder.h"

namespace mutations {

struct RunResult : lx_test::CommandLineRun {
  // What is not as it was before, by names relative to the folder.
  std::vector<std::string> made;
  std::vector<std::string> changed;  // or gone
};

class RunFolder {
 public:
  // The folder becomes the current one until this is gone.
  RunFolder();
  ~RunFolder();
  RunFolder(const RunFolder&) = delete;
  RunFolder& operator=(const RunFolder&) = delete;

  // What stands in the folder now is what each run finds.
  void Keep();

  // Puts a file there for the next run alone.
  void Put(const std::string& name, const std::string& bytes);

  //   line   without the program's name
  //   input  a file that is standard input; empty for nothing there
  RunResult Do(const std::vector<std::string>& line, const std::string& input = "");

  // Puts back what was kept. Made files can be looked at until then.
  void Restore();

  // Whether something was made beside the folder.
  bool IsLeftAlone() const;

  // The bytes of a file before the run.
  const std::string& Before(const std::string& name) const { return before_.at(name); }

 private:
  using Files = std::map<std::string, std::string>;

  Files Look() const;

  lx_test::ScratchFolder around_;
  std::filesystem::path folder_;
  std::filesystem::path current_;
  Files kept_;
  Files before_;
};

std::string ReadBytes(const std::filesystem::path& file);
void WriteBytes(const std::filesystem::path& file, const std::string& bytes);

}  // namespace mutations
