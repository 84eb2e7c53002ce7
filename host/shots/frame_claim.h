// SPDX-License-Identifier: BSD-3-Clause
// FrameClaim: a frame is in work by one program, whichever others render the same shot.
//
// A hidden file beside the output, .out.0001.png.claim, says it, and names machine and process for
// people. Its lock is what counts: the system frees it when its program ends, however that is, and
// no clock is asked. Where a file system has no locks, the file itself counts, and it is left over
// if its process is no more.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host/support/locked_file.h"

namespace glimmerhost {

class FrameClaim {
 public:
  // Null if another program has the frame in work. What a program left over that is gone is taken
  // over. Throws Failure, which names the file, where there can be none.
  static std::unique_ptr<FrameClaim> Try(const std::filesystem::path& output);

  // Removes what a program left over that was killed when the frame was done already.
  static void RemoveLeftover(const std::filesystem::path& output);

  // Where the claim on an output lies.
  static std::filesystem::path FileOf(const std::filesystem::path& output);

  // Gives the frame back, and removes the file.
  ~FrameClaim();
  FrameClaim(const FrameClaim&) = delete;
  FrameClaim& operator=(const FrameClaim&) = delete;

 private:
  FrameClaim(std::filesystem::path path, std::unique_ptr<LockedFile> file);

  static std::unique_ptr<FrameClaim> Make(const std::filesystem::path& path, bool* isHeld);
  static std::unique_ptr<FrameClaim> TakeOver(const std::filesystem::path& path, bool* isHeld);
  void Sign();

  std::filesystem::path path_;
  std::unique_ptr<LockedFile> file_;
};

}  // namespace glimmerhost
