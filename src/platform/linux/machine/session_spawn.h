// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/files/unique_fd.h"
#include "platform/posix/processes/session_spawn.h"

namespace nimbo {

/// A child that leads a session. Whoever holds this reaps it; until then its number is its own.
struct SessionLeader {
  pid_t pid = 0;
  UniqueFd descriptor;  ///< of the process, see processDescriptor()
};

// Both start a program as the leader of a new session, see spawnSession(), with this process's environment, output and
// error and no other descriptor. Any thread.

/// With an empty input.
[[nodiscard]] Result<SessionLeader, std::error_code> spawnWithoutInput(const std::string& executable,
                                                                       const std::vector<std::string>& arguments);

/// A program by what was opened of its file, under a name, with a copy of `input`. It finds its file open as
/// descriptor 3.
[[nodiscard]] Result<SessionLeader, std::error_code> spawnWithInput(const UniqueFd& executable,
                                                                    const std::vector<std::string>& words,
                                                                    const UniqueFd& input);

/// A DescriptorGuard.
[[nodiscard]] int closeFrom(posix_spawnattr_t* attributes, posix_spawn_file_actions_t* steps, int first);

/// Readable once the process has ended; none when there is no such process.
[[nodiscard]] UniqueFd processDescriptor(pid_t pid);

}  // namespace nimbo
