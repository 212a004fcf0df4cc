// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/temperature_sensor.h"

namespace nimbo {

/// Whether a hwmon chip's `name` or a thermal zone's `type` means the CPU, by the names in the
/// kernel's Documentation/hwmon and in its device trees. Disks, boards and ACPI zones do not.
[[nodiscard]] bool isCpuSensor(std::string_view name);

/// Degrees Celsius of an attribute in millidegrees; absent for other text.
[[nodiscard]] std::optional<double> parseMillidegrees(std::string_view text);

/// The CPU's hwmon chips and, where they give nothing, its thermal zones. They are
/// looked for once, when it is made; sensors of other devices are never read, because that may wake
/// a disk. Made and used on one queue.
class HwmonTemperatureSensor final : public TemperatureSensor {
 public:
  explicit HwmonTemperatureSensor(const std::string& sysRoot = "/sys");

  [[nodiscard]] std::optional<double> temperature() override;

 private:
  struct Input {
    std::string value;  // path of the attribute
    std::string fault;  // path of the attribute that says 1 when `value` is not to be trusted; may be absent
  };
  static std::vector<Input> chipInputs(const std::string& chip);
  static std::optional<double> hottest(const std::vector<Input>& inputs);

  std::vector<Input> chips_;
  std::vector<Input> zones_;
};

}  // namespace nimbo
