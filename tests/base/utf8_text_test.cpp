// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(IsUtf8, TellsWellFormedTextFromCutOverlongAndStrayBytes) {
  for (const char* const text : {"", "plain", "\uFFFD", "caf\u00E9 \U0001F600"}) EXPECT_TRUE(isUtf8(text)) << text;
  for (const char* const text :
       {"\xE9", "\x80", "caf\xC3", "\xF0\x9F\x98", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_FALSE(isUtf8(text)) << text;
  }
}

TEST(RepairedUtf8, WellFormedTextOfEveryLengthIsKept) {
  const std::string text = "Zoë — 日本語 \U0001F600 \U0010FFFF \uD7FF \uE000";
  EXPECT_EQ(repairedUtf8(text), text);
}

TEST(RepairedUtf8, NothingStaysNothing) { EXPECT_EQ(repairedUtf8(""), ""); }

TEST(RepairedUtf8, ZeroByteIsACharacterLikeAnother) {
  const std::string text("a\0b", 3);
  EXPECT_EQ(repairedUtf8(text), text);
}

TEST(RepairedUtf8, LatinOneLetterIsReplacedAndItsNeighboursStay) {
  EXPECT_EQ(repairedUtf8("caf\xE9 bar"), "caf\uFFFD bar");
}

TEST(RepairedUtf8, TextCutInsideACharacterEndsInOneReplacement) {
  EXPECT_EQ(repairedUtf8("ab\xE6\x97"), "ab\uFFFD");
  EXPECT_EQ(repairedUtf8("ab\xF0\x9F\x98"), "ab\uFFFD");
  EXPECT_EQ(repairedUtf8("ab\xC3"), "ab\uFFFD");
}

TEST(RepairedUtf8, StrayContinuationBytesAreReplacedOneByOne) { EXPECT_EQ(repairedUtf8("\x80\xBF!"), "\uFFFD\uFFFD!"); }

TEST(RepairedUtf8, OverlongFormsAreReplacedByteByByte) {
  EXPECT_EQ(repairedUtf8("\xC0\xAF"), "\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xE0\x80\xAF"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF0\x8F\xBF\xBF"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(RepairedUtf8, SurrogatesAndValuesBeyondUnicodeAreReplaced) {
  EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(repairedUtf8("\xF8\xFF"), "\uFFFD\uFFFD");
}

// The example of table 3-11 of the Unicode Standard.
TEST(RepairedUtf8, TruncatedSequencesAreReplacedOncePerMaximalPart) {
  EXPECT_EQ(repairedUtf8("\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"), "\uFFFD\uFFFD\uFFFD\uFFFDA");
}

}  // namespace
}  // namespace nimbo
