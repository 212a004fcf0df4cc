// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "usage/codex/usage_response_parser.h"

namespace nimbo {
namespace {

using std::chrono::seconds;

TEST(RateLimitWait, LongerWaitIsTakenFromTheHeader) {
  EXPECT_EQ(rateLimitWait("3600"), seconds{3600});
  EXPECT_EQ(rateLimitWait("601"), seconds{601});
}

TEST(RateLimitWait, IsNeverLessThanTenMinutes) {
  for (const char* const header : {"30", "0", "-5", "599", "600", "599.5"}) {
    EXPECT_EQ(rateLimitWait(header), seconds{600}) << header;
  }
}

TEST(RateLimitWait, MissingOrUnreadableHeaderMeansTenMinutes) {
  EXPECT_EQ(rateLimitWait(std::nullopt), seconds{600});
  for (const char* const header : {"", "  ", "soon", "3600 s", "36 00", "Wed, 21 Oct 2026 07:28:00 GMT", "nan", "inf",
                                   "1e999", "0x1000", "3600,5"}) {
    EXPECT_EQ(rateLimitWait(header), seconds{600}) << header;
  }
}

TEST(RateLimitWait, FractionsOfASecondAreWaitedForInFull) { EXPECT_EQ(rateLimitWait("1000.25"), seconds{1001}); }

TEST(RateLimitWait, AbsurdWaitStillHasAnEnd) {
  for (const char* const header : {"1e18", "99999999999999999999", "1e300"}) {
    EXPECT_EQ(rateLimitWait(header), std::chrono::hours{366 * 24}) << header;
  }
}

}  // namespace
}  // namespace nimbo
