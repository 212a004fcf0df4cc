// SPDX-License-Identifier: MIT
#include "usage/claude/reset_text_parser.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "usage/utc_time.h"

namespace nimbo {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

// A Saturday, 13:00 in Berlin.
const UsageTime kNow = utc(2026, 11, 21, 12);

std::optional<UsageTime> reset(std::string_view line, UsageTime now = kNow, std::string_view zone = "UTC") {
  return parseResetText(line, now, zone);
}

TEST(ResetText, TimeLaterTodayIsToday) {
  EXPECT_EQ(reset("Resets 3:59pm"), utc(2026, 11, 21, 15, 59));
  EXPECT_EQ(reset("Resets 3:59 PM"), utc(2026, 11, 21, 15, 59));
  EXPECT_EQ(reset("Resets 15:59"), utc(2026, 11, 21, 15, 59));
}

TEST(ResetText, TimeThatHasPassedIsTomorrow) {
  EXPECT_EQ(reset("Resets 9:00am"), utc(2026, 11, 22, 9));
  EXPECT_EQ(reset("Resets 09:00"), utc(2026, 11, 22, 9));
}

TEST(ResetText, ThisVeryMomentIsTomorrow) {
  EXPECT_EQ(reset("Resets 12:00pm"), utc(2026, 11, 22, 12));
  EXPECT_EQ(reset("Resets 12:00pm", kNow - std::chrono::system_clock::duration(1)), utc(2026, 11, 21, 12));
  EXPECT_EQ(reset("Resets 12:00pm", kNow + seconds(30)), utc(2026, 11, 22, 12));
}

TEST(ResetText, TwelveIsMidnightOrNoon) {
  EXPECT_EQ(reset("Resets 12:30am"), utc(2026, 11, 22, 0, 30));
  EXPECT_EQ(reset("Resets 12:30pm"), utc(2026, 11, 21, 12, 30));
  EXPECT_EQ(reset("Resets 00:30"), utc(2026, 11, 22, 0, 30));
}

TEST(ResetText, FullHourMayStandWithoutMinutes) {
  EXPECT_EQ(reset("Resets 4pm"), utc(2026, 11, 21, 16));
  EXPECT_EQ(reset("Resets Nov 24 at 9am (Europe/Berlin)"), utc(2026, 11, 24, 8));
}

TEST(ResetText, TimesThatNoClockShowsAreUnknown) {
  for (const char* const time : {"0:30am", "13:00pm", "3:60pm", "24:00", "12:5", "3:5pm", "003:00pm", "3:59xm", "3:59",
                                 "3:59pm today", "-3:59pm", "3.59pm", "99999999999999999999:00", "pm", ":30pm"}) {
    const bool isTwentyFourHours = std::string_view(time) == "3:59";
    EXPECT_EQ(reset(fmt::format("Resets {}", time)).has_value(), isTwentyFourHours) << time;
  }
}

TEST(ResetText, NamedZoneCountsInsteadOfTheLocalOne) {
  EXPECT_EQ(reset("Resets 3:59pm (Europe/Berlin)"), utc(2026, 11, 21, 14, 59));
  EXPECT_EQ(reset("Resets 3:59pm (America/New_York)"), utc(2026, 11, 21, 20, 59));
  EXPECT_EQ(reset("Resets 3:59pm (Asia/Kathmandu)"), utc(2026, 11, 22, 10, 14));
  EXPECT_EQ(reset("Resets 3:59pm (UTC)", kNow, "Europe/Berlin"), utc(2026, 11, 21, 15, 59));
}

TEST(ResetText, LocalZoneCountsWhereNoneIsNamed) {
  EXPECT_EQ(reset("Resets 3:59pm", kNow, "Europe/Berlin"), utc(2026, 11, 21, 14, 59));
  EXPECT_EQ(reset("Resets 3:59pm", kNow, "/usr/share/zoneinfo/Europe/Berlin"), utc(2026, 11, 21, 14, 59));
}

TEST(ResetText, UnknownZoneMakesTheWholeLineUnknown) {
  for (const char* const zone : {"Mars/Base", "", "Europe", "europe/berlin ", "../zoneinfo/UTC", "/etc/localtime",
                                 "PDT", "right/UTC", "UTC)(UTC", "libc:localtime", "file:UTC", "zone.tab"}) {
    EXPECT_EQ(reset(fmt::format("Resets 3:59pm ({})", zone)), std::nullopt) << zone;
    EXPECT_EQ(reset(fmt::format("Resets in 2h ({})", zone)), std::nullopt) << zone;
  }
}

TEST(ResetText, UnknownLocalZoneLeavesOnlyWhatNeedsNone) {
  EXPECT_EQ(reset("Resets 3:59pm", kNow, "Mars/Base"), std::nullopt);
  EXPECT_EQ(reset("Resets in 2h", kNow, "Mars/Base"), kNow + hours(2));
  EXPECT_EQ(reset("Resets 3:59pm (UTC)", kNow, "Mars/Base"), utc(2026, 11, 21, 15, 59));
}

TEST(ResetText, BracketThatDoesNotEndTheLineIsNoZone) {
  EXPECT_EQ(reset("Resets 3:59pm (UTC) maybe"), std::nullopt);
  EXPECT_EQ(reset("Resets in 2h (about)"), std::nullopt);
  EXPECT_EQ(reset("Resets in 2h (about) or so"), kNow + hours(2));
}

TEST(ResetText, DateIsInTheCurrentYear) {
  EXPECT_EQ(reset("Resets Nov 24 at 9:00am"), utc(2026, 11, 24, 9));
  EXPECT_EQ(reset("Resets Nov 24, 9:00am"), utc(2026, 11, 24, 9));
  EXPECT_EQ(reset("Resets Nov 24 at 9:00 am"), utc(2026, 11, 24, 9));
  EXPECT_EQ(reset("Resets November 24 at 9:00PM"), utc(2026, 11, 24, 21));
  EXPECT_EQ(reset("resets NOV 24 AT 9:00AM"), utc(2026, 11, 24, 9));
}

TEST(ResetText, EveryMonthIsKnown) {
  constexpr const char* kNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (unsigned month = 1; month <= 12; ++month) {
    const UsageTime now = utc(2026, 6, 30);
    EXPECT_EQ(reset(fmt::format("Resets {} 15 at 9:00am", kNames[month - 1]), now), utc(2026, month, 15, 9)) << month;
  }
}

TEST(ResetText, DateJustPassedIsKept) {
  EXPECT_EQ(reset("Resets Nov 21 at 11:59am"), utc(2026, 11, 21, 11, 59));
  EXPECT_EQ(reset("Resets Nov 20 at 9:00am"), utc(2026, 11, 20, 9));
}

TEST(ResetText, DateMoreThan180DaysAgoIsNextYear) {
  const UsageTime border = utc(2026, 3, 1, 9) + days(180);
  EXPECT_EQ(reset("Resets Mar 1 at 9:00am", border), utc(2026, 3, 1, 9));
  EXPECT_EQ(reset("Resets Mar 1 at 9:00am", border + seconds(1)), utc(2027, 3, 1, 9));
}

TEST(ResetText, AtTheEndOfTheYearJanuaryIsNext) {
  EXPECT_EQ(reset("Resets Jan 2 at 9:00am", utc(2026, 12, 30)), utc(2027, 1, 2, 9));
  EXPECT_EQ(reset("Resets 9:00am", utc(2026, 12, 31, 10)), utc(2027, 1, 1, 9));
}

TEST(ResetText, YearMayBeWritten) {
  const UsageTime christmas = utc(2026, 12, 27);
  for (const char* const date : {"Jan 2, 2027, 9am", "Jan 2, 2027, 9:00am", "Jan 2, 2027 at 9am",
                                 "Jan 2 2027 at 9:00 AM", "Jan 2 2027, 9 am", "January 2, 2027 at 9:00am"}) {
    EXPECT_EQ(reset(fmt::format("Resets {} (Europe/Berlin)", date), christmas), utc(2027, 1, 2, 8)) << date;
  }
  EXPECT_EQ(reset("Resets Feb 29, 2028, 9am", utc(2027, 12, 30)), utc(2028, 2, 29, 9));
}

TEST(ResetText, WrittenYearStandsHoweverLongAgo) {
  EXPECT_EQ(reset("Resets Jan 2, 2026, 9am"), utc(2026, 1, 2, 9));
  EXPECT_EQ(reset("Resets Jan 2, 9999, 9am"), std::nullopt) << "beyond the clock";
}

TEST(ResetText, CurrentYearIsThatOfTheZone) {
  const UsageTime newYearInTokyo = utc(2026, 12, 31, 16);
  EXPECT_EQ(reset("Resets Jan 2 at 9:00am (Asia/Tokyo)", newYearInTokyo), utc(2027, 1, 2, 0));
  EXPECT_EQ(reset("Resets Dec 31 at 11:00pm (America/New_York)", utc(2027, 1, 1, 3)), utc(2027, 1, 1, 4));
}

TEST(ResetText, LeapDayExistsInLeapYearsOnly) {
  EXPECT_EQ(reset("Resets Feb 29 at 9:00am", utc(2028, 2, 27)), utc(2028, 2, 29, 9));
  EXPECT_EQ(reset("Resets Feb 29 at 9:00am", utc(2027, 2, 27)), std::nullopt);
  EXPECT_EQ(reset("Resets Feb 29 at 9:00am", utc(2028, 12, 1)), utc(2029, 2, 28, 9));
}

TEST(ResetText, DatesThatNoCalendarShowsAreUnknown) {
  for (const char* const date :
       {"Nov 31 at 9:00am", "Nov 0 at 9:00am", "Nov 100 at 9:00am", "Nox 20 at 9:00am", "Nov 20 9:00am",
        "Nov at 9:00am", "Nov20 at 9:00am", "20 Nov at 9:00am", "Nov 20 at 21:00", "Nov 20 at", "Nov 20", "November",
        "Nov 20, 27, 9am", "Nov 20, 02027, 9am", "Nov 20, 2027", "Nov 20, 2027 9am", "Nov 202027, 9am",
        "Feb 29, 2027, 9am"}) {
    EXPECT_EQ(reset(fmt::format("Resets {}", date)), std::nullopt) << date;
  }
}

TEST(ResetText, WeekdayIsTheNextOfThatName) {
  EXPECT_EQ(reset("Resets Mon 9:00am"), utc(2026, 11, 23, 9));
  EXPECT_EQ(reset("Resets Monday at 9:00 AM"), utc(2026, 11, 23, 9));
  EXPECT_EQ(reset("Resets Fri, 9:00pm"), utc(2026, 11, 27, 21));
  EXPECT_EQ(reset("Resets SUN 9:00am"), utc(2026, 11, 22, 9));
}

TEST(ResetText, SameWeekdayIsTodayOrAWeekFromNow) {
  EXPECT_EQ(reset("Resets Sat 12:01pm"), utc(2026, 11, 21, 12, 1));
  EXPECT_EQ(reset("Resets Sat 12:00pm"), utc(2026, 11, 28, 12));
  EXPECT_EQ(reset("Resets Sat 9:00am"), utc(2026, 11, 28, 9));
}

TEST(ResetText, WeekdayIsThatOfTheZone) {
  // In Auckland it is already Sunday, one o'clock in the morning.
  EXPECT_EQ(reset("Resets Sun 2:00am (Pacific/Auckland)"), utc(2026, 11, 21, 13));
  EXPECT_EQ(reset("Resets Sat 2:00am (Pacific/Auckland)"), utc(2026, 11, 27, 13));
}

TEST(ResetText, WeekdayWithoutATimeIsUnknown) {
  for (const char* const text :
       {"Mon", "Monday", "Mon ", "Mon at", "Mon soon", "Mon 21:00", "Mo 9:00am", "Mon9:00am"}) {
    EXPECT_EQ(reset(fmt::format("Resets {}", text)), std::nullopt) << text;
  }
}

TEST(ResetText, TimeToGoIsAddedUp) {
  EXPECT_EQ(reset("Resets in 2h 14m"), kNow + hours(2) + minutes(14));
  EXPECT_EQ(reset("Resets in 1 day 3 hours 5 minutes"), kNow + days(1) + hours(3) + minutes(5));
  EXPECT_EQ(reset("Resets in 2 hr 14 min"), kNow + hours(2) + minutes(14));
  EXPECT_EQ(reset("Resets in 2 days, 1 hour and 1 minute"), kNow + days(2) + hours(1) + minutes(1));
  EXPECT_EQ(reset("Resets in 3hrs"), kNow + hours(3));
  EXPECT_EQ(reset("Resets in 0m"), kNow);
}

TEST(ResetText, OnlyUnitsThatAreWordsOfTheirOwnCount) {
  EXPECT_EQ(reset("Resets in 2h 14mins"), kNow + hours(2));
  EXPECT_EQ(reset("Resets in 2 months 3 d"), kNow + days(3));
  EXPECT_EQ(reset("Resets in 2h14m"), kNow + minutes(14));
  EXPECT_EQ(reset("Resets in 5 2h"), kNow + hours(2));
}

TEST(ResetText, TimeToGoWithoutAnyUnitIsUnknown) {
  for (const char* const text : {"in a while", "in 5", "in 5 weeks", "in ", "in"}) {
    EXPECT_EQ(reset(fmt::format("Resets {}", text)), std::nullopt) << text;
  }
}

TEST(ResetText, TimeToGoCountsAfterInOnly) {
  EXPECT_EQ(reset("Resets 2h 14m"), std::nullopt);
  EXPECT_EQ(reset("Resets within 2h"), std::nullopt);
}

TEST(ResetText, TimeBeyondWhatTheClockReachesIsUnknown) {
  for (const char* const text : {"99999999999999999999d", "200000d", "9223372036854775807m", "100000d 100000d"}) {
    EXPECT_EQ(reset(fmt::format("Resets in {}", text)), std::nullopt) << text;
  }
  EXPECT_EQ(reset("Resets in 80000d"), kNow + days(80000));
  EXPECT_EQ(reset("Resets 3:59pm", UsageTime::max()), std::nullopt);
  EXPECT_EQ(reset("Resets Jan 1 at 9:00am", utc(1677, 9, 22)), utc(1678, 1, 1, 9));
  EXPECT_EQ(reset("Resets Jul 1 at 9:00am", utc(1677, 9, 22)), std::nullopt);
}

TEST(ResetText, TimeThatTheClocksSkipIsTheMomentOfTheChange) {
  // Berlin, 29 March 2026: from 2:00 to 3:00.
  const UsageTime change = utc(2026, 3, 29, 1);
  EXPECT_EQ(reset("Resets 2:30am (Europe/Berlin)", change - hours(1)), change);
  EXPECT_EQ(reset("Resets Mar 29 at 2:30am (Europe/Berlin)", change - hours(1)), change);
  EXPECT_EQ(reset("Resets Sun 2:30am (Europe/Berlin)", change - days(1)), change);
  EXPECT_EQ(reset("Resets 2:30am (Europe/Berlin)", change), utc(2026, 3, 30, 0, 30));
}

TEST(ResetText, TimeThatTheClocksRepeatIsTheFirstThatIsStillToCome) {
  // Berlin, 25 October 2026: from 3:00 back to 2:00, at 1:00 in UTC.
  const UsageTime first = utc(2026, 10, 25, 0, 30);
  const UsageTime second = utc(2026, 10, 25, 1, 30);
  EXPECT_EQ(reset("Resets 2:30am (Europe/Berlin)", first - minutes(1)), first);
  EXPECT_EQ(reset("Resets 2:30am (Europe/Berlin)", first), second);
  EXPECT_EQ(reset("Resets Sun 2:30am (Europe/Berlin)", first), second);
  EXPECT_EQ(reset("Resets 2:30am (Europe/Berlin)", second), utc(2026, 10, 26, 1, 30));
  EXPECT_EQ(reset("Resets Oct 25 at 2:30am (Europe/Berlin)", first), first);
}

TEST(ResetText, DayThatAZoneLeftOutIsPassedOver) {
  // Samoa had no 30 December 2011, a Friday.
  const UsageTime now = utc(2011, 12, 30, 0);
  EXPECT_EQ(reset("Resets Fri 9:00am (Pacific/Apia)", now), utc(2012, 1, 5, 19));
  EXPECT_EQ(reset("Resets 9:00am (Pacific/Apia)", utc(2011, 12, 30, 5)), utc(2011, 12, 30, 19));
}

TEST(ResetText, RulesHoldBeyondTheListedChanges) {
  EXPECT_EQ(reset("Resets 3:59pm (Europe/Berlin)", utc(2050, 7, 1, 12)), utc(2050, 7, 1, 13, 59));
  EXPECT_EQ(reset("Resets 3:59pm (Europe/Berlin)", utc(2050, 1, 1, 12)), utc(2050, 1, 1, 14, 59));
}

TEST(ResetText, WhiteSpaceOfEveryKindSeparates) {
  EXPECT_EQ(reset("  Resets\u00A0 3:59\u202Fpm\u00A0(Europe/Berlin)  "), std::nullopt) << "“Resets ” ends in a space";
  EXPECT_EQ(reset("  Resets  3:59\u202Fpm\u00A0(Europe/Berlin)\u00A0"), utc(2026, 11, 21, 14, 59));
  EXPECT_EQ(reset("Resets Nov\u00A024\tat  9:00\u202FAM"), utc(2026, 11, 24, 9));
}

TEST(ResetText, AnythingElseIsUnknown) {
  for (const char* const line : {"", "Resets", "Resets ", "Resets soon", "Resets tomorrow 9:00am", "Resets 2026-11-24",
                                 "Resets ()", "Resets (", "Resets )", "Reset 3:59pm", "Resets Resets 3:59pm"}) {
    EXPECT_EQ(reset(line), std::nullopt) << line;
  }
}

TEST(ResetText, NamesDoNotFollowTheLocale) {
  const char* const set = std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_EQ(reset("Resets Dec 1 at 9:00pm"), utc(2026, 12, 1, 21)) << "locale available: " << (set != nullptr);
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace nimbo
