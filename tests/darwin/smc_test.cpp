// SPDX-License-Identifier: MIT
#include <array>

#include "darwin/fakes/fake_host.h"
#include "darwin/fakes/fake_smc.h"
#include "platform/contracts/temperature_sensor_contract.h"
#include "platform/darwin/machine/iokit_smc_service.h"
#include "system/temperature_sampler.h"

namespace nimbo {
namespace {

struct SmcMachine {
  SmcMachine() { host.setValue("machdep.cpu.brand_string", std::to_array("Apple M2 Pro")); }

  FakeHost host;
  fake::Smc smc;
  IokitSmcService service;
};

struct SmcHost final : TemperatureSensorHost, SmcMachine {
  void show(const Readings& readings) override {
    constexpr std::array kKeys{"Tp01", "Tp05", "Tp09"};
    for (std::size_t index = 0; index < readings.size(); ++index) {
      smc.controller.setReading(kKeys.at(index), readings[index]);
    }
  }
  [[nodiscard]] TemperatureSensor& sensor() override {
    if (!sampler) sampler.emplace(service);
    return *sampler;
  }

  std::optional<TemperatureSampler> sampler;
};
INSTANTIATE_TEST_SUITE_P(Smc, TemperatureSensorContract, testing::Values(makeTemperatureSensorHost<SmcHost>));

class IokitSmcServiceTest : public testing::Test, protected SmcMachine {
 protected:
  IokitSmcServiceTest() {
    smc.controller.setFloat("Tp01", 61.5F);
    smc.controller.setFixed("Tp09", 0x2A80);
  }
  [[nodiscard]] std::optional<double> temperature() { return TemperatureSampler(service).temperature(); }
};

TEST_F(IokitSmcServiceTest, EveryReplyIsJudgedByItsCodeAndItsSize) {
  smc.controller.sensors["Tp01"].returnCode = static_cast<std::int32_t>(0xE00002BC);
  EXPECT_EQ(temperature(), 42.5);
  smc.controller.sensors["Tp01"].returnCode = 0;
  smc.controller.sensors["Tp01"].replySize = 79;
  EXPECT_EQ(temperature(), 42.5);
  smc.controller.sensors["Tp01"].replySize = 80;
  smc.controller.sensors["Tp01"].resultByte = 1;
  EXPECT_EQ(temperature(), 42.5);
}

TEST_F(IokitSmcServiceTest, ConnectionStaysOpenForAsLongAsItIsHeld) {
  {
    TemperatureSampler sampler(service);
    EXPECT_EQ(smc.controller.openConnections, 1);
    EXPECT_EQ(fake::references, 0) << "the service itself is let go once it is open";
    EXPECT_EQ(sampler.temperature(), 61.5);
  }
  EXPECT_EQ(smc.controller.openConnections, 0);
}

TEST_F(IokitSmcServiceTest, MachineWithoutAControllerHasNoConnection) {
  smc.controller.present = false;
  EXPECT_EQ(service.open(), nullptr);
  smc.canBeSought = false;
  EXPECT_EQ(service.open(), nullptr);
}

TEST_F(IokitSmcServiceTest, ControllerThatMayNotBeOpenedHasNoConnection) {
  smc.refusal = static_cast<kern_return_t>(0xE00002C1);
  EXPECT_EQ(service.open(), nullptr);
  EXPECT_EQ(temperature(), std::nullopt);
}

TEST_F(IokitSmcServiceTest, BrandEndsAtItsFirstZeroAndIsEmptyWhenNotTold) {
  host.setValue("machdep.cpu.brand_string", std::to_array("Apple M2\0 Pro"));
  EXPECT_EQ(service.cpuBrand(), "Apple M2");
  host.values.clear();
  EXPECT_EQ(service.cpuBrand(), "");
}

}  // namespace
}  // namespace nimbo
