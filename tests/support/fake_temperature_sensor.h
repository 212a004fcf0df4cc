// SPDX-License-Identifier: MIT
#pragma once

#include "platform/temperature_sensor.h"

namespace nimbo {

/// Shows what the test sets.
class FakeTemperatureSensor final : public TemperatureSensor {
 public:
  [[nodiscard]] std::optional<double> temperature() override {
    ++readings;
    return celsius;
  }

  std::optional<double> celsius;
  int readings = 0;
};

}  // namespace nimbo
