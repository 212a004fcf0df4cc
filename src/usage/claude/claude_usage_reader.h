// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/main_loop.h"
#include "usage/claude/claude_usage_cli.h"
#include "usage/usage_model.h"
#include "usage/usage_wait.h"

namespace nimbo {

/// Reads Claude's limits: from Claude Code, and when that fails from the desktop application. A tool that has
/// shown a dead end is left alone for half an hour, unless the user asks. A `UsageRead`, to be called on the
/// main thread; it may go while a read runs.
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
  /// For the tool, what its copies share; on the queue only.
  std::shared_ptr<UsageWait> pause = std::make_shared<UsageWait>();
};

}  // namespace nimbo
