// SPDX-License-Identifier: MIT
#include "usage/claude/claude_screen_watch.h"

#include <algorithm>
#include <utility>

#include "usage/usage_messages.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kMaximumScreenBytes = std::size_t{512} * 1024;
constexpr std::string_view kSource = "Claude Code";
constexpr std::string_view kYes = "y\r";

tl::unexpected<UsageReadError> failure(const char* message) {
  return tl::unexpected(UsageReadError{UsageReadError::Kind::usage, message});
}

}  // namespace

ClaudeScreenWatch::ClaudeScreenWatch(TerminalProgram& program, const Clock& clock, Conditions conditions)
    : program_(program),
      clock_(clock),
      conditions_(std::move(conditions)),
      question_(conditions_.folderNames),
      latestOutput_(clock.uptime()) {}

Result<UsageSnapshot, UsageReadError> ClaudeScreenWatch::run(Seconds timeout) {
  const Seconds deadline = clock_.uptime() + timeout;
  Turn outcome = Turn::goOn;
  while (outcome == Turn::goOn && !conditions_.canceled() && clock_.uptime() < deadline) outcome = turn(deadline);
  if (outcome == Turn::tooMuch) return failure(usage_messages::kClaudeCodeScreenUnsupported);
  if (conditions_.canceled()) return tl::unexpected(UsageReadError{UsageReadError::Kind::cancelled});
  interpret();
  if (!latest_) return failure(usage_messages::kClaudeCodeGaveNoUsage);
  return *latest_;
}

ClaudeScreenWatch::Turn ClaudeScreenWatch::turn(Seconds deadline) {
  // A program that has ended may have left output, but somebody else may hold its terminal: that is not
  // waited for.
  const bool running = program_.running();
  std::string bytes;
  const auto input = program_.read(bytes, running ? patience(deadline) : milliseconds{0});
  if (input == TerminalProgram::Input::ended) return Turn::ended;
  if (input == TerminalProgram::Input::some) return take(bytes) ? Turn::goOn : Turn::tooMuch;
  interpret();
  if (hasSettled()) return Turn::settled;
  return running ? Turn::goOn : Turn::ended;
}

milliseconds ClaudeScreenWatch::patience(Seconds deadline) const {
  const Seconds now = clock_.uptime();
  const auto until = [now](Seconds moment) { return std::chrono::ceil<milliseconds>(moment - now); };
  auto result = std::min(conditions_.pace.polling, until(deadline));
  if (latest_) result = std::min(result, until(latestOutput_ + conditions_.pace.settling));
  return std::max(result, milliseconds{1});
}

bool ClaudeScreenWatch::take(std::string_view bytes) {
  latestOutput_ = clock_.uptime();
  size_ += bytes.size();
  if (size_ > kMaximumScreenBytes) return false;
  if (question_) question_->append(bytes);
  if (question_ && question_->isAsked()) {
    answer();
    return true;
  }
  screen_.append(bytes);
  drawnAt_ = clock_.now();
  return true;
}

// Only when the tool pauses: a screen that is drawn in a thousand pieces is understood once.
void ClaudeScreenWatch::interpret() {
  const auto drawnAt = std::exchange(drawnAt_, std::nullopt);
  if (!drawnAt) return;
  const auto snapshot = screen_.snapshot(*drawnAt, kSource, conditions_.localZone);
  latest_ = snapshot ? std::optional(*snapshot) : std::nullopt;
}

void ClaudeScreenWatch::answer() {
  // Should it not get through, the tool waits for it until the time is up.
  (void)program_.write(kYes);
  question_.reset();
  screen_ = {};
  size_ = 0;
  drawnAt_.reset();
}

bool ClaudeScreenWatch::hasSettled() const {
  return latest_ && clock_.uptime() - latestOutput_ > conditions_.pace.settling;
}

}  // namespace nimbo
