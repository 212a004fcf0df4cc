// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/files/unique_fd.h"
#include "platform/linux/terminal/session_spawn.h"
#include "platform/pseudo_terminal.h"

namespace nimbo {

/// The child at the other end of a pseudo-terminal, and its whole session.
class PtyProgram final : public TerminalProgram {
 public:
  /// `terminal` is the primary side and does not block; `secondary` names the other one.
  PtyProgram(UniqueFd terminal, std::string secondary, SessionLeader leader, std::filesystem::path procRoot);
  ~PtyProgram() override;
  PtyProgram(const PtyProgram&) = delete;
  PtyProgram& operator=(const PtyProgram&) = delete;

  [[nodiscard]] Input read(std::string& bytes, std::chrono::milliseconds patience) override;
  [[nodiscard]] bool write(std::string_view bytes) override;
  [[nodiscard]] bool running() override;
  void stop(std::chrono::milliseconds patience) override;

 private:
  [[nodiscard]] bool endsWithin(std::chrono::milliseconds patience);
  void endSession();
  [[nodiscard]] bool isHeld() const;

  const UniqueFd terminal_;
  const std::string secondary_;
  SessionLeader leader_;  // without a descriptor once it has been reaped
  const std::filesystem::path procRoot_;
};

}  // namespace nimbo
