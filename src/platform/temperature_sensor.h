// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

namespace nimbo {

/// The CPU's temperature. Made and used on one queue, because a reading may block for milliseconds.
class TemperatureSensor {
 public:
  virtual ~TemperatureSensor() = default;

  /// Degrees Celsius of the hottest sensor with a plausible value; absent when there is none.
  [[nodiscard]] virtual std::optional<double> temperature() = 0;
};

}  // namespace nimbo
