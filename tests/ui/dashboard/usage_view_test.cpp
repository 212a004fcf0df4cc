// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_pages.h"

#include <gtest/gtest.h>

#include "ui/dashboard/chart_bars.h"
#include "ui/dashboard/dashboard_world.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

class UsageViewTest : public testing::Test {
 protected:
  UsageViewTest() { world.clock.setNow(UsageTime(std::chrono::seconds(1'795'271'400))); }  // 2026-11-21 14:30 UTC

  UsageTime now() const { return world.clock.now(); }
  UsageState stateWith(std::vector<UsageWindow> windows) const {
    return {true, UsageSnapshot{std::move(windows), now(), {}}, {}, false};
  }
  UsageWindow window(double used, const std::string& title = "Weekly") const { return {title, used, now() + 26h}; }
  UsageContent content() { return usageContent(world.sources()); }
  /// The first card, of a provider in that state.
  UsageCardContent card(const UsageState& state, UsageProvider provider = UsageProvider::codex) {
    world.settings.setClaudeFirst(provider == UsageProvider::claude);
    world.usage = {{provider, state}};
    return content().cards.at(0);
  }

  DashboardWorld world;
};

TEST_F(UsageViewTest, BothProvidersOffLeaveNothingToRefresh) {
  world.usage = {{UsageProvider::codex, {}}, {UsageProvider::claude, {}}};
  const auto page = content();
  EXPECT_FALSE(page.refresh.enabled);
  ASSERT_EQ(page.cards.size(), 2U);
  for (const auto& card : page.cards) {
    EXPECT_EQ(card.status.text, "Enable in Settings to connect your sign-in.");
    EXPECT_TRUE(card.connect.visible);
    EXPECT_EQ(card.connect.title, "Connect in Settings…");
    EXPECT_EQ(card.frame.height, 110);
  }
  EXPECT_EQ(page.cards[1].frame.y, 120);
  EXPECT_EQ(page.document, (Size{300, 371}));
}

TEST_F(UsageViewTest, PageIsCompleteBeforeAnythingIsKnown) {
  const auto page = content();
  EXPECT_EQ(page.cards.size(), 2U);
  EXPECT_EQ(page.note.text, "Updates every 5 minutes · hover for countdowns");
}

TEST_F(UsageViewTest, ThreeWindowsMakeACardOf237Points) {
  const auto shown = card(stateWith({window(1, "5-hour"), window(2), window(3, "Opus weekly")}));
  EXPECT_EQ(shown.frame, (Rect{0, 0, 300, 237}));
  ASSERT_EQ(shown.rows.size(), 3U);
  EXPECT_EQ(shown.rows[0].frame, (Rect{12, 58, 276, 52}));
  EXPECT_EQ(shown.rows[0].title.frame, (Rect{0, 0, 170, 20}));
  EXPECT_EQ(shown.status.frame.maxY(), shown.rows[0].frame.y) << "two lines of it end above";
  EXPECT_EQ(shown.rows[1].frame.y, 116);
  EXPECT_EQ(shown.rows[2].frame.y, 174);
  EXPECT_FALSE(shown.connect.visible);
}

TEST_F(UsageViewTest, TintWarnsWithUse) {
  const auto tint = [this](double used, UsageProvider provider) {
    return card(stateWith({window(used)}), provider).rows.at(0).bar.bars.at(1).color;
  };
  EXPECT_EQ(tint(74.9, UsageProvider::codex), ColorRole::teal);
  EXPECT_EQ(tint(75, UsageProvider::codex), ColorRole::orangeFill);
  EXPECT_EQ(tint(90, UsageProvider::codex), ColorRole::red);
  EXPECT_EQ(tint(10, UsageProvider::claude), ColorRole::orangeFill);
  EXPECT_EQ(tint(90, UsageProvider::claude), ColorRole::red);
}

TEST_F(UsageViewTest, RowTellsWhatIsLeftAndWhenItResets) {
  const auto row = card(stateWith({window(30)})).rows.at(0);
  EXPECT_EQ(row.title.text, "Weekly");
  EXPECT_EQ(row.amount.text, "70% left");
  EXPECT_EQ(row.reset.text, "Resets Nov 22, 2026 16:30");
  EXPECT_DOUBLE_EQ(row.bar.percent, 70);
  EXPECT_TRUE(row.bar.progress);
  EXPECT_EQ(row.bar.bars, allowanceBars(0.7, ColorRole::teal, {276, 7}));
  EXPECT_EQ(row.bar.accessibleName, "Codex Weekly");
  EXPECT_EQ(row.bar.reading, "70 percent remaining");
  const std::string toolTip = "Weekly · 70% left · Resets in 1d 2h\nResets Nov 22, 2026 16:30\nUpdated 14:30";
  for (const auto& text : {row.title.toolTip, row.amount.toolTip, row.bar.toolTip, row.reset.toolTip}) {
    EXPECT_EQ(text, toolTip);
  }
}

TEST_F(UsageViewTest, MissingResetTimeIsSaid) {
  const auto row = card(stateWith({{"Weekly", 30, {}}})).rows.at(0);
  EXPECT_EQ(row.reset.text, "Reset time unavailable");
}

TEST_F(UsageViewTest, MoreThanAllLeavesNothing) {
  const auto row = card(stateWith({window(110)})).rows.at(0);
  EXPECT_EQ(row.amount.text, "0% left");
  EXPECT_EQ(row.amount.style.color, ColorRole::red) << "its bar is empty";
  EXPECT_EQ(row.bar.percent, 0);
  EXPECT_EQ(card(stateWith({window(99)})).rows.at(0).amount.style.color, ColorRole::label);
}

TEST_F(UsageViewTest, MessageWithoutWindowsStandsAlone) {
  UsageState state;
  state.enabled = true;
  state.message = "No Codex auth.json found.";
  const auto shown = card(state);
  EXPECT_EQ(shown.status.text, "No Codex auth.json found.");
  EXPECT_TRUE(shown.connect.visible);
}

TEST_F(UsageViewTest, OldFiguresAreNeverShownAsNew) {
  auto state = stateWith({window(30)});
  state.message = "Couldn’t reach the provider.";
  auto shown = card(state);
  EXPECT_EQ(shown.status.text, "Last known · Couldn’t reach the provider.");
  EXPECT_EQ(shown.status.toolTip, "Couldn’t reach the provider.");
  EXPECT_EQ(shown.rows.at(0).bar.opacity, 0.45);

  state.message.reset();
  state.snapshot->fetchedAt = now() - 901s;
  shown = card(state);
  EXPECT_EQ(shown.status.text, "Last known · Updated 14:14 · Stale");
  EXPECT_EQ(shown.rows.at(0).bar.opacity, 0.45);
}

TEST_F(UsageViewTest, WaitOfDaysHasItsDateInTheCardsToolTip) {
  auto state = stateWith({window(30)});
  state.message = "Provider rate limit reached. Retry at 14:29.";
  state.retryNotBefore = now() + 47h + 59min;
  EXPECT_EQ(card(state).title.toolTip, "Retry at Nov 23, 2026 14:29");
  EXPECT_EQ(card(state).status.toolTip, *state.message);
  state.retryNotBefore = now() + 23h + 59min;
  EXPECT_EQ(card(state).title.toolTip, "");
}

TEST_F(UsageViewTest, DisabledStateHidesItsSnapshot) {
  auto state = stateWith({window(30)});
  state.enabled = false;
  EXPECT_TRUE(card(state).rows.empty());
}

TEST_F(UsageViewTest, RunningRefreshIsVisible) {
  UsageState state;
  state.enabled = true;
  EXPECT_EQ(content().progress.text, "");
  state.isRefreshing = true;
  EXPECT_FALSE(card(state).connect.visible);
  EXPECT_EQ(content().progress.text, "Refreshing…");
  EXPECT_TRUE(content().refresh.enabled);
}

TEST_F(UsageViewTest, OrderIsTheUsers) {
  world.settings.setClaudeFirst(true);
  EXPECT_EQ(content().cards[0].title.text, "Anthropic · Claude");
  EXPECT_EQ(content().cards[1].title.text, "OpenAI · Codex");
}

TEST_F(UsageViewTest, DocumentGrowsWithTheCards) {
  const auto state = stateWith({window(1, "a"), window(2, "b"), window(3, "c")});
  world.usage = {{UsageProvider::codex, state}, {UsageProvider::claude, state}};
  EXPECT_EQ(content().document, (Size{300, 494}));
  EXPECT_EQ(content().scroll, (Rect{20, 62, 306, 371}));
}

TEST_F(UsageViewTest, LinksNameTheirProvider) {
  EXPECT_EQ(content().cards[0].link.toolTip, "Open Codex usage dashboard");
  EXPECT_EQ(content().cards[1].link.toolTip, "Open Claude usage dashboard");
}

}  // namespace
}  // namespace nimbo
