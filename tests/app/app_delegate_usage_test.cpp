// SPDX-License-Identifier: MIT
// AI allowances as the application controller has them read and shown.
#include <gtest/gtest.h>

#include <string>

#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr const char* kSignIn = R"({"tokens":{"access_token":"secret","account_id":"a1"}})";
constexpr const char* kUsage =
    R"({"rate_limit":{"primary_window":{"used_percent":25,"limit_window_seconds":18000},
        "secondary_window":{"used_percent":60,"limit_window_seconds":604800}}})";

class AppDelegateUsageTest : public AppDelegateTest {
 protected:
  AppDelegateUsageTest() {
    settings.setUsageEnabled(UsageProvider::codex, true);
    platform.secretFiles.texts["/home/u/.codex/auth.json"] = kSignIn;
  }

  /// Lets the sign-in be read, so that the request is on its way.
  void readSignIn() {
    ASSERT_TRUE(platform.background.runOne());
    platform.loop.runPosted();
  }
  void answer(int status, const std::string& body = {}) {
    ASSERT_TRUE(platform.network.answer(status, body));
    platform.loop.runPosted();
  }
  std::string itemToolTip() const { return platform.bar.item("nimbo-ai")->content.toolTip; }
  const UsageContent& page() const { return std::get<UsageContent>(content().page); }
};

TEST_F(AppDelegateUsageTest, NothingIsReadWithoutASubscription) {
  settings.setUsageEnabled(UsageProvider::codex, false);
  launch();
  platform.loop.advance(1h);
  EXPECT_EQ(platform.background.waiting(), 0U);
  EXPECT_EQ(platform.claude.waiting(), 0U);
  EXPECT_TRUE(platform.network.requests.empty());
  EXPECT_EQ(itemToolTip(), "AI usage · enable a subscription in Settings");
}

TEST_F(AppDelegateUsageTest, LaunchReadsWhatIsEnabledAndTheItemShowsIt) {
  launch();
  EXPECT_NE(itemToolTip().find("Refreshing…"), std::string::npos);
  readSignIn();
  ASSERT_EQ(platform.network.requests.size(), 1U);
  answer(200, kUsage);
  EXPECT_NE(itemToolTip().find("OpenAI · Codex\nWeekly: 40% remaining"), std::string::npos) << itemToolTip();
}

TEST_F(AppDelegateUsageTest, ReadThatFoundNoNetworkIsRepeatedWhenThereIsOne) {
  launch();
  readSignIn();
  ASSERT_TRUE(platform.network.fail(HttpFailure::unreachable));
  platform.loop.runPosted();
  EXPECT_NE(itemToolTip().find("Couldn’t reach the provider."), std::string::npos) << itemToolTip();
  platform.connection.appear();
  readSignIn();
  answer(200, kUsage);
  EXPECT_NE(itemToolTip().find("Weekly: 40% remaining"), std::string::npos) << itemToolTip();
}

TEST_F(AppDelegateUsageTest, TicksReadAgainAfterFiveMinutes) {
  launch();
  readSignIn();
  answer(200, kUsage);
  platform.loop.advance(295s);
  EXPECT_EQ(platform.background.waiting(), 0U);
  platform.loop.advance(10s);
  EXPECT_EQ(platform.background.waiting(), 1U);
}

TEST_F(AppDelegateUsageTest, PageShowsTheCardsInTheUsersOrder) {
  settings.setClaudeFirst(true);
  launch();
  readSignIn();
  answer(200, kUsage);
  clickItem("nimbo-ai");
  ASSERT_EQ(page().cards.size(), 2U);
  EXPECT_EQ(page().cards[0].provider, UsageProvider::claude);
  ASSERT_EQ(page().cards[1].rows.size(), 2U);
  EXPECT_EQ(page().cards[1].rows[0].amount.text, "75% left");
}

TEST_F(AppDelegateUsageTest, OpenPageFollowsARefresh) {
  launch();
  readSignIn();
  answer(200, kUsage);
  clickItem("nimbo-ai");
  EXPECT_EQ(page().progress.text, "");
  window()->act(pressed("refresh"));
  EXPECT_EQ(page().progress.text, "Refreshing…");
  readSignIn();
  answer(500);
  EXPECT_EQ(page().progress.text, "");
  EXPECT_EQ(page().cards[0].status.text, "Last known · Usage service unavailable (HTTP 500). Retrying later.");
  ASSERT_EQ(page().cards[0].rows.size(), 2U);
}

TEST_F(AppDelegateUsageTest, MissingSignInIsTold) {
  platform.secretFiles.texts.clear();
  launch();
  readSignIn();
  EXPECT_TRUE(platform.network.requests.empty());
  EXPECT_NE(itemToolTip().find("No Codex auth.json found."), std::string::npos);
}

TEST_F(AppDelegateUsageTest, ClaudeIsReadOnItsOwnQueue) {
  settings.setUsageEnabled(UsageProvider::claude, true);
  platform.screens->running.clear();
  launch();
  ASSERT_TRUE(platform.claude.runOne());
  platform.loop.runPosted();
  EXPECT_NE(itemToolTip().find("Install Claude Code and sign in to read usage automatically. "
                               "Desktop fallback: open Claude → Settings → Usage, then refresh."),
            std::string::npos)
      << itemToolTip();
}

TEST_F(AppDelegateUsageTest, SleepEndsTheReadAndWakeStartsAnother) {
  launch();
  readSignIn();
  platform.power.sleep();
  EXPECT_EQ(platform.network.pending(), 0U);
  platform.power.wake();
  EXPECT_EQ(platform.background.waiting(), 1U);
}

TEST_F(AppDelegateUsageTest, TerminationEndsTheRead) {
  launch();
  readSignIn();
  delegate->applicationWillTerminate();
  EXPECT_EQ(platform.network.cancelled(), 1U);
}

TEST_F(AppDelegateUsageTest, ProviderSwitchedOnByHandIsFoundAtTheNextTick) {
  settings.setUsageEnabled(UsageProvider::codex, false);
  launch();
  settings.setUsageEnabled(UsageProvider::codex, true);
  platform.loop.advance(5s);
  EXPECT_EQ(platform.background.waiting(), 1U);
}

TEST_F(AppDelegateUsageTest, ProviderSwitchedOffByHandIsForgotten) {
  launch();
  readSignIn();
  answer(200, kUsage);
  settings.setUsageEnabled(UsageProvider::codex, false);
  platform.loop.advance(5s);
  EXPECT_EQ(itemToolTip(), "AI usage · enable a subscription in Settings");
}

TEST_F(AppDelegateUsageTest, LinksOpenTheProvidersPages) {
  launch();
  clickItem("nimbo-ai");
  window()->act(pressed("link.codex"));
  window()->act(pressed("link.claude"));
  EXPECT_EQ(platform.desktop.linksOpened,
            (std::vector<std::string>{"https://chatgpt.com/codex/settings/usage", "https://claude.ai/settings/usage"}));
}

TEST_F(AppDelegateUsageTest, ItemShowsWhatIsUsedWhenTheUserWantsThat) {
  settings.setAiMenuRemaining(false);
  launch();
  readSignIn();
  answer(200, kUsage);
  EXPECT_NE(itemToolTip().find("Weekly: 60% used"), std::string::npos) << itemToolTip();
}

}  // namespace
}  // namespace nimbo
