// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_power.h"
#include "platform/contracts/assertion_client_contract.h"
#include "platform/contracts/power_sources_contract.h"
#include "platform/darwin/loop/cf_main_loop.h"
#include "platform/darwin/power/iokit_assertion_client.h"
#include "platform/darwin/power/iokit_power_sources.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using fake::number;
using fake::text;
using Description = PowerSourceDescription;
using Descriptions = std::vector<Description>;

struct IokitAssertionHost final : AssertionClientHost {
  [[nodiscard]] AssertionClient& client() override { return iokit; }
  [[nodiscard]] Assertions held(std::size_t /*expected*/) override {
    Assertions all;
    for (const auto& [id, assertion] : power.assertions) all.emplace_back(assertion.type, assertion.name);
    return all;
  }
  void setRefuses(bool refuses) override { power.refusal = refuses ? static_cast<IOReturn>(0xE00002C1) : 0; }

  fake::Power power;
  IokitAssertionClient iokit;
};
INSTANTIATE_TEST_SUITE_P(Iokit, AssertionClientContract, testing::Values(makeAssertionClientHost<IokitAssertionHost>));

TEST(IokitAssertionClient, RefusalCarriesTheSystemsCode) {
  IokitAssertionHost host;
  host.setRefuses(true);
  const auto refused = host.iokit.create(kPreventSystemSleep, "reason");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().code, -536870207);
}

struct IokitPowerSourcesHost final : PowerSourcesHost {
  IokitPowerSourcesHost() { describe("AC Power", 80); }
  [[nodiscard]] PowerSources& sources() override { return *iokit; }
  void destroySources() override { iokit.reset(); }
  void unplug() override { describe(state = "Battery Power", 80); }
  void drainTo(int percent) override { describe(state, percent); }
  [[nodiscard]] bool becomes(const std::function<bool()>& so) override {
    const auto end = std::chrono::steady_clock::now() + 5s;
    const auto look = loop.every(1ms, 0ms, [&] {
      if (so() || std::chrono::steady_clock::now() > end) loop.quit();
    });
    loop.run();
    return so();
  }
  void settle() override {
    for (int turn = 0; turn < 3; ++turn) {
      loop.post([this] { loop.quit(); });
      loop.run();
    }
  }
  void describe(const char* powerState, int percent) {
    power.sources = {fake::dictionary({{"Type", text("InternalBattery")},
                                       {"Power Source State", text(powerState)},
                                       {"Current Capacity", number(percent)},
                                       {"Max Capacity", number(100)}})};
    power.notify();
  }
  [[nodiscard]] std::optional<Descriptions> listOf(const std::map<std::string, fake::Held>& source) {
    power.sources = {fake::dictionary(source)};
    return iokit->list();
  }

  fake::Power power;
  CfMainLoop loop;
  std::unique_ptr<IokitPowerSources> iokit = std::make_unique<IokitPowerSources>();
  const char* state = "AC Power";
};
INSTANTIATE_TEST_SUITE_P(Iokit, PowerSourcesContract, testing::Values(makePowerSourcesHost<IokitPowerSourcesHost>));

class IokitPowerSourcesTest : public testing::Test {
 protected:
  IokitPowerSourcesHost host;
};

TEST_F(IokitPowerSourcesTest, SourcesComeInTheSystemsOrder) {
  host.power.sources = {fake::dictionary({{"Type", text("UPS")}}), text("not described"),
                        fake::dictionary({{"Type", text("InternalBattery")}})};
  EXPECT_EQ(host.iokit->list(),
            (Descriptions{{"UPS", std::nullopt}, Description(), {"InternalBattery", std::nullopt}}));
}

TEST_F(IokitPowerSourcesTest, ValuesOfOtherTypesAreAbsent) {
  const double exact = 57;
  const double broken = 57.5;
  EXPECT_EQ(host.listOf({{"Type", number(1)}, {"Power Source State", number(2)}, {"Max Capacity", text("100")}}),
            Descriptions{Description()});
  EXPECT_EQ(host.listOf({{"Current Capacity", fake::owned(CFNumberCreate(nullptr, kCFNumberFloat64Type, &exact))},
                         {"Max Capacity", fake::owned(CFNumberCreate(nullptr, kCFNumberFloat64Type, &broken))}}),
            (Descriptions{{std::nullopt, std::nullopt, 57, std::nullopt}}));
  EXPECT_EQ(host.listOf({{"Current Capacity", fake::Held(kCFBooleanTrue)}}), Descriptions{Description()});
}

TEST_F(IokitPowerSourcesTest, MachineWithoutSourcesHasNone) {
  host.power.sources.clear();
  EXPECT_EQ(host.iokit->list(), Descriptions());
}

TEST_F(IokitPowerSourcesTest, SystemThatDoesNotAnswerIsAbsent) {
  host.power.listIsArray = false;
  EXPECT_EQ(host.iokit->list(), std::nullopt);
  host.power.tellsList = false;
  EXPECT_EQ(host.iokit->list(), std::nullopt);
  host.power.tellsInfo = false;
  EXPECT_EQ(host.iokit->list(), std::nullopt);
}

TEST_F(IokitPowerSourcesTest, WithoutANoticeNothingIsTold) {
  host.power.notifies = false;
  const auto observer = host.iokit->observe([] { ADD_FAILURE(); });
  host.unplug();
  host.settle();
}

}  // namespace
}  // namespace nimbo
