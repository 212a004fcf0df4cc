// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/temperature_sensor.h"
#include "system/smc_connection.h"

namespace nimbo {

/// The CPU temperature by the system management controller. It asks only those of the CPU family's
/// sensors that gave a plausible value when it was made. Made and used on one queue.
class TemperatureSampler final : public TemperatureSensor {
 public:
  explicit TemperatureSampler(SmcService& service);

  [[nodiscard]] std::optional<double> temperature() override;

 private:
  std::unique_ptr<SmcConnection> connection_;  // null when there is none
  std::vector<std::string_view> keys_;
};

}  // namespace nimbo
