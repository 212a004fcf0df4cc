// SPDX-License-Identifier: MIT
#include "platform/linux/power/logind_system_sleep.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>

#include "support/fake_main_loop.h"
#include "support/services/fake_logind.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

using Log = std::vector<std::string>;

class LogindSystemSleepTest : public ::testing::Test {
 protected:
  LogindSystemSleepTest() { logind.emplace(loop, bus.address()); }

  void observe() {
    observer =
        sleep.observe([this] { events.emplace_back(logind && logind->held() > 0 ? "sleep, held" : "sleep, not held"); },
                      [this] { events.emplace_back("wake"); });
  }

  [[nodiscard]] bool heldBecomes(int count) {
    return loop.runUntil([&] { return logind->held() == count; });
  }

  /// What was announced so far has arrived afterwards.
  void settle() const {
    for (int round = 0; round < 3; ++round) logind->peer.settle(uniqueName());
  }

  [[nodiscard]] const char* uniqueName() const {
    const char* name = nullptr;
    sd_bus_get_unique_name(sleep.bus(), &name);
    return name;
  }

  void stopBus() {
    settle();
    bus.stop();
    ASSERT_TRUE(loop.runUntil([this] { return !timers.repeatingTimers().empty(); }));
    logind.reset();
  }

  PrivateBus bus;
  BusLoop loop;
  std::optional<FakeLogind> logind;
  FakeMainLoop timers;
  LogindSystemSleep sleep{{loop.event(), timers}, bus.address()};
  Subscription observer;
  Log events;
};

TEST_F(LogindSystemSleepTest, DelayLockIsHeldWhileSomebodyObserves) {
  settle();
  EXPECT_TRUE(logind->locks.empty());
  observe();
  ASSERT_TRUE(heldBecomes(1));
  EXPECT_EQ(logind->locks[0].what, "sleep");
  EXPECT_EQ(logind->locks[0].who, "Nimbo");
  EXPECT_EQ(logind->locks[0].mode, "delay");
  EXPECT_FALSE(logind->locks[0].why.empty());
}

TEST_F(LogindSystemSleepTest, LockThatWasRefusedIsAskedForAgainAtGrowingDistances) {
  logind->refuses = true;
  observe();
  for (const auto distance : {2s, 4s}) {
    settle();
    const int asked = logind->asked;
    timers.advance(distance);
    settle();
    EXPECT_EQ(logind->asked, asked + 1) << distance.count();
  }
  logind->refuses = false;
  timers.advance(8s);
  EXPECT_TRUE(heldBecomes(1));
  EXPECT_TRUE(timers.repeatingTimers().empty());
}

TEST_F(LogindSystemSleepTest, SleepIsToldBeforeTheLockIsLetGo) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(true);
  ASSERT_TRUE(heldBecomes(0));
  EXPECT_EQ(events, Log{"sleep, held"});
}

TEST_F(LogindSystemSleepTest, StrangerWhoAnnouncesASleepIsNotBelieved) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  const BusPeer stranger(loop, bus.address());
  stranger.tell(uniqueName(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                [](sd_bus_message* signal) { sd_bus_message_append(signal, "b", 1); });
  stranger.settle(uniqueName());
  EXPECT_EQ(events, Log{});
  EXPECT_EQ(logind->held(), 1);
}

TEST_F(LogindSystemSleepTest, WakeIsToldAndTheLockTakenAgain) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(true);
  ASSERT_TRUE(heldBecomes(0));
  logind->prepareForSleep(false);
  ASSERT_TRUE(heldBecomes(1));
  EXPECT_EQ(events, (Log{"sleep, held", "wake"}));
  EXPECT_EQ(logind->locks.size(), 2U);
}

TEST_F(LogindSystemSleepTest, RepeatedAnnouncementsCountOnce) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  for (const bool sleeping : {true, true, true, false, false}) logind->prepareForSleep(sleeping);
  settle();
  EXPECT_EQ(events, (Log{"sleep, held", "wake"}));
  EXPECT_TRUE(heldBecomes(1));
}

TEST_F(LogindSystemSleepTest, WakeWithoutSleepIsIgnored) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(false);
  settle();
  EXPECT_EQ(events, Log{});
  EXPECT_EQ(logind->locks.size(), 1U);
  EXPECT_EQ(logind->held(), 1);
}

TEST_F(LogindSystemSleepTest, SleepBeforeTheLockArrivedLeavesNoneBehind) {
  observe();
  ASSERT_TRUE(loop.runUntil([&] { return !logind->locks.empty(); }));
  logind->prepareForSleep(true);
  settle();
  EXPECT_EQ(events.size(), 1U);
  EXPECT_EQ(logind->held(), 0);
}

TEST_F(LogindSystemSleepTest, RestartedLogindGivesANewLockAndIsHeard) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  logind.reset();
  logind.emplace(loop, bus.address());
  ASSERT_TRUE(heldBecomes(1));
  EXPECT_EQ(logind->locks.size(), 1U);
  logind->prepareForSleep(true);
  settle();
  EXPECT_EQ(events, Log{"sleep, held"});
}

TEST_F(LogindSystemSleepTest, LogindRestartedDuringSleepMeansAwake) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(true);
  ASSERT_TRUE(heldBecomes(0));
  logind.reset();
  logind.emplace(loop, bus.address());
  ASSERT_TRUE(heldBecomes(1));
  EXPECT_EQ(events, (Log{"sleep, held", "wake"}));
}

TEST_F(LogindSystemSleepTest, LogindThatStartsLateIsHeard) {
  logind.reset();
  const BusPeer peer(loop, bus.address());
  ASSERT_TRUE(peer.waitForName("org.freedesktop.login1", false));
  observe();
  logind.emplace(loop, bus.address());
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(true);
  settle();
  EXPECT_EQ(events, Log{"sleep, held"});
}

TEST_F(LogindSystemSleepTest, RefusedLockStillLetsSleepBeHeard) {
  logind->refuses = true;
  observe();
  settle();
  logind->prepareForSleep(true);
  settle();
  EXPECT_EQ(events, Log{"sleep, not held"});
}

TEST_F(LogindSystemSleepTest, EndedSubscriptionHearsNothing) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  observer.reset();
  logind->prepareForSleep(true);
  EXPECT_TRUE(heldBecomes(0));
  EXPECT_EQ(events, Log{});
}

TEST_F(LogindSystemSleepTest, DestroyingItLetsTheLockGo) {
  {
    LogindSystemSleep brief({loop.event(), timers}, bus.address());
    const auto subscription = brief.observe([] {}, [] {});
    ASSERT_TRUE(heldBecomes(1));
  }
  EXPECT_TRUE(heldBecomes(0));
}

TEST_F(LogindSystemSleepTest, BusThatIsNotThereYetIsFound) {
  logind.reset();
  bus.stop();
  LogindSystemSleep early({loop.event(), timers}, bus.address());
  const auto subscription = early.observe([this] { events.emplace_back("sleep"); }, [] {});
  bus.start();
  logind.emplace(loop, bus.address());
  timers.advance(2s);
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(true);
  ASSERT_TRUE(heldBecomes(0));
  EXPECT_EQ(events, Log{"sleep"});
}

TEST_F(LogindSystemSleepTest, BusThatComesBackIsHeardAgain) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  stopBus();
  timers.advance(2s);  // in vain
  bus.start();
  logind.emplace(loop, bus.address());
  timers.advance(4s);
  ASSERT_TRUE(heldBecomes(1));
  EXPECT_EQ(events, Log{});
  logind->prepareForSleep(true);
  ASSERT_TRUE(heldBecomes(0));
  EXPECT_EQ(events, Log{"sleep, held"});
}

TEST_F(LogindSystemSleepTest, BusThatIsLostDuringSleepMeansAwake) {
  observe();
  ASSERT_TRUE(heldBecomes(1));
  logind->prepareForSleep(true);
  ASSERT_TRUE(heldBecomes(0));
  stopBus();
  EXPECT_EQ(events, (Log{"sleep, held", "wake"}));
}

}  // namespace
}  // namespace nimbo
