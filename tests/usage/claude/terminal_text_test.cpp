// SPDX-License-Identifier: MIT
#include "usage/claude/terminal_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "base/utf8_text.h"
#include "usage/claude/random_pieces.h"

namespace nimbo {
namespace {

std::string textOf(std::initializer_list<std::string_view> reads) {
  TerminalText text;
  for (const std::string_view read : reads) text.append(read);
  return text.settled() + text.unsettled();
}

TEST(TerminalText, PlainTextIsKept) { EXPECT_EQ(textOf({"61% used\n— Zoë"}), "61% used\n— Zoë"); }

TEST(TerminalText, ControlSequencesAreRemoved) {
  EXPECT_EQ(textOf({"a\x1B[0mb\x1B[38;2;1;2;3mc\x1B[?25ld\x1B[2 qe\x1B[K"}), "abcde");
}

TEST(TerminalText, OperatingSystemCommandsAreRemovedWithBothEndings) {
  EXPECT_EQ(textOf({"a\x1B]0;title\ab\x1B]8;;https://example.org\x1B\\c"}), "abc");
}

TEST(TerminalText, CommandMayHoldLineBreaks) { EXPECT_EQ(textOf({"a\x1B]0;two\r\nlines\ab"}), "ab"); }

TEST(TerminalText, CarriageReturnsBecomeLineFeeds) { EXPECT_EQ(textOf({"a\r\nb\rc"}), "a\n\nb\nc"); }

TEST(TerminalText, OtherEscapesStayAsTheyAre) {
  EXPECT_EQ(textOf({"\x1B(B\x1B=a\x1B\x1B[mb"}),
            "\x1B(B\x1B=a\x1B"
            "b");
}

TEST(TerminalText, UnfinishedSequenceIsTextUntilItsEndArrives) {
  TerminalText text;
  text.append("a\x1B[3");
  EXPECT_EQ(text.settled(), "a");
  EXPECT_EQ(text.unsettled(), "\x1B[3");
  text.append("1mb");
  EXPECT_EQ(text.settled(), "ab");
  EXPECT_EQ(text.unsettled(), "");
}

TEST(TerminalText, UnfinishedCommandIsTextUntilItsEndArrives) {
  TerminalText text;
  text.append("a\x1B]0;some\rtitle");
  EXPECT_EQ(text.unsettled(), "\x1B]0;some\ntitle");
  text.append("\x1B");
  EXPECT_EQ(text.unsettled(), "\x1B]0;some\ntitle\x1B");
  text.append("\\b");
  EXPECT_EQ(text.settled() + text.unsettled(), "ab");
}

TEST(TerminalText, BrokenCommandStaysAndTheNextSequenceCounts) {
  EXPECT_EQ(textOf({"\x1B]0;title\x1B[31mred"}), "\x1B]0;titlered");
  EXPECT_EQ(textOf({"\x1B]0;one\x1B", "]0;two\atail"}), "\x1B]0;onetail");
}

TEST(TerminalText, BrokenControlSequenceStays) {
  EXPECT_EQ(textOf({"\x1B[3\nm"}), "\x1B[3\nm");
  EXPECT_EQ(textOf({"\x1B[ 3m"}), "\x1B[ 3m");
}

TEST(TerminalText, SequenceAroundACommandIsRemovedToo) { EXPECT_EQ(textOf({"a\x1B[3\x1B]0;title\a", "1mb"}), "ab"); }

TEST(TerminalText, CharacterCutBetweenTwoReadsComesOutWhole) {
  EXPECT_EQ(textOf({"\xE2", "\x82", "\xAC"}), "€");
  EXPECT_EQ(textOf({"a\xF0\x9F\x98", "\x80z"}), "a\U0001F600z");
}

TEST(TerminalText, CutCharacterIsOneReplacementUntilTheRestArrives) {
  TerminalText text;
  text.append("a\xE2\x82");
  EXPECT_EQ(text.settled(), "a");
  EXPECT_EQ(text.unsettled(), "\uFFFD");
}

TEST(TerminalText, InvalidBytesAreReplaced) {
  EXPECT_EQ(textOf({"a\xFF", "b\xC3", "(c\xED\xA0", "\x80"}),
            "a\uFFFD"
            "b\uFFFD(c\uFFFD\uFFFD\uFFFD");
}

// What the whole text would be by the definition, with the standard library's regular expressions.
std::string bySubstitution(std::string_view bytes) {
  static const std::regex commands("\x1B\\][^\x07\x1B]*(?:\x07|\x1B\\\\)");
  static const std::regex controls("\x1B\\[[0-?]*[ -/]*[@-~]");
  std::string text = std::regex_replace(repairedUtf8(bytes), commands, "");
  text = std::regex_replace(text, controls, "");
  std::replace(text.begin(), text.end(), '\r', '\n');
  return text;
}

TEST(TerminalText, AnyCutsOfAnyTextGiveAtEachMomentWhatTheWholeWouldGive) {
  constexpr std::string_view kPieces[] = {
      "\x1B", "\x1B[", "\x1B]", "\a", "\x1B\\", "[",    "]",    "\\",   "m",    "0;1",      "!",        "\r",
      "\n",   "a",     "€",     " ",  "?",      "\xE2", "\x82", "\xAC", "\xF0", "\x9F\x98", "\x1B[31m", "\x1B]0;t\a"};
  std::minstd_rand random(1);
  for (int round = 0; round < 2000; ++round) {
    const std::string whole = randomText(random, kPieces, 24);
    TerminalText text;
    std::size_t length = 0;
    for (const std::string_view read : randomCuts(random, whole, 7)) {
      text.append(read);
      length += read.size();
      ASSERT_EQ(text.settled() + text.unsettled(), bySubstitution(std::string_view(whole).substr(0, length)))
          << "round " << round << ", byte " << length;
    }
  }
}

TEST(TerminalText, SettledTextNeverChanges) {
  constexpr std::string_view kPieces[] = {"\x1B", "[", "]", "\a", "\\", "m", "1", "a", "\n", "\xE2", "\x82", "\xAC"};
  std::minstd_rand random(2);
  for (int round = 0; round < 500; ++round) {
    TerminalText text;
    std::string before;
    const std::string whole = randomText(random, kPieces, 30);
    for (const std::string_view read : randomCuts(random, whole, 4)) {
      text.append(read);
      ASSERT_TRUE(text.settled().starts_with(before));
      before = text.settled();
    }
  }
}

}  // namespace
}  // namespace nimbo
