// SPDX-License-Identifier: MIT
#include "platform/linux/power/desktop_assertion_client.h"

#include <cerrno>

#include "assertion_client_fixture.h"
#include "platform/contracts/assertion_client_contract.h"

namespace nimbo {
namespace {

using Locks = std::vector<std::string>;
using DesktopAssertionClientTest = AssertionClientTest;

const Locks kSleepLock = {"sleep block Nimbo a reason"};
const Locks kBothLocks = {"sleep:idle block Nimbo a reason"};
const Locks kIdleLock = {"idle block Nimbo a reason"};

struct SessionManagerHost final : AssertionClientHost {
  [[nodiscard]] AssertionClient& client() override { return desktop; }
  [[nodiscard]] Assertions held(std::size_t expected) override {
    EXPECT_TRUE(manager.heldBecomes(expected));
    Assertions all;
    for (const auto& cookie : manager.held()) {
      all.emplace_back(cookie.flags == 8 ? kPreventDisplaySleep : kPreventSystemSleep, cookie.reason);
    }
    return all;
  }
  void setRefuses(bool refuses) override {
    manager.setManner(refuses ? FakeCookieService::Manner::refuses : FakeCookieService::Manner::grants);
  }

  PrivateBus session;
  ServiceThread services;
  BusLoop loop;
  FakeMainLoop timers;
  FakeCookieService manager{services, session.address(), FakeCookieService::kSessionManager};
  DesktopAssertionClient desktop{{{loop.event(), timers}, session.address(), "", {}}};
};
INSTANTIATE_TEST_SUITE_P(SessionManager, AssertionClientContract,
                         testing::Values(makeAssertionClientHost<SessionManagerHost>));

TEST_F(DesktopAssertionClientTest, SessionManagerIsToldTheProgramTheReasonAndWhatToPrevent) {
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  ASSERT_TRUE(holdDisplay());
  const auto cookies = manager->held();
  ASSERT_EQ(cookies.size(), 2U);
  EXPECT_EQ(cookies[0].flags, 4U);
  EXPECT_EQ(cookies[1].flags, 8U);
  for (const auto& cookie : cookies) {
    EXPECT_EQ(cookie.application, "com.quellwerk.Nimbo");
    EXPECT_EQ(cookie.reason, "a reason");
  }
  EXPECT_FALSE(client().keepsDisplayOnToo());
}

TEST_F(DesktopAssertionClientTest, SessionManagerComesBeforeEverythingElse) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto power = start(FakeCookieService::kPowerManagement);
  const auto saver = start(FakeCookieService::kScreenSaver);
  startPlasma();
  startLogind();
  x11Session = true;
  ASSERT_TRUE(holdSystem());
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(manager->held().size(), 2U);
  EXPECT_EQ(power->asked() + saver->asked(), 0);
  EXPECT_EQ(locks(), Locks{});
  EXPECT_EQ(x11.made, 0);
}

TEST_F(DesktopAssertionClientTest, ReleaseTakesTheCookieBackByCall) {
  const auto manager = start(FakeCookieService::kSessionManager);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  client().release(*id);
  EXPECT_TRUE(manager->heldBecomes(0));
  EXPECT_EQ(manager->givenBack(), 1);
}

TEST_F(DesktopAssertionClientTest, DestroyedClientReleasesEverything) {
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  ASSERT_TRUE(holdDisplay());
  destroyClient();
  EXPECT_TRUE(manager->heldBecomes(0));
}

TEST_F(DesktopAssertionClientTest, PlasmaHasOneServiceForEachAssertion) {
  startPlasma();
  startLogind();
  const auto power = start(FakeCookieService::kPowerManagement);
  const auto saver = start(FakeCookieService::kScreenSaver);
  x11Session = true;
  const auto systemId = holdSystem();
  ASSERT_TRUE(systemId);
  EXPECT_EQ(power->held().size(), 1U);
  EXPECT_EQ(saver->held().size(), 0U);
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(power->held().size(), 1U);
  ASSERT_EQ(saver->held().size(), 1U);
  EXPECT_EQ(saver->held()[0].application, "com.quellwerk.Nimbo");
  EXPECT_EQ(saver->held()[0].reason, "a reason");
  client().release(*systemId);
  ASSERT_TRUE(power->heldBecomes(0));
  EXPECT_EQ(saver->held().size(), 1U);
  EXPECT_EQ(locks(), Locks{});
  EXPECT_EQ(x11.made, 0);
}

// Not even the lock of systemd 256 on sleep binds the idle daemons of the user who holds it.
TEST_F(DesktopAssertionClientTest, ElsewhereOldSystemdNeedsTheLockThatKeepsTheDisplayOnToo) {
  startLogind();
  startSystemd("256.10-2~deb13u1");
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  EXPECT_EQ(locks(), kBothLocks);
  EXPECT_TRUE(client().keepsDisplayOnToo());
  EXPECT_TRUE(client().manualSleepApplies());
  client().release(*id);
  EXPECT_TRUE(lockIsLetGo());
  EXPECT_FALSE(client().keepsDisplayOnToo());
}

TEST_F(DesktopAssertionClientTest, ElsewhereNewSystemdNeedsTheSleepLockAlone) {
  startLogind();
  startSystemd("257.2-3-arch");
  x11Session = true;
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks(), kSleepLock);
  EXPECT_EQ(x11.made, 0);
  EXPECT_FALSE(client().keepsDisplayOnToo());
  EXPECT_FALSE(client().manualSleepApplies());
}

TEST_F(DesktopAssertionClientTest, WithoutSystemdNothingIsPromisedOfManualSleep) {
  startLogind();
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks(), kBothLocks);
  EXPECT_FALSE(client().manualSleepApplies());
}

TEST_F(DesktopAssertionClientTest, VersionIsAskedBeforeAnySession) {
  startSystemd("252.39-1~deb12u2");
  const SdBusConnection bus(loop.event(), systemAddress);
  systemBus = bus.get();
  EXPECT_FALSE(client().manualSleepApplies());
  EXPECT_TRUE(loop.runUntil([this] { return client().manualSleepApplies(); }));
}

TEST_F(DesktopAssertionClientTest, PowerManagerKeepsTheSystemAndItsDisplayOn) {
  startLogind();
  startSystemd("257");
  x11Session = true;
  const auto power = start(FakeCookieService::kPowerManagement);
  const auto id = holdSystem();
  ASSERT_TRUE(id);
  EXPECT_EQ(power->held().size(), 1U);
  EXPECT_EQ(locks(), kIdleLock) << "leaves manual sleep alone";
  EXPECT_EQ(x11.made, 0);
  EXPECT_TRUE(client().keepsDisplayOnToo());
  client().release(*id);
  EXPECT_TRUE(power->heldBecomes(0));
}

TEST_F(DesktopAssertionClientTest, PowerManagerThatRefusesIsReplaced) {
  startLogind();
  const auto power = start(FakeCookieService::kPowerManagement, Manner::refuses);
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks(), kBothLocks);
}

TEST_F(DesktopAssertionClientTest, ElsewhereEveryServiceThatIsThereKeepsTheDisplayOn) {
  startLogind();
  const auto power = start(FakeCookieService::kPowerManagement);
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(power->held().size(), 1U);
  const auto saver = start(FakeCookieService::kScreenSaver);
  const auto both = holdDisplay();
  ASSERT_TRUE(both);
  EXPECT_EQ(power->held().size(), 2U);
  EXPECT_EQ(saver->held().size(), 1U);
  EXPECT_EQ(locks(), (Locks{kIdleLock[0], kIdleLock[0]}));
  client().release(*both);
  EXPECT_TRUE(power->heldBecomes(1));
  EXPECT_TRUE(saver->heldBecomes(0));
}

TEST_F(DesktopAssertionClientTest, OneOfTwoServicesIsEnough) {
  const auto power = start(FakeCookieService::kPowerManagement, Manner::refuses);
  const auto saver = start(FakeCookieService::kScreenSaver);
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(power->asked(), 1);
  EXPECT_EQ(saver->held().size(), 1U);
}

TEST_F(DesktopAssertionClientTest, WithoutAnyServiceAnIdleLockKeepsTheDisplayOn) {
  startLogind();
  const auto systemId = holdSystem();
  const auto displayId = holdDisplay();
  ASSERT_TRUE(systemId && displayId);
  EXPECT_EQ(locks(), (Locks{kBothLocks[0], kIdleLock[0]}));
  client().release(*systemId);
  EXPECT_EQ(locks(), kIdleLock);
  client().release(*displayId);
  EXPECT_TRUE(lockIsLetGo());
}

TEST_F(DesktopAssertionClientTest, DesktopThatStartsLaterIsFoundByTheNextAssertion) {
  startLogind();
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks(), kBothLocks);
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(manager->held().size(), 1U);
}

TEST_F(DesktopAssertionClientTest, RefusedSystemAssertionFallsBackToLocks) {
  startLogind();
  const auto manager = start(FakeCookieService::kSessionManager, Manner::refuses);
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(manager->asked(), 1);
  EXPECT_EQ(locks(), kBothLocks);
}

TEST_F(DesktopAssertionClientTest, PlasmaWithoutItsServicesFallsBackToLocks) {
  startPlasma();
  startLogind();
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks(), kBothLocks);
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(locks(), (Locks{kBothLocks[0], kIdleLock[0]}));
}

TEST_F(DesktopAssertionClientTest, RefusalByEverybodyIsAPermissionError) {
  startLogind(true);
  const auto manager = start(FakeCookieService::kSessionManager, Manner::refuses);
  EXPECT_EQ(holdSystem().error(), PowerError{EACCES});
  EXPECT_EQ(holdDisplay().error(), PowerError{EACCES});
  EXPECT_TRUE(manager->held().empty());
}

TEST_F(DesktopAssertionClientTest, SessionManagerThatRefusesTheDisplayIsNotReplacedByALockThatItIgnores) {
  startLogind();
  const auto manager = start(FakeCookieService::kSessionManager, Manner::refuses);
  EXPECT_EQ(holdDisplay().error(), PowerError{EACCES});
  EXPECT_EQ(locks(), Locks{});
}

TEST_F(DesktopAssertionClientTest, AnswerThatIsNoCookieIsAnErrorAndLeavesNothing) {
  const auto manager = start(FakeCookieService::kSessionManager, Manner::answersGarbage);
  EXPECT_EQ(holdSystem().error(), PowerError{EBADMSG});
  EXPECT_TRUE(manager->held().empty());
}

TEST_F(DesktopAssertionClientTest, ServiceThatEndsInsteadOfAnsweringIsReplaced) {
  startLogind();
  const auto manager = start(FakeCookieService::kSessionManager, Manner::vanishes);
  ASSERT_TRUE(holdSystem());
  EXPECT_EQ(locks(), kBothLocks);
  EXPECT_LT(took, std::chrono::milliseconds(900)) << "the bus tells at once that nobody answers any more";
}

TEST_F(DesktopAssertionClientTest, WithoutAnyMechanismIsNotSupported) {
  EXPECT_EQ(holdSystem().error(), PowerError{ENOTSUP});
  EXPECT_EQ(holdDisplay().error(), PowerError{ENOTSUP});
}

TEST_F(DesktopAssertionClientTest, WithoutAnyBusIsNotSupported) {
  sessionAddress = "";
  systemAddress = "unix:path=/nonexistent/bus";
  EXPECT_EQ(holdSystem().error(), PowerError{ENOTSUP});
  EXPECT_EQ(holdDisplay().error(), PowerError{ENOTSUP});
  EXPECT_LT(took, std::chrono::milliseconds(900));
}

TEST_F(DesktopAssertionClientTest, WithoutASessionBusTheLocksRemain) {
  sessionAddress = "unix:path=/nonexistent/bus";
  startLogind();
  ASSERT_TRUE(holdSystem());
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(locks(), (Locks{kBothLocks[0], kIdleLock[0]}));
}

TEST_F(DesktopAssertionClientTest, WithoutASystemBusTheServicesRemain) {
  systemAddress = "";
  const auto manager = start(FakeCookieService::kSessionManager);
  ASSERT_TRUE(holdSystem());
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(manager->held().size(), 2U);
}

TEST_F(DesktopAssertionClientTest, UnknownTypeIsNotSupported) {
  startLogind();
  EXPECT_EQ(create("PreventRain").error(), PowerError{ENOTSUP});
  EXPECT_EQ(locks(), Locks{});
}

TEST_F(DesktopAssertionClientTest, BareX11SessionIsResetUnderEveryHalfMinuteByEitherAssertion) {
  startLogind();
  x11Session = true;
  const auto systemId = holdSystem();
  ASSERT_TRUE(systemId);
  EXPECT_EQ(x11.resets, 1);
  client().release(*systemId);
  EXPECT_TRUE(timers.repeatingTimers().empty());
  x11.resets = 0;
  const auto id = holdDisplay();
  ASSERT_TRUE(id);
  EXPECT_EQ(x11.resets, 1);
  ASSERT_EQ(timers.repeatingTimers().size(), 1U);
  const auto timer = timers.repeatingTimers()[0];
  EXPECT_LT(timer.interval + timer.leeway, std::chrono::seconds(30));
  EXPECT_GE(timer.leeway, std::chrono::seconds(2));
  timers.advance(2 * timer.interval);
  EXPECT_EQ(x11.resets, 3);
  EXPECT_EQ(locks(), kIdleLock);
  client().release(*id);
  timers.advance(2 * timer.interval);
  EXPECT_EQ(x11.resets, 3);
  EXPECT_TRUE(timers.repeatingTimers().empty());
}

TEST_F(DesktopAssertionClientTest, X11ResetAloneKeepsABareDesktopAwake) {
  systemAddress = "";
  x11Session = true;
  EXPECT_TRUE(holdDisplay());
  EXPECT_TRUE(holdSystem());
  EXPECT_TRUE(client().keepsDisplayOnToo());
}

TEST_F(DesktopAssertionClientTest, X11ServerThatCannotBeReachedDoesNotCount) {
  x11Session = true;
  x11.works = false;
  EXPECT_EQ(holdDisplay().error(), PowerError{ENOTSUP});
  startLogind();
  EXPECT_TRUE(holdDisplay());
  EXPECT_EQ(locks(), kIdleLock);
  EXPECT_TRUE(timers.repeatingTimers().empty());
}

TEST_F(DesktopAssertionClientTest, X11ServerThatFailsOnceIsResetAgainNextTime) {
  x11Session = true;
  ASSERT_TRUE(holdDisplay());
  x11.works = false;
  timers.advance(std::chrono::seconds(30));
  x11.works = true;
  timers.advance(std::chrono::seconds(30));
  EXPECT_EQ(x11.resets, 2);
}

TEST_F(DesktopAssertionClientTest, XfcesDisplayHasItsPowerManagerAndTheResets) {
  startLogind();
  x11Session = true;
  const auto power = start(FakeCookieService::kPowerManagement);
  ASSERT_TRUE(holdDisplay());
  EXPECT_EQ(locks(), kIdleLock);
  EXPECT_EQ(power->held().size(), 1U);
  EXPECT_EQ(x11.resets, 1);
}

}  // namespace
}  // namespace nimbo
