// SPDX-License-Identifier: BSD-3-Clause
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "tests/support/child_program.h"

namespace lx_test {
namespace {

// This process's environment with those variables in it, as the system wants it.
std::vector<std::string> Environment(const Variables& variables) {
  std::vector<std::string> lines;
  for (char** line = environ; *line != nullptr; ++line) {
    if (!variables.contains(std::string(*line, std::strcspn(*line, "=")))) {
      lines.emplace_back(*line);
    }
  }
  for (const auto& [name, value] : variables) {
    lines.push_back(name + "=" + value);
  }
  return lines;
}

std::vector<char*> Pointers(std::vector<std::string>* lines) {
  std::vector<char*> pointers;
  for (std::string& line : *lines) {
    pointers.push_back(line.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Outcome RunChild(const std::string& program, const std::vector<std::string>& arguments,
                 const Variables& variables, const Streams& streams) {
  std::vector<std::string> line{program};
  line.insert(line.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = Environment(variables);
  int ends[2];
  if (pipe(ends) != 0) {
    return {-1, "no pipe", 0};
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
  if (!streams.input.empty()) {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, streams.input.c_str(), O_RDONLY, 0);
  }
  if (!streams.output.empty()) {
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, streams.output.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
  }
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  posix_spawn_file_actions_addclose(&actions, ends[1]);
  pid_t child = 0;
  const int fault = posix_spawn(&child, program.c_str(), &actions, nullptr, Pointers(&line).data(),
                                Pointers(&environment).data());
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  Outcome outcome{-1, fault == 0 ? "" : std::strerror(fault), 0};
  std::array<char, 4096> buffer{};
  for (ssize_t got = 0; (got = read(ends[0], buffer.data(), buffer.size())) > 0;) {
    outcome.text.append(buffer.data(), static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  rusage usage{};
  if (fault == 0 && wait4(child, &status, 0, &usage) == child && WIFEXITED(status)) {
    outcome.code = WEXITSTATUS(status);
    outcome.peak = usage.ru_maxrss;
  }
  return outcome;
}

}  // namespace lx_test
