// SPDX-License-Identifier: BSD-3-Clause
// TemporaryFile: an output that is not whole yet, under a name of its own beside its place.
//
// The name, .shot.0001.HOST-PID-RANDOM.part.exr for shot.0001.exr, keeps the ending, which
// libraries choose the format by, and says whose it is: folders are shared by many machines. Nobody
// can foresee it, and so put a file or a link there that would be written through; whoever makes
// the file makes it new, or fails.
//
// All of these files are in one list, so that nothing is left of them when a signal ends the
// program (ending.h). What a program leaves that was killed, the next one removes that writes
// the same output on the same machine.
#pragma once

#include <filesystem>
#include <mutex>
#include <string>

namespace glimmerhost {

class TemporaryFile {
 public:
  // Names the file and removes what ended programs of this machine have left of the same output.
  // Making it is the caller's, by FileUse::kMake or Write.
  //   target  where it goes when it is whole
  explicit TemporaryFile(std::filesystem::path target);

  // Removes the file unless it has been moved in. On some systems it must be closed by then.
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::filesystem::path& Path() const { return path_; }

  // Makes the file, with that text in it. Throws Failure with the bare reason.
  void Write(const std::string& text) const;

  // Once the file is closed: syncs it, gives it its place, and syncs the folder.
  //   replace  false: a file that another program has put there meanwhile stays
  // Throws Failure with the bare reason.
  void MoveIn(bool replace);

 private:
  std::filesystem::path target_;
  std::filesystem::path path_;
  bool listed_ = true;
};

// While it is held no signal ends the program. For the moment in which a listed file is made:
// one that is made after the list was cleared would stay. Not for work that takes long.
[[nodiscard]] std::unique_lock<std::mutex> HoldTemporaryFiles();

// Lists another file, which the program has made for the time of its work, and takes it off again.
//   hold  what HoldTemporaryFiles gave: the file is made, or removed, under it
void RemoveAtEnd(const std::filesystem::path& file, const std::unique_lock<std::mutex>& hold);
void ForgetAtEnd(const std::filesystem::path& file, const std::unique_lock<std::mutex>& hold);

// Removes every listed file. From then on whoever would make or move one waits for ever: only
// for a program that ends at once.
void AbandonTemporaryFiles() noexcept;

}  // namespace glimmerhost
