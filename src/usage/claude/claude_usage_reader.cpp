// SPDX-License-Identifier: MIT
#include "usage/claude/claude_usage_reader.h"

#include <chrono>
#include <optional>
#include <utility>

#include "usage/claude/claude_tool.h"
#include "usage/usage_messages.h"

namespace nimbo {

namespace {

using ReadResult = Result<UsageSnapshot, UsageReadError>;

constexpr std::chrono::seconds kToolLimit{25};

std::string messageOr(const UsageReadError& error, const char* otherwise) {
  return error.kind == UsageReadError::Kind::usage ? error.message : otherwise;
}

UsageReadFailure bothFailed(const UsageReadError& tool, const UsageReadError& desktop) {
  return {.message = messageOr(tool, usage_messages::kClaudeCodeUnavailable) + " " +
                     messageOr(desktop, usage_messages::kDesktopUnavailable)};
}

}  // namespace

struct ClaudeUsageReader::Setup {
  Services services;
  User user;
  DesktopRead desktop;

  [[nodiscard]] ReadResult readTool(ClaudeUsageCLI& tool) const {
    const auto executable = claude_tool::findExecutable(user.home, user.searchPath, services.tool.files);
    if (executable) return tool.fetch(*executable, kToolLimit);
    return tl::unexpected(UsageReadError{UsageReadError::Kind::usage, usage_messages::kClaudeCodeNotInstalled});
  }

  /// Absent when nobody wants it any more.
  [[nodiscard]] std::optional<UsageOutcome> readEither(ClaudeUsageCLI& tool, const std::stop_token& stop) const {
    const ReadResult fromTool = readTool(tool);
    if (tool.canceled()) return std::nullopt;
    if (fromTool) return *fromTool;
    const ReadResult fromDesktop = desktop(stop);
    if (fromDesktop) return *fromDesktop;
    return tl::unexpected(bothFailed(fromTool.error(), fromDesktop.error()));
  }
};

struct ClaudeUsageReader::Read {
  Read(const ClaudeUsageCLI::Services& services, ClaudeUsageCLI::Surroundings surroundings,
       std::function<void(UsageOutcome)> whenDone)
      : tool(services, std::move(surroundings)), done(std::move(whenDone)) {}

  ClaudeUsageCLI tool;
  std::stop_source desktop;
  std::function<void(UsageOutcome)> done;  // main thread only; empty once nobody wants it
};

ClaudeUsageReader::ClaudeUsageReader(const Services& services, User user, DesktopRead desktop)
    : setup_(std::make_shared<const Setup>(Setup{services, std::move(user), std::move(desktop)})) {}

Subscription ClaudeUsageReader::operator()(UsageRequest /*request*/, std::function<void(UsageOutcome)> done) const {
  const User& user = setup_->user;
  const auto read =
      std::make_shared<Read>(setup_->services.tool,
                             ClaudeUsageCLI::Surroundings{.workspace = claude_tool::workspace(user.caches),
                                                          .environment = user.environment,
                                                          .localZone = user.localZone()},
                             std::move(done));
  setup_->services.queue.async([setup = setup_, read] {
    auto outcome = setup->readEither(read->tool, read->desktop.get_token());
    if (!outcome) return;
    setup->services.loop.post([read, outcome = *std::move(outcome)] {
      if (const auto wanted = std::exchange(read->done, nullptr)) wanted(outcome);
    });
  });
  return Subscription([read] {
    read->done = nullptr;
    read->tool.cancel();
    read->desktop.request_stop();
  });
}

}  // namespace nimbo
