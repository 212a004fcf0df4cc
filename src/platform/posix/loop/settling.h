// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "base/subscription.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Tells once of the signs of a new way to the world, which come in bursts: name servers and the other address family's
/// route follow the first route within a second or so. Main thread only.
class Settling {
 public:
  /// `timers` outlives this. `tell` may destroy it.
  Settling(MainLoop& timers, std::function<void()> tell) : timers_(timers), tell_(std::move(tell)) {}

  void sign() {
    waiting_ = timers_.every(std::chrono::seconds(2), std::chrono::milliseconds(500), [this] {
      waiting_.reset();
      const auto tell = tell_;
      tell();
    });
  }

 private:
  MainLoop& timers_;
  const std::function<void()> tell_;
  Subscription waiting_;
};

}  // namespace nimbo
