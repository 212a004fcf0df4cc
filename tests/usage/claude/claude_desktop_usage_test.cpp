// SPDX-License-Identifier: MIT
#include "usage/claude/claude_desktop_usage.h"

#include <gtest/gtest.h>

#include "platform/mac_wording.h"
#include "support/fake_accessibility.h"
#include "usage/claude/usage_screen_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

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
  UsageOutcome read() { return usage.read(kZone); }

  [[nodiscard]] std::string message() {
    const auto result = read();
    if (result) return "a snapshot";
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
  ClaudeDesktopUsage usage{accessibility, clock, macWording()};
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

TEST_F(ClaudeDesktopUsageTest, NoWindowIsWhatTheSystemHasAnAdviceFor) {
  Wording words = macWording();
  words.desktopShowsNothing = "Restart it.";
  const ClaudeDesktopUsage elsewhere{accessibility, clock, words};
  EXPECT_EQ(elsewhere.read(kZone).error().message, "Restart it.");
  accessibility.windows = {chatWindow()};
  EXPECT_EQ(elsewhere.read(kZone).error().message, usage_messages::kDesktopUsageNotShown);
}

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

TEST_F(ClaudeDesktopUsageTest, EachWindowHasItsOwnElementsAndTime) {
  accessibility.windows = {group(std::vector<FakeElement>(5000)), usagePage()};
  accessibility.windows[0].children[1000].onVisit = [this] { clock.advance(std::chrono::seconds(3)); };
  EXPECT_EQ(figures().size(), 3U);
  EXPECT_EQ(accessibility.visited, 1002 + 15);
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
  EXPECT_EQ(result.error(), UsageError{});
  EXPECT_EQ(accessibility.visited, 3);
}

TEST_F(ClaudeDesktopUsageTest, TextThatIsNotUtf8DoesNoHarm) {
  accessibility.windows = {usagePage()};
  accessibility.windows[0].title = "\xff\xc3(\x80";
  EXPECT_EQ(figures().size(), 3U);
}

class WindowTextTest : public testing::Test {
 protected:
  std::string read(FakeElement window) {
    accessibility.windows = {std::move(window)};
    const auto application = accessibility.application(accessibility.running);
    application->setMessagingTimeout(std::chrono::milliseconds(300));
    const auto windows = application->windows(1);
    accessibility.visited = 0;
    return windowText(*windows.front(), clock, stop.get_token());
  }

  FakeClock clock;
  FakeAccessibility accessibility{clock};
  std::stop_source stop;
};

TEST_F(WindowTextTest, TitleDescriptionAndValueComeInThisOrderAheadOfTheChildren) {
  EXPECT_EQ(read({.title = "a", .description = "b", .value = "c", .children = {text("d"), text("e")}}),
            "a\nb\nc\nd\ne");
}

TEST_F(WindowTextTest, ChildrenComeDepthFirst) {
  EXPECT_EQ(read(group({group({text("a"), group({text("b")})}), text("c")})), "a\nb\nc");
}

TEST_F(WindowTextTest, TextIdenticalToTheLastLineIsKeptOnce) {
  EXPECT_EQ(read({.title = "a", .description = "a", .value = "b", .children = {text("b"), text("c"), text("c")}}),
            "a\nb\nc");
}

TEST_F(WindowTextTest, FigureInSeveralElementsIsOneLine) {
  EXPECT_EQ(read(group({text("Daily"), text("23"), text("% used"), text("Resets 3pm")})),
            "Daily\n23% used\nResets 3pm");
  EXPECT_EQ(read(group({text("7.5"), group({text("%")}), text(" used"), text("Daily")})), "7.5%used\nDaily");
  EXPECT_EQ(read(group({text("23%"), text("Used by one in five"), text("% of all"), text("used")})),
            "23%\nUsed by one in five\n% of all\nused");
}

TEST_F(WindowTextTest, TextThatCameBeforeTheLastLineIsKeptAgain) {
  EXPECT_EQ(read(group({text("a"), text("b"), text("a")})), "a\nb\na");
}

TEST_F(WindowTextTest, EmptyAndAbsentTextsAreNoLines) {
  EXPECT_EQ(read({.title = "", .value = "a", .children = {{}, text(""), text("a"), text("b")}}), "a\nb");
  EXPECT_EQ(read({}), "");
}

TEST_F(WindowTextTest, TextOf299CharactersIsReadAndOf300IsNot) {
  const auto of = [](int length) {
    std::string words;
    for (int index = 0; index < length; ++index) words += "é";  // of two bytes: it is characters that count
    return words;
  };
  EXPECT_EQ(read(text(of(299))), of(299));
  EXPECT_EQ(read(text(of(300))), "");
  EXPECT_EQ(read(group({text("a"), text(of(300)), text("a")})), "a");
}

TEST_F(WindowTextTest, DepthOf34IsReadAndOf35IsNot) {
  EXPECT_EQ(read(nested(34, text("a"))), "a");
  EXPECT_EQ(read(nested(35, text("a"))), "");
  EXPECT_EQ(accessibility.visited, 35);
}

TEST_F(WindowTextTest, TreeWithoutEndIsLeftAtTheDeepestLevel) {
  EXPECT_EQ(read(nested(1000, text("a"))), "");
  EXPECT_EQ(accessibility.visited, 35);
}

TEST_F(WindowTextTest, ElementNumber1500IsReadAndThe1501stIsNot) {
  FakeElement window = group(std::vector<FakeElement>(1498));
  window.children.push_back(text("a"));
  window.children.push_back(text("b"));
  EXPECT_EQ(read(window), "a");
  EXPECT_EQ(accessibility.visited, 1500);
}

TEST_F(WindowTextTest, ElementsAreCountedAcrossBranches) {
  const FakeElement branch = group(std::vector<FakeElement>(749));
  EXPECT_EQ(read(group({branch, branch, text("a")})), "");
  EXPECT_EQ(read(group({branch, group(std::vector<FakeElement>(747)), text("a")})), "a");
}

TEST_F(WindowTextTest, ElementReachedAfterTwoSecondsIsReadAndLaterIsNot) {
  FakeElement window = group({text("a"), text("b"), text("c")});
  window.children[0].onVisit = [this] { clock.advance(std::chrono::seconds(2)); };
  window.children[1].onVisit = [this] { clock.advance(std::chrono::milliseconds(1)); };
  EXPECT_EQ(read(window), "a\nb");
}

TEST_F(WindowTextTest, SlowApplicationIsReadForTwoSeconds) {
  accessibility.perCall = std::chrono::milliseconds(10);
  const auto before = clock.uptime();
  EXPECT_EQ(read(group(std::vector<FakeElement>(1000))), "");
  EXPECT_NEAR((clock.uptime() - before).count(), 2, 0.05);
  EXPECT_NEAR(accessibility.visited, 51, 1);
}

TEST_F(WindowTextTest, ApplicationThatHangsHalfwayIsLeftAfterTwoSecondsAndOneElement) {
  FakeElement window = group(std::vector<FakeElement>(1000, text("a")));
  window.children[3].onVisit = [this] { accessibility.hangs = true; };
  const auto before = clock.uptime();
  EXPECT_EQ(read(window), "a");
  EXPECT_LT((clock.uptime() - before).count(), 2 + 4 * 0.3 + 1e-6);
}

TEST_F(WindowTextTest, StopAskedForEndsTheWalkAtTheNextElement) {
  FakeElement window = group({text("a"), text("b"), text("c")});
  window.children[1].onVisit = [this] { stop.request_stop(); };
  EXPECT_EQ(read(window), "a\nb");
  EXPECT_EQ(accessibility.visited, 3);
}

}  // namespace
}  // namespace nimbo
