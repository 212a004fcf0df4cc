// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "usage/claude/usage_screen_parser.h"

namespace nimbo {
namespace {

constexpr char kFolder[] = "/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage";
constexpr char kAsked[] =
    "\x1b[1mAccessing workspace:\x1b[0m\r\n/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage\r\n"
    "\x1b[32my.\x1b[0m Yes, I trust this folder\r\nn. No, exit\r\nEnter y/n: ";

bool isAsked(std::string_view screen) { return asksForTrust(screen, {kFolder}); }

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

TEST(TrustQuestion, FolderMayGoByEitherName) { EXPECT_TRUE(asksForTrust(kAsked, {"/link/ClaudeUsage", kFolder})); }

TEST(TrustQuestion, FolderThatIsNotUtf8IsComparedAsItIsShown) {
  EXPECT_TRUE(asksForTrust("/caf\xe9/ClaudeUsage\ny. Yes, I trust this folder\nEnter y/n:", {"/caf\xe9/ClaudeUsage"}));
}

}  // namespace
}  // namespace nimbo
