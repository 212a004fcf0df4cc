// SPDX-License-Identifier: MIT
#include "awake/session_length.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::system_clock::time_point;

const Time kNow{std::chrono::seconds{1795271263}};  // 2026-11-21 14:27:43 UTC
const Time kDate = kNow + 26h;

TEST(SessionLength, StoredCustomLengthIsBroughtIntoItsRange) {
  EXPECT_EQ(clampedCustomMinutes(0), 1);
  EXPECT_EQ(clampedCustomMinutes(-60), 1);
  EXPECT_EQ(clampedCustomMinutes(45), 45);
  EXPECT_EQ(clampedCustomMinutes(20000), 10080);
}

TEST(SessionLength, TypedLengthIsAWholeNumberUpToAWeek) {
  EXPECT_EQ(customMinutes("1"), 1);
  EXPECT_EQ(customMinutes("90"), 90);
  EXPECT_EQ(customMinutes("10080"), 10080);
}

TEST(SessionLength, WhiteSpaceAroundATypedLengthIsAllowed) {
  EXPECT_EQ(customMinutes("  45 "), 45);
  EXPECT_EQ(customMinutes("\t45\r\n"), 45);
  EXPECT_EQ(customMinutes("\u00A045\u202F"), 45);
}

TEST(SessionLength, OtherTypedTextIsNoLength) {
  for (const char* text : {"", "  ", "abc", "0", "10081", "-5", "4 5", "45m", "45.0", "1e3", "99999999999999999999"}) {
    EXPECT_EQ(customMinutes(text), std::nullopt) << text;
  }
}

TEST(SessionLength, UntilStoppedHasNoEnd) { EXPECT_EQ(sessionEnd(0, 90, kDate, kNow), std::nullopt); }

TEST(SessionLength, FixedLengthsAreSecondsFromNow) {
  EXPECT_EQ(sessionEnd(1800, 90, kDate, kNow), kNow + 30min);
  EXPECT_EQ(sessionEnd(14400, 90, kDate, kNow), kNow + 4h);
}

TEST(SessionLength, CustomLengthIsMinutesFromNow) {
  EXPECT_EQ(sessionEnd(-1, 90, kDate, kNow), kNow + 90min);
  EXPECT_EQ(sessionEnd(-1, 10080, kDate, kNow), kNow + 24h * 7);
}

TEST(SessionLength, ChosenDateIsTheEndEvenWhenItIsPast) {
  EXPECT_EQ(sessionEnd(-2, 90, kDate, kNow), kDate);
  EXPECT_EQ(sessionEnd(-2, 90, kNow - 1h, kNow), kNow - 1h);
}

TEST(SessionLength, SuggestedEndIsAnHourAheadOnTheMinute) { EXPECT_EQ(suggestedEnd(kNow), kNow + 1h - 43s); }

}  // namespace
}  // namespace nimbo
