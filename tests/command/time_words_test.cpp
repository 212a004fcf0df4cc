// SPDX-License-Identifier: MIT
#include "command/time_words.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace nimbo {
namespace {

using std::chrono::seconds;
using std::chrono::system_clock;

TEST(DurationWords, AreNumbersWithUnitsLargerOnesFirst) {
  EXPECT_EQ(durationOf("2h30m"), seconds(9000));
  EXPECT_EQ(durationOf("90s"), seconds(90));
  EXPECT_EQ(durationOf("1d1s"), seconds(86401));
  EXPECT_EQ(durationOf("366d"), seconds(366 * 86400));
}

TEST(DurationWords, AreNothingElse) {
  for (const char* const words : {"", "30", "h", "2h30", "30m2h", "1m1m", "-1h", "+1h", "1.5h", " 1h", "1h ", "0s",
                                  "367d", "99999999999d", "1x", "1H", "0x1h"}) {
    EXPECT_EQ(durationOf(words), std::nullopt) << words;
  }
}

class ClockWords : public testing::Test {
 protected:
  ClockWords() {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
  }
  ~ClockWords() override {
    ::unsetenv("TZ");
    ::tzset();
  }
  /// Of the year 2026, UTC.
  static system_clock::time_point utc(int month, int day, int hour, int minute = 0, int second = 0) {
    using namespace std::chrono;
    return sys_days(year(2026) / month / day) + hours(hour) + minutes(minute) + seconds(second);
  }
  const system_clock::time_point now_ = utc(11, 22, 14, 5);  // 15:05 in Berlin
};

TEST_F(ClockWords, TimeOfDayIsTheNextSuch) {
  EXPECT_EQ(timeOfDay("18:30", now_), utc(11, 22, 17, 30));
  EXPECT_EQ(timeOfDay("15:05", now_), utc(11, 23, 14, 5)) << "now is past";
  EXPECT_EQ(timeOfDay("8:00:30", now_), utc(11, 23, 7, 0, 30));
  EXPECT_EQ(timeOfDay("00:00", utc(11, 30, 20)), utc(11, 30, 23)) << "over the end of a month";
}

TEST_F(ClockWords, TimeThatAClockSkipsIsOfTheNextDay) {
  EXPECT_EQ(timeOfDay("02:30", utc(3, 28, 20)), utc(3, 30, 0, 30));
  EXPECT_EQ(timeOfDay("2026-03-29T02:30", now_), std::nullopt);
}

TEST_F(ClockWords, DateAndTimeAreTheUsers) {
  EXPECT_EQ(timeOfDay("2026-12-24T18:00", now_), utc(12, 24, 17));
  EXPECT_EQ(timeOfDay("2026-07-01T18:00:09", now_), utc(7, 1, 16, 0, 9)) << "in summer, and past";
}

TEST_F(ClockWords, AreNothingElse) {
  for (const char* const words :
       {"", "18", "24:00", "18:60", "18:30:60", "18:3x", "-1:30", "18:-1", "T18:30", "2026-02-30T10:00",
        "2026-13-01T10:00", "2026-1-1", "2026-01-01T", "1969-01-01T00:00", "2026-01-01 10:00", "18:30T2026-01-01"}) {
    EXPECT_EQ(timeOfDay(words, now_), std::nullopt) << words;
  }
}

TEST_F(ClockWords, TimeIsNoneThatTheBusOrTheClockCannotTell) {
  EXPECT_EQ(timeOfDay("1970-01-01T01:00", now_), std::nullopt) << "0 is for none";
  EXPECT_EQ(timeOfDay("4054-10-31T02:30", now_), std::nullopt);
  EXPECT_GT(timeOfDay("2262-01-01T00:00", now_), now_);
}

TEST_F(ClockWords, AreWrittenForProgramsInUtcAndForEyesInLocalTime) {
  EXPECT_EQ(isoTime(utc(1, 2, 3, 4, 5)), "2026-01-02T03:04:05Z");
  EXPECT_EQ(clockTime(utc(11, 22, 17, 30), now_), "18:30");
  EXPECT_EQ(clockTime(utc(11, 22, 23, 30), now_), "2026-11-23 00:30");
}

}  // namespace
}  // namespace nimbo
