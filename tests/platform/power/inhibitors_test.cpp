// SPDX-License-Identifier: MIT
#include "platform/linux/power/inhibitors.h"

#include <cerrno>

#include "assertion_client_fixture.h"

namespace nimbo {
namespace {

// Services that hang, start anew or go away while something is held.
class CookieInhibitorTest : public AssertionClientTest {
 protected:
  /// While the program's own loop runs.
  [[nodiscard]] bool heldComesTo(const FakeCookieService& service, std::size_t count) const {
    return loop.runUntil([&] { return service.held().size() == count; });
  }
  /// A whole exchange with the session bus on the program's loop: what was sent before has arrived.
  void settle() const {
    const BusPeer peer(const_cast<BusLoop&>(loop), session.address());
    for (int round = 0; round < 3; ++round) peer.settle("org.freedesktop.DBus");
  }
};

TEST_F(CookieInhibitorTest, CookieIsTakenAgainFromAServiceThatStartsAnew) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  manager->stop();
  manager->start();
  ASSERT_TRUE(heldComesTo(*manager, 1));
  EXPECT_EQ(manager->held()[0].flags, 4U);
  EXPECT_EQ(manager->held()[0].application, "com.quellwerk.Nimbo");
  settle();
  client().release(*id);
  EXPECT_TRUE(manager->heldBecomes(0));
}

TEST_F(CookieInhibitorTest, BothCookiesComeBackAndAreReleasedOneByOne) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto systemId = holdSystem();
  ASSERT_TRUE(systemId);
  ASSERT_TRUE(holdDisplay());
  manager->stop();
  manager->start();
  ASSERT_TRUE(heldComesTo(*manager, 2));
  client().release(*systemId);
  ASSERT_TRUE(manager->heldBecomes(1));
  EXPECT_EQ(manager->held()[0].flags, 8U);
}

TEST_F(CookieInhibitorTest, ServiceThatIsNotReadyYetIsAskedAgainUntilItGrants) {
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  manager->stop();
  manager->setManner(Manner::refuses);
  manager->start();
  for (int attempt = 0; attempt < 3; ++attempt) {
    ASSERT_TRUE(loop.runUntil([this] { return timers.repeatingTimers().size() == 1; }));
    EXPECT_EQ(manager->asked(), 2 + attempt);
    if (attempt == 2) manager->setManner(Manner::grants);
    timers.advance(std::chrono::seconds(5));
  }
  ASSERT_TRUE(heldComesTo(*manager, 1));
  settle();
  EXPECT_TRUE(timers.repeatingTimers().empty());
}

TEST_F(CookieInhibitorTest, GarbageFromAServiceThatStartedAnewIsAskedAgainToo) {
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  manager->stop();
  manager->setManner(Manner::answersGarbage);
  manager->start();
  ASSERT_TRUE(loop.runUntil([this] { return timers.repeatingTimers().size() == 1; }));
  manager->setManner(Manner::grants);
  timers.advance(std::chrono::seconds(5));
  EXPECT_TRUE(heldComesTo(*manager, 1));
}

TEST_F(CookieInhibitorTest, NothingRunsWhileItIsHeldOrTheServiceIsAway) {
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  ASSERT_TRUE(holdDisplay());
  EXPECT_TRUE(timers.repeatingTimers().empty());
  manager->stop();
  settle();
  EXPECT_TRUE(timers.repeatingTimers().empty());
  EXPECT_EQ(manager->asked(), 2);
}

TEST_F(CookieInhibitorTest, ReleasedWhileTheServiceIsAwayIsNotTakenAgain) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  manager->stop();
  settle();
  client().release(*id);
  manager->start();
  settle();
  EXPECT_EQ(manager->asked(), 1);
  EXPECT_TRUE(manager->held().empty());
}

TEST_F(CookieInhibitorTest, ReleasedDuringTheCallToANewServiceLeavesNothing) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  manager->stop();
  manager->start();
  services.freeze();
  settle();
  client().release(*id);
  services.thaw();
  ASSERT_TRUE(manager->askedBecomes(2));
  EXPECT_TRUE(manager->heldBecomes(0));
}

TEST_F(CookieInhibitorTest, SessionBusThatEndsLeavesThingsQuiet) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  BusPeer witness(loop, session.address());
  session.stop();
  ASSERT_TRUE(loop.runUntil([&] { return sd_bus_is_open(witness.bus()) <= 0; }));
  timers.advance(std::chrono::seconds(60));
  EXPECT_TRUE(timers.repeatingTimers().empty());
  client().release(*id);
}

TEST_F(CookieInhibitorTest, ServiceThatHangsIsGivenUpAndForgetsTheCallWhenItWakes) {
  startLogind();
  const auto manager = start(FakeCookieService::kSessionManager);
  services.freeze();
  const auto id = holdDisplay();
  ASSERT_FALSE(id);
  EXPECT_EQ(id.error(), PowerError{ETIMEDOUT});
  EXPECT_LT(took, kLongest);
  services.thaw();
  ASSERT_TRUE(manager->askedBecomes(1));
  EXPECT_TRUE(manager->heldBecomes(0));
}

TEST_F(CookieInhibitorTest, SilentServiceIsReplacedByALockInTime) {
  startLogind();
  const auto manager = start(FakeCookieService::kSessionManager, Manner::staysSilent);
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks().size(), 1U);
  EXPECT_LT(took, kLongest);
}

TEST_F(CookieInhibitorTest, TwoSilentServicesStillLeaveTimeForALock) {
  startLogind();
  const auto power = start(FakeCookieService::kPowerManagement, Manner::staysSilent);
  const auto saver = start(FakeCookieService::kScreenSaver, Manner::staysSilent);
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(saver->asked(), 1);
  EXPECT_EQ(locks().size(), 1U);
  EXPECT_LT(took, kLongest);
}

TEST_F(CookieInhibitorTest, StoppedSessionBusLeavesTheSystemToLogind) {
  startLogind();
  session.freeze();
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks().size(), 1U);
  EXPECT_LT(took, kLongest);
  session.thaw();
}

TEST_F(CookieInhibitorTest, StoppedSessionBusMeansThatNobodyKnowsWhomTheDisplayFollows) {
  startLogind();
  session.freeze();
  EXPECT_EQ(holdDisplay().error(), PowerError{ETIMEDOUT});
  EXPECT_LT(took, kLongest);
  EXPECT_TRUE(locks().empty());
  session.thaw();
}

TEST_F(CookieInhibitorTest, BothBusesStoppedTimeOutAndLeaveNothing) {
  startLogind();
  const auto manager = start(FakeCookieService::kSessionManager);
  session.freeze();
  system.freeze();
  EXPECT_EQ(holdSystem().error(), PowerError{ETIMEDOUT});
  EXPECT_LT(took, kLongest);
  session.thaw();
  system.thaw();
  EXPECT_TRUE(lockIsLetGo());
  EXPECT_TRUE(manager->heldBecomes(0));
}

TEST_F(CookieInhibitorTest, ReleaseDoesNotWaitForAServiceThatHangs) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  services.freeze();
  const auto begin = std::chrono::steady_clock::now();
  client().release(*id);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
  services.thaw();
  EXPECT_TRUE(manager->heldBecomes(0));
}

TEST_F(CookieInhibitorTest, ReleaseDoesNotWaitForABusThatHangs) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  session.freeze();
  const auto begin = std::chrono::steady_clock::now();
  client().release(*id);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
  session.thaw();
  EXPECT_TRUE(manager->heldBecomes(0));
}

}  // namespace
}  // namespace nimbo
