// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/power_sources.h"

namespace nimbo {

/// Listens for changes of the power sources for as long as it lives. Main thread only.
class BatteryObserver {
 public:
  explicit BatteryObserver(PowerSources& sources)
      : source_(sources.observe([this] {
          // A copy, because the owner may drop this object meanwhile.
          if (const auto changed = onChange) changed();
        })) {}
  BatteryObserver(const BatteryObserver&) = delete;
  BatteryObserver& operator=(const BatteryObserver&) = delete;

  std::function<void()> onChange;

 private:
  Subscription source_;
};

}  // namespace nimbo
