// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/terminal/pty_terminals.h"

namespace nimbo {

/// By the kernel's lists of processes and of who has a file open.
[[nodiscard]] TerminalSystem libprocTerminalSystem();

}  // namespace nimbo
