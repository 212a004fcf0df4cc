// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <regex>

#include "base/text.h"
#include "usage/claude/usage_screen_parser.h"

namespace nimbo {
namespace {

TEST(TerminalText, PlainTextIsKept) { EXPECT_EQ(plainTerminalText("61% used\n— Zoë"), "61% used\n— Zoë"); }

TEST(TerminalText, ControlSequencesAreRemoved) {
  EXPECT_EQ(plainTerminalText("a\x1B[0mb\x1B[38;2;1;2;3mc\x1B[?25ld\x1B[2 qe\x1B[K"), "abcde");
}

TEST(TerminalText, OperatingSystemCommandsAreRemovedWithBothEndings) {
  EXPECT_EQ(plainTerminalText("a\x1B]0;title\ab\x1B]8;;https://example.org\x1B\\c"), "abc");
}

TEST(TerminalText, CommandMayHoldLineBreaks) { EXPECT_EQ(plainTerminalText("a\x1B]0;two\r\nlines\ab"), "ab"); }

TEST(TerminalText, CarriageReturnsBecomeLineFeeds) { EXPECT_EQ(plainTerminalText("a\r\nb\rc"), "a\n\nb\nc"); }

TEST(TerminalText, OtherEscapesStayAsTheyAre) {
  EXPECT_EQ(plainTerminalText("\x1B(B\x1B=a\x1B\x1B[mb"),
            "\x1B(B\x1B=a\x1B"
            "b");
}

TEST(TerminalText, UnfinishedSequenceIsText) {
  EXPECT_EQ(plainTerminalText("a\x1B[3"), "a\x1B[3");
  EXPECT_EQ(plainTerminalText("a\x1B]0;some\rtitle"), "a\x1B]0;some\ntitle");
  EXPECT_EQ(plainTerminalText("a\x1B]0;some\rtitle\x1B"), "a\x1B]0;some\ntitle\x1B");
}

TEST(TerminalText, BrokenCommandStaysAndTheNextSequenceCounts) {
  EXPECT_EQ(plainTerminalText("\x1B]0;title\x1B[31mred"), "\x1B]0;titlered");
  EXPECT_EQ(plainTerminalText("\x1B]0;one\x1B]0;two\atail"), "\x1B]0;onetail");
}

TEST(TerminalText, BrokenControlSequenceStays) {
  EXPECT_EQ(plainTerminalText("\x1B[3\nm"), "\x1B[3\nm");
  EXPECT_EQ(plainTerminalText("\x1B[ 3m"), "\x1B[ 3m");
}

TEST(TerminalText, SequenceAroundACommandIsRemovedToo) {
  EXPECT_EQ(plainTerminalText("a\x1B[3\x1B]0;title\a1mb"), "ab");
}

TEST(TerminalText, InvalidBytesAreReplaced) {
  EXPECT_EQ(plainTerminalText("a\xFF"
                              "b\xC3(c\xED\xA0\x80\xE2\x82"),
            "a\uFFFD"
            "b\uFFFD(c\uFFFD\uFFFD\uFFFD\uFFFD");
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

TEST(TerminalText, AnyTextComesOutAsBySubstitution) {
  constexpr std::string_view kPieces[] = {
      "\x1B", "\x1B[", "\x1B]", "\a", "\x1B\\", "[",    "]",    "\\",   "m",    "0;1",      "!",        "\r",
      "\n",   "a",     "€",     " ",  "?",      "\xE2", "\x82", "\xAC", "\xF0", "\x9F\x98", "\x1B[31m", "\x1B]0;t\a"};
  std::minstd_rand random(1);
  for (int round = 0; round < 10'000; ++round) {
    std::string text;
    for (int piece = 0; piece < 24; ++piece) text += kPieces[random() % std::size(kPieces)];
    ASSERT_EQ(plainTerminalText(text), bySubstitution(text)) << "round " << round;
  }
}

}  // namespace
}  // namespace nimbo
