// SPDX-License-Identifier: BSD-3-Clause
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <set>

#include "host/support/child_process.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

struct Registry {
  std::mutex lock;
  std::set<pid_t> children;  // that nobody has waited for: their numbers are no one else's
};

// Never destroyed: a signal may come while the program's last objects go.
Registry& TheRegistry() {
  static auto* const registry = new Registry;
  return *registry;
}

// A child's outputs and its input, and the signals as a program expects them: the threads of this
// one block those that end it.
class SpawnSettings {
 public:
  explicit SpawnSettings(int output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, output, STDERR_FILENO);
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
  int output = -1;

  ~System() {
    if (output >= 0) {
      close(output);
    }
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

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments)
    : system_(std::make_unique<System>()) {
  std::vector<std::string> line{program};
  line.insert(line.end(), arguments.begin(), arguments.end());
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw Failure(program + ": cannot be started: " + std::strerror(errno));
  }
  system_->output = ends[0];
  int fault = 0;
  {
    const SpawnSettings settings(ends[1]);
    const std::lock_guard<std::mutex> hold(TheRegistry().lock);
    fault = settings.Spawn(&line, &system_->child);
    if (fault == 0) {
      TheRegistry().children.insert(system_->child);
    }
  }
  close(ends[1]);
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
    system_->Reap();
  }
}

bool ChildProcess::ReadSome() {
  std::array<char, 4096> buffer{};
  ssize_t got = 0;
  do {
    got = read(system_->output, buffer.data(), buffer.size());
  } while (got < 0 && errno == EINTR);
  if (got <= 0) {
    return false;
  }
  unread_.append(buffer.data(), static_cast<std::size_t>(got));
  return true;
}

ProcessEnd ChildProcess::Wait() { return system_->Reap(); }

void EndChildren() noexcept {
  Registry& registry = TheRegistry();
  registry.lock.lock();
  for (const pid_t child : registry.children) {
    kill(child, SIGTERM);
  }
  for (const pid_t child : registry.children) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
  }
}

}  // namespace glimmerhost
