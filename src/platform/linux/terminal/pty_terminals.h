// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "platform/pseudo_terminal.h"

namespace nimbo {

/// Unix 98 pseudo-terminals. A program begins with nothing of this process but its user and its
/// priority: no descriptor, no blocked or ignored signal, no variable that was not given.
class PtyTerminals final : public PseudoTerminals {
 public:
  /// `procRoot` is where the processes are listed that belong to a session that must end.
  explicit PtyTerminals(std::filesystem::path procRoot = "/proc");

  [[nodiscard]] Result<std::unique_ptr<PseudoTerminal>, std::error_code> open(TerminalSize size) override;

 private:
  const std::filesystem::path procRoot_;
};

}  // namespace nimbo
