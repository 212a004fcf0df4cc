// SPDX-License-Identifier: MIT
#include "usage/usage_messages.h"

#include <gtest/gtest.h>

#include <string_view>

#include "usage/usage_status.h"

namespace nimbo {
namespace {

namespace messages = usage_messages;

TEST(UsageMessages, ProviderIsCalledByItsName) {
  EXPECT_EQ(displayName(UsageProvider::codex), "Codex");
  EXPECT_EQ(displayName(UsageProvider::claude), "Claude");
}

TEST(UsageMessages, SignInMessagesNameTheProvider) {
  EXPECT_EQ(messages::signInUnreadable(UsageProvider::codex),
            "Sign-in data is unreadable. Sign in again in Codex first.");
  EXPECT_EQ(messages::noSubscriptionSignIn(UsageProvider::claude),
            "No subscription sign-in found. Sign in with Claude first.");
  EXPECT_EQ(messages::signInExpired(UsageProvider::codex),
            "Sign-in expired. Open Codex to sign in again, then refresh.");
}

TEST(UsageMessages, RateLimitNamesTheTimeFromWhichToRetry) {
  EXPECT_EQ(messages::rateLimitReached("2:30 PM"),
            "Provider rate limit reached. Retry at 2:30 PM. Refresh cannot shorten this wait.");
}

TEST(UsageMessages, UnexpectedStatusIsNamedInDecimal) {
  EXPECT_EQ(messages::serviceUnavailable(302), "Usage service unavailable (HTTP 302). Retrying later.");
}

TEST(UsageMessages, ApostrophesAndArrowsAreTypographic) {
  const std::string_view unreachable = messages::kProviderUnreachable;
  const std::string_view workspace = messages::kClaudeWorkspaceNotEmpty;
  const std::string_view desktop = messages::kDesktopNotRunning;
  EXPECT_TRUE(unreachable.starts_with("Couldn\u2019t reach")) << unreachable;
  EXPECT_NE(workspace.find("Nimbo\u2019s ClaudeUsage"), std::string_view::npos) << workspace;
  EXPECT_NE(desktop.find("Claude \u2192 Settings \u2192 Usage"), std::string_view::npos) << desktop;
}

}  // namespace
}  // namespace nimbo
