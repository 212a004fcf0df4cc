// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/hypertext.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

using Pieces = std::vector<HypertextPiece>;

HypertextPiece line(const std::string& text) { return {text, std::nullopt}; }
HypertextPiece child(std::size_t index) { return {"", index}; }

TEST(Hypertext, TextChildrenMakeUpOneLine) {
  EXPECT_EQ(takeApart("61% used", {{"61"}, {"% used"}}), Pieces{line("61% used")});
}

TEST(Hypertext, ChildInTheLineIsPutInItsPlace) {
  EXPECT_EQ(takeApart("\uFFFC\uFFFC \uFFFC", {{"61", true}, {"%", true}, {" "}, {"used", true}}),
            Pieces{line("61% used")});
}

TEST(Hypertext, ChildOfItsOwnEndsTheLine) {
  EXPECT_EQ(takeApart("Current \uFFFCsession\uFFFC", {{"Current "}, {"Help"}, {"session"}, {"More"}}),
            (Pieces{line("Current"), child(1), line("session"), child(3)}));
}

TEST(Hypertext, ChildrenOnlyComeInOrder) {
  EXPECT_EQ(takeApart("\uFFFC\uFFFC", {{"a"}, {"b"}}), (Pieces{child(0), child(1)}));
}

TEST(Hypertext, ChildWithoutTextOfItsOwnStaysAChild) {
  EXPECT_EQ(takeApart("61\uFFFC% used", {{"61"}, {""}, {"% used"}}), (Pieces{line("61"), child(1), line("% used")}));
}

TEST(Hypertext, LineBreaksMakeLines) {
  EXPECT_EQ(takeApart("Resets\n at noon\n\n61% used", {{"Resets"}, {"\n"}, {" at noon"}, {"\n\n"}, {"61% used"}}),
            (Pieces{line("Resets"), line("at noon"), line("61% used")}));
}

TEST(Hypertext, BlankLinesAreNone) {
  EXPECT_EQ(takeApart("\uFFFC \uFFFC", {{"a"}, {" "}, {"b"}}), (Pieces{child(0), child(2)}));
  EXPECT_EQ(takeApart(" ", {{" "}}), Pieces{});
}

TEST(Hypertext, BytesOfOtherCharactersAreLeftWhole) {
  EXPECT_EQ(takeApart("été \uFFFC", {{"été "}, {"€", true}}), Pieces{line("été €")});
}

TEST(Hypertext, TextOfOtherWordsThanTheChildrensIsNotTakenApart) {
  EXPECT_EQ(takeApart("61% used", {{"62"}, {"% used"}}), std::nullopt);
  EXPECT_EQ(takeApart("61", {{"61"}, {"% used"}}), std::nullopt);
}

TEST(Hypertext, TextThatGoesOnAfterTheChildrenIsNotTakenApart) {
  EXPECT_EQ(takeApart("61% used today", {{"61"}, {"% used"}}), std::nullopt);
  EXPECT_EQ(takeApart("\uFFFC\uFFFC", {{"a"}}), std::nullopt);
}

TEST(Hypertext, ChildWithoutAPlaceIsNotTakenApart) {
  EXPECT_EQ(takeApart("61% used", {{"61"}, {""}, {"% used"}}), std::nullopt);
  EXPECT_EQ(takeApart("\uFFFC", {{"a"}, {"b"}}), std::nullopt);
}

TEST(Hypertext, WithoutChildrenOnlyTheEmptyTextIs) {
  EXPECT_EQ(takeApart("", {}), Pieces{});
  EXPECT_EQ(takeApart("a", {}), std::nullopt);
}

TEST(Hypertext, CharacterThatIsCutOffIsNotTakenApart) { EXPECT_EQ(takeApart("\xEF\xBF", {{"a", true}}), std::nullopt); }

}  // namespace
}  // namespace nimbo
