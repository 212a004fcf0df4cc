// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "platform/main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

/// Hears from the kernel (rtnetlink(7)) of each default route that appears. Each observer has a socket of its own.
class RtnetlinkNetwork final : public Network {
 public:
  /// `loop` outlives the subscriptions. Name servers and the other address family's route follow the first route
  /// within a second or so: after `settling` without another one it is told.
  explicit RtnetlinkNetwork(MainLoop& loop, std::chrono::milliseconds settling = std::chrono::seconds(2))
      : loop_(loop), settling_(settling) {}

  [[nodiscard]] Subscription observe(std::function<void()> connected) override;

 private:
  MainLoop& loop_;
  const std::chrono::milliseconds settling_;
};

}  // namespace nimbo
