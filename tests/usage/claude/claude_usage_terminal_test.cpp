// SPDX-License-Identifier: MIT
// The whole way with real processes on real pseudo-terminals; a program made for the tests stands in for
// the tool.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <future>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/clock.h"
#include "platform/linux/loop/utility_thread.h"
#include "platform/linux/terminal/session_processes.h"
#include "platform/posix/loop/thread_work_queue.h"
#include "platform/posix/terminal/local_tool_files.h"
#include "platform/posix/terminal/pty_terminals.h"
#include "support/fake_main_loop.h"
#include "support/services/temporary_tree.h"
#include "usage/claude/claude_usage_cli.h"
#include "usage/claude/claude_usage_reader.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

using namespace std::chrono_literals;

using Percents = std::map<std::string, double>;
using SteadyClock = std::chrono::steady_clock;

const Percents kDrawn{{"5-hour", 61}, {"Weekly", 20}};

std::ptrdiff_t openDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

bool hasChildren() {
  siginfo_t child{};
  return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0;
}

Percents percents(const UsageOutcome& outcome) {
  Percents result;
  if (!outcome) return result;
  for (const UsageWindow& window : outcome->windows) result[window.title] = window.usedPercent;
  return result;
}

std::string messageOf(const UsageOutcome& outcome) { return outcome ? "" : outcome.error().message; }

class ClaudeUsageTerminalTest : public ::testing::Test {
 protected:
  using Pace = ClaudeUsageCLI::Pace;

  /// As in real life, only that a screen counts as settled sooner.
  static constexpr Pace kQuick{.polling = 100ms, .settling = 100ms, .stopping = 500ms};

  [[nodiscard]] std::vector<std::string> environment(const std::string& act) const {
    return {"TOOL_ACT=" + act, "TOOL_NOTES=" + (tree.path() / "notes").string(), "CLAUDECODE=1", "TERM=dumb"};
  }
  [[nodiscard]] ClaudeUsageCLI::Surroundings surroundings(const std::string& act) const {
    return {workspace, environment(act), "UTC"};
  }

  UsageOutcome fetch(const std::string& act, std::chrono::duration<double> timeout = 20s, const Pace& pace = kQuick) {
    const ClaudeUsageCLI cli{{terminals, files, clock}, surroundings(act), pace};
    return cli.fetch(NIMBO_TERMINAL_TOOL, timeout, {});
  }

  /// The tool runs.
  void waitForNotes() const {
    const auto deadline = SteadyClock::now() + 20s;
    while (!fs::exists(tree.path() / "notes") && SteadyClock::now() < deadline) std::this_thread::yield();
  }

  TemporaryTree tree;
  const fs::path workspace = tree.path() / "cache/ClaudeUsage";
  PtyTerminals terminals{procfsTerminalSystem()};
  LocalToolFiles files;
  SystemClock clock;
};

TEST_F(ClaudeUsageTerminalTest, ToolGetsWhatItNeedsAndNothingElse) {
  ASSERT_EQ(percents(fetch("notes its report")), kDrawn);
  EXPECT_EQ(tree.read("notes"),
            "argument:--safe-mode\nargument:--tools\nargument:\nargument:--ax-screen-reader\n"
            "argument:/usage\nvariable:TOOL_ACT=notes its report\nvariable:TOOL_NOTES=" +
                (tree.path() / "notes").string() +
                "\nvariable:TERM=xterm-256color\nvariable:NO_COLOR=1\nfolder:" + fs::canonical(workspace).string() +
                "\ncolumns=160\nrows=80\npixels=0\nterminals=3\nleads session=1\n"
                "controls terminal=1\ndescriptors=3\nsignals=0\nend of report\n\n");
}

class DrawnScreen : public ClaudeUsageTerminalTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(DrawnScreen, IsReadAndTheToolIsGone) {
  const auto outcome = fetch(GetParam());
  EXPECT_EQ(percents(outcome), kDrawn) << messageOf(outcome);
  EXPECT_FALSE(hasChildren());
  EXPECT_TRUE(fs::is_empty(workspace));
}

INSTANTIATE_TEST_SUITE_P(ClaudeUsageTerminal, DrawnScreen,
                         ::testing::Values("draws", "draws slowly", "draws twice", "draws in pieces", "draws and ends",
                                           "ignores all", "leaves a child", "leaves a job", "leaves a daemon",
                                           "keeps a child", "asks for trust"));

TEST_F(ClaudeUsageTerminalTest, TrustIsGivenOnceAndForTheOwnNameOfALinkedFolder) {
  fs::create_directories(tree.path() / "elsewhere");
  fs::create_directory_symlink(tree.path() / "elsewhere", tree.path() / "cache");
  EXPECT_EQ(percents(fetch("asks for trust")), kDrawn);
  EXPECT_EQ(tree.read("notes"), "answer:y\n");
}

TEST_F(ClaudeUsageTerminalTest, ChildThatKeepsTheTerminalDoesNotHoldTheReadUp) {
  const auto begin = SteadyClock::now();
  EXPECT_EQ(percents(fetch("leaves a child")), kDrawn);
  EXPECT_LT(SteadyClock::now() - begin, 10s);
}

TEST_F(ClaudeUsageTerminalTest, CancellationFromAnotherThreadEndsTheToolSoon) {
  const ClaudeUsageCLI cli{{terminals, files, clock}, surroundings("keeps a child")};
  std::stop_source stop;
  auto outcome = std::async(std::launch::async, [&] { return cli.fetch(NIMBO_TERMINAL_TOOL, 20s, stop.get_token()); });
  waitForNotes();
  const auto begin = SteadyClock::now();
  stop.request_stop();
  ASSERT_EQ(outcome.wait_for(10s), std::future_status::ready);
  EXPECT_LT(SteadyClock::now() - begin, 5s);
  EXPECT_EQ(outcome.get().error(), UsageError{});
  EXPECT_FALSE(hasChildren());
}

TEST_F(ClaudeUsageTerminalTest, TwoHundredRunsLeaveNothing) {
  constexpr Pace kHurried{.polling = 100ms, .settling = 5ms, .stopping = 20ms};
  ASSERT_EQ(percents(fetch("draws")), kDrawn);
  const auto descriptors = openDescriptors();
  constexpr std::array kActs{"draws", "draws and ends", "ignores all",     "floods",         "ends",
                             "draws", "leaves a child", "leaves a daemon", "asks for trust", "keeps a child"};
  for (int run = 0; run < 200; ++run) {
    fs::remove(tree.path() / "notes");
    const std::string act = kActs[static_cast<std::size_t>(run) % kActs.size()];
    const auto outcome = fetch(act, 10s, kHurried);
    const bool draws = act != "floods" && act != "ends";
    ASSERT_EQ(percents(outcome), draws ? kDrawn : Percents{}) << act << ": " << messageOf(outcome);
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_FALSE(hasChildren());
  EXPECT_TRUE(fs::is_empty(workspace));
}

/// The reader on a real queue: what the main thread sees.
class ClaudeUsageReaderTerminalTest : public ClaudeUsageTerminalTest {
 protected:
  Subscription start(const std::string& act) {
    fs::create_directories(tree.path() / ".local/bin");
    fs::create_symlink(NIMBO_TERMINAL_TOOL, tree.path() / ".local/bin/claude");
    const ClaudeUsageReader reader{
        {{terminals, files, clock}, queue, loop},
        {tree.path(), tree.path() / "cache", "", environment(act), [] { return std::string("UTC"); }},
        [this](const std::stop_token& /*stop*/) -> UsageOutcome {
          ++desktopReads;
          return tl::unexpected(UsageError{"No desktop."});
        }};
    return reader(UsageRequest::manual, [this](const UsageOutcome& result) { outcome = result; });
  }

  /// Everything that was queued has been done.
  void finishQueue() {
    std::promise<void> done;
    queue.async([&] { done.set_value(); });
    ASSERT_EQ(done.get_future().wait_for(30s), std::future_status::ready);
    loop.runPosted();
  }

  FakeMainLoop loop;
  std::optional<UsageOutcome> outcome;
  int desktopReads = 0;
  ThreadWorkQueue queue{"claude", loop, makeUtilityThread};  // ends first: its jobs use the others
};

TEST_F(ClaudeUsageReaderTerminalTest, ScreenArrivesOnTheMainLoop) {
  const auto subscription = start("draws");
  finishQueue();
  ASSERT_TRUE(outcome && *outcome);
  EXPECT_EQ((*outcome)->windows.size(), 2U);
}

TEST_F(ClaudeUsageReaderTerminalTest, DroppedWhileTheToolRunsEndsItAndSaysNothing) {
  auto subscription = start("keeps a child");
  waitForNotes();
  const auto begin = SteadyClock::now();
  subscription.reset();
  finishQueue();
  EXPECT_LT(SteadyClock::now() - begin, 5s);
  EXPECT_FALSE(outcome);
  EXPECT_EQ(desktopReads, 0);
  EXPECT_FALSE(hasChildren());
}

}  // namespace
}  // namespace nimbo
