// SPDX-License-Identifier: MIT
#include "usage/claude/claude_usage_cli.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "usage/claude/claude_tool.h"
#include "usage/claude/usage_screen_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using Interval = std::chrono::duration<double>;

constexpr std::size_t kMaximumScreenBytes = std::size_t{512} * 1024;
// The question has some hundred bytes: what was written before these is no part of it.
constexpr std::size_t kLongestQuestion = std::size_t{16} * 1024;
constexpr std::string_view kToolSource = "Claude Code";
constexpr std::string_view kYes = "y\r";

/// Follows what the running tool draws until its usage screen stands still, and answers its question
/// whether it may trust its folder, once.
class ScreenWatch {
 public:
  /// All outlive it; the tool may call its folder by each of `folderNames`. Nothing of `program` is stopped.
  ScreenWatch(TerminalProgram& program, const ClaudeUsageCLI& cli, const std::vector<std::string>& folderNames,
              const std::stop_token& stop)
      : program_(program),
        cli_(cli),
        clock_(cli.services.clock),
        stop_(stop),
        folderNames_(folderNames),
        latestOutput_(clock_.uptime()) {}

  [[nodiscard]] UsageOutcome run(Interval timeout) {
    const Interval deadline = clock_.uptime() + timeout;
    bool goesOn = true;
    while (goesOn && !stop_.stop_requested() && clock_.uptime() < deadline) goesOn = turn(deadline);
    if (isTooMuch()) return tl::unexpected(UsageError{usage_messages::kClaudeCodeScreenUnsupported});
    if (stop_.stop_requested()) return tl::unexpected(UsageError{});
    interpret();
    if (latest_) return latest_;
    return tl::unexpected(UsageError{.message = usage_messages::kClaudeCodeGaveNoUsage,
                                     .retry = isDeadEnd_ ? UsageRetry::late : UsageRetry::withNetwork});
  }

 private:
  /// False once the screen is complete, or nothing more can come of it.
  [[nodiscard]] bool turn(Interval deadline) {
    // A program that has ended may have left output, but somebody else may hold its terminal: that is not
    // waited for.
    const bool running = program_.running();
    const auto input = program_.read(screen_, running ? patience(deadline) : milliseconds{0});
    if (input == TerminalProgram::Input::ended) return false;
    if (input == TerminalProgram::Input::some) {
      screenHasGrown();
      return !isTooMuch();
    }
    interpret();
    const bool hasSettled = isConclusive() && clock_.uptime() - latestOutput_ > cli_.pace.settling;
    return running && !hasSettled;
  }

  /// How long output is waited for.
  [[nodiscard]] milliseconds patience(Interval deadline) const {
    const Interval now = clock_.uptime();
    const auto until = [now](Interval moment) { return std::chrono::ceil<milliseconds>(moment - now); };
    auto result = std::min(cli_.pace.polling, until(deadline));
    if (isConclusive()) result = std::min(result, until(latestOutput_ + cli_.pace.settling));
    return std::max(result, milliseconds{1});
  }

  /// Whether what was interpreted is all that is waited for.
  [[nodiscard]] bool isConclusive() const { return latest_ || isDeadEnd_; }

  /// More than any usage screen.
  [[nodiscard]] bool isTooMuch() const { return screen_.size() > kMaximumScreenBytes; }

  void screenHasGrown() {
    latestOutput_ = clock_.uptime();
    if (isTooMuch()) return;
    const std::string_view end =
        std::string_view(screen_).substr(screen_.size() - std::min(screen_.size(), kLongestQuestion));
    if (!hasAnswered_ && asksForTrust(end, folderNames_)) return answer();
    drawnAt_ = clock_.now();
  }

  void answer() {
    // Should it not get through, the tool waits for it until the time is up.
    (void)program_.write(kYes);
    hasAnswered_ = true;
    screen_.clear();
    drawnAt_.reset();
  }

  // Only when the tool pauses: a screen that is drawn in a thousand pieces is understood once.
  void interpret() {
    if (const auto drawnAt = std::exchange(drawnAt_, std::nullopt)) {
      latest_ = parseUsageScreen(screen_, *drawnAt, kToolSource, cli_.surroundings.localZone);
      isDeadEnd_ = !latest_ && isDeadEnd(screen_);
    }
  }

  TerminalProgram& program_;
  const ClaudeUsageCLI& cli_;
  const Clock& clock_;
  const std::stop_token& stop_;
  const std::vector<std::string>& folderNames_;
  std::string screen_;  // all that the tool has written, or since the answer
  bool hasAnswered_ = false;
  std::optional<UsageTime> drawnAt_;                    // of what was not interpreted yet
  UsageOutcome latest_ = tl::unexpected(UsageError{});  // of what was interpreted
  bool isDeadEnd_ = false;                              // likewise
  Interval latestOutput_;
};

}  // namespace

UsageOutcome ClaudeUsageCLI::fetch(const std::filesystem::path& executable, Interval timeout,
                                   const std::stop_token& stop) const {
  const auto terminal = services.terminals.open(claude_tool::kTerminalSize);
  if (!terminal) return tl::unexpected(UsageError{usage_messages::kClaudeCodeNotStarted});
  const auto folder = services.files.preparePrivateFolder(surroundings.workspace);
  if (!folder) return tl::unexpected(UsageError{});
  if (folder->state == PrivateFolder::State::occupied) {
    return tl::unexpected(UsageError{usage_messages::kClaudeWorkspaceNotEmpty});
  }
  if (stop.stop_requested()) return tl::unexpected(UsageError{});

  const auto tool = (*terminal)->start({.executable = executable,
                                        .arguments = claude_tool::arguments(),
                                        .environment = claude_tool::environment(surroundings.environment),
                                        .folder = folder->path});
  if (!tool) return tl::unexpected(UsageError{});
  const std::vector<std::string> folderNames{surroundings.workspace, folder->path};
  auto snapshot = ScreenWatch(**tool, *this, folderNames, stop).run(timeout);
  (*tool)->stop(pace.stopping);
  return snapshot;
}

}  // namespace nimbo
