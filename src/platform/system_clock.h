// SPDX-License-Identifier: MIT
#pragma once

#include "platform/clock.h"

namespace nimbo {

/// The real clocks, by the C++ library: the same on every system.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] std::chrono::system_clock::time_point now() const override { return std::chrono::system_clock::now(); }
  [[nodiscard]] std::chrono::duration<double> uptime() const override {
    return std::chrono::steady_clock::now().time_since_epoch();
  }
};

}  // namespace nimbo
