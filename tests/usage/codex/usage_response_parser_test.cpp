// SPDX-License-Identifier: MIT
#include "usage/codex/usage_response_parser.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "usage/utc_time.h"

namespace nimbo {
namespace {

const UsageTime kAnsweredAt = utc(2026, 11, 21, 12);

UsageOutcome parse(std::string_view body, UsageProvider provider = UsageProvider::codex) {
  return parseUsageResponse(body, provider, kAnsweredAt);
}

// The only window of an answer whose primary window has these members.
std::optional<UsageWindow> primary(const std::string& members) {
  const auto snapshot = parse(fmt::format(R"({{"rate_limit":{{"primary_window":{{{}}}}}}})", members));
  return snapshot ? std::optional(snapshot->windows.at(0)) : std::nullopt;
}

std::string titleFor(const std::string& length) {
  const auto window = primary(fmt::format(R"("used_percent":1,"limit_window_seconds":{})", length));
  return window ? window->title : "(no window)";
}

TEST(UsageResponse, CodexAnswerGivesBothWindows) {
  const auto snapshot = parse(R"({"plan_type":"plus","rate_limit":{"allowed":true,"limit_reached":false,
    "primary_window":{"used_percent":61,"limit_window_seconds":18000,"reset_after_seconds":9000,"reset_at":1795271400},
    "secondary_window":{"used_percent":8.5,"limit_window_seconds":604800,"reset_at":1795435200}},"credits":null})");
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(
      *snapshot,
      (UsageSnapshot{.windows = {{"5-hour", 61, utc(2026, 11, 21, 14, 30)}, {"Weekly", 8.5, utc(2026, 11, 23, 12)}},
                     .fetchedAt = kAnsweredAt,
                     .source = std::nullopt}));
}

TEST(UsageResponse, ClaudeAnswerGivesItsWindowsInTheirOrder) {
  const auto snapshot = parse(R"({"seven_day_opus":{"utilization":4,"resets_at":null},
    "five_hour":{"utilization":61.0,"resets_at":"2026-11-21T14:30:00.250000+00:00"},"seven_day_oauth_apps":null,
    "seven_day":{"utilization":8,"resets_at":"2026-11-23T12:00:00Z"},"seven_day_sonnet":{"utilization":0}})",
                              UsageProvider::claude);
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->windows, (std::vector<UsageWindow>{
                                   {"5-hour", 61, utc(2026, 11, 21, 14, 30) + std::chrono::milliseconds(250)},
                                   {"Weekly", 8, utc(2026, 11, 23, 12)},
                                   {"Sonnet weekly", 0, std::nullopt},
                                   {"Opus weekly", 4, std::nullopt},
                               }));
}

TEST(UsageResponse, LengthOfTheWindowDecidesItsTitle) {
  EXPECT_EQ(titleFor("18000"), "5-hour");
  EXPECT_EQ(titleFor("604800"), "Weekly");
  EXPECT_EQ(titleFor("5400"), "90-minute");
  EXPECT_EQ(titleFor("86400"), "24-hour");
  EXPECT_EQ(titleFor("119"), "1-minute");
  EXPECT_EQ(titleFor("1"), "0-minute");
  EXPECT_EQ(titleFor("18000.0"), "5-hour");
}

TEST(UsageResponse, LengthThatSaysNothingKeepsTheDefaultTitle) {
  for (const char* const length : {"0", "-18000", "null", "\"18000\"", "18000.5", "1e300", "true"}) {
    EXPECT_EQ(titleFor(length), "Session") << length;
  }
}

TEST(UsageResponse, WindowsWithoutLengthHaveTheirDefaultTitles) {
  const auto snapshot =
      parse(R"({"rate_limit":{"primary_window":{"used_percent":1},"secondary_window":{"used_percent":2}}})");
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->windows.at(0).title, "Session");
  EXPECT_EQ(snapshot->windows.at(1).title, "Weekly");
}

TEST(UsageResponse, PercentFromNothingToAllIsKept) {
  EXPECT_EQ(primary(R"("used_percent":0)")->usedPercent, 0);
  EXPECT_EQ(primary(R"("used_percent":100)")->usedPercent, 100);
}

TEST(UsageResponse, PercentOutsideDropsTheWindow) {
  for (const char* const percent : {"100.5", "-1", "-0.001", "1e300", "null", "\"61\"", "true", "[61]"}) {
    EXPECT_EQ(primary(fmt::format(R"("used_percent":{})", percent)), std::nullopt) << percent;
  }
}

TEST(UsageResponse, OneDroppedWindowLeavesTheOther) {
  const auto snapshot =
      parse(R"({"rate_limit":{"primary_window":{"used_percent":101},"secondary_window":{"used_percent":2}}})");
  ASSERT_TRUE(snapshot);
  ASSERT_EQ(snapshot->windows.size(), 1U);
  EXPECT_EQ(snapshot->windows.at(0).title, "Weekly");
}

TEST(UsageResponse, ResetIsReadFromTheFirstOfTwoKeysThatSaysIt) {
  const std::string text = R"("used_percent":1,"resets_at":"2026-11-21T14:30:00Z","reset_at":)";
  EXPECT_EQ(primary(text + "1795435200")->resetsAt, utc(2026, 11, 23, 12));
  EXPECT_EQ(primary(text + "1795435200.5")->resetsAt, utc(2026, 11, 23, 12) + std::chrono::milliseconds(500));
  for (const char* const other : {"0", "-5", "null", "\"1795435200\"", "1e300", "9.3e9"}) {
    EXPECT_EQ(primary(text + other)->resetsAt, utc(2026, 11, 21, 14, 30)) << other;
  }
}

TEST(UsageResponse, ResetThatCannotBeReadIsAbsent) {
  EXPECT_EQ(primary(R"("used_percent":1)")->resetsAt, std::nullopt);
  EXPECT_EQ(primary(R"("used_percent":1,"resets_at":"soon")")->resetsAt, std::nullopt);
  EXPECT_EQ(primary(R"("used_percent":1,"resets_at":1795435200)")->resetsAt, std::nullopt);
}

TEST(UsageResponse, OffsetOfATimeIsThatOfAZone) {
  const auto reset = [](const std::string& offset) {
    return primary(R"("used_percent":1,"resets_at":"2026-11-21T14:30:00)" + offset + '"')->resetsAt;
  };
  EXPECT_EQ(reset("+23:59"), utc(2026, 11, 20, 14, 31));
  EXPECT_EQ(reset("+24:00"), std::nullopt);
  EXPECT_EQ(reset("+00:60"), std::nullopt);
}

TEST(UsageResponse, ArrayIsUnreadableUsageData) {
  for (const char* const body : {"[]", "null", "7", "\"text\""}) {
    EXPECT_EQ(parse(body).error(), (UsageError{"The provider returned unreadable usage data."})) << body;
  }
}

TEST(UsageResponse, WhatIsNoJsonIsAnUnexpectedErrorThatQuotesNothing) {
  for (const char* const body : {"", "<html>secret</html>", "{\"rate_limit\":", "{}\xFF"}) {
    ASSERT_FALSE(parse(body)) << body;
    EXPECT_EQ(parse(body).error().message, "The data couldn’t be read because it isn’t in the correct format.");
  }
}

TEST(UsageResponse, AnswerWithoutAnyWindowHasNoSupportedLimits) {
  for (const char* const body : {"{}", R"({"rate_limit":null})", R"({"rate_limit":[]})", R"({"rate_limit":{}})",
                                 R"({"rate_limit":{"primary_window":null,"secondary_window":7}})",
                                 R"({"primary_window":{"used_percent":1}})", R"({"five_hour":{"utilization":1}})"}) {
    ASSERT_FALSE(parse(body)) << body;
    EXPECT_EQ(parse(body).error(), (UsageError{"No supported usage limits returned for this account."})) << body;
  }
}

TEST(UsageResponse, DecimalPointDoesNotFollowTheLocale) {
  const char* const set = std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_EQ(primary(R"("used_percent":61.5)")->usedPercent, 61.5) << "locale available: " << (set != nullptr);
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace nimbo
