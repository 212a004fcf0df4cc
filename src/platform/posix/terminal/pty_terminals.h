// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/processes/session_spawn.h"
#include "platform/pseudo_terminal.h"

namespace nimbo {

/// What each system does in its own way.
struct TerminalSystem {
  DescriptorGuard guard;
  /// Kills every process of the session that `leader` led and, for a short while, waits until they are gone. `leader`
  /// has ended and is not reaped yet.
  void (*killSession)(pid_t leader);
  /// The same for the processes, of whatever session, that have the terminal `path` open.
  void (*killHolders)(const std::string& path);
};

/// The kernel's pseudo-terminals. A program begins with nothing of this process but its user and its
/// priority: no descriptor, no blocked or ignored signal, no variable that was not given.
class PtyTerminals final : public PseudoTerminals {
 public:
  explicit PtyTerminals(const TerminalSystem& system) : system_(system) {}

  [[nodiscard]] Result<std::unique_ptr<PseudoTerminal>, std::error_code> open(TerminalSize size) override;

 private:
  const TerminalSystem system_;
};

}  // namespace nimbo
