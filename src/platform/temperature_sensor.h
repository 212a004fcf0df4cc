// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <optional>

namespace nimbo {

/// The CPU's temperature. Made and used on one queue, because a reading may block for milliseconds.
class TemperatureSensor {
 public:
  virtual ~TemperatureSensor() = default;

  /// Degrees Celsius of the hottest sensor with a plausible value; absent when there is none.
  [[nodiscard]] virtual std::optional<double> temperature() = 0;
};

/// Whether a sensor's value, in degrees Celsius, can be a working CPU's: finite and 1.0…125.0.
[[nodiscard]] inline bool isPlausibleTemperature(double celsius) {
  return std::isfinite(celsius) && celsius >= 1.0 && celsius <= 125.0;
}

/// Keeps the hottest of the plausible values it is given.
class HottestTemperature {
 public:
  void add(std::optional<double> celsius) {
    if (!celsius || !isPlausibleTemperature(*celsius)) return;
    if (!value_ || *celsius > *value_) value_ = celsius;
  }
  [[nodiscard]] std::optional<double> value() const { return value_; }

 private:
  std::optional<double> value_;
};

}  // namespace nimbo
