// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "base/subscription.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Tells once of signs that come in bursts, when there has been none for a while. Main thread only.
class Settling {
 public:
  /// `timers` outlives this. `tell` may destroy it.
  Settling(MainLoop& timers, std::chrono::milliseconds quiet, std::function<void()> tell)
      : timers_(timers), quiet_(quiet), tell_(std::move(tell)) {}

  void sign() {
    waiting_ = timers_.every(quiet_, std::chrono::milliseconds(500), [this] {
      waiting_.reset();
      const auto tell = tell_;
      tell();
    });
  }

 private:
  MainLoop& timers_;
  const std::chrono::milliseconds quiet_;
  const std::function<void()> tell_;
  Subscription waiting_;
};

}  // namespace nimbo
