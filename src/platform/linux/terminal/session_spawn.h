// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <string>
#include <system_error>

#include "base/result.h"
#include "platform/linux/files/unique_fd.h"
#include "platform/pseudo_terminal.h"

namespace nimbo {

/// A child that leads a session. Whoever holds this reaps it; until then its number is its own.
struct SessionLeader {
  pid_t pid = 0;
  UniqueFd descriptor;  ///< of the process (pidfd), readable once it has ended
};

/// Starts `program` as the leader of a new session on `terminal`, which becomes its controlling terminal,
/// input, output and error. The error says why it could not be started, a missing folder or an
/// executable that the kernel refuses included. Any thread.
[[nodiscard]] Result<SessionLeader, std::error_code> spawnSession(const ChildProgram& program,
                                                                  const std::string& terminal);

}  // namespace nimbo
