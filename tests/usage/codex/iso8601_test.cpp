// SPDX-License-Identifier: MIT
#include "usage/codex/usage_response_parser.h"

#include <gtest/gtest.h>

#include "usage/utc_time.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

TEST(Iso8601, InstantInUtcIsRead) { EXPECT_EQ(parseIso8601("2026-11-21T14:30:05Z"), utc(2026, 11, 21, 14, 30, 5)); }

TEST(Iso8601, OffsetIsCountedBack) {
  EXPECT_EQ(parseIso8601("2026-11-21T14:30:00+01:00"), utc(2026, 11, 21, 13, 30));
  EXPECT_EQ(parseIso8601("2026-11-21T20:30:00-0530"), utc(2026, 11, 22, 2));
}

TEST(Iso8601, FractionOfASecondCountsInAnyLength) {
  EXPECT_EQ(parseIso8601("2026-11-21T14:30:00.5Z"), utc(2026, 11, 21, 14, 30) + milliseconds(500));
  EXPECT_EQ(parseIso8601("2026-11-21T14:30:00.123456+00:00"),
            utc(2026, 11, 21, 14, 30) + std::chrono::microseconds(123456));
  EXPECT_EQ(parseIso8601("2026-11-21T14:30:00.0000000019999Z"), utc(2026, 11, 21, 14, 30) + nanoseconds(1));
}

TEST(Iso8601, DaysThatDoNotExistAreRefused) {
  EXPECT_EQ(parseIso8601("2026-02-29T00:00:00Z"), std::nullopt);
  EXPECT_EQ(parseIso8601("2026-13-01T00:00:00Z"), std::nullopt);
  EXPECT_EQ(parseIso8601("2028-02-29T00:00:00Z"), utc(2028, 2, 29));
}

TEST(Iso8601, TimesThatDoNotExistAreRefused) {
  for (const char* const text : {"2026-11-21T24:00:00Z", "2026-11-21T14:60:00Z", "2026-11-21T14:30:60Z"}) {
    EXPECT_EQ(parseIso8601(text), std::nullopt) << text;
  }
}

TEST(Iso8601, EveryTruncationIsRefused) {
  const std::string whole = "2026-11-21T14:30:00.25+01:00";
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(parseIso8601(whole.substr(0, length)), std::nullopt) << whole.substr(0, length);
  }
  EXPECT_TRUE(parseIso8601(whole));
}

TEST(Iso8601, AnythingBeforeOrBehindIsRefused) {
  for (const char* const text : {" 2026-11-21T14:30:00Z", "2026-11-21T14:30:00Z ", "2026-11-21 14:30:00Z",
                                 "2026-11-21T14:30:00", "2026-11-21T14:30:00.Z", "tomorrow", ""}) {
    EXPECT_EQ(parseIso8601(text), std::nullopt) << text;
  }
}

TEST(Iso8601, YearsThatAnInstantCannotHoldAreRefused) {
  EXPECT_EQ(parseIso8601("9999-12-31T23:59:59Z"), std::nullopt);
  EXPECT_EQ(parseIso8601("0001-01-01T00:00:00Z"), std::nullopt);
  EXPECT_EQ(parseIso8601("2262-04-11T00:00:00Z"), utc(2262, 4, 11));
}

}  // namespace
}  // namespace nimbo
