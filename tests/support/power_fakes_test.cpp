// SPDX-License-Identifier: MIT
// The fakes of power, of the system's events and of the temperature keep the interfaces' promises themselves.
#include <gtest/gtest.h>

#include "platform/contracts/assertion_client_contract.h"
#include "platform/contracts/display_power_contract.h"
#include "platform/contracts/network_contract.h"
#include "platform/contracts/power_sources_contract.h"
#include "platform/contracts/temperature_sensor_contract.h"
#include "platform/contracts/termination_contract.h"
#include "support/fake_assertion_client.h"
#include "support/fake_dates.h"
#include "support/fake_display_power.h"
#include "support/fake_network.h"
#include "support/fake_own_process.h"
#include "support/fake_platform_services.h"
#include "support/fake_power_sources.h"
#include "support/fake_temperature_sensor.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

struct FakeAssertionHost final : AssertionClientHost {
  [[nodiscard]] AssertionClient& client() override { return fake; }
  [[nodiscard]] Assertions held(std::size_t /*expected*/) override {
    Assertions all;
    for (const auto& [type, reason] : fake.held()) all.emplace_back(type, reason);
    return all;
  }
  void setRefuses(bool refuses) override {
    for (const auto* const type : {kPreventSystemSleep, kPreventDisplaySleep}) {
      refuses ? fake.refuse(type, 16) : fake.grant(type);
    }
  }

  FakeAssertionClient fake;
};
INSTANTIATE_TEST_SUITE_P(Fake, AssertionClientContract, testing::Values(makeAssertionClientHost<FakeAssertionHost>));

struct FakePowerSourcesHost final : PowerSourcesHost {
  FakePowerSourcesHost() { fake->onMains(80); }
  [[nodiscard]] PowerSources& sources() override { return *fake; }
  void destroySources() override { fake.reset(); }
  void unplug() override {
    if (fake) fake->onBattery(80);
  }
  void drainTo(int percent) override { fake->onBattery(percent); }
  [[nodiscard]] bool becomes(const std::function<bool()>& so) override { return so(); }
  void settle() override {}

  std::unique_ptr<FakePowerSources> fake = std::make_unique<FakePowerSources>();
};
INSTANTIATE_TEST_SUITE_P(Fake, PowerSourcesContract, testing::Values(makePowerSourcesHost<FakePowerSourcesHost>));

struct FakeTerminationHost final : TerminationHost {
  [[nodiscard]] MainLoop& loop() override { return events; }
  [[nodiscard]] Termination& termination() override { return fake; }
  void send(int signal) override {
    fake.request(signal == SIGINT ? Termination::Cause::interrupt : Termination::Cause::request);
  }

  FakeMainLoop events;
  FakeTermination fake;
};
INSTANTIATE_TEST_SUITE_P(Fake, TerminationContract, everySignalTo(makeTerminationHost<FakeTerminationHost>));

struct FakeNetworkHost final : NetworkHost {
  [[nodiscard]] Network& network() override { return fake; }
  void routeAppears() override { fake.routeAppears(); }
  void settle() override { fake.settle(); }
  void almostSettle() override {}

  FakeNetwork fake;
};
INSTANTIATE_TEST_SUITE_P(Fake, NetworkContract, testing::Values(makeNetworkHost<FakeNetworkHost>));

struct FakeDisplayHost final : DisplayPowerHost {
  [[nodiscard]] DisplayPower& power() override { return *fake; }
  void destroyPower() override { fake.reset(); }
  void refuse() override { refuses = true; }
  void offerNothing() override { fake->nothingToAsk = DisplayPowerError{"There is no display here."}; }
  void settle() override {
    if (!fake) return;
    refuses ? fake->fail() : fake->carryOut();
    EXPECT_EQ(fake->pending(), 0U);
    dark += std::exchange(fake->asleep, false) ? 1 : 0;
  }
  [[nodiscard]] int timesDark() const override { return dark; }

  std::optional<FakeDisplayPower> fake{std::in_place};
  bool refuses = false;
  int dark = 0;
};
const auto kFakeDisplay = testing::Values(makeDisplayPowerHost<FakeDisplayHost>);
INSTANTIATE_TEST_SUITE_P(Fake, DisplayPowerContract, kFakeDisplay);
INSTANTIATE_TEST_SUITE_P(Fake, WaitingDisplayPowerContract, kFakeDisplay);

struct FakeTemperatureHost final : TemperatureSensorHost {
  void show(const Readings& readings) override { fake.sensors = readings; }
  [[nodiscard]] TemperatureSensor& sensor() override { return fake; }

  FakeTemperatureSensor fake;
};
INSTANTIATE_TEST_SUITE_P(Fake, TemperatureSensorContract,
                         testing::Values(makeTemperatureSensorHost<FakeTemperatureHost>));

TEST(FakeAssertionClient, ReleaseOfWhatIsNotHeldIsRecordedAsSuch) {
  FakeAssertionClient client;
  client.release(9);
  EXPECT_EQ(client.calls, std::vector<std::string>{"release unknown 9"});
}

TEST(FakeAssertionClient, RefusalConcernsItsTypeOnlyUntilGranted) {
  FakeAssertionClient client;
  client.refuse(kPreventDisplaySleep, 16);
  EXPECT_TRUE(client.create(kPreventSystemSleep, ""));
  const auto refused = client.create(kPreventDisplaySleep, "");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error(), PowerError{16});
  EXPECT_FALSE(client.holds(kPreventDisplaySleep));
  client.grant(kPreventDisplaySleep);
  EXPECT_TRUE(client.create(kPreventDisplaySleep, ""));
  EXPECT_TRUE(client.holds(kPreventDisplaySleep));
}

TEST(FakePowerSources, ShowWhatTheTestPlugsIn) {
  FakePowerSources sources;
  using List = std::vector<PowerSourceDescription>;
  EXPECT_EQ(sources.list(), List());
  sources.onBattery(42);
  EXPECT_EQ(sources.list(), (List{{"InternalBattery", "Battery Power", 42, 100}}));
  sources.onMains(std::nullopt);
  EXPECT_EQ(sources.list(), (List{{"InternalBattery", "AC Power"}}));
  sources.none();
  EXPECT_EQ(sources.list(), List());
  sources.unavailable();
  EXPECT_EQ(sources.list(), std::nullopt);
}

TEST(FakePowerSources, SubscriptionsAreCountedAndMayOutliveThem) {
  Subscription last;
  {
    FakePowerSources sources;
    int changes = 0;
    auto first = sources.observe([&] { ++changes; });
    last = sources.observe([&] { ++changes; });
    EXPECT_EQ(sources.observers(), 2);
    sources.onBattery(50);
    EXPECT_EQ(changes, 2);
    first.reset();
    EXPECT_EQ(sources.observers(), 1);
    EXPECT_EQ(sources.subscriptions, 2);
  }
  last.reset();
  EXPECT_FALSE(last);
}

TEST(FakeDates, AreUtcWhateverTheMachine) {
  EXPECT_EQ(FakeDates().shortDateAndTime(std::chrono::system_clock::time_point(1795271459s)), "2026-11-21 14:30");
}

TEST(FakeOwnProcess, SpendsWhatItIsToldTo) {
  FakeOwnProcess process;
  const auto before = process.usage();
  process.spend(60ms);
  EXPECT_EQ(process.usage()->cpuTime - before->cpuTime, 60ms);
  process.now.reset();
  process.spend(60ms);
  EXPECT_FALSE(process.usage());
  EXPECT_EQ(process.readings, 3);
}

TEST(FakePlatformServices, BothClocksFollowWallClockAndSleep) {
  FakePlatformServices services;
  EXPECT_EQ(services.loop.wallClock(), services.clock->now());
  const auto start = services.clock->now();
  const auto uptime = services.clock->uptime();
  services.sleep(1h);
  EXPECT_EQ(services.clock->now(), start + 1h);
  EXPECT_EQ(services.clock->uptime(), uptime);
  services.setWallClock(start - 1h);
  services.loop.advance(5s);
  EXPECT_EQ(services.clock->now(), start - 1h + 5s);
  EXPECT_EQ(services.loop.wallClock(), services.clock->now());
}

TEST(FakePlatformServices, OtherDomainsAreKeptApartOrNotAtAll) {
  FakePlatformServices services;
  const auto other = services.makeUserDefaults("Nimbo.Other");
  ASSERT_TRUE(other);
  other->set("key", true);
  EXPECT_EQ(services.userDefaults().boolean("key"), std::nullopt);
  EXPECT_EQ(services.domains.writes, std::vector<std::string>{"Nimbo.Other/key"});
  services.keepsOtherDomains = false;
  EXPECT_EQ(services.makeUserDefaults("Nimbo.Other"), nullptr);
}

}  // namespace
}  // namespace nimbo
