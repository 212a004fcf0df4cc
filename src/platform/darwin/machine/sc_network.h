// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "platform/main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

/// Hears from the system's dynamic store when it has a default route that it had not before. Each observer has a
/// connection to the store of its own.
class ScNetwork final : public Network {
 public:
  /// `loop`, which is that of the main thread's run loop, outlives the subscriptions. Name servers and the other
  /// address family's route follow the first route within a second or so: after `settling` without another one it is
  /// told.
  explicit ScNetwork(MainLoop& loop, std::chrono::milliseconds settling = std::chrono::seconds(2))
      : loop_(loop), settling_(settling) {}

  [[nodiscard]] Subscription observe(std::function<void()> connected) override;

 private:
  MainLoop& loop_;
  const std::chrono::milliseconds settling_;
};

}  // namespace nimbo
