// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "base/subscription.h"

namespace nimbo {

/// Tells when the system or the user asks the process to end (log-out, kill). Main thread only.
class Termination {
 public:
  virtual ~Termination() = default;

  [[nodiscard]] virtual Subscription observe(std::function<void()> requested) = 0;
};

}  // namespace nimbo
