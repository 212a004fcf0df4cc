// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "base/result.h"
#include "base/subscription.h"

namespace nimbo {

struct DisplayPowerError {
  std::string description;  ///< one finished sentence for the user
};

/// Turns the display off by hand. Main thread only.
class DisplayPower {
 public:
  virtual ~DisplayPower() = default;

  /// Asks the desktop to put the display to sleep now; any input turns it on again. `failed` is
  /// called once, later from the main loop, when the desktop refused. Dropping the subscription
  /// silences `failed` and takes back a request that still waits to be carried out; what a service
  /// has been called for it does. The error says that there is nothing here that could be asked.
  [[nodiscard]] virtual Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) = 0;
};

}  // namespace nimbo
