// SPDX-License-Identifier: MIT
#include "usage/claude/claude_usage_cli.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>

#include "support/fake_clock.h"
#include "support/fake_pseudo_terminals.h"
#include "support/fake_tool_files.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

using Texts = std::vector<std::string>;

constexpr char kExecutable[] = "/usr/bin/claude";
constexpr char kWorkspace[] = "/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage";
constexpr char kScreen[] =
    "\x1b[1mUsage\x1b[0m\r\nCurrent session\r\n61% used\r\nResets in 2h\r\n"
    "Current week (all models)\r\n20% used\r\nResets in 3d\r\n";
constexpr char kQuestion[] =
    "Accessing workspace:\r\n/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage\r\n"
    "y. Yes, I trust this folder\r\nn. No, exit\r\nEnter y/n: ";

std::string session(int percent) { return "Current session\n" + std::to_string(percent) + "% used\n"; }

class ClaudeUsageCLITest : public ::testing::Test {
 protected:
  UsageOutcome fetch(std::chrono::duration<double> timeout = 25s) {
    return cli.fetch(kExecutable, timeout, stop.get_token());
  }

  /// How long after its start the tool was stopped; all that was started is gone.
  [[nodiscard]] std::chrono::milliseconds stoppedAfter() const {
    EXPECT_EQ(terminals.patiences, std::vector{500ms});
    EXPECT_EQ(terminals.alive, 0);
    return terminals.elapsed();
  }

  /// A read waits in whole milliseconds.
  [[nodiscard]] bool stoppedAt(std::chrono::milliseconds deadline) const {
    return stoppedAfter() >= deadline && stoppedAfter() <= deadline + 2ms;
  }

  static std::vector<double> percents(const UsageOutcome& outcome) {
    std::vector<double> result;
    if (outcome) {
      for (const UsageWindow& window : outcome->windows) result.push_back(window.usedPercent);
    }
    return result;
  }

  FakeClock clock;
  FakePseudoTerminals terminals{clock};
  FakeToolFiles files;
  std::stop_source stop;
  ClaudeUsageCLI cli{{terminals, files, clock}, {kWorkspace, {"HOME=/home/ada", "CLAUDECODE=1"}, "UTC"}};
};

TEST_F(ClaudeUsageCLITest, SettledScreenIsTheResult) {
  terminals.writes(300ms, kScreen);
  const auto read = clock.now() + 300ms;
  const auto outcome = fetch();
  ASSERT_TRUE(outcome) << outcome.error().message;
  EXPECT_EQ(outcome->source, "Claude Code");
  EXPECT_EQ(outcome->fetchedAt, read);
  ASSERT_EQ(outcome->windows.size(), 2U);
  EXPECT_EQ(outcome->windows[0], (UsageWindow{"5-hour", 61, read + 2h}));
  EXPECT_EQ(outcome->windows[1], (UsageWindow{"Weekly", 20, read + 72h}));
}

TEST_F(ClaudeUsageCLITest, ScreenHasSettledWhenMoreThanEightTenthsOfASecondPassedWithoutOutput) {
  terminals.writes(300ms, kScreen);
  EXPECT_TRUE(fetch());
  EXPECT_GT(stoppedAfter(), 1100ms);
  EXPECT_LE(stoppedAfter(), 1110ms);
}

TEST_F(ClaudeUsageCLITest, ToolRunsInTheWorkspaceWithItsArgumentsOnItsTerminal) {
  terminals.writes(0ms, kScreen);
  ASSERT_TRUE(fetch());
  ASSERT_EQ(terminals.started.size(), 1U);
  EXPECT_EQ(terminals.started[0].executable, kExecutable);
  EXPECT_EQ(terminals.started[0].arguments, (Texts{"--safe-mode", "--tools", "", "--ax-screen-reader", "/usage"}));
  EXPECT_EQ(terminals.started[0].environment, (Texts{"HOME=/home/ada", "TERM=xterm-256color", "NO_COLOR=1"}));
  EXPECT_EQ(terminals.started[0].folder, kWorkspace);
  EXPECT_EQ(terminals.sizes[0].columns, 160);
  EXPECT_EQ(terminals.sizes[0].rows, 80);
  EXPECT_EQ(files.prepared, std::vector<std::filesystem::path>{kWorkspace});
}

TEST_F(ClaudeUsageCLITest, OutputThatGoesOnPutsSettlingOff) {
  for (auto moment = 0ms; moment <= 3000ms; moment += 500ms) terminals.writes(moment, kScreen);
  EXPECT_TRUE(fetch());
  EXPECT_GT(stoppedAfter(), 3800ms);
  EXPECT_LE(stoppedAfter(), 3810ms);
}

TEST_F(ClaudeUsageCLITest, RedrawnScreenCountsWithItsLatestFigures) {
  terminals.writes(100ms, session(10));
  terminals.writes(400ms, "\x1b[2J\x1b[H" + session(61));
  EXPECT_EQ(percents(fetch()), std::vector{61.0});
}

TEST_F(ClaudeUsageCLITest, ScreenThatNoLongerReadsIsNotKept) {
  terminals.writes(100ms, session(10));
  terminals.writes(400ms, "\n101% used\n");
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().message, usage_messages::kClaudeCodeGaveNoUsage);
}

TEST_F(ClaudeUsageCLITest, OutputThatNeverSettlesGivesTheLastScreenAtTheDeadline) {
  for (int i = 0; i < 300; ++i) terminals.writes(100ms * i, i == 0 ? kScreen : ".");
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
  EXPECT_TRUE(stoppedAt(25s)) << stoppedAfter().count();
}

TEST_F(ClaudeUsageCLITest, SilentToolIsGivenUpAtTheDeadline) {
  const auto outcome = fetch(5s);
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), (UsageError{usage_messages::kClaudeCodeGaveNoUsage, {}, UsageRetry::withNetwork}));
  EXPECT_TRUE(stoppedAt(5s)) << stoppedAfter().count();
}

TEST_F(ClaudeUsageCLITest, ScreenWithoutLimitsIsGivenUpAtTheDeadline) {
  terminals.writes(100ms, "Welcome\r\nPlease sign in\r\n");
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().message, usage_messages::kClaudeCodeGaveNoUsage);
  EXPECT_TRUE(stoppedAt(25s)) << stoppedAfter().count();
}

TEST_F(ClaudeUsageCLITest, DeadEndIsGivenUpOnceItStandsStill) {
  terminals.writes(100ms, "Starting\r\n");
  terminals.writes(900ms, "Not logged in. Run /login\r\n");
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), (UsageError{usage_messages::kClaudeCodeGaveNoUsage, {}, UsageRetry::late}));
  EXPECT_GT(stoppedAfter(), 1700ms);
  EXPECT_LE(stoppedAfter(), 1710ms);
}

TEST_F(ClaudeUsageCLITest, LimitsThatFollowADeadEndCount) {
  terminals.writes(100ms, "Rate limited\r\n");
  terminals.writes(800ms, kScreen);
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
}

TEST_F(ClaudeUsageCLITest, ToolThatEndsWithoutAScreenFailsAtOnce) {
  terminals.writes(100ms, "unknown option --safe-mode\r\n");
  terminals.ends(200ms);
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().message, usage_messages::kClaudeCodeGaveNoUsage);
  EXPECT_EQ(stoppedAfter(), 200ms);
}

TEST_F(ClaudeUsageCLITest, ToolThatDrawsAndEndsGivesItsScreen) {
  terminals.writes(100ms, kScreen);
  terminals.ends(100ms);
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
  EXPECT_EQ(stoppedAfter(), 100ms);
}

TEST_F(ClaudeUsageCLITest, AllThatAnEndedToolWroteIsRead) {
  terminals.writes(100ms, std::string(40000, ' ') + kScreen);
  terminals.ends(100ms, true);
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
}

TEST_F(ClaudeUsageCLITest, TerminalThatStaysOpenAfterTheToolIsNotWaitedFor) {
  terminals.writes(100ms, kScreen);
  terminals.ends(250ms, true);
  EXPECT_TRUE(fetch());
  EXPECT_LE(stoppedAfter(), 350ms);
}

TEST_F(ClaudeUsageCLITest, HalfAMegabyteIsStillRead) {
  const std::string end = "\n" + session(61);
  terminals.writes(0ms, std::string(512 * 1024 - end.size(), '.') + end);
  EXPECT_EQ(percents(fetch()), std::vector{61.0});
}

TEST_F(ClaudeUsageCLITest, HalfAMegabyteInSmallReadsCostsLittle) {
  std::string screen;
  while (screen.size() < 500 * 1024) screen += "\x1B[31m" + session(61);
  const std::clock_t begin = std::clock();
  terminals.writes(0ms, screen);
  EXPECT_EQ(percents(fetch()), std::vector{61.0});
  const std::chrono::duration<double> cost(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
  EXPECT_LT(cost, std::chrono::milliseconds(NIMBO_SCREEN_LIMIT_MS));
}

TEST_F(ClaudeUsageCLITest, QuestionMayArriveInPieces) {
  const std::string question = kQuestion;
  for (std::size_t index = 0; index < question.size(); ++index) {
    terminals.writes(std::chrono::milliseconds(index), question.substr(index, 1));
  }
  terminals.onWrite = [this](std::string_view) { terminals.writesAfter(200ms, kScreen); };
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
  EXPECT_EQ(terminals.written, Texts{"y\r"});
}

TEST_F(ClaudeUsageCLITest, QuestionMayComeAfterMuchElse) {
  terminals.writes(0ms, std::string(100 * 1024, '.') + kQuestion);
  terminals.onWrite = [this](std::string_view) { terminals.writesAfter(200ms, kScreen); };
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
}

TEST_F(ClaudeUsageCLITest, MoreThanHalfAMegabyteIsRefusedEvenWithAScreen) {
  terminals.writes(0ms, session(61) + std::string(512 * 1024 - session(61).size() + 1, '.'));
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), (UsageError{usage_messages::kClaudeCodeScreenUnsupported}));
  EXPECT_LT(stoppedAfter(), 100ms);
}

TEST_F(ClaudeUsageCLITest, TrustQuestionIsAnsweredAndTheScreenThenRead) {
  terminals.writes(100ms, kQuestion);
  terminals.onWrite = [this](std::string_view) { terminals.writesAfter(200ms, kScreen); };
  EXPECT_EQ(percents(fetch()), (std::vector{61.0, 20.0}));
  EXPECT_EQ(terminals.written, Texts{"y\r"});
}

TEST_F(ClaudeUsageCLITest, SecondTrustQuestionIsNotAnswered) {
  for (const auto moment : {100ms, 300ms, 500ms}) terminals.writes(moment, kQuestion);
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error().message, usage_messages::kClaudeCodeGaveNoUsage);
  EXPECT_EQ(terminals.written, Texts{"y\r"});
}

TEST_F(ClaudeUsageCLITest, ToolKnowsTheWorkspaceByItsOwnName) {
  files.ownName = "/data/cache/ClaudeUsage";
  terminals.writes(100ms, "/data/cache/ClaudeUsage\ny. Yes, I trust this folder\nEnter y/n: ");
  terminals.onWrite = [this](std::string_view) { terminals.writesAfter(10ms, kScreen); };
  EXPECT_TRUE(fetch());
  EXPECT_EQ(terminals.started[0].folder, "/data/cache/ClaudeUsage");
}

TEST_F(ClaudeUsageCLITest, WhatWasShownBeforeTheAnswerIsForgotten) {
  terminals.writes(100ms, session(10) + kQuestion);
  terminals.onWrite = [this](std::string_view) {
    terminals.writesAfter(100ms, std::string(500 * 1024, ' ') + "\nCurrent week\n20% used\n");
  };
  const auto outcome = fetch();
  ASSERT_TRUE(outcome) << outcome.error().message;
  ASSERT_EQ(outcome->windows.size(), 1U);
  EXPECT_EQ(outcome->windows[0].title, "Weekly");
}

TEST_F(ClaudeUsageCLITest, CancelledBeforeItBeganStartsNothing) {
  stop.request_stop();
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), UsageError{});
  EXPECT_TRUE(terminals.started.empty());
}

TEST_F(ClaudeUsageCLITest, CancellationEndsTheToolWithinATenthOfASecond) {
  terminals.at(1234ms, [this] { stop.request_stop(); });
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), UsageError{});
  EXPECT_LE(stoppedAfter(), 1334ms);
  EXPECT_LE(terminals.longestRead, 100ms);
}

TEST_F(ClaudeUsageCLITest, CancellationCountsMoreThanAScreen) {
  terminals.writes(100ms, kScreen);
  terminals.at(200ms, [this] { stop.request_stop(); });
  terminals.ends(200ms);
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), UsageError{});
}

TEST_F(ClaudeUsageCLITest, OccupiedWorkspaceIsNotUsed) {
  files.state = PrivateFolder::State::occupied;
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), (UsageError{usage_messages::kClaudeWorkspaceNotEmpty}));
  EXPECT_TRUE(terminals.started.empty());
}

TEST_F(ClaudeUsageCLITest, WorkspaceThatCannotBeMadeIsNothingToTell) {
  files.error = std::make_error_code(std::errc::no_space_on_device);
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), UsageError{});
  EXPECT_TRUE(terminals.started.empty());
}

TEST_F(ClaudeUsageCLITest, MissingTerminalIsToldTheUser) {
  terminals.noTerminal = std::make_error_code(std::errc::too_many_files_open);
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), (UsageError{usage_messages::kClaudeCodeNotStarted}));
  EXPECT_TRUE(files.prepared.empty());
}

TEST_F(ClaudeUsageCLITest, ToolThatCannotBeStartedIsNothingToTell) {
  terminals.notStarted = std::make_error_code(std::errc::permission_denied);
  const auto outcome = fetch();
  ASSERT_FALSE(outcome);
  EXPECT_EQ(outcome.error(), UsageError{});
}

TEST_F(ClaudeUsageCLITest, WaitingCostsTenReadsASecondAtMost) {
  EXPECT_FALSE(fetch(5s));
  EXPECT_LE(terminals.reads, 51);
}

}  // namespace
}  // namespace nimbo
