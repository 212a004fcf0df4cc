// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <gtest/gtest.h>

#include <locale>

namespace nimbo {
namespace {

struct CommaPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

TEST(Text, IsTrimmedAtItsEndsOnly) {
  EXPECT_EQ(trimmed(" \t\r\n a b \n"), "a b");
  EXPECT_EQ(trimmed(" \n"), "");
  EXPECT_EQ(trimmed(""), "");
}

TEST(Text, IsTakenApartAtItsSeparators) {
  std::string_view rest = "a::b:";
  EXPECT_EQ(takeUntil(rest, ':'), "a");
  EXPECT_EQ(takeUntil(rest, ':'), "");
  EXPECT_EQ(takeUntil(rest, ';'), "b:");
  EXPECT_EQ(rest, "");
  EXPECT_EQ(takeUntil(rest, ':'), "");
}

TEST(Text, OnlyLatinCapitalsAreFolded) {
  EXPECT_TRUE(equalsIgnoringCase("Current SESSION", "current session"));
  EXPECT_TRUE(equalsIgnoringCase("xfce", "XFCE"));
  EXPECT_FALSE(equalsIgnoringCase("Current session ", "current session"));
  EXPECT_FALSE(equalsIgnoringCase("\u00C4", "\u00E4"));
  EXPECT_FALSE(equalsIgnoringCase("{", "["));
  EXPECT_EQ(lowerCased("Aa[Zz\u00C4"), "aa[zz\u00C4");
}

TEST(Text, BeginningIsFoundInAnyCase) {
  EXPECT_TRUE(startsWithIgnoringCase("RESETS now", "resets "));
  EXPECT_FALSE(startsWithIgnoringCase("Reset", "resets "));
  EXPECT_TRUE(endsWithIgnoringCase("Monthly CREDIT", "credit"));
  EXPECT_FALSE(endsWithIgnoringCase("edit", "credit"));
}

TEST(Text, EveryOccurrenceIsRemoved) {
  EXPECT_EQ(removedIgnoringCase("Only ONLY only", "only"), "  ");
  EXPECT_EQ(removedIgnoringCase("aab", "ab"), "a");
  EXPECT_EQ(removedIgnoringCase("", "ab"), "");
}

TEST(Text, CharactersAreReplacedOnce) {
  EXPECT_EQ(replacedCharacters("a&<b", {{'&', "&amp;"}, {'<', "&lt;"}}), "a&amp;&lt;b");
  EXPECT_EQ(replacedCharacters("a", {}), "a");
}

TEST(Text, BytesWithAMeaningArePercentEncoded) {
  EXPECT_EQ(percentEncoded("/a-Z 9%\n", "/-"), "/a-Z%209%25%0A");
  EXPECT_EQ(percentEncoded("\xFF", ""), "%FF");
}

TEST(Text, PlainTextHasSpacesAndSmallLettersOnly) { EXPECT_EQ(plainLowerCased("3:59\u202FPM\tÄ"), "3:59 pm Ä"); }

TEST(WhiteSpace, OfEveryKindIsTrimmed) {
  EXPECT_EQ(trimmedWhiteSpace(" \t\r\n\v\f\u0085\u00A0\u2003\u202F\u3000 a b \u2028\u2029 "), "a b");
  EXPECT_EQ(trimmedWhiteSpace("\u00A0"), "");
  EXPECT_EQ(trimmedWhiteSpace(""), "");
}

TEST(WhiteSpace, CharactersThatLookAlikeInBytesAreKept) {
  EXPECT_EQ(trimmedWhiteSpace("àĀ"), "àĀ");
  EXPECT_EQ(trimmedWhiteSpace("\u200B"), "\u200B");
}

TEST(Text, DecimalNumberIsReadWholeAndInEveryLocale) {
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  EXPECT_EQ(decimalNumber("61.5"), 61.5);
  EXPECT_EQ(decimalNumber("-0.25"), -0.25);
  EXPECT_EQ(decimalNumber("1e3"), 1000);
  for (const char* const text : {"", " 1", "1 ", "+1", "1,5", "1.5.2", "0x10", "1e999", "inf", "nan", "e", "--1"}) {
    EXPECT_EQ(decimalNumber(text), std::nullopt) << text;
  }
  std::locale::global(before);
}

TEST(Text, PrintableLineKeepsWordsOfEveryScript) {
  for (const char* const text :
       {"", "gnome-shell", "caf\u00E9 \u00A0\u4E16\u754C", "\U0001F600", "a\u200Bb", "\u061B\u2027\u2065"}) {
    EXPECT_EQ(printableLine(text), text);
  }
}

TEST(Text, PrintableLineHasNothingThatSteers) {
  EXPECT_EQ(printableLine("a\nb\x1b[0m\x7f\r"), "a\uFFFDb\uFFFD[0m\uFFFD\uFFFD");
  for (const char* const mark :
       {"\t", "\u0080", "\u009B", "\u009F", "\u061C", "\u200F", "\u2028", "\u202E", "\u2067", "\xE9"}) {
    EXPECT_EQ(printableLine(std::string("x") + mark + "y"), "x\uFFFDy") << mark;
  }
}

}  // namespace
}  // namespace nimbo
