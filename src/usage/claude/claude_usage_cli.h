// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/pseudo_terminal.h"
#include "platform/user_files.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Runs Claude Code on a terminal of its own and reads the limits off its usage screen.
struct ClaudeUsageCLI {
  /// They outlive it.
  struct Services {
    PseudoTerminals& terminals;
    const ToolFiles& files;
    const Clock& clock;
  };

  struct Surroundings {
    std::filesystem::path workspace;       ///< it runs there; kept empty
    std::vector<std::string> environment;  ///< "NAME=value", as inherited
    std::string localZone;                 ///< as in `parseResetText`
  };

  struct Pace {
    std::chrono::milliseconds polling{100};   ///< at most that late a stop that is asked for is noticed
    std::chrono::milliseconds settling{800};  ///< a screen that has not changed for longer is complete
    std::chrono::milliseconds stopping{500};  ///< from the polite request to end to the forced end
  };

  /// Blocks for `timeout` and the time to stop the tool at most, less where the tool shows that nothing will come; when
  /// it returns, the tool is gone. Not on the main thread.
  [[nodiscard]] UsageOutcome fetch(const std::filesystem::path& executable, std::chrono::duration<double> timeout,
                                   const std::stop_token& stop) const;

  Services services;
  Surroundings surroundings;
  Pace pace{};
};

}  // namespace nimbo
