// SPDX-License-Identifier: MIT
#include "usage/usage_monitor.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_network.h"
#include "support/fake_usage_read.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Requests = std::vector<UsageRequest>;

constexpr auto kAuto = UsageRequest::automatic;
constexpr auto kManual = UsageRequest::manual;

class UsageMonitorTest : public testing::Test {
 protected:
  UsageMonitorTest() {
    monitor->onChange = [this] { ++changes; };
    monitor->setEnabled(codexProvider, true);
    changes = 0;
  }

  void refresh(UsageRequest request) { monitor->refresh(kAllUsageProviders, request); }
  const UsageState& state(UsageProvider provider = UsageProvider::codex) const {
    return monitor->states().at(provider);
  }
  UsageSnapshot snapshot(double used) const { return {{{"Weekly", used, {}}}, clock.now(), {}}; }
  void failUnreached() {
    codexRead.finish(tl::unexpected(UsageError{.message = "none", .retry = UsageRetry::withNetwork}));
  }
  static UsageError rateLimit(UsageTime until) { return {"wait", until}; }

  static constexpr auto codexProvider = UsageProvider::codex;
  static constexpr auto claudeProvider = UsageProvider::claude;

  FakeClock clock;
  FakeDates dates;
  FakeNetwork network;
  FakeUsageRead codexRead;
  FakeUsageRead claudeRead;
  std::unique_ptr<UsageMonitor> monitor =
      std::make_unique<UsageMonitor>(UsageMonitor::Reads{codexRead.read(), claudeRead.read()}, clock, dates, network);
  int changes = 0;
};

TEST_F(UsageMonitorTest, ProviderThatIsOffIsNeverRead) {
  refresh(kAuto);
  refresh(kManual);
  EXPECT_TRUE(claudeRead.requests.empty());
  EXPECT_FALSE(state(claudeProvider).enabled);
}

TEST_F(UsageMonitorTest, NewStateIsEnabledAndOtherwiseEmpty) { EXPECT_EQ(state(), (UsageState{true, {}, {}, false})); }

TEST_F(UsageMonitorTest, RefreshIsTellingWhileItRuns) {
  refresh(kAuto);
  EXPECT_TRUE(state().isRefreshing);
  EXPECT_EQ(changes, 1);
  codexRead.finish(snapshot(40));
  EXPECT_FALSE(state().isRefreshing);
  EXPECT_EQ(state().snapshot, snapshot(40));
  EXPECT_EQ(changes, 2);
}

TEST_F(UsageMonitorTest, BothProvidersStartWithOneChange) {
  monitor->setEnabled(claudeProvider, true);
  changes = 0;
  refresh(kAuto);
  EXPECT_EQ(codexRead.running() + claudeRead.running(), 2U);
  EXPECT_EQ(changes, 1);
}

TEST_F(UsageMonitorTest, AutomaticReadsComeEveryFiveMinutes) {
  refresh(kAuto);
  codexRead.finish(snapshot(1));
  clock.advance(299s);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  EXPECT_EQ(changes, 2) << "nothing changed";
  clock.advance(1s);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests, (Requests{kAuto, kAuto}));
}

TEST_F(UsageMonitorTest, FailureIsRetriedAfterFiveMinutesToo) {
  refresh(kAuto);
  codexRead.fail("no");
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  clock.advance(300s);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 2U);
}

TEST_F(UsageMonitorTest, FailureForWantOfANetworkIsRetriedOnceWhenThatAppears) {
  refresh(kAuto);
  failUnreached();
  network.appear();
  EXPECT_EQ(codexRead.running(), 1U);
  failUnreached();
  network.appear();
  EXPECT_EQ(codexRead.requests, (Requests{kAuto, kAuto}));
  clock.advance(300s);
  refresh(kAuto);
  failUnreached();
  network.appear();
  codexRead.finish(snapshot(1));
  EXPECT_EQ(codexRead.requests.size(), 4U);
  EXPECT_FALSE(state().message);
}

TEST_F(UsageMonitorTest, NetworkThatAppearsDuringAReadThatFailsCountsToo) {
  refresh(kAuto);
  network.appear();
  EXPECT_EQ(codexRead.requests.size(), 1U);
  failUnreached();
  EXPECT_EQ(codexRead.requests.size(), 2U);
}

TEST_F(UsageMonitorTest, NetworkIsObservedOnlyAsLongAsAnythingDependsOnIt) {
  EXPECT_EQ(network.observers(), 0);
  refresh(kAuto);
  EXPECT_EQ(network.observers(), 1);
  codexRead.finish(snapshot(1));
  EXPECT_EQ(network.observers(), 0);
  refresh(kManual);
  codexRead.fail("no");
  EXPECT_EQ(network.observers(), 0);
  refresh(kManual);
  failUnreached();
  EXPECT_EQ(network.observers(), 1);
  monitor->setEnabled(codexProvider, false);
  EXPECT_EQ(network.observers(), 0);
}

TEST_F(UsageMonitorTest, ManualRefreshNeedNotWait) {
  refresh(kAuto);
  codexRead.finish(snapshot(1));
  refresh(kManual);
  EXPECT_EQ(codexRead.requests, (Requests{kAuto, kManual}));
}

TEST_F(UsageMonitorTest, TwoQuickPressesStartOneReadAndNoFollowUp) {
  refresh(kManual);
  refresh(kManual);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  codexRead.finish(snapshot(1));
  EXPECT_EQ(codexRead.running(), 0U);
  EXPECT_EQ(codexRead.requests.size(), 1U);
}

TEST_F(UsageMonitorTest, PressDuringABackgroundReadQueuesExactlyOneFollowUp) {
  refresh(kAuto);
  refresh(kManual);
  refresh(kManual);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  codexRead.finish(snapshot(1));
  EXPECT_EQ(codexRead.requests, (Requests{kAuto, kManual}));
  EXPECT_TRUE(state().isRefreshing);
  codexRead.finish(snapshot(2));
  EXPECT_EQ(codexRead.requests.size(), 2U);
  EXPECT_EQ(state().snapshot, snapshot(2));
}

TEST_F(UsageMonitorTest, FollowUpAlsoComesAfterAFailure) {
  refresh(kAuto);
  refresh(kManual);
  codexRead.fail("no");
  EXPECT_EQ(codexRead.requests.size(), 2U);
}

TEST_F(UsageMonitorTest, AutomaticRefreshDuringAReadDoesNothing) {
  refresh(kAuto);
  clock.advance(1h);
  refresh(kAuto);
  codexRead.finish(snapshot(1));
  EXPECT_EQ(codexRead.requests.size(), 1U);
}

TEST_F(UsageMonitorTest, ClockThatIsSetBackDelaysNoRefresh) {
  refresh(kAuto);
  codexRead.finish(snapshot(1));
  clock.setNow(clock.now() - 9h);
  clock.advance(299s);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  clock.advance(1s);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 2U);
}

TEST_F(UsageMonitorTest, ClockThatIsSetBackDoesNotLengthenARateLimitWait) {
  refresh(kAuto);
  codexRead.finish(tl::unexpected(rateLimit(clock.now() + 3600s)));
  clock.setNow(clock.now() - 9h);
  clock.advance(3599s);
  refresh(kManual);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  clock.advance(1s);
  refresh(kManual);
  EXPECT_EQ(codexRead.requests.size(), 2U);
}

TEST_F(UsageMonitorTest, FailedRefreshKeepsTheOldSnapshotAndItsDate) {
  refresh(kAuto);
  const auto first = snapshot(30);
  codexRead.finish(first);
  clock.advance(300s);
  refresh(kAuto);
  codexRead.fail("Couldn’t");
  EXPECT_EQ(state().snapshot, first);
  EXPECT_EQ(state().message, "Couldn’t");
}

TEST_F(UsageMonitorTest, SuccessClearsTheMessage) {
  refresh(kAuto);
  codexRead.fail("no");
  refresh(kManual);
  codexRead.finish(snapshot(3));
  EXPECT_FALSE(state().message);
}

TEST_F(UsageMonitorTest, RateLimitWaitSendsNothingAndOnlyAManualRefreshSaysSo) {
  refresh(kAuto);
  const auto until = clock.now() + 3600s;
  codexRead.finish(tl::unexpected(rateLimit(until)));
  EXPECT_EQ(state().message, "wait");
  EXPECT_EQ(state().retryNotBefore, until);
  clock.advance(3599s);
  changes = 0;
  refresh(kAuto);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(state().message, "wait");
  refresh(kManual);
  EXPECT_EQ(state().message,
            "Provider rate limit reached. Retry at " + dates.shortTime(until) + ". Refresh cannot shorten this wait.");
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(state().retryNotBefore, until);
  EXPECT_FALSE(state().isRefreshing);
  EXPECT_EQ(codexRead.requests.size(), 1U);
  clock.advance(1s);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 2U);
  codexRead.finish(snapshot(1));
  EXPECT_FALSE(state().retryNotBefore);
}

TEST_F(UsageMonitorTest, QueuedManualRefreshRespectsTheWaitThatItsReadBrought) {
  refresh(kAuto);
  refresh(kManual);
  codexRead.finish(tl::unexpected(rateLimit(clock.now() + 600s)));
  EXPECT_EQ(codexRead.requests.size(), 1U);
  EXPECT_TRUE(state().message->starts_with("Provider rate limit reached."));
}

TEST_F(UsageMonitorTest, SwitchingOffEndsTheReadAndForgetsTheReading) {
  refresh(kAuto);
  codexRead.finish(snapshot(1));
  refresh(kManual);
  monitor->setEnabled(codexProvider, false);
  EXPECT_EQ(codexRead.running(), 0U);
  EXPECT_EQ(state(), UsageState());
}

TEST_F(UsageMonitorTest, LateResultOfASwitchedOffProviderIsNotStoredEvenWhenItIsOnAgain) {
  refresh(kAuto);
  monitor->setEnabled(codexProvider, false);
  codexRead.finishLate(snapshot(99));
  EXPECT_EQ(state(), UsageState());
  monitor->setEnabled(codexProvider, true);
  codexRead.finishLate(snapshot(99));
  EXPECT_FALSE(state().snapshot);
}

TEST_F(UsageMonitorTest, SwitchedOnAgainIsReadAtOnce) {
  refresh(kAuto);
  codexRead.finish(snapshot(1));
  monitor->setEnabled(codexProvider, false);
  monitor->setEnabled(codexProvider, true);
  refresh(kAuto);
  EXPECT_EQ(codexRead.requests.size(), 2U);
}

TEST_F(UsageMonitorTest, RateLimitWaitSurvivesSwitchingOffAndOn) {
  refresh(kAuto);
  codexRead.finish(tl::unexpected(rateLimit(clock.now() + 600s)));
  monitor->setEnabled(codexProvider, false);
  monitor->setEnabled(codexProvider, true);
  refresh(kManual);
  EXPECT_EQ(codexRead.requests.size(), 1U);
}

TEST_F(UsageMonitorTest, SettingTheSameFlagChangesNothing) {
  refresh(kAuto);
  changes = 0;
  monitor->setEnabled(codexProvider, true);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(codexRead.running(), 1U);
}

TEST_F(UsageMonitorTest, StopEndsTheReadsAndTheNextRefreshStartsThemAgain) {
  refresh(kAuto);
  monitor->stop();
  EXPECT_EQ(codexRead.running(), 0U);
  EXPECT_EQ(network.observers(), 0);
  EXPECT_FALSE(state().isRefreshing);
  codexRead.finishLate(snapshot(5));
  EXPECT_FALSE(state().snapshot);
  refresh(kAuto);
  EXPECT_EQ(codexRead.running(), 1U);
}

TEST_F(UsageMonitorTest, StopWithNothingRunningChangesNothing) {
  monitor->stop();
  EXPECT_EQ(changes, 0);
}

TEST_F(UsageMonitorTest, OnlyTheNamedProvidersAreRefreshed) {
  monitor->setEnabled(claudeProvider, true);
  monitor->refresh(std::span(&claudeProvider, 1), kManual);
  EXPECT_EQ(claudeRead.running(), 1U);
  EXPECT_EQ(codexRead.running(), 0U);
}

TEST_F(UsageMonitorTest, MonitorMayGoWhileAReadRuns) {
  refresh(kAuto);
  monitor.reset();
  EXPECT_EQ(codexRead.running(), 0U);
}

}  // namespace
}  // namespace nimbo
