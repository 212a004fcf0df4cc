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
  /// called later from the main loop when the desktop refused. Dropping the subscription takes back
  /// a request that has not been carried out and silences `failed`. The error says that there is
  /// nothing here that could be asked.
  [[nodiscard]] virtual Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) = 0;
};

}  // namespace nimbo
