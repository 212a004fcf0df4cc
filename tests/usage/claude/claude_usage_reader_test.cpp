// SPDX-License-Identifier: MIT
#include "usage/claude/claude_usage_reader.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <stop_token>

#include "support/fake_clock.h"
#include "support/fake_main_loop.h"
#include "support/fake_pseudo_terminals.h"
#include "support/fake_tool_files.h"
#include "support/fake_work_queue.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr char kShortScreen[] = "Current session\n61% used\n";

class ClaudeUsageReaderTest : public ::testing::Test {
 protected:
  ClaudeUsageReaderTest() { files.executables = {"/home/ada/.local/bin/claude"}; }

  void start(UsageRequest request = UsageRequest::manual) {
    subscription = read(request, [this](const UsageOutcome& result) {
      outcome = result;
      ++deliveries;
    });
  }
  void readAll(UsageRequest request = UsageRequest::manual) {
    start(request);
    ASSERT_TRUE(queue.runOne());
    loop.runPosted();
  }

  [[nodiscard]] std::string message() const { return outcome && !*outcome ? outcome->error().message : ""; }
  void desktopFails(UsageError error) { desktop = tl::unexpected(std::move(error)); }

  FakeClock clock;
  FakePseudoTerminals terminals{clock};
  FakeToolFiles files;
  FakeWorkQueue queue;
  FakeMainLoop loop;
  UsageOutcome desktop = tl::unexpected(UsageError{"Desktop fallback: it is closed."});
  int desktopReads = 0;
  bool desktopStopped = false;
  std::function<void()> onDesktopRead;
  std::string zone = "UTC";
  ClaudeUsageReader reader{{{terminals, files, clock}, queue, loop},
                           {"/home/ada", "/home/ada/.cache", "/usr/bin", {"HOME=/home/ada"}, [this] { return zone; }},
                           [this](const std::stop_token& stop) {
                             ++desktopReads;
                             if (onDesktopRead) onDesktopRead();
                             desktopStopped = stop.stop_requested();
                             return desktop;
                           }};
  UsageRead read = reader;
  std::optional<UsageOutcome> outcome;
  int deliveries = 0;
  Subscription subscription;
};

TEST_F(ClaudeUsageReaderTest, ToolsScreenIsTheOutcomeAndTheDesktopIsNotAsked) {
  terminals.writes(100ms, kShortScreen);
  readAll();
  ASSERT_TRUE(outcome && *outcome);
  EXPECT_EQ((*outcome)->source, "Claude Code");
  EXPECT_EQ((*outcome)->windows[0].usedPercent, 61);
  EXPECT_EQ(deliveries, 1);
  EXPECT_EQ(desktopReads, 0);
  EXPECT_EQ(terminals.started[0].executable, "/home/ada/.local/bin/claude");
  EXPECT_EQ(terminals.started[0].folder, "/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage");
}

TEST_F(ClaudeUsageReaderTest, NothingHappensBeforeTheQueueAndTheLoopTurn) {
  terminals.writes(100ms, kShortScreen);
  start();
  EXPECT_TRUE(files.asked.empty());
  EXPECT_TRUE(queue.runOne());
  EXPECT_FALSE(outcome);
  loop.runPosted();
  EXPECT_TRUE(outcome);
}

TEST_F(ClaudeUsageReaderTest, ToolHasTwentyFiveSeconds) {
  readAll();
  EXPECT_GE(terminals.elapsed(), 25s);
  EXPECT_LE(terminals.elapsed(), 25s + 2ms);
}

TEST_F(ClaudeUsageReaderTest, DesktopsSnapshotStandsInForAToolThatFails) {
  terminals.ends(100ms);
  desktop = UsageSnapshot{{{"Weekly", 20}}, clock.now(), "Claude Desktop"};
  readAll();
  ASSERT_TRUE(outcome && *outcome);
  EXPECT_EQ(**outcome, *desktop);
}

TEST_F(ClaudeUsageReaderTest, ToolInADeadEndIsLeftAloneForHalfAnHourAndTheDesktopIsNot) {
  terminals.writes(100ms, "Not logged in");
  readAll(UsageRequest::automatic);
  const auto told = message();
  EXPECT_LE(terminals.elapsed(), 1s);
  for (int minutes = 5; minutes < 30; minutes += 5) {
    clock.advance(5min);
    readAll(UsageRequest::automatic);
    EXPECT_EQ(message(), told);
  }
  EXPECT_EQ(terminals.started.size(), 1U);
  EXPECT_EQ(desktopReads, 6);
  clock.advance(5min);
  readAll(UsageRequest::automatic);
  EXPECT_EQ(terminals.started.size(), 2U);
}

TEST_F(ClaudeUsageReaderTest, UserWhoAsksEndsTheToolsPause) {
  terminals.writes(100ms, "Not logged in");
  readAll(UsageRequest::automatic);
  terminals.writes(100ms, kShortScreen);
  readAll(UsageRequest::manual);
  EXPECT_TRUE(*outcome);
  readAll(UsageRequest::automatic);
  EXPECT_EQ(terminals.started.size(), 3U);
}

TEST_F(ClaudeUsageReaderTest, BothMessagesAreTold) {
  terminals.ends(100ms);
  readAll();
  EXPECT_EQ(message(),
            "Claude Code couldn’t return usage. Run claude, sign in and check /usage, then refresh. "
            "Desktop fallback: it is closed.");
  EXPECT_EQ(outcome->error().retryNotBefore, std::nullopt);
}

TEST_F(ClaudeUsageReaderTest, MissingToolIsToldBesideTheDesktopsMessage) {
  files.executables.clear();
  readAll();
  EXPECT_EQ(message(), "Install Claude Code and sign in to read usage automatically. Desktop fallback: it is closed.");
  EXPECT_TRUE(terminals.started.empty());
}

TEST_F(ClaudeUsageReaderTest, ErrorsWithoutAMessageHaveStandingOnes) {
  files.error = std::make_error_code(std::errc::permission_denied);
  desktopFails({});
  readAll();
  EXPECT_EQ(message(), "Claude Code usage is unavailable. Open Claude → Settings → Usage, then refresh.");
}

TEST_F(ClaudeUsageReaderTest, DesktopsErrorWithoutAMessageAloneHasItsStandingOne) {
  terminals.ends(0ms);
  desktopFails({});
  readAll();
  EXPECT_TRUE(message().ends_with("then refresh. Open Claude → Settings → Usage, then refresh.")) << message();
}

TEST_F(ClaudeUsageReaderTest, DroppedWhileTheToolRunsEndsItAndDeliversNothing) {
  terminals.at(500ms, [this] { subscription.reset(); });
  readAll();
  EXPECT_LE(terminals.elapsed(), 600ms);
  EXPECT_EQ(terminals.alive, 0);
  EXPECT_EQ(deliveries, 0);
  EXPECT_EQ(desktopReads, 0);
}

TEST_F(ClaudeUsageReaderTest, DroppedWhileTheDesktopIsReadEndsThatAndDeliversNothing) {
  files.executables.clear();
  onDesktopRead = [this] { subscription.reset(); };
  readAll();
  EXPECT_EQ(desktopReads, 1);
  EXPECT_TRUE(desktopStopped);
  EXPECT_EQ(deliveries, 0);
}

TEST_F(ClaudeUsageReaderTest, DesktopThatIsWantedIsNotStopped) {
  files.executables.clear();
  readAll();
  EXPECT_EQ(desktopReads, 1);
  EXPECT_FALSE(desktopStopped);
}

TEST_F(ClaudeUsageReaderTest, DroppedBeforeItsTurnRunsNoTool) {
  start();
  subscription.reset();
  EXPECT_TRUE(queue.runOne());
  loop.runPosted();
  EXPECT_TRUE(terminals.started.empty());
  EXPECT_EQ(desktopReads, 0);
  EXPECT_EQ(deliveries, 0);
}

TEST_F(ClaudeUsageReaderTest, DroppedAfterTheReadButBeforeTheLoopTurnsDeliversNothing) {
  terminals.writes(100ms, kShortScreen);
  start();
  ASSERT_TRUE(queue.runOne());
  EXPECT_EQ(loop.postedCount(), 1U);
  subscription.reset();
  loop.runPosted();
  EXPECT_EQ(deliveries, 0);
}

TEST_F(ClaudeUsageReaderTest, DroppedReadDoesNotAffectTheNext) {
  start();
  subscription.reset();
  terminals.writes(100ms, kShortScreen);
  start();
  EXPECT_TRUE(queue.runOne());
  EXPECT_TRUE(queue.runOne());
  loop.runPosted();
  EXPECT_EQ(deliveries, 1);
  EXPECT_TRUE(*outcome);
}

TEST_F(ClaudeUsageReaderTest, DroppingTheSubscriptionFromTheOutcomeIsFine) {
  terminals.writes(100ms, kShortScreen);
  subscription = read(UsageRequest::automatic, [this](const UsageOutcome&) {
    ++deliveries;
    subscription.reset();
  });
  EXPECT_TRUE(queue.runOne());
  loop.runPosted();
  EXPECT_EQ(deliveries, 1);
}

TEST_F(ClaudeUsageReaderTest, LocalTimeZoneIsAskedAtEachRead) {
  const auto resetIn = [this](const std::string& name) {
    zone = name;
    terminals.writes(100ms, std::string(kShortScreen) + "Resets 3:00pm\n");
    readAll();
    return (*outcome)->windows[0].resetsAt;
  };
  const auto inBerlin = resetIn("Europe/Berlin");
  const auto inTokyo = resetIn("Asia/Tokyo");
  ASSERT_TRUE(inBerlin && inTokyo);
  EXPECT_NE(*inBerlin, *inTokyo);
}

TEST_F(ClaudeUsageReaderTest, ReaderMayGoWhileItsReadRuns) {
  std::optional<ClaudeUsageReader> brief(reader);
  terminals.writes(100ms, kShortScreen);
  subscription = (*brief)(UsageRequest::manual, [this](const UsageOutcome&) { ++deliveries; });
  brief.reset();
  EXPECT_TRUE(queue.runOne());
  loop.runPosted();
  EXPECT_EQ(deliveries, 1);
}

}  // namespace
}  // namespace nimbo
