// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/frame_claim.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <sstream>
#include <system_error>
#include <utility>

#include "host/shots/file_hash.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/temporary_file.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& path, const std::error_code& error) {
  throw Failure(path.string() + ": the frame cannot be claimed: " + error.message());
}

// Whether the process that has signed is no more. Of another machine's nobody here can tell.
bool IsGone(const LockedFile& file) {
  std::string text;
  file.Read(0, &text);
  std::istringstream words(text);
  std::uint32_t process = 0;
  std::string host;
  return words >> process && words >> host && host == HostName() && !ProcessExists(process);
}

}  // namespace

fs::path FrameClaim::FileOf(const fs::path& output) {
  // Systems allow names of 255 letters.
  constexpr std::size_t kLongest = 200;
  const fs::path::string_type name = output.filename().native();
  fs::path claim(".");
  claim += name.substr(0, kLongest);
  if (name.size() > kLongest) {
    const std::string hash = TextHash(output.filename().string());
    claim += "~" + hash.substr(hash.find(':') + 1);
  }
  claim += ".claim";
  return output.parent_path() / claim;
}

std::unique_ptr<FrameClaim> FrameClaim::Try(const fs::path& output) {
  const fs::path path = FileOf(output);
  // Others may make and remove the file between any two of these steps.
  for (bool isHeld = false; !isHeld;) {
    std::unique_ptr<FrameClaim> claim = Make(path, &isHeld);
    if (!claim && !isHeld) {
      claim = TakeOver(path, &isHeld);
    }
    if (claim) {
      claim->Sign();
      return claim;
    }
  }
  return nullptr;
}

void FrameClaim::RemoveLeftover(const fs::path& output) {
  std::error_code error;
  if (fs::exists(FileOf(output), error)) {
    Try(output);
  }
}

// Null, too, if there is such a file already.
std::unique_ptr<FrameClaim> FrameClaim::Make(const fs::path& path, bool* isHeld) {
  // Before there is a file: without memory none is left that nobody knows.
  std::unique_ptr<FrameClaim> claim(new FrameClaim(path, nullptr));
  const auto hold = HoldTemporaryFiles();
  std::error_code error;
  std::unique_ptr<LockedFile> file = LockedFile::Open(path, LockedFile::How::kMakeAnew, &error);
  if (!file) {
    *isHeld = error == std::errc::device_or_resource_busy;
    if (!*isHeld && error != std::errc::file_exists) {
      Fail(path, error);
    }
    return nullptr;
  }
  // Between the two another program may have taken it for a leftover.
  if (file->TryLock() == LockAnswer::kHeld || !file->IsAt(path)) {
    *isHeld = true;
    return nullptr;
  }
  try {
    RemoveAtEnd(path, hold);
  } catch (const std::bad_alloc&) {
    fs::remove(path, error);
    throw;
  }
  claim->file_ = std::move(file);
  return claim;
}

// Null, too, if the file has gone meanwhile.
std::unique_ptr<FrameClaim> FrameClaim::TakeOver(const fs::path& path, bool* isHeld) {
  const auto hold = HoldTemporaryFiles();
  std::error_code error;
  std::unique_ptr<LockedFile> file = LockedFile::Open(path, LockedFile::How::kAsItIs, &error);
  if (!file) {
    *isHeld = error == std::errc::device_or_resource_busy;
    if (!*isHeld && error != std::errc::no_such_file_or_directory) {
      Fail(path, error);
    }
    return nullptr;
  }
  if (!file->IsRegular()) {
    Fail(path, std::make_error_code(std::errc::invalid_argument));
  }
  switch (file->TryLock()) {
    case LockAnswer::kHeld:
      *isHeld = true;
      return nullptr;
    case LockAnswer::kNoLocks:
      *isHeld = !IsGone(*file);
      if (!*isHeld) {
        fs::remove(path, error);
      }
      return nullptr;
    case LockAnswer::kTaken:
      break;
  }
  // The one who had it may have removed it before it was free.
  if (!file->IsAt(path)) {
    return nullptr;
  }
  RemoveAtEnd(path, hold);
  return std::unique_ptr<FrameClaim>(new FrameClaim(path, std::move(file)));
}

FrameClaim::FrameClaim(fs::path path, std::unique_ptr<LockedFile> file)
    : path_(std::move(path)), file_(std::move(file)) {}

// For people, and where there are no locks. Nothing is lost where the disk is full.
void FrameClaim::Sign() {
  file_->Truncate(0);
  file_->Append(std::to_string(ProcessId()) + " " + HostName() + "\n");
}

// While the lock is held, so that nobody has the file for its own yet.
FrameClaim::~FrameClaim() {
  if (!file_) {
    return;
  }
  const auto hold = HoldTemporaryFiles();
  std::error_code error;
  if (file_->IsAt(path_)) {
    fs::remove(path_, error);
  }
  ForgetAtEnd(path_, hold);
}

}  // namespace glimmerhost
