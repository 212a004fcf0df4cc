// SPDX-License-Identifier: MIT
// A session with a deadline from its start to its end: the real clock, loop and locks.
#include "awake/awake_manager.h"
#include "platform/clock.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/mac_wording.h"
#include "platform/power/assertion_client_fixture.h"
#include "support/fake_display_power.h"
#include "support/fake_power_sources.h"
#include "support/fake_user_defaults.h"

namespace nimbo {
namespace {

using SessionDeadlineTest = AssertionClientTest;

TEST_F(SessionDeadlineTest, LockIsHeldUntilThenAndNoLonger) {
  startLogind();
  SdEventMainLoop mainLoop;
  const SystemClock clock;
  DesktopAssertionClient client(
      DesktopAssertionClient::Means{{mainLoop.event(), mainLoop}, sessionAddress, systemAddress, {}});
  FakePowerSources power;
  FakeDisplayPower display;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults(domains, "test");
  Settings settings(defaults);
  AwakeManager manager({mainLoop, clock, client, power, display, settings, macWording()});
  manager.onChange = [&] {
    if (!manager.isActive()) mainLoop.quit();
  };

  const auto end = clock.now() + std::chrono::milliseconds(400);
  ASSERT_TRUE(manager.start(end, false, clock.now()));
  EXPECT_EQ(locks().size(), 1U);
  mainLoop.run();
  EXPECT_GE(clock.now(), end);
  EXPECT_TRUE(lockIsLetGo());
}

}  // namespace
}  // namespace nimbo
