// SPDX-License-Identifier: MIT
#include "update/feed/update_item.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace nimbo {
namespace {

TEST(VersionOrder, NumbersAreComparedAsNumbers) {
  EXPECT_TRUE(isNewerVersion("1.10", "1.9"));
  EXPECT_TRUE(isNewerVersion("10", "9.9.9"));
  EXPECT_TRUE(isNewerVersion("1.2.1", "1.2"));
  EXPECT_FALSE(isNewerVersion("1.9", "1.10"));
  EXPECT_FALSE(isNewerVersion("0.1.0", "0.1.0"));
}

TEST(VersionOrder, MissingNumbersAndLeadingZerosDoNotMatter) {
  for (const auto& [left, right] : {std::pair{"1", "1.0.0"}, std::pair{"1.02", "1.2"}, std::pair{"0", "0.0"}}) {
    EXPECT_FALSE(isNewerVersion(left, right)) << left;
    EXPECT_FALSE(isNewerVersion(right, left)) << left;
  }
  EXPECT_TRUE(isNewerVersion("1.0.1", "1"));
}

TEST(VersionOrder, NumbersOfAnyLengthAreCompared) {
  const std::string huge(1000, '9');
  EXPECT_TRUE(isNewerVersion(huge, "18446744073709551616"));
  EXPECT_TRUE(isNewerVersion("18446744073709551617", "18446744073709551616"));
  EXPECT_TRUE(isNewerVersion("1" + std::string(1000, '0'), huge));
  EXPECT_FALSE(isNewerVersion(std::string(1000, '0') + "1", "1"));
}

TEST(VersionOrder, WhatIsNoVersionIsNeverNewerNorOlder) {
  for (const char* const text :
       {"", ".", "1.", ".1", "1..2", "1.2-beta", "1.2b1", "v1.2", "-1", "+1", "1,2", " 1", "1\n", "١", "1.2~rc1"}) {
    EXPECT_FALSE(isVersion(text)) << text;
    EXPECT_FALSE(isNewerVersion(text, "0.1")) << text;
    EXPECT_FALSE(isNewerVersion("99", text)) << text;
  }
}

}  // namespace
}  // namespace nimbo
