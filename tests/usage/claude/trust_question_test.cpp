// SPDX-License-Identifier: MIT
#include "usage/claude/trust_question.h"

#include <gtest/gtest.h>

#include <random>

namespace nimbo {
namespace {

constexpr char kFolder[] = "/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage";
constexpr char kAsked[] =
    "\x1b[1mAccessing workspace:\x1b[0m\r\n/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage\r\n"
    "\x1b[32my.\x1b[0m Yes, I trust this folder\r\nn. No, exit\r\nEnter y/n: ";

bool isAsked(std::string_view text) {
  TrustQuestion question({kFolder});
  question.append(text);
  return question.isAsked();
}

TEST(TrustQuestion, IsRecognizedThroughEscapes) { EXPECT_TRUE(isAsked(kAsked)); }

TEST(TrustQuestion, IsNotAskedBeforeItIsComplete) {
  const std::string_view text = kAsked;
  EXPECT_FALSE(isAsked(text.substr(0, text.find("/n:"))));
  EXPECT_FALSE(isAsked(""));
}

TEST(TrustQuestion, AboutAnotherFolderIsNotThisQuestion) {
  std::string text = kAsked;
  text.replace(text.find("ClaudeUsage"), 11, "SomethingEl");
  EXPECT_FALSE(isAsked(text));
}

TEST(TrustQuestion, EachOfItsPartsIsNeeded) {
  for (const char* part : {"y. Yes, I trust this folder", "Enter y/n:"}) {
    std::string text = "/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage y. Yes, I trust this folder Enter y/n:";
    ASSERT_TRUE(isAsked(text));
    text.erase(text.find(part), 1);
    EXPECT_FALSE(isAsked(text)) << part;
  }
}

TEST(TrustQuestion, FolderMayGoByEitherName) {
  TrustQuestion question({"/link/ClaudeUsage", kFolder});
  question.append(kAsked);
  EXPECT_TRUE(question.isAsked());
}

TEST(TrustQuestion, FolderThatIsNotUtf8IsComparedAsItIsShown) {
  TrustQuestion question({"/caf\xe9/ClaudeUsage"});
  question.append("/caf\xe9/ClaudeUsage\ny. Yes, I trust this folder\nEnter y/n:");
  EXPECT_TRUE(question.isAsked());
}

TEST(TrustQuestion, PiecesDoNotMatter) {
  std::mt19937 random(7);  // NOLINT: the same pieces every time
  const std::string text = std::string(kAsked) + "?";
  for (int round = 0; round < 500; ++round) {
    TrustQuestion question({kFolder});
    std::size_t given = 0;
    while (given < text.size()) {
      const std::size_t size = std::uniform_int_distribution<std::size_t>(1, 30)(random);
      question.append(std::string_view(text).substr(given, size));
      given = std::min(given + size, text.size());
      EXPECT_FALSE(given < text.find("/n:") && question.isAsked());
    }
    EXPECT_TRUE(question.isAsked());
  }
}

}  // namespace
}  // namespace nimbo
