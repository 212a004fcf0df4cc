// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "platform/temperature_sensor.h"

namespace nimbo {

/// With the sensors that the test sets, of which an absent one fails.
class FakeTemperatureSensor final : public TemperatureSensor {
 public:
  [[nodiscard]] std::optional<double> temperature() override {
    ++readings;
    HottestTemperature hottest;
    for (const auto celsius : sensors) hottest.add(celsius);
    return hottest.value();
  }

  std::vector<std::optional<double>> sensors;
  int readings = 0;
};

}  // namespace nimbo
