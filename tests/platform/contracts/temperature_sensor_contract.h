// SPDX-License-Identifier: MIT
// What every reader of the CPU's temperature promises (platform/temperature_sensor.h).
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "platform/temperature_sensor.h"

namespace nimbo {

/// A machine whose CPU has up to three sensors.
struct TemperatureSensorHost {
  using Readings = std::vector<std::optional<double>>;  ///< absent: it fails

  virtual ~TemperatureSensorHost() = default;
  virtual void show(const Readings& readings) = 0;
  /// Made when it is asked for first.
  [[nodiscard]] virtual TemperatureSensor& sensor() = 0;
};

using TemperatureSensorHostMaker = std::unique_ptr<TemperatureSensorHost> (*)();

template <class Host>
std::unique_ptr<TemperatureSensorHost> makeTemperatureSensorHost() {
  return std::make_unique<Host>();
}

class TemperatureSensorContract : public testing::TestWithParam<TemperatureSensorHostMaker> {
 protected:
  [[nodiscard]] std::optional<double> read(const TemperatureSensorHost::Readings& readings) const {
    host->show(readings);
    return host->sensor().temperature();
  }

  const std::unique_ptr<TemperatureSensorHost> host = GetParam()();
};

TEST_P(TemperatureSensorContract, HottestValueOfTheMomentIsRead) {
  EXPECT_EQ(read({51.5, 63.25, 48}), 63.25);
  EXPECT_EQ(read({70.75, 63.25, 48}), 70.75);
  EXPECT_EQ(read({30, 30, 30}), 30);
}

TEST_P(TemperatureSensorContract, MachineWithoutSensorsHasNoTemperature) { EXPECT_EQ(read({}), std::nullopt); }

TEST_P(TemperatureSensorContract, ImplausibleValuesAreLeftOut) {
  EXPECT_EQ(read({50, 50, 50}), 50);
  EXPECT_EQ(read({125.01, 0.99, -40}), std::nullopt);
  EXPECT_EQ(read({125.01, 1, -40}), 1);
  EXPECT_EQ(read({125.01, 1, 125}), 125);
}

TEST_P(TemperatureSensorContract, SensorThatFailsIsLeftOutUntilItWorksAgain) {
  EXPECT_EQ(read({70, 60}), 70);
  EXPECT_EQ(read({{}, 60}), 60);
  EXPECT_EQ(read({{}, {}}), std::nullopt);
  EXPECT_EQ(read({70, 60}), 70);
}

}  // namespace nimbo
