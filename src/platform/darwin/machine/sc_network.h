// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

/// Hears from the system's dynamic store when it has a default route that it had not before. Each observer has a
/// connection to the store of its own.
class ScNetwork final : public Network {
 public:
  /// `timers` outlives the subscriptions. The store tells the main thread's run loop.
  explicit ScNetwork(MainLoop& timers) : timers_(timers) {}

  [[nodiscard]] Subscription observe(std::function<void()> connected) override;

 private:
  MainLoop& timers_;
};

}  // namespace nimbo
