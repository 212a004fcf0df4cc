// SPDX-License-Identifier: MIT
#include "ui/tray/usage_menu_gauge.h"

#include "usage/usage_status.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_user_defaults.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

const UsageTime kNow{std::chrono::seconds{1'795'271'400}};  // 2026-11-21 14:30 UTC

class UsageMenuGaugeTest : public testing::Test {
 protected:
  UsageMenuGaugeTest() {
    settings.setUsageEnabled(UsageProvider::codex, true);
    settings.setUsageEnabled(UsageProvider::claude, true);
  }

  static UsageSnapshot snapshot(std::chrono::seconds age = 0s) {
    return {{{"5-hour", 25, kNow + 4h + 5min}, {"Weekly", 60, kNow + 72h}}, kNow - age, {}};
  }
  static UsageState enabledState() { return {true, snapshot(), {}, false}; }
  std::vector<UsageMenuGauge> gauges() const { return menuGauges(settings, states, kNow, dates); }
  std::string status(const UsageState& state) const { return statusLine(state, kNow, dates); }

  FakeDates dates;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "test"};
  Settings settings{defaults};
  UsageStates states{{UsageProvider::codex, enabledState()}, {UsageProvider::claude, enabledState()}};
};

TEST_F(UsageMenuGaugeTest, BarsComeInTheUsersOrder) {
  EXPECT_EQ(gauges()[0].provider, UsageProvider::codex);
  settings.setClaudeFirst(true);
  EXPECT_EQ(gauges()[0].provider, UsageProvider::claude);
}

TEST_F(UsageMenuGaugeTest, ProviderThatIsOffHasNoBar) {
  settings.setUsageEnabled(UsageProvider::codex, false);
  ASSERT_EQ(gauges().size(), 1U);
  EXPECT_EQ(gauges()[0].provider, UsageProvider::claude);
}

TEST_F(UsageMenuGaugeTest, WithoutProvidersThereIsOneOpaqueDashAndAHint) {
  settings.setUsageEnabled(UsageProvider::codex, false);
  settings.setUsageEnabled(UsageProvider::claude, false);
  EXPECT_TRUE(gauges().empty());
  const auto image = usageItemContent({}, true, kNow).image;
  ASSERT_EQ(image.shapes.size(), 2U);
  EXPECT_EQ(image.shapes[0].outline, (RoundedRect{{1, 7, 16, 4}, 2}));
  EXPECT_EQ(image.shapes[1].outline, (RoundedRect{{6, 8.5, 6, 1}, 0}));
  EXPECT_EQ(image.shapes[1].alpha, 1);
  EXPECT_EQ(usageItemContent({}, true, kNow).toolTip, "AI usage · enable a subscription in Settings");
}

TEST_F(UsageMenuGaugeTest, WindowIsTheShortOneOrTheWeeklyOne) {
  EXPECT_EQ(gauges()[0].window->title, "Weekly");
  settings.setAiMenuWindows(0);
  EXPECT_EQ(gauges()[0].window->title, "5-hour");
  states[UsageProvider::codex].snapshot->windows = {{"Weekly", 1, {}}, {"Session", 2, {}}, {"5-hour", 3, {}}};
  EXPECT_EQ(gauges()[0].window->title, "Session");
}

TEST_F(UsageMenuGaugeTest, MissingWeeklyWindowIsADashAlthoughOthersExist) {
  states[UsageProvider::codex].snapshot->windows = {{"5-hour", 25, {}}};
  EXPECT_FALSE(gauges()[0].window);
  EXPECT_EQ(usageItemContent(gauges(), true, kNow).image.shapes[1].outline.rect.width, 6);
}

TEST_F(UsageMenuGaugeTest, ProviderEnabledInTheSettingsOnlySaysSo) {
  states.erase(UsageProvider::claude);
  states[UsageProvider::codex].enabled = false;
  for (const auto& gauge : gauges()) {
    EXPECT_FALSE(gauge.window);
    EXPECT_EQ(gauge.status, "Enable in Settings to connect your sign-in.");
  }
  EXPECT_EQ(usageItemContent({gauges()[0]}, true, kNow).toolTip,
            "AI usage · bars top to bottom\n\nOpenAI · Codex\nUsage unavailable\n"
            "Enable in Settings to connect your sign-in.");
}

TEST_F(UsageMenuGaugeTest, FreshReadingBesideAMessageIsStale) {
  states[UsageProvider::codex].message = "no";
  EXPECT_TRUE(gauges()[0].stale);
  EXPECT_FALSE(gauges()[1].stale);
}

TEST_F(UsageMenuGaugeTest, ReadingIsOldAfterFifteenMinutes) {
  states[UsageProvider::codex].snapshot = snapshot(900s);
  EXPECT_FALSE(gauges()[0].stale);
  states[UsageProvider::codex].snapshot = snapshot(901s);
  ASSERT_TRUE(gauges()[0].stale);
  EXPECT_EQ(usageItemContent(gauges(), true, kNow).image.shapes[1].alpha, 0.4);
  EXPECT_EQ(usageItemContent({gauges()[0]}, true, kNow).toolTip,
            "AI usage · bars top to bottom\n\nOpenAI · Codex · Last known\nWeekly: 40% remaining · Resets in 3d 0h\n"
            "Updated 14:14 · Stale");
}

TEST_F(UsageMenuGaugeTest, StatusLineFollowsItsOrder) {
  UsageState state;
  EXPECT_EQ(status(state), "Enable in Settings to connect your sign-in.");
  state.enabled = true;
  EXPECT_EQ(status(state), "Waiting for usage…");
  state.snapshot = snapshot();
  EXPECT_EQ(status(state), "Updated 14:30");
  state.snapshot->source = "Claude Code";
  EXPECT_EQ(status(state), "Updated 14:30 · Claude Code");
  state.snapshot->fetchedAt = kNow - 901s;
  EXPECT_EQ(status(state), "Updated 14:14 · Claude Code · Stale");
  state.isRefreshing = true;
  EXPECT_EQ(status(state), "Refreshing…");
  state.message = "Couldn’t";
  EXPECT_EQ(status(state), "Couldn’t");
}

TEST_F(UsageMenuGaugeTest, BarIsFilledByWhatIsLeftOrByWhatIsUsed) {
  states[UsageProvider::codex].snapshot->windows = {{"Weekly", 25, {}}};
  EXPECT_EQ(usageItemContent(gauges(), true, kNow).image.shapes[1].outline.rect.width, 12);
  EXPECT_EQ(usageItemContent(gauges(), false, kNow).image.shapes[1].outline.rect.width, 4);
}

TEST_F(UsageMenuGaugeTest, FigureThatIsNoneIsADash) {
  const auto dash = usageItemContent({}, true, kNow).image;
  for (const double used : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    states[UsageProvider::codex].snapshot->windows = {{"Weekly", used, {}}};
    const auto one = std::vector{gauges()[0]};
    EXPECT_EQ(usageItemContent(one, true, kNow).image, dash);
    EXPECT_EQ(usageItemContent(one, false, kNow).image, dash);
  }
}

TEST_F(UsageMenuGaugeTest, MoreThanAllIsAnEmptyOrAFullBar) {
  states[UsageProvider::codex].snapshot->windows = {{"Weekly", 130, {}}};
  const auto one = std::vector{gauges()[0]};
  EXPECT_EQ(usageItemContent(one, true, kNow).image.shapes[1].outline.rect.width, 0);
  EXPECT_NE(usageItemContent(one, true, kNow).toolTip.find("Weekly: 0% remaining · Reset time unavailable"),
            std::string::npos);
  EXPECT_EQ(usageItemContent(one, false, kNow).image.shapes[1].outline.rect.width, 16);
  EXPECT_NE(usageItemContent(one, false, kNow).toolTip.find("Weekly: 130% used"), std::string::npos);
}

TEST_F(UsageMenuGaugeTest, BarsAreStackedFromTheTopAndClippedToTheirTracks) {
  const auto image = usageItemContent(gauges(), false, kNow).image;
  ASSERT_EQ(image.shapes.size(), 4U);
  EXPECT_EQ(image.shapes[0].outline, (RoundedRect{{1, 11, 16, 4}, 2}));
  EXPECT_EQ(image.shapes[0].alpha, 0.18);
  EXPECT_EQ(image.shapes[1].outline.rect, (Rect{1, 11, 9.6, 4}));
  EXPECT_EQ(image.shapes[1].clip, (RoundedRect{{1, 11, 16, 4}, 2}));
  EXPECT_EQ(image.shapes[2].outline, (RoundedRect{{1, 3, 16, 4}, 2}));
}

TEST_F(UsageMenuGaugeTest, BlocksStandApart) {
  EXPECT_EQ(usageItemContent(gauges(), true, kNow).toolTip,
            "AI usage · bars top to bottom\n\n"
            "OpenAI · Codex\nWeekly: 40% remaining · Resets in 3d 0h\nUpdated 14:30\n\n"
            "Anthropic · Claude\nWeekly: 40% remaining · Resets in 3d 0h\nUpdated 14:30");
}

TEST(ResetCountdown, CountsDownInTheLargestTwoUnits) {
  const auto text = [](std::optional<UsageTime> reset) { return resetCountdown({"Weekly", 0, reset}, kNow); };
  EXPECT_EQ(text({}), "Reset time unavailable");
  EXPECT_EQ(text(kNow), "Reset due · refresh");
  EXPECT_EQ(text(kNow - 1h), "Reset due · refresh");
  EXPECT_EQ(text(kNow + 1ms), "Resets in 1m");
  EXPECT_EQ(text(kNow + 90s), "Resets in 2m");
  EXPECT_EQ(text(kNow + 59min), "Resets in 59m");
  EXPECT_EQ(text(kNow + 59min + 1s), "Resets in 1h 0m");
  EXPECT_EQ(text(kNow + 4h + 5min), "Resets in 4h 5m");
  EXPECT_EQ(text(kNow + 24h), "Resets in 1d 0h");
  EXPECT_EQ(text(kNow + 72h + 59min), "Resets in 3d 0h");
  EXPECT_EQ(text(UsageTime::max()), "Resets in 36500d 0h");
}

}  // namespace
}  // namespace nimbo
