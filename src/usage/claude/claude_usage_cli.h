// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include "base/result.h"
#include "platform/clock.h"
#include "platform/pseudo_terminal.h"
#include "platform/tool_files.h"
#include "usage/usage_model.h"

namespace nimbo {

/// One run of Claude Code on a terminal of its own, read off its usage screen. Made for one read and
/// thrown away with it.
class ClaudeUsageCLI {
 public:
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
    std::chrono::milliseconds polling{100};   ///< at most that late it is noticed that nobody wants it any more
    std::chrono::milliseconds settling{800};  ///< a screen that has not changed for longer is complete
    std::chrono::milliseconds stopping{500};  ///< from the polite request to end to the forced end
  };

  ClaudeUsageCLI(const Services& services, Surroundings surroundings, const Pace& pace);
  ClaudeUsageCLI(const Services& services, Surroundings surroundings)
      : ClaudeUsageCLI(services, std::move(surroundings), Pace{}) {}
  ClaudeUsageCLI(const ClaudeUsageCLI&) = delete;
  ClaudeUsageCLI& operator=(const ClaudeUsageCLI&) = delete;

  /// Blocks for `timeout` and the time to stop the tool at most; when it returns, the tool is gone. Not
  /// on the main thread.
  [[nodiscard]] Result<UsageSnapshot, UsageReadError> fetch(const std::filesystem::path& executable,
                                                            std::chrono::duration<double> timeout);

  /// Ends the fetch that runs, and keeps one that is still to come from starting anything. Any thread.
  void cancel();
  [[nodiscard]] bool canceled() const;

 private:
  [[nodiscard]] ChildProgram program(const std::filesystem::path& executable,
                                     const std::filesystem::path& folder) const;

  const Services services_;
  const Surroundings surroundings_;
  const Pace pace_;
  mutable std::mutex lock_;
  bool canceled_ = false;  // guarded by lock_
};

}  // namespace nimbo
