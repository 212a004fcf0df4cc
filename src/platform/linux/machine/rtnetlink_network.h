// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

/// Hears from the kernel (rtnetlink(7)) of each default route that appears. Each observer has a socket of its own.
class RtnetlinkNetwork final : public Network {
 public:
  /// `loop` outlives the subscriptions.
  explicit RtnetlinkNetwork(MainLoop& loop) : loop_(loop) {}

  [[nodiscard]] Subscription observe(std::function<void()> connected) override;

 private:
  MainLoop& loop_;
};

}  // namespace nimbo
