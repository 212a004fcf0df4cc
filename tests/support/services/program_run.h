// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace nimbo {

/// Runs a program of the system to its end and gives its exit status; -1 when it had none. Its output
/// is dropped. `words` begins with its whole path; `environment` replaces the test's own unless empty.
[[nodiscard]] inline int runProgram(std::vector<std::string> words, std::vector<std::string> environment = {}) {
  const auto pointersTo = [](std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (auto& string : strings) pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
  };
  auto arguments = pointersTo(words);
  auto variables = pointersTo(environment);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_WRONLY, 0);
  }
  pid_t pid = 0;
  const int failure = ::posix_spawn(&pid, arguments.front(), &actions, nullptr, arguments.data(),
                                    environment.empty() ? ::environ : variables.data());
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (failure != 0 || ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

}  // namespace nimbo
