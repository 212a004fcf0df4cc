// SPDX-License-Identifier: MIT
#include "usage/claude/claude_usage_reader.h"

#include <chrono>
#include <memory>
#include <utility>

#include "usage/claude/claude_tool.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kToolLimit{25};
constexpr std::chrono::minutes kPause{30};

std::string messageOr(const UsageError& error, const char* otherwise) {
  return error.message.empty() ? otherwise : error.message;
}

UsageOutcome readTool(const ClaudeUsageReader& reader, UsageRequest request, const std::string& localZone,
                      const std::stop_token& stop) {
  const auto& user = reader.user;
  const Clock& clock = reader.services.tool.clock;
  const auto executable = claude_tool::findExecutable(user.home, user.searchPath, reader.services.tool.files);
  if (!executable) return tl::unexpected(UsageError{usage_messages::kClaudeCodeNotInstalled});
  const ClaudeUsageCLI tool{reader.services.tool, {claude_tool::workspace(user.caches), user.environment, localZone}};
  if (request == UsageRequest::automatic && reader.pause->lasts(clock)) {
    return tl::unexpected(UsageError{usage_messages::kClaudeCodeGaveNoUsage});
  }
  UsageOutcome outcome = tool.fetch(*executable, kToolLimit, stop);
  const bool isPaused = !outcome && outcome.error().retry == UsageRetry::late;
  if (!stop.stop_requested()) *reader.pause = isPaused ? UsageWait(clock.now() + kPause, clock) : UsageWait();
  return outcome;
}

UsageOutcome readEither(const ClaudeUsageReader& reader, UsageRequest request, const std::string& localZone,
                        const std::stop_token& stop) {
  UsageOutcome tool = readTool(reader, request, localZone, stop);
  if (tool || stop.stop_requested()) return tool;
  UsageOutcome desktop = reader.desktop(stop);
  if (desktop) return desktop;
  return tl::unexpected(UsageError{.message = messageOr(tool.error(), usage_messages::kClaudeCodeUnavailable) + " " +
                                              messageOr(desktop.error(), usage_messages::kDesktopUnavailable),
                                   .retry = tool.error().retry});
}

}  // namespace

Subscription ClaudeUsageReader::operator()(UsageRequest request, std::function<void(UsageOutcome)> done) const {
  using Done = std::function<void(UsageOutcome)>;
  const auto waiting = std::make_shared<Done>(std::move(done));  // main thread only; empty once nobody waits
  std::stop_source stop;
  services.queue.async([reader = *this, request, waiting, zone = user.localZone(), token = stop.get_token()] {
    auto outcome = readEither(reader, request, zone, token);
    reader.services.loop.post([waiting, outcome = std::move(outcome)] {
      if (const auto wanted = std::exchange(*waiting, nullptr)) wanted(outcome);
    });
  });
  return Subscription([waiting, stop]() mutable {
    *waiting = nullptr;
    stop.request_stop();
  });
}

}  // namespace nimbo
