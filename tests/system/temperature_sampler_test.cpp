// SPDX-License-Identifier: MIT
#include "system/temperature_sampler.h"

#include <array>
#include <limits>

#include "platform/contracts/temperature_sensor_contract.h"
#include "support/fake_smc_connection.h"

namespace nimbo {
namespace {

constexpr char kIntelBrand[] = "Intel(R) Core(TM) i7-9750H CPU @ 2.60GHz";

struct SamplerHost final : TemperatureSensorHost {
  void show(const Readings& readings) override {
    constexpr std::array kKeys{"TC0D", "TC0E", "TC0P"};
    for (std::size_t index = 0; index < readings.size(); ++index) service.setReading(kKeys.at(index), readings[index]);
  }
  [[nodiscard]] TemperatureSensor& sensor() override {
    service.brand = kIntelBrand;
    if (!sampler) sampler.emplace(service);
    return *sampler;
  }

  FakeSmcService service;
  std::optional<TemperatureSampler> sampler;
};
INSTANTIATE_TEST_SUITE_P(Sampler, TemperatureSensorContract, testing::Values(makeTemperatureSensorHost<SamplerHost>));

class TemperatureSamplerTest : public testing::Test {
 protected:
  TemperatureSamplerTest() { service.brand = kIntelBrand; }

  std::optional<double> temperature() { return TemperatureSampler(service).temperature(); }

  std::vector<std::string> keysFor(const std::string& brand) {
    service.infoKeys.clear();
    service.brand = brand;
    const TemperatureSampler sampler(service);
    return service.infoKeys;
  }

  FakeSmcService service;
};

TEST_F(TemperatureSamplerTest, FixedPointOf2A80Is42AndAHalf) {
  service.setFixed("TC0P", 0x2A80);
  EXPECT_EQ(temperature(), 42.5);
}

TEST_F(TemperatureSamplerTest, FixedPointOfFF00IsMinusOneAndRejected) {
  service.setFixed("TC0P", 0xFF00);
  EXPECT_EQ(temperature(), std::nullopt);
}

TEST_F(TemperatureSamplerTest, ValuesThatAreNoNumbersAreRejected) {
  service.setFloat("TC0D", std::numeric_limits<float>::quiet_NaN());
  service.setFloat("TC0E", std::numeric_limits<float>::infinity());
  EXPECT_EQ(temperature(), std::nullopt);
}

TEST_F(TemperatureSamplerTest, KeyOf33DataBytesGivesNoValue) {
  service.setFloat("TC0D", 50.0F);
  service.sensors["TC0D"].reportedSize = 33;
  EXPECT_EQ(temperature(), std::nullopt);
}

TEST_F(TemperatureSamplerTest, KeyOf32DataBytesIsReadByItsFirstOnes) {
  service.setFloat("TC0D", 50.0F);
  service.sensors["TC0D"].reportedSize = 32;
  EXPECT_EQ(temperature(), 50.0);
}

TEST_F(TemperatureSamplerTest, KeyWithoutDataGivesNoValueAndIsNotReadFurther) {
  service.setBytes("TC0D", "flt ", {});
  EXPECT_EQ(temperature(), std::nullopt);
  for (const SmcRecord& request : service.requests) EXPECT_EQ(request[42], 9);
}

TEST_F(TemperatureSamplerTest, TooFewBytesForTheTypeGiveNoValue) {
  service.setBytes("TC0D", "flt ", {0x00, 0x00, 0x48});
  service.setBytes("TC0E", "sp78", {0x2A});
  EXPECT_EQ(temperature(), std::nullopt);
}

TEST_F(TemperatureSamplerTest, UnknownTypeGivesNoValue) {
  service.setBytes("TC0D", "ui16", {0x00, 0x40});
  service.setBytes("TC0E", "ui32", {0x00, 0x00, 0x48, 0x42});  // 50 as a number of another type
  EXPECT_EQ(temperature(), std::nullopt);
}

TEST_F(TemperatureSamplerTest, FailedCallShortReplyAndResultByteEachGiveNoValue) {
  service.setFloat("TC0D", 50.0F);
  const FakeSmcService::Sensor good = service.sensors["TC0D"];

  service.sensors["TC0D"].returnCode = -536870206;
  EXPECT_EQ(temperature(), std::nullopt);
  service.sensors["TC0D"] = good;
  service.sensors["TC0D"].replySize = 79;
  EXPECT_EQ(temperature(), std::nullopt);
  service.sensors["TC0D"] = good;
  service.sensors["TC0D"].resultByte = 0x84;
  EXPECT_EQ(temperature(), std::nullopt);
  service.sensors["TC0D"] = good;
  EXPECT_EQ(temperature(), 50.0);
}

TEST_F(TemperatureSamplerTest, RequestsFollowTheWireFormat) {
  service.setFloat("TC0P", 50.0F);
  const TemperatureSampler sampler(service);
  SmcRecord info{};
  info[0] = 'P';
  info[1] = '0';
  info[2] = 'C';
  info[3] = 'T';
  info[42] = 9;
  SmcRecord bytes = info;
  bytes[28] = 4;
  bytes[42] = 5;
  ASSERT_EQ(service.requests.size(), 6U);  // four keys that do not exist, then this one
  EXPECT_EQ(service.requests[4], info);
  EXPECT_EQ(service.requests[5], bytes);
}

TEST_F(TemperatureSamplerTest, CpuFamilyChoosesTheKeysInTheirOrder) {
  using Keys = std::vector<std::string>;
  EXPECT_EQ(keysFor(kIntelBrand), (Keys{"TCAD", "TC0D", "TC0E", "TC0F", "TC0P"}));
  EXPECT_EQ(keysFor("Apple M1"),
            (Keys{"Tp09", "Tp0T", "Tp01", "Tp05", "Tp0D", "Tp0H", "Tp0L", "Tp0P", "Tp0X", "Tp0b"}));
  EXPECT_EQ(keysFor("Apple M1 Pro"), keysFor("Apple M1"));
  EXPECT_EQ(keysFor("Apple M2"),
            (Keys{"Tp1h", "Tp1t", "Tp1p", "Tp1l", "Tp01", "Tp05", "Tp09", "Tp0D", "Tp0X", "Tp0b", "Tp0f", "Tp0j"}));
  EXPECT_EQ(keysFor("Apple M3 Max"), (Keys{"Te05", "Te0L", "Te0P", "Te0S", "Tf04", "Tf09", "Tf0A", "Tf0B", "Tf0D",
                                           "Tf0E", "Tf44", "Tf49", "Tf4A", "Tf4B", "Tf4D", "Tf4E"}));
  EXPECT_EQ(keysFor("Apple M4"),
            (Keys{"Te05", "Te0S", "Te09", "Te0H", "Tp01", "Tp05", "Tp09", "Tp0D", "Tp0V", "Tp0Y", "Tp0b", "Tp0e"}));
}

TEST_F(TemperatureSamplerTest, UnknownCpuGetsNoKeys) {
  service.setFloat("Tp01", 50.0F);
  EXPECT_TRUE(keysFor("Apple M5").empty());
  EXPECT_TRUE(keysFor("").empty());
  EXPECT_EQ(temperature(), std::nullopt);
  EXPECT_TRUE(service.requests.empty());
}

TEST_F(TemperatureSamplerTest, OnlySensorsPlausibleAtTheStartAreReadLater) {
  service.setFloat("TC0D", 50.0F);
  service.setFloat("TC0E", 0.0F);
  TemperatureSampler sampler(service);
  service.setFloat("TC0E", 80.0F);
  service.infoKeys.clear();
  EXPECT_EQ(sampler.temperature(), 50.0);
  EXPECT_EQ(service.infoKeys, std::vector<std::string>{"TC0D"});
}

TEST_F(TemperatureSamplerTest, EveryKeyFailingAtTheStartIsAbsentForGood) {
  TemperatureSampler sampler(service);
  service.setFloat("TC0D", 50.0F);
  EXPECT_EQ(sampler.temperature(), std::nullopt);
}

TEST_F(TemperatureSamplerTest, MachineWithoutControllerHasNoTemperatureAndIsNotAskedForItsBrand) {
  service.present = false;
  EXPECT_EQ(temperature(), std::nullopt);
  EXPECT_EQ(service.brandReads, 0);
}

TEST_F(TemperatureSamplerTest, ConnectionIsOpenExactlyWhileTheSamplerLives) {
  {
    const TemperatureSampler sampler(service);
    EXPECT_EQ(service.openConnections, 1);
  }
  EXPECT_EQ(service.openConnections, 0);
}

}  // namespace
}  // namespace nimbo
