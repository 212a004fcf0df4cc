// SPDX-License-Identifier: MIT
#include "usage/claude/claude_tool.h"

#include <gtest/gtest.h>

#include "support/fake_tool_files.h"

namespace nimbo::claude_tool {
namespace {

namespace fs = std::filesystem;

using Paths = std::vector<fs::path>;
using Texts = std::vector<std::string>;

TEST(ClaudeExecutable, FixedPlacesComeBeforeTheSearchPath) {
  const FakeToolFiles files;
  EXPECT_EQ(findExecutable("/home/ada", "/usr/bin:/opt/tools/bin", files), std::nullopt);
  EXPECT_EQ(files.asked, (Paths{"/home/ada/.local/bin/claude", "/opt/homebrew/bin/claude", "/usr/local/bin/claude",
                                "/usr/bin/claude", "/opt/tools/bin/claude"}));
}

TEST(ClaudeExecutable, FirstThatIsExecutableWins) {
  FakeToolFiles files;
  files.executables = {"/usr/local/bin/claude", "/usr/bin/claude"};
  EXPECT_EQ(findExecutable("/home/ada", "/usr/bin", files), "/usr/local/bin/claude");
  files.executables = {"/usr/bin/claude"};
  EXPECT_EQ(findExecutable("/home/ada", "/bin:/usr/bin", files), "/usr/bin/claude");
}

TEST(ClaudeExecutable, EmptyAndRelativeFoldersOfTheSearchPathArePassedOver) {
  const FakeToolFiles files;
  EXPECT_EQ(findExecutable("/home/ada", ":.::tools:/usr/bin:", files), std::nullopt);
  EXPECT_EQ(files.asked.size(), 4U);
  EXPECT_EQ(files.asked.back(), "/usr/bin/claude");
}

TEST(ClaudeExecutable, WithoutASearchPathTheFixedPlacesAreLookedAt) {
  FakeToolFiles files;
  EXPECT_EQ(findExecutable("/home/ada", "", files), std::nullopt);
  EXPECT_EQ(files.asked.size(), 3U);
}

TEST(ClaudeWorkspace, LiesBelowTheCachesFolder) {
  EXPECT_EQ(workspace("/home/ada/.cache"), "/home/ada/.cache/com.quellwerk.Nimbo/ClaudeUsage");
}

TEST(ClaudeArguments, AskForTheUsageScreenAndNothingElse) {
  EXPECT_EQ(arguments(), (Texts{"--safe-mode", "--tools", "", "--ax-screen-reader", "/usage"}));
}

TEST(ClaudeEnvironment, OtherSignInsAreRemovedAndThePlainTerminalIsSet) {
  EXPECT_EQ(environment({"HOME=/home/ada", "ANTHROPIC_API_KEY=a", "ANTHROPIC_AUTH_TOKEN=b", "ANTHROPIC_BASE_URL=c",
                         "CLAUDE_CODE_OAUTH_TOKEN=d", "CLAUDECODE=1", "PATH=/bin"}),
            (Texts{"HOME=/home/ada", "PATH=/bin", "TERM=xterm-256color", "NO_COLOR=1"}));
}

TEST(ClaudeEnvironment, InheritedTerminalSettingsAreReplaced) {
  EXPECT_EQ(environment({"TERM=dumb", "NO_COLOR=", "LANG=C"}), (Texts{"LANG=C", "TERM=xterm-256color", "NO_COLOR=1"}));
}

TEST(ClaudeEnvironment, NamesThatOnlyBeginAlikeStay) {
  const Texts alike{"CLAUDECODE2=1", "ANTHROPIC_API_KEY_FILE=x", "TERMINFO=/t", "ANTHROPIC_MODEL=m"};
  Texts expected = alike;
  expected.insert(expected.end(), {"TERM=xterm-256color", "NO_COLOR=1"});
  EXPECT_EQ(environment(alike), expected);
}

TEST(ClaudeEnvironment, ValuesMayHoldEqualSignsAndNothing) {
  EXPECT_EQ(environment({"A=b=c", "EMPTY="}), (Texts{"A=b=c", "EMPTY=", "TERM=xterm-256color", "NO_COLOR=1"}));
}

}  // namespace
}  // namespace nimbo::claude_tool
