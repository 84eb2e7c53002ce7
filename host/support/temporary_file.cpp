// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/temporary_file.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "host/support/failure.h"
#include "host/support/files.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPart = ".part";

constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::size_t kRandomDigits = 16;

struct Registry {
  std::mutex lock;
  std::set<fs::path> files;
  // Of each folder, what looked like a leftover when it was looked through: once, since a shot
  // has as many outputs as its folder has files.
  std::map<fs::path, std::vector<fs::path>> leftovers;
};

// Never destroyed: a signal may come while the program's last objects go.
Registry& TheRegistry() {
  static auto* const registry = new Registry;
  return *registry;
}

fs::path FolderOf(const fs::path& target) {
  return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// The machine's name, so that it can stand in a file's.
std::string PlainHostName() {
  constexpr std::size_t kLongest = 63;
  std::string name = HostName().substr(0, kLongest);
  std::replace_if(
      name.begin(), name.end(),
      [](char c) {
        return !((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'));
      },
      '-');
  return name.empty() ? "local" : name;
}

// The same in every program of every run, as std::hash need not be.
std::string Digest(const fs::path::string_type& text) {
  std::uint64_t digest = 0xCBF29CE484222325U;
  for (const auto c : text) {
    digest = (digest ^ static_cast<std::uint64_t>(c)) * 0x100000001B3U;
  }
  char hex[16];
  return {hex, std::to_chars(hex, hex + sizeof hex, digest, 16).ptr};
}

// Sixteen digits, other ones each time.
std::string Unforeseeable() {
  std::random_device source;
  std::string digits;
  for (std::size_t i = 0; i < kRandomDigits; ++i) {
    digits += kHexDigits[source() % kHexDigits.size()];
  }
  return digits;
}

// All of a temporary name before the process's number. Systems allow 255 letters: of a long name
// stands the beginning, and what tells it from others like it.
fs::path NameBeforeProcess(const fs::path& target) {
  constexpr std::size_t kLongest = 120;
  fs::path::string_type stem = target.stem().native();
  fs::path name(".");
  if (stem.size() > kLongest) {
    name += stem.substr(0, kLongest);
    name += "~" + Digest(stem);
  } else {
    name += stem;
  }
  name += "." + PlainHostName() + "-";
  return name;
}

fs::path NameBehindProcess(const fs::path& target) {
  fs::path name(kPart);
  name += target.extension();
  return name;
}

// Nothing is said of a folder that cannot be read: its leftovers stay.
std::vector<fs::path> FindLeftovers(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path name = entry->path().filename();
    if (name.stem().extension() == kPart || name.extension() == kPart) {
      found.push_back(name);
    }
  }
  return found;
}

// Whether a name is one of this output on this machine, of a process that is no more. A number
// may have gone to another process since: then the file stays until that has ended too.
bool IsLeftover(const fs::path& name, const fs::path& target) {
  const auto& text = name.native();
  const auto before = NameBeforeProcess(target).native();
  const auto behind = NameBehindProcess(target).native();
  if (text.size() <= before.size() + behind.size() || !text.starts_with(before) ||
      !text.ends_with(behind)) {
    return false;
  }
  const auto between = text.substr(before.size(), text.size() - before.size() - behind.size());
  const std::size_t dash = between.find('-');
  if (dash == between.npos || between.size() - dash - 1 != kRandomDigits) {
    return false;
  }
  for (std::size_t i = dash + 1; i < between.size(); ++i) {
    if (std::find(kHexDigits.begin(), kHexDigits.end(), between[i]) == kHexDigits.end()) {
      return false;
    }
  }
  std::uint64_t process = 0;
  for (std::size_t i = 0; i < dash; ++i) {
    if (between[i] < '0' || between[i] > '9' || process > UINT32_MAX) {
      return false;
    }
    process = process * 10 + static_cast<std::uint64_t>(between[i] - '0');
  }
  return dash > 0 && process <= UINT32_MAX && !ProcessExists(static_cast<std::uint32_t>(process));
}

void RemoveLeftovers(const fs::path& target, Registry* registry) {
  const fs::path folder = FolderOf(target);
  auto found = registry->leftovers.find(folder);
  if (found == registry->leftovers.end()) {
    found = registry->leftovers.emplace(folder, FindLeftovers(folder)).first;
  }
  std::erase_if(found->second, [&](const fs::path& name) {
    std::error_code error;
    return IsLeftover(name, target) && fs::remove(folder / name, error);
  });
}

}  // namespace

TemporaryFile::TemporaryFile(fs::path target) : target_(std::move(target)) {
  fs::path name = NameBeforeProcess(target_);
  name += std::to_string(ProcessId()) + "-" + Unforeseeable();
  name += NameBehindProcess(target_);
  path_ = FolderOf(target_) / name;
  const auto hold = HoldTemporaryFiles();
  Registry& registry = TheRegistry();
  RemoveLeftovers(target_, &registry);
  registry.files.insert(path_);
}

TemporaryFile::~TemporaryFile() {
  if (listed_) {
    const auto hold = HoldTemporaryFiles();
    std::error_code error;
    fs::remove(path_, error);
    TheRegistry().files.erase(path_);
  }
}

void TemporaryFile::Write(const std::string& text) const {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(nullptr, std::fclose);
  {
    const auto hold = HoldTemporaryFiles();
    file.reset(OpenFile(path_, FileUse::kMake));
  }
  const bool written =
      file != nullptr && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  if (!written || std::fclose(file.release()) != 0) {
    throw Failure("its folder is missing, full or cannot be written to");
  }
}

void TemporaryFile::MoveIn(bool replace) {
  std::error_code error = SyncFile(path_);
  if (!error) {
    const auto hold = HoldTemporaryFiles();
    error = MoveFileTo(path_, target_, replace);
    if (!error) {
      TheRegistry().files.erase(path_);
      listed_ = false;
    }
  }
  if (error == std::errc::file_exists) {
    throw Failure("another program has made it meanwhile");
  }
  if (!error) {
    error = SyncFolder(FolderOf(target_));
  }
  if (error) {
    throw Failure(error.message());
  }
}

std::unique_lock<std::mutex> HoldTemporaryFiles() {
  return std::unique_lock<std::mutex>(TheRegistry().lock);
}

void RemoveAtEnd(const fs::path& file, const std::unique_lock<std::mutex>& /*hold*/) {
  TheRegistry().files.insert(file);
}

void ForgetAtEnd(const fs::path& file, const std::unique_lock<std::mutex>& /*hold*/) {
  TheRegistry().files.erase(file);
}

void AbandonTemporaryFiles() noexcept {
  Registry& registry = TheRegistry();
  registry.lock.lock();
  for (const fs::path& file : registry.files) {
    std::error_code error;
    fs::remove(file, error);
  }
}

}  // namespace glimmerhost
