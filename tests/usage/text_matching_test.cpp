// SPDX-License-Identifier: MIT
#include "usage/text_matching.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(TextMatching, OnlyLatinCapitalsAreFolded) {
  EXPECT_TRUE(equalsIgnoringCase("Current SESSION", "current session"));
  EXPECT_FALSE(equalsIgnoringCase("Current session ", "current session"));
  EXPECT_FALSE(equalsIgnoringCase("\u00C4", "\u00E4"));
  EXPECT_FALSE(equalsIgnoringCase("{", "["));
}

TEST(TextMatching, BeginningIsFoundInAnyCase) {
  EXPECT_TRUE(startsWithIgnoringCase("RESETS now", "resets "));
  EXPECT_FALSE(startsWithIgnoringCase("Reset", "resets "));
}

TEST(TextMatching, EveryOccurrenceIsRemoved) {
  EXPECT_EQ(removedIgnoringCase("Only ONLY only", "only"), "  ");
  EXPECT_EQ(removedIgnoringCase("aab", "ab"), "a");
  EXPECT_EQ(removedIgnoringCase("", "ab"), "");
}

TEST(TextMatching, PlainTextHasSpacesAndSmallLettersOnly) {
  EXPECT_EQ(plainLowerCased("3:59\u202FPM\tÄ"), "3:59 pm Ä");
}

}  // namespace
}  // namespace nimbo
