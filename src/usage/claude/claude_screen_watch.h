// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "platform/clock.h"
#include "platform/pseudo_terminal.h"
#include "usage/claude/claude_usage_cli.h"
#include "usage/claude/trust_question.h"
#include "usage/claude/usage_screen_parser.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Follows what the running tool draws until its usage screen stands still, and answers its question
/// whether it may trust its folder, once. One thread.
class ClaudeScreenWatch {
 public:
  using Seconds = std::chrono::duration<double>;

  struct Conditions {
    std::vector<std::string> folderNames;  ///< the tool's own folder, by each of its names
    std::string localZone;
    ClaudeUsageCLI::Pace pace;
    std::function<bool()> canceled;
  };

  /// Both outlive it. Nothing of `program` is stopped.
  ClaudeScreenWatch(TerminalProgram& program, const Clock& clock, Conditions conditions);

  [[nodiscard]] Result<UsageSnapshot, UsageReadError> run(Seconds timeout);

 private:
  enum class Turn {
    goOn,
    settled,  ///< the screen is complete
    ended,    ///< nothing more will come
    tooMuch,  ///< more than any usage screen
  };
  [[nodiscard]] Turn turn(Seconds deadline);
  [[nodiscard]] std::chrono::milliseconds patience(Seconds deadline) const;
  [[nodiscard]] bool take(std::string_view bytes);
  void answer();
  void interpret();
  [[nodiscard]] bool hasSettled() const;

  TerminalProgram& program_;
  const Clock& clock_;
  const Conditions conditions_;
  UsageScreenParser screen_;
  std::size_t size_ = 0;                   // of what `screen_` was given
  std::optional<TrustQuestion> question_;  // until it is answered
  std::optional<UsageTime> drawnAt_;       // of what was not interpreted yet
  std::optional<UsageSnapshot> latest_;
  Seconds latestOutput_;
};

}  // namespace nimbo
