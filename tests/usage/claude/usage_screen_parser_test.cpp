// SPDX-License-Identifier: MIT
#include "usage/claude/usage_screen_parser.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <clocale>
#include <ctime>
#include <fstream>
#include <iterator>

#include "usage/utc_time.h"

namespace nimbo {
namespace {

const UsageTime kReadAt = utc(2026, 11, 21, 12);
constexpr const char* kNoLimits = "none";

std::string recording(const std::string& name) {
  std::ifstream file(std::string(NIMBO_SCREENS "/") + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

UsageOutcome parse(std::string_view text) { return parseUsageScreen(text, kReadAt, "Claude Code", "UTC"); }

// "5-hour 61, Weekly 8" for short.
std::string windowsOf(std::string_view text) {
  const auto snapshot = parse(text);
  if (!snapshot) return kNoLimits;
  std::string all;
  for (const UsageWindow& window : snapshot->windows) {
    all += fmt::format("{}{} {}", all.empty() ? "" : ", ", window.title, window.usedPercent);
  }
  return all;
}

const std::vector<UsageWindow> kThreeWindows = {{"5-hour", 61, utc(2026, 11, 21, 14, 59)},
                                                {"Weekly", 8, utc(2026, 11, 24, 8)},
                                                {"Sonnet weekly", 3, utc(2026, 11, 24, 8)}};

TEST(UsageScreen, PlainScreenGivesItsWindowsInOrder) {
  const auto snapshot = parse(recording("plain.txt"));
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (UsageSnapshot{kThreeWindows, kReadAt, "Claude Code"}));
}

TEST(UsageScreen, CarriageReturnsAndEscapesDoNotMatter) {
  EXPECT_EQ(parse(recording("carriage_returns.txt"))->windows, kThreeWindows);
  EXPECT_EQ(parse(recording("escapes.txt"))->windows, kThreeWindows);
}

TEST(UsageScreen, RedrawnScreenGivesOneWindowPerTitleWithTheLatestFigures) {
  const auto snapshot = parse(recording("redrawn_twice.txt"));
  ASSERT_TRUE(snapshot);
  ASSERT_EQ(snapshot->windows.size(), 3U);
  EXPECT_EQ(snapshot->windows.at(0), (UsageWindow{"5-hour", 62.5, utc(2026, 11, 21, 15, 59)}));
}

TEST(UsageScreen, ScreenCutInsideACharacterGivesWhatWasWhole) {
  EXPECT_EQ(windowsOf(recording("truncated_in_a_character.txt")), "5-hour 61, Weekly 8");
}

TEST(UsageScreen, DesktopPageIsReadToo) {
  const auto snapshot = parseUsageScreen(recording("desktop_page.txt"), kReadAt, "Claude Desktop", "Europe/Berlin");
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->source, "Claude Desktop");
  EXPECT_EQ(snapshot->windows, (std::vector<UsageWindow>{
                                   {"5-hour", 61, kReadAt + std::chrono::hours(2) + std::chrono::minutes(14)},
                                   {"Weekly", 8, utc(2026, 11, 24, 8)},
                                   {"Opus weekly", 0, std::nullopt},
                               }));
}

TEST(UsageScreen, ScreensWithoutLimitsAreAnErrorThatSaysWhatToDo) {
  const UsageError error{"No readable Claude limits. Sign in with Claude Code and check /usage, then refresh."};
  for (const char* const name : {"signed_out.txt", "trust_prompt.txt", "garbage.bin"}) {
    ASSERT_FALSE(parse(recording(name))) << name;
    EXPECT_EQ(parse(recording(name)).error(), error) << name;
  }
  ASSERT_FALSE(parse(""));
  EXPECT_EQ(parse("").error(), error);
}

TEST(UsageScreen, ScreensThatStayUntilTheUserDoesSomethingAreKnown) {
  for (const char* const name : {"signed_out.txt", "not_logged_in.txt", "first_start.txt", "rate_limited.txt"}) {
    EXPECT_TRUE(isDeadEnd(recording(name))) << name;
    ASSERT_FALSE(parse(recording(name))) << name;
  }
  for (const char* const name : {"plain.txt", "escapes.txt", "trust_prompt.txt", "garbage.bin"}) {
    EXPECT_FALSE(isDeadEnd(recording(name))) << name;
  }
}

TEST(UsageScreen, TitlesAreFoundInAnyCase) {
  EXPECT_EQ(windowsOf("CURRENT SESSION\n1% used\ncurrent day\n2% used\nCurrent Week\n3% used"),
            "5-hour 1, Daily 2, Weekly 3");
}

TEST(UsageScreen, DailyHasTwoTitles) {
  EXPECT_EQ(windowsOf("Daily\n2% used"), "Daily 2");
  EXPECT_EQ(windowsOf("Daily\n2% used\nCurrent day\n3% used"), "Daily 3");
}

TEST(UsageScreen, WeekOfOneModelIsNamedAfterIt) {
  EXPECT_EQ(windowsOf("Current week (Opus only)\n4% used"), "Opus weekly 4");
  EXPECT_EQ(windowsOf("Current week (Sonnet)\n4% used"), "Sonnet weekly 4");
  EXPECT_EQ(windowsOf("Opus only\n4% used\nSonnet only\n5% used"), "Opus weekly 4, Sonnet weekly 5");
  EXPECT_EQ(windowsOf("CURRENT WEEK (Opus ONLY)\n4% used"), "Opus weekly 4");
}

TEST(UsageScreen, WeekOfAllModelsIsTheWeeklyWindow) {
  for (const char* const title : {"Current week", "Current week (all models)", "All models", "ALL MODELS"}) {
    EXPECT_EQ(windowsOf(fmt::format("{}\n8% used", title)), "Weekly 8") << title;
  }
}

TEST(UsageScreen, WhiteSpaceAroundALineIsIgnored) {
  EXPECT_EQ(windowsOf("\u00A0 \tCurrent session \u2003\r\n\t61% used"), "5-hour 61");
}

TEST(UsageScreen, TitleInsideALineIsNoTitle) { EXPECT_EQ(windowsOf("The current session\n61% used"), kNoLimits); }

TEST(UsageScreen, FigureIsReadWithOrWithoutBlanksBeforeUsed) {
  for (const char* const line :
       {"61% used", "61%used", "61%   used", "61%\tused", "61%\u00A0used", "▌61% used today"}) {
    EXPECT_EQ(windowsOf(fmt::format("Daily\n{}", line)), "Daily 61") << line;
  }
}

TEST(UsageScreen, OtherFiguresDoNotCount) {
  for (const char* const line : {"61% left", "61 % used", "61 used", "% used", "61% Used", "x% used", "61% us"}) {
    EXPECT_EQ(windowsOf(fmt::format("Daily\n{}", line)), kNoLimits) << line;
  }
}

TEST(UsageScreen, FirstOfTwoFiguresOnALineCounts) {
  EXPECT_EQ(windowsOf("Daily\n5% left, 7.5% used, 9% used"), "Daily 7.5");
}

TEST(UsageScreen, LastLineWithAFigureCounts) { EXPECT_EQ(windowsOf("Daily\n5% used\n7% used"), "Daily 7"); }

TEST(UsageScreen, DecimalsAreReadAsFarAsTheyMakeOneNumber) {
  EXPECT_EQ(windowsOf("Daily\n0.25% used"), "Daily 0.25");
  EXPECT_EQ(windowsOf("Daily\n1.2.5% used"), "Daily 2.5");
  EXPECT_EQ(windowsOf("Daily\n.5% used"), "Daily 5");
  EXPECT_EQ(windowsOf("Daily\n3.% used"), kNoLimits);
}

TEST(UsageScreen, AllAndNothingAreKeptAndMoreIsDropped) {
  EXPECT_EQ(windowsOf("Daily\n0% used"), "Daily 0");
  EXPECT_EQ(windowsOf("Daily\n100% used"), "Daily 100");
  EXPECT_EQ(windowsOf("Daily\n101% used"), kNoLimits);
  EXPECT_EQ(windowsOf("Daily\n100.01% used"), kNoLimits);
}

TEST(UsageScreen, FigureTooLargeForANumberIsDropped) {
  EXPECT_EQ(windowsOf("Daily\n5% used\n" + std::string(400, '9') + "% used"), kNoLimits);
}

TEST(UsageScreen, DroppedFigureKeepsTheEarlierOneOfItsTitle) {
  EXPECT_EQ(windowsOf("Daily\n5% used\nDaily\n101% used"), "Daily 5");
}

TEST(UsageScreen, DecimalPointDoesNotFollowTheLocale) {
  const char* const set = std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_EQ(windowsOf("Daily\n7.5% used"), "Daily 7.5") << "locale available: " << (set != nullptr);
  std::setlocale(LC_ALL, "C");
}

TEST(UsageScreen, OtherSectionsEndAWindow) {
  for (const char* const section :
       {"Usage credits", "Extra usage not enabled", "EXTRA USAGE", "Activity", "Monthly agent credit", "Gift Credit"}) {
    EXPECT_EQ(windowsOf(fmt::format("Daily\n5% used\n{}\n90% used", section)), "Daily 5") << section;
  }
  EXPECT_EQ(windowsOf("Daily\nActivity today\n5% used"), "Daily 5");
  EXPECT_EQ(windowsOf("Daily\nCredit today\n5% used"), "Daily 5");
}

TEST(UsageScreen, SectionBeforeTheFigureLeavesTheTitleWithout) {
  EXPECT_EQ(windowsOf("Daily\nExtra usage\n5% used"), kNoLimits);
}

TEST(UsageScreen, ResetMayStandBeforeTheFigure) {
  EXPECT_EQ(parse("Daily\nResets 3:59pm\n5% used")->windows.at(0).resetsAt, utc(2026, 11, 21, 15, 59));
}

TEST(UsageScreen, ResetThatCannotBeReadLeavesTheWindowWithout) {
  EXPECT_EQ(parse("Daily\n5% used\nResets someday")->windows.at(0), (UsageWindow{"Daily", 5, std::nullopt}));
  EXPECT_EQ(parse("Daily\n5% used\nResets 3pm\nResets 3pm (Mars/Base)")->windows.at(0).resetsAt, std::nullopt);
}

TEST(UsageScreen, ResetBelongsToItsOwnWindowOnly) {
  const auto snapshot = parse("Daily\n5% used\nResets 3pm\nCurrent session\n6% used");
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->windows.at(1), (UsageWindow{"5-hour", 6, std::nullopt}));
}

TEST(UsageScreen, LastLineCountsBeforeItEnds) {
  EXPECT_EQ(windowsOf("Daily\n10% used"), "Daily 10");
  EXPECT_EQ(windowsOf("Daily\n10% used and more\nCurrent week"), "Daily 10");
}

TEST(UsageScreen, SequenceThatHasNotEndedIsText) {
  EXPECT_EQ(windowsOf("Daily\n10% used\x1B["), "Daily 10");
  EXPECT_EQ(windowsOf("\x1B]0;title\nDaily\n10% used"), "Daily 10");
}

TEST(UsageScreen, LineBeyondAnyTerminalIsPassedOver) {
  const auto line = [](std::size_t length) { return "Daily\n7% used\n8% used" + std::string(length - 7, 'x'); };
  EXPECT_EQ(windowsOf(line(16384)), "Daily 8");
  EXPECT_EQ(windowsOf(line(16385)), "Daily 7");
}

TEST(UsageScreen, EndlessTitlesAreNotCollected) {
  std::string screen;
  for (int number = 1; number <= 65; ++number) screen += fmt::format("Current week {}\n1% used\n", number);
  const auto snapshot = parse(screen + "Current week 64\n2% used");
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->windows.size(), 64U);
  EXPECT_EQ(snapshot->windows.back(), (UsageWindow{"64 weekly", 2, std::nullopt}));
}

// Processor time of a screen of half a megabyte, which begins with `start`.
std::chrono::duration<double> costOf(std::string_view start, std::string_view unit) {
  constexpr std::size_t kScreenBytes = 512U * 1024;
  std::string screen(start);
  while (screen.size() < kScreenBytes) screen += unit;
  screen.resize(kScreenBytes);
  const std::clock_t begin = std::clock();
  (void)parse(screen);
  return std::chrono::duration<double>(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
}

// The limit leaves room for sanitizers and busy machines, and still tells a cost that grows with the square of
// the screen.
TEST(UsageScreen, HalfAMegabyteCostsLittle) {
  constexpr std::chrono::milliseconds kLimit{NIMBO_SCREEN_LIMIT_MS};
  const std::string manyTitles = [] {
    std::string titles;
    for (int number = 0; number < 20'000; ++number) titles += fmt::format("Current week {}\n1% used\n", number);
    return titles;
  }();
  const std::string redraw = recording("escapes.txt");
  for (const std::string_view unit :
       {std::string_view(redraw), std::string_view("x"), std::string_view("\n"), std::string_view("\x1B"),
        std::string_view("\x1B]"), std::string_view("\x1B]\a"), std::string_view("\x1B[0"), std::string_view("\x1B[0m"),
        std::string_view("€"), std::string_view("\xE2"), std::string_view("1% "), std::string_view("9"),
        std::string_view("Daily\n1% used\nResets in 1d\n"), std::string_view(manyTitles)}) {
    EXPECT_LT(costOf("", unit), kLimit) << unit.substr(0, 20);
  }
}

TEST(UsageScreen, OpenSequencesAndEndlessLinesCostLittle) {
  constexpr std::chrono::milliseconds kLimit{NIMBO_SCREEN_LIMIT_MS};
  for (const char* const start : {"\x1B]0;", "\x1B[", "Current week "}) {
    for (const char* const filler : {"9", "Daily\n1% used\n", "\u00A0"}) {
      EXPECT_LT(costOf(start, filler), kLimit) << start << filler;
    }
  }
}

}  // namespace
}  // namespace nimbo
