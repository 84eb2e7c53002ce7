// SPDX-License-Identifier: BSD-3-Clause
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

#include "host/support/child_process.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

struct Registry {
  std::mutex lock;
  // That nobody has waited for: their numbers are no one else's. With each the descriptor of its
  // stream as long as that is open, and -1 otherwise.
  std::map<pid_t, int> children;
};

// Never destroyed: a signal may come while the program's last objects go.
Registry& TheRegistry() {
  static auto* const registry = new Registry;
  return *registry;
}

// A child's standard streams, and the signals as a program expects them: the threads of this
// one block those that end it.
class SpawnSettings {
 public:
  //   input  negative for nothing to read
  SpawnSettings(int input, int output, int errors) {
    posix_spawn_file_actions_init(&actions_);
    if (input < 0) {
      posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    } else {
      posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO);
    }
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO);
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  int Spawn(std::vector<std::string>* line, pid_t* child) const {
    std::vector<char*> pointers;
    for (std::string& word : *line) {
      pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return posix_spawnp(child, pointers.front(), &actions_, &attributes_, pointers.data(), environ);
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

struct ChildProcess::System {
  pid_t child = 0;  // 0 when it has been waited for
  int lines = -1;   // what ReadLine reads: the child's outputs, or what was kept of them
  std::FILE* stream = nullptr;
  bool isKept = false;  // whether lines are a file, to be read from its beginning

  ~System() {
    CloseStream();
    if (lines >= 0) {
      close(lines);
    }
  }

  // Whether all went well that was left to do. Not for the registry any more before that: the
  // descriptor may be another file's at once.
  bool CloseStream() {
    if (stream == nullptr) {
      return true;
    }
    {
      const std::lock_guard<std::mutex> hold(TheRegistry().lock);
      if (const auto entry = TheRegistry().children.find(child);
          entry != TheRegistry().children.end()) {
        entry->second = -1;
      }
    }
    return std::fclose(std::exchange(stream, nullptr)) == 0;
  }

  // Leaves the child's number taken until the registry has forgotten it.
  ProcessEnd Reap() {
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    const std::lock_guard<std::mutex> hold(TheRegistry().lock);
    int status = 0;
    waitpid(child, &status, 0);
    TheRegistry().children.erase(child);
    child = 0;
    return WIFSIGNALED(status) ? ProcessEnd{0, WTERMSIG(status)}
                               : ProcessEnd{WEXITSTATUS(status), 0};
  }
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           Use use)
    : system_(std::make_unique<System>()) {
  std::vector<std::string> line{program};
  line.insert(line.end(), arguments.begin(), arguments.end());
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw Failure(program + ": cannot be started: " + std::strerror(errno));
  }
  const bool writes = use == Use::kInput;
  const int own = ends[writes ? 1 : 0];
  const int theirs = ends[writes ? 0 : 1];
  if (use == Use::kLines) {
    system_->lines = own;
  } else {
    system_->isKept = true;
    system_->stream = fdopen(own, writes ? "wb" : "rb");
    // Not a pipe: nobody reads it before the end, and the child would wait.
    system_->lines = memfd_create("words", MFD_CLOEXEC);
  }
  const int words = use == Use::kLines ? theirs : system_->lines;
  int fault = words < 0 ? errno : 0;
  if (fault == 0 && system_->isKept && system_->stream == nullptr) {
    fault = ENOMEM;
    close(own);
  }
  if (fault == 0) {
    const SpawnSettings settings(writes ? theirs : -1, writes ? words : theirs, words);
    const std::lock_guard<std::mutex> hold(TheRegistry().lock);
    fault = settings.Spawn(&line, &system_->child);
    if (fault == 0) {
      TheRegistry().children.emplace(system_->child, use == Use::kLines ? -1 : own);
    }
  }
  close(theirs);
  if (fault == ENOENT) {
    throw MissingInput(program + ": not found");
  }
  if (fault != 0) {
    throw Failure(program + ": cannot be started: " + std::strerror(fault));
  }
}

ChildProcess::~ChildProcess() {
  if (system_->child != 0) {
    kill(system_->child, SIGTERM);
    // A program may take a signal only when what it waits for has come: the end of its input, too.
    system_->CloseStream();
    system_->Reap();
  }
}

bool ChildProcess::ReadSome() {
  std::array<char, 4096> buffer{};
  ssize_t got = 0;
  do {
    got = read(system_->lines, buffer.data(), buffer.size());
  } while (got < 0 && errno == EINTR);
  if (got <= 0) {
    return false;
  }
  unread_.append(buffer.data(), static_cast<std::size_t>(got));
  return true;
}

std::FILE* ChildProcess::Stream() const { return system_->stream; }

bool ChildProcess::CloseStream() { return system_->CloseStream(); }

ProcessEnd ChildProcess::Wait() {
  const ProcessEnd end = system_->Reap();
  if (system_->isKept) {
    lseek(system_->lines, 0, SEEK_SET);
  }
  return end;
}

void EndChildren() noexcept {
  Registry& registry = TheRegistry();
  registry.lock.lock();
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const auto& [child, stream] : registry.children) {
    kill(child, SIGTERM);
    // Its input ends so, and another thread that is at it finds the descriptor as good as before.
    if (stream >= 0 && nothing >= 0) {
      dup2(nothing, stream);
    }
  }
  for (const auto& [child, stream] : registry.children) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
  }
}

}  // namespace glimmerhost
