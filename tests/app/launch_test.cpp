// SPDX-License-Identifier: MIT
#include "app/launch.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

using Arguments = std::vector<std::string>;

TEST(LaunchMode, WithoutFlagsIsTheMenuBar) {
  EXPECT_EQ(launchMode(Arguments{"/usr/bin/nimbo"}), LaunchMode::menuBar);
  EXPECT_EQ(launchMode(Arguments{}), LaunchMode::menuBar);
}

TEST(LaunchMode, EachFlagSelectsItsMode) {
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--claude-desktop-check"}), LaunchMode::claudeDesktopCheck);
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--diagnostics"}), LaunchMode::diagnostics);
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--profile"}), LaunchMode::profile);
}

TEST(LaunchMode, DiagnosticsAndClaudeDesktopCheckRunsOnlyTheCheck) {
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--diagnostics", "--claude-desktop-check"}), LaunchMode::claudeDesktopCheck);
}

TEST(LaunchMode, OrderOfTheArgumentsDoesNotMatter) {
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--profile", "--diagnostics"}), LaunchMode::diagnostics);
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--profile", "--claude-desktop-check"}), LaunchMode::claudeDesktopCheck);
}

TEST(LaunchMode, ProgramPathCountsLikeAnyArgument) {
  EXPECT_EQ(launchMode(Arguments{"--diagnostics"}), LaunchMode::diagnostics);
  EXPECT_EQ(launchMode(Arguments{"/opt/--diagnostics"}), LaunchMode::menuBar);
}

TEST(LaunchMode, AnythingButTheExactFlagIsIgnored) {
  for (const char* const near : {"--diagnostic", "--diagnostics ", "--diagnostics=1", "--Diagnostics", "-diagnostics",
                                 "diagnostics", "", "--", "help"}) {
    EXPECT_EQ(launchMode(Arguments{"nimbo", near}), LaunchMode::menuBar) << near;
  }
}

TEST(LaunchMode, FlagIsFoundAmongUnknownArguments) {
  EXPECT_EQ(launchMode(Arguments{"nimbo", "--verbose", "nimbo://usage", "--", "--profile", "x"}), LaunchMode::profile);
}

TEST(LaunchMode, CommandIsTheFirstWordWithoutAFlagOfItsOwn) {
  EXPECT_EQ(launchMode(Arguments{"nimbo", "awake", "status"}), LaunchMode::command);
  EXPECT_EQ(launchMode(Arguments{"nimbo", "nimbo://usage", "awake"}), LaunchMode::menuBar);
  EXPECT_EQ(launchMode(Arguments{"nimbo", "memory", "--diagnostics"}), LaunchMode::diagnostics);
  EXPECT_EQ(launchMode(Arguments{"nimbo", "awake", "run", "--", "tool", "--profile"}), LaunchMode::command);
}

TEST(LaunchLinks, AreTheArgumentsOfOurSchemeInOrder) {
  EXPECT_EQ(launchLinks(Arguments{"/usr/bin/nimbo", "nimbo://usage", "--verbose", "nimbo:awake", "nimbo:"}),
            (Arguments{"nimbo://usage", "nimbo:awake", "nimbo:"}));
}

TEST(LaunchLinks, SchemeCountsInAnyCaseAndTheTextStaysAsGiven) {
  EXPECT_EQ(launchLinks(Arguments{"nimbo", "NIMBO://Awake/", "nImBo://usage"}),
            (Arguments{"NIMBO://Awake/", "nImBo://usage"}));
}

TEST(LaunchLinks, OtherSchemesAndNearMissesAreNone) {
  EXPECT_TRUE(launchLinks(Arguments{"nimbo", "nimbo", "nimbus://usage", "https://example.com/nimbo:", " nimbo://usage",
                                    "nimb", "", "N\xC4\xB0MBO://usage"})
                  .empty());
}

TEST(LaunchLinks, ProgramPathIsNone) {
  EXPECT_TRUE(launchLinks(Arguments{"nimbo:odd-folder/nimbo"}).empty());
  EXPECT_TRUE(launchLinks(Arguments{}).empty());
}

}  // namespace
}  // namespace nimbo
