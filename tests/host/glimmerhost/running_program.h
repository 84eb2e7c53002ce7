// SPDX-License-Identifier: BSD-3-Clause
// The program while it runs, and the files that it makes then.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/child_program.h"

namespace host_test {

// The program while it runs, with the signals that a test wants ignored from its start.
class RunningProgram {
 public:
  //   said  a file for what it says; empty for this process's own stream
  explicit RunningProgram(const std::string& arguments, const std::vector<int>& ignored = {},
                          const std::string& said = "", const std::string& program = PROGRAM) {
    std::vector<std::string> words = lx_test::SplitArguments(arguments);
    words.insert(words.begin(), program);
    std::vector<char*> line;
    for (std::string& word : words) {
      line.push_back(word.data());
    }
    line.push_back(nullptr);
    for (const int number : ignored) {
      signal(number, SIG_IGN);  // a child keeps what is ignored
    }
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    if (!said.empty()) {
      posix_spawn_file_actions_addopen(&streams, STDERR_FILENO, said.c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC, 0600);
    }
    EXPECT_EQ(0, posix_spawnp(&child_, program.c_str(), &streams, nullptr, line.data(), environ));
    posix_spawn_file_actions_destroy(&streams);
    for (const int number : ignored) {
      signal(number, SIG_DFL);
    }
  }

  void Send(int number) const { kill(child_, number); }

  // It does nothing more until it is sent SIGCONT, or ended.
  void Stop() const {
    kill(child_, SIGSTOP);
    int status = 0;
    EXPECT_EQ(child_, waitpid(child_, &status, WUNTRACED));
  }

  // Its exit code; minus the signal that killed it.
  int Wait() const {
    int status = 0;
    EXPECT_EQ(child_, waitpid(child_, &status, 0));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  pid_t child_ = 0;
};

// Comes back when a file is made in a folder that was watched before.
class FileWatch {
 public:
  explicit FileWatch(const std::filesystem::path& folder) : events_(inotify_init1(IN_CLOEXEC)) {
    EXPECT_LE(0, inotify_add_watch(events_, folder.c_str(), IN_CREATE));
  }
  ~FileWatch() { close(events_); }
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  //   ending  of its name
  void WaitFor(const std::string& ending) const {
    for (bool found = false; !found;) {
      alignas(inotify_event) std::array<char, 4096> events{};
      const ssize_t size = read(events_, events.data(), events.size());
      ASSERT_LT(0, size);
      for (ssize_t at = 0; at < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(events.data() + at);
        found |= event->len > 0 && std::string(event->name).ends_with(ending);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
  }

  void WaitForOne() const { WaitFor(""); }

 private:
  int events_;
};

}  // namespace host_test
