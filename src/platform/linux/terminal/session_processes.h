// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <optional>
#include <string_view>

#include "platform/posix/terminal/pty_terminals.h"

namespace nimbo {

/// What a /proc/PID/stat says of a process's place; absent for other text.
struct ProcessPlace {
  bool zombie = false;
  pid_t session = 0;
  bool operator==(const ProcessPlace&) const = default;
};
[[nodiscard]] std::optional<ProcessPlace> parseProcessPlace(std::string_view text);

/// By what /proc tells of processes.
[[nodiscard]] TerminalSystem procfsTerminalSystem();

}  // namespace nimbo
