// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <string>
#include <system_error>
#include <vector>

#include "base/result.h"
#include "platform/linux/files/unique_fd.h"
#include "platform/pseudo_terminal.h"

namespace nimbo {

/// A child that leads a session. Whoever holds this reaps it; until then its number is its own.
struct SessionLeader {
  pid_t pid = 0;
  UniqueFd descriptor;  ///< of the process, see processDescriptor()
};

// All start a program as the leader of a new session, with no signal blocked or ignored and no descriptor
// above those of input, output and error. The error says why it could not be started, a missing folder
// or an executable that the kernel refuses included. Any thread.

/// `terminal` becomes its controlling terminal, input, output and error.
[[nodiscard]] Result<SessionLeader, std::error_code> spawnOnTerminal(const ChildProgram& program,
                                                                     const std::string& terminal);

/// With this process's environment, output and error, and an empty input.
[[nodiscard]] Result<SessionLeader, std::error_code> spawnWithoutInput(const std::string& executable,
                                                                       const std::vector<std::string>& arguments);

/// A program by what was opened of its file, under a name, with this process's environment, output and error, and a
/// copy of `input`. It finds its file open as descriptor 3.
[[nodiscard]] Result<SessionLeader, std::error_code> spawnWithInput(const UniqueFd& executable,
                                                                    const std::vector<std::string>& words,
                                                                    const UniqueFd& input);

/// Readable once the process has ended; none when there is no such process.
[[nodiscard]] UniqueFd processDescriptor(pid_t pid);

}  // namespace nimbo
