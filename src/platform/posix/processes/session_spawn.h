// SPDX-License-Identifier: MIT
#pragma once

#include <spawn.h>
#include <sys/types.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "base/result.h"

namespace nimbo {

/// The system's way to keep this process's descriptors from `first` on out of a program that is to be started, all but
/// those that a step makes: something for the attributes or the steps. 0 or an error number.
using DescriptorGuard = int (*)(posix_spawnattr_t* attributes, posix_spawn_file_actions_t* steps, int first);

struct SessionProgram {
  std::string executable;
  std::vector<std::string> words;  ///< the name that it is told, and its arguments
  char* const* environment;        ///< a list as the kernel has it
  int firstClosed = STDERR_FILENO + 1;
};

/// Starts a program as the leader of a new session, with no signal blocked or ignored. `prepare` adds what is done in
/// the child before it begins; its result is 0 or an error number. The caller reaps the child. The error says why it
/// could not be started, an executable that the kernel refuses included. Any thread.
[[nodiscard]] Result<pid_t, std::error_code> spawnSession(
    SessionProgram program, DescriptorGuard guard,
    const std::function<int(posix_spawn_file_actions_t* steps)>& prepare);

/// The kernel's form of a list of texts; it points into `texts`.
[[nodiscard]] std::vector<char*> pointers(std::vector<std::string>& texts);

/// The name of an executable with its arguments.
[[nodiscard]] std::vector<std::string> commandOf(const std::string& executable,
                                                 const std::vector<std::string>& arguments);

}  // namespace nimbo
