// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "base/subscription.h"

namespace nimbo {

/// Tells when the machine goes to sleep and when it is back. Main thread only.
class SystemSleep {
 public:
  virtual ~SystemSleep() = default;

  /// `willSleep` returns before the machine sleeps (the system waits a few seconds at most).
  /// Without a service that tells, neither is ever called.
  [[nodiscard]] virtual Subscription observe(std::function<void()> willSleep, std::function<void()> didWake) = 0;
};

/// Tells when the machine becomes connected. Main thread only.
class Network {
 public:
  virtual ~Network() = default;

  /// `connected` is called a little later than a way to the world appears, when names can be looked up as well.
  /// What is there already does not count. Costs nothing meanwhile.
  [[nodiscard]] virtual Subscription observe(std::function<void()> connected) = 0;
};

/// Tells when the system or the user asks the process to end (log-out, kill). Main thread only.
class Termination {
 public:
  enum class Cause {
    interrupt,  ///< from the terminal; the other programs there hear of it, too
    request,    ///< all else
  };
  virtual ~Termination() = default;

  [[nodiscard]] virtual Subscription observe(std::function<void(Cause cause)> requested) = 0;
};

}  // namespace nimbo
