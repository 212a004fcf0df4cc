// SPDX-License-Identifier: MIT
#include "base/white_space.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(WhiteSpace, OfEveryKindIsTrimmed) {
  EXPECT_EQ(trimmedWhiteSpace(" \t\r\n\v\f\u0085\u00A0\u2003\u202F\u3000 a b \u2028\u2029 "), "a b");
  EXPECT_EQ(trimmedWhiteSpace("\u00A0"), "");
  EXPECT_EQ(trimmedWhiteSpace(""), "");
}

TEST(WhiteSpace, CharactersThatLookAlikeInBytesAreKept) {
  EXPECT_EQ(trimmedWhiteSpace("àĀ"), "àĀ");
  EXPECT_EQ(trimmedWhiteSpace("\u200B"), "\u200B");
}

}  // namespace
}  // namespace nimbo
