// SPDX-License-Identifier: MIT
#include "usage/claude/claude_desktop_usage.h"

#include <gtest/gtest.h>

#include "support/fake_accessibility.h"
#include "usage/claude/usage_screen_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

using Kind = UsageReadError::Kind;
using Log = std::vector<std::string>;

constexpr char kZone[] = "Europe/Berlin";

FakeElement text(const std::string& words) { return {.title = words, .value = words}; }

FakeElement group(std::vector<FakeElement> children) { return {.children = std::move(children)}; }

FakeElement usagePage() {
  return group({text("Plan usage limits"),                                          //
                group({text("Current session"), text("Resets in 2 hr 14 min")}),    //
                text("61% used"),                                                   //
                group({text("All models"), text("Resets Fri 9:00 AM")}),            //
                text("12.5% used"),                                                 //
                group({text("Sonnet only"), group({group({text("0% used")})})})});  //
}

FakeElement chatWindow() { return {.title = "Claude", .children = {group({text("Hello"), text("61% used")})}}; }

/// `levels` of elements around `content`.
FakeElement nested(int levels, FakeElement content) {
  for (int level = 0; level < levels; ++level) content = group({std::move(content)});
  return content;
}

class ClaudeDesktopUsageTest : public testing::Test {
 protected:
  Result<UsageSnapshot, UsageReadError> read() { return usage.read(kZone); }

  [[nodiscard]] std::string message() {
    const auto result = read();
    if (result) return "a snapshot";
    EXPECT_EQ(result.error().kind, Kind::usage);
    return result.error().message;
  }

  /// "title percent" of each window; the message when there is no snapshot.
  [[nodiscard]] Log figures() {
    const auto result = read();
    if (!result) return {result.error().message};
    Log log;
    for (const auto& window : result->windows) {
      log.push_back(window.title + " " + std::to_string(static_cast<int>(window.usedPercent * 10)));
    }
    return log;
  }

  FakeClock clock;
  FakeAccessibility accessibility{clock};
  ClaudeDesktopUsage usage{accessibility, clock};
  const Log notShown{usage_messages::kDesktopUsageNotShown};
  const Log fiveHours{"5-hour 610"};
};

TEST_F(ClaudeDesktopUsageTest, OpenUsagePageGivesItsWindows) {
  accessibility.windows = {usagePage()};
  const auto snapshot = read();
  ASSERT_TRUE(snapshot);
  ASSERT_EQ(snapshot->windows.size(), 3U);
  EXPECT_EQ(snapshot->windows[0].title, "5-hour");
  EXPECT_EQ(snapshot->windows[0].usedPercent, 61);
  EXPECT_EQ(snapshot->windows[0].resetsAt, clock.now() + std::chrono::minutes(134));
  EXPECT_EQ(snapshot->windows[1].title, "Weekly");
  EXPECT_EQ(snapshot->windows[1].usedPercent, 12.5);
  EXPECT_TRUE(snapshot->windows[1].resetsAt);
  EXPECT_EQ(snapshot->windows[2], (UsageWindow{"Sonnet weekly", 0, std::nullopt}));
  EXPECT_EQ(snapshot->source, "Claude Desktop");
  EXPECT_EQ(snapshot->fetchedAt, clock.now());
}

TEST_F(ClaudeDesktopUsageTest, SameTextOnATerminalGivesTheSameWindows) {
  accessibility.windows = {usagePage()};
  const auto terminal = parseUsageScreen(
      "Plan usage limits\r\n\r\nCurrent session\r\n  Resets in 2 hr 14 min\r\n  \x1b[1m61% used\x1b[0m\r\n"
      "All models\r\nResets Fri 9:00 AM\r\n12.5% used\r\nSonnet only\r\n0% used\r\n",
      clock.now(), "Claude Desktop", kZone);
  const auto desktop = read();
  ASSERT_TRUE(terminal && desktop);
  EXPECT_EQ(*terminal, *desktop);
}

TEST_F(ClaudeDesktopUsageTest, ResetTimesCountInTheGivenZone) {
  accessibility.windows = {group({text("Plan usage limits"), text("Daily"), text("1% used"), text("Resets 3:59pm")})};
  const auto berlin = usage.read("Europe/Berlin");
  const auto tokyo = usage.read("Asia/Tokyo");
  ASSERT_TRUE(berlin && tokyo);
  EXPECT_NE(berlin->windows[0].resetsAt, tokyo->windows[0].resetsAt);
}

TEST_F(ClaudeDesktopUsageTest, StepsComeInOrder) {
  accessibility.windows = {usagePage()};
  ASSERT_TRUE(read());
  EXPECT_EQ(accessibility.log,
            (Log{"application com.anthropic.claudefordesktop", "trusted?", "timeout 300 ms", "expose", "windows"}));
}

TEST_F(ClaudeDesktopUsageTest, WithoutTheApplicationTheUserIsAskedToOpenIt) {
  accessibility.running = "com.example.other";
  accessibility.trusted = false;
  EXPECT_EQ(message(), "Desktop fallback: open Claude → Settings → Usage, then refresh.");
  EXPECT_EQ(accessibility.log, Log{"application com.anthropic.claudefordesktop"});
}

TEST_F(ClaudeDesktopUsageTest, WithoutTrustTheUserIsSentToTheSettingsAndNothingIsTouched) {
  accessibility.trusted = false;
  accessibility.windows = {usagePage()};
  EXPECT_EQ(message(), "Desktop fallback needs Accessibility access. Enable it in Nimbo Settings → AI Usage.");
  EXPECT_EQ(accessibility.log.back(), "trusted?");
  EXPECT_EQ(accessibility.visited, 0);
}

TEST_F(ClaudeDesktopUsageTest, ChatWindowOnlyAsksToLeaveTheUsagePageOpen) {
  accessibility.windows = {chatWindow()};
  EXPECT_EQ(message(), "Desktop fallback: leave Claude → Settings → Usage open, then refresh.");
}

TEST_F(ClaudeDesktopUsageTest, NoWindowAsksToLeaveTheUsagePageOpen) { EXPECT_EQ(figures(), notShown); }

TEST_F(ClaudeDesktopUsageTest, MarkerWithoutLimitsAsksToLeaveTheUsagePageOpen) {
  accessibility.windows = {group({text("Plan usage limits"), text("Loading…")})};
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, LimitsWithoutTheMarkerAreNotRead) {
  accessibility.windows = {group({text("Usage limits"), text("Current session"), text("61% used")})};
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, MarkerWithinALongerTextCounts) {
  accessibility.windows = {group({text("Plan usage limits Max (5x)"), text("Current session"), text("61% used")})};
  EXPECT_EQ(figures(), fiveHours);
}

TEST_F(ClaudeDesktopUsageTest, ContentThatIsExposedFirstIsRead) {
  accessibility.windows = {FakeElement{.title = "Claude"}};
  accessibility.content = std::vector{usagePage()};
  EXPECT_EQ(figures().size(), 3U);
}

TEST_F(ClaudeDesktopUsageTest, TitleDescriptionAndValueAreAllRead) {
  accessibility.windows = {
      {.title = "Plan usage limits", .description = "Current session", .value = "61% used", .children = {}}};
  EXPECT_EQ(figures(), fiveHours);
}

TEST_F(ClaudeDesktopUsageTest, TextsOfSeparateElementsStayOnSeparateLines) {
  accessibility.windows = {group({text("Plan usage limits"), text("Current session"), text("61"), text("% used")})};
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, TextOf299CharactersIsReadAndOf300IsNot) {
  const std::string words = "Plan usage limits ";
  const auto page = [&](std::size_t length) {
    std::string marker = words;
    // Two bytes each: it is characters that count.
    for (std::size_t more = words.size(); more < length; ++more) marker += "é";
    return group({text(marker), text("Current session"), text("61% used")});
  };
  accessibility.windows = {page(299)};
  EXPECT_EQ(figures(), fiveHours);
  accessibility.windows = {page(300)};
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, DepthOf34IsReadAndOf35IsNot) {
  const FakeElement figure = text("61% used");
  accessibility.windows = {group({text("Plan usage limits"), text("Current session"), nested(33, figure)})};
  EXPECT_EQ(figures(), fiveHours);
  accessibility.windows = {group({text("Plan usage limits"), text("Current session"), nested(34, figure)})};
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, ElementNumber1500IsReadAndThe1501stIsNot) {
  const auto page = [](std::size_t before) {
    FakeElement window = group({text("Plan usage limits"), text("Current session")});
    while (window.children.size() + 1 < before) window.children.push_back(text(""));
    window.children.push_back(text("61% used"));
    return window;
  };
  accessibility.windows = {page(1499)};
  EXPECT_EQ(figures(), fiveHours);
  EXPECT_EQ(accessibility.visited, 1500);
  accessibility.visited = 0;
  accessibility.windows = {page(1500)};
  EXPECT_EQ(figures(), notShown);
  EXPECT_EQ(accessibility.visited, 1500);
}

TEST_F(ClaudeDesktopUsageTest, ElementsAreCountedAcrossBranches) {
  const FakeElement branch = group(std::vector<FakeElement>(999));
  accessibility.windows = {group({branch, branch, usagePage()})};
  EXPECT_EQ(figures(), notShown);
  EXPECT_EQ(accessibility.visited, 1500);
}

TEST_F(ClaudeDesktopUsageTest, EachWindowHasItsOwnElementsAndTime) {
  accessibility.windows = {group(std::vector<FakeElement>(5000)), usagePage()};
  accessibility.windows[0].children[1000].onVisit = [this] { clock.advance(std::chrono::seconds(3)); };
  EXPECT_EQ(figures().size(), 3U);
  EXPECT_EQ(accessibility.visited, 1002 + 15);
}

TEST_F(ClaudeDesktopUsageTest, ElementReachedAfterTwoSecondsIsRead) {
  accessibility.windows = {usagePage()};
  accessibility.windows[0].children[1].onVisit = [this] { clock.advance(std::chrono::seconds(2)); };
  EXPECT_EQ(figures().size(), 3U);
}

TEST_F(ClaudeDesktopUsageTest, WindowThatTakesLongerIsReadAsFarAsItCame) {
  accessibility.windows = {usagePage()};
  accessibility.windows[0].children[3].onVisit = [this] { clock.advance(std::chrono::milliseconds(2001)); };
  EXPECT_EQ(figures(), fiveHours);
}

TEST_F(ClaudeDesktopUsageTest, FifthWindowIsReadAndTheSixthIsNot) {
  accessibility.windows = std::vector<FakeElement>(4, chatWindow());
  accessibility.windows.push_back(usagePage());
  EXPECT_EQ(figures().size(), 3U);
  accessibility.windows.insert(accessibility.windows.begin(), chatWindow());
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, FirstWindowThatParsesWins) {
  const auto page = [](const std::string& figure) {
    return group({text("Plan usage limits"), text("Current session"), text(figure)});
  };
  accessibility.windows = {page("nothing"), page("61% used"), page("99% used")};
  EXPECT_EQ(figures(), fiveHours);
}

TEST_F(ClaudeDesktopUsageTest, ApplicationThatHangsCostsAtMostTheTimeOfFiveWindows) {
  accessibility.windows = std::vector<FakeElement>(8, usagePage());
  accessibility.hangs = true;
  const auto before = clock.uptime();
  EXPECT_EQ(figures(), notShown);
  // Each window: four calls of 0.3 s, and nothing below it that could be asked.
  EXPECT_NEAR((clock.uptime() - before).count(), 5 * 4 * 0.3, 1e-6);
}

TEST_F(ClaudeDesktopUsageTest, ApplicationThatHangsAmidTheWindowIsLeftAfterTwoSeconds) {
  accessibility.windows = {usagePage()};
  accessibility.windows[0].children[3].onVisit = [this] { accessibility.hangs = true; };
  const auto before = clock.uptime();
  EXPECT_EQ(figures(), fiveHours);
  EXPECT_LT((clock.uptime() - before).count(), 2 + 4 * 0.3 + 1e-6);
}

TEST_F(ClaudeDesktopUsageTest, SlowApplicationIsReadForTwoSeconds) {
  accessibility.windows = {group(std::vector<FakeElement>(1000))};
  accessibility.perCall = std::chrono::milliseconds(10);
  EXPECT_EQ(figures(), notShown);
  EXPECT_GT(accessibility.visited, 45);
  EXPECT_LT(accessibility.visited, 55);
}

TEST_F(ClaudeDesktopUsageTest, PageThatChangesIsReadAsItIsWhenAsked) {
  accessibility.windows = {usagePage()};
  accessibility.windows[0].onVisit = [this] { accessibility.windows.clear(); };
  EXPECT_EQ(figures().size(), 3U);
  EXPECT_EQ(figures(), notShown);
}

TEST_F(ClaudeDesktopUsageTest, StopAskedForAmidTheWalkEndsItWithoutAMessage) {
  std::stop_source source;
  accessibility.windows = {usagePage(), usagePage()};
  accessibility.windows[0].children[1].onVisit = [&source] { source.request_stop(); };
  const auto result = usage.read(kZone, source.get_token());
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error(), (UsageReadError{Kind::cancelled, ""}));
  EXPECT_EQ(accessibility.visited, 3);
}

TEST_F(ClaudeDesktopUsageTest, TextThatIsNotUtf8DoesNoHarm) {
  accessibility.windows = {usagePage()};
  accessibility.windows[0].title = "\xff\xc3(\x80";
  EXPECT_EQ(figures().size(), 3U);
}

}  // namespace
}  // namespace nimbo
