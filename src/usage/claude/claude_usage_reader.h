// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/main_loop.h"
#include "usage/claude/claude_usage_cli.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Reads Claude's limits: from Claude Code, and when that fails from the desktop application. A
/// `UsageRead`, to be called on the main thread; it may go while a read runs.
struct ClaudeUsageReader {
  /// They outlive every read. `queue` is for this alone: a job may take half a minute.
  struct Services {
    ClaudeUsageCLI::Services tool;
    WorkQueue& queue;
    MainLoop& loop;
  };

  /// What the user has, as far as the tool is concerned.
  struct User {
    std::filesystem::path home;
    std::filesystem::path caches;
    std::string searchPath;                  ///< PATH
    std::vector<std::string> environment;    ///< "NAME=value"
    std::function<std::string()> localZone;  ///< as in `parseResetText`; asked at each read
  };

  /// Blocks; once a stop is asked for it ends with the call that runs. Called on the queue.
  using DesktopRead = std::function<UsageOutcome(const std::stop_token& stop)>;

  /// As in `UsageRead`. What runs when the subscription is dropped ends soon, on the queue.
  [[nodiscard]] Subscription operator()(UsageRequest request, std::function<void(UsageOutcome)> done) const;

  Services services;
  User user;
  DesktopRead desktop;
};

}  // namespace nimbo
